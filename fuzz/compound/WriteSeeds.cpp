// compound_seeds FOLDER: compound files with small and large sectors, small and large streams, and
// storages in storages.
#include <gsf/gsf.h>

#include <string>

namespace {

void addStream(GsfOutfile* storage, const char* name, std::size_t size)
{
    GsfOutput* stream = gsf_outfile_new_child(storage, name, FALSE);
    const std::string bytes(size, name[0]);
    gsf_output_write(stream, size, reinterpret_cast<const guint8*>(bytes.data()));
    gsf_output_close(stream);
    g_object_unref(stream);
}

void writeSeed(const std::string& path, unsigned sectorSize, bool large)
{
    GsfOutput* sink = gsf_output_stdio_new(path.c_str(), nullptr);
    GsfOutfile* root = gsf_outfile_msole_new_full(sink, sectorSize, 64);
    addStream(root, "Header", 12);
    addStream(root, "empty", 0);
    if (large)
        addStream(root, "large", 4100);
    GsfOutput* outer = gsf_outfile_new_child(root, "ThirdPtyStore", TRUE);
    GsfOutput* inner = gsf_outfile_new_child(GSF_OUTFILE(outer), "Raylume", TRUE);
    addStream(GSF_OUTFILE(inner), "ShaderData", 100);
    gsf_output_close(inner);
    gsf_output_close(outer);
    gsf_output_close(GSF_OUTPUT(root));
    for (void* object : {static_cast<void*>(inner), static_cast<void*>(outer), static_cast<void*>(root),
                         static_cast<void*>(sink)})
        g_object_unref(object);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    gsf_init();
    const std::string folder = argv[1];
    writeSeed(folder + "/small.cfb", 512, false);
    writeSeed(folder + "/streams.cfb", 512, true);
    writeSeed(folder + "/sectors.cfb", 4096, true);
    return 0;
}
