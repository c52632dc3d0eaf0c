#include "raylume/platform/posix/CompoundWriter.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <string>
#include <utility>

#include "raylume/platform/Text.h"
#include "raylume/platform/posix/CompoundFileDescriptor.h"
#include "raylume/platform/posix/CompoundGsf.h"
#include "raylume/platform/posix/NewFile.h"

namespace platform::compound {

namespace {

// What libgsf writes to. It keeps the first error, since libgsf drops some, and gathers the many small
// writes of tables and directories.
class BufferedSink final : public FileSink {
public:
    explicit BufferedSink(int number) : number_(number) {}

    void write(std::uint64_t offset, const void* bytes, std::size_t count) override
    {
        if (offset != start_ + buffer_.size() || buffer_.size() + count > kMost)
            flush();
        if (buffer_.empty())
            start_ = offset;
        if (count >= kMost)
            writeOut(offset, static_cast<const char*>(bytes), count);
        else
            buffer_.append(static_cast<const char*>(bytes), count);
    }

    bool failed() const override { return error_ != 0; }

    HResult finish()
    {
        flush();
        return error_ == 0 ? kStorageOk : resultOfErrno(error_);
    }

private:
    static constexpr std::size_t kMost = 65536;

    void flush()
    {
        writeOut(start_, buffer_.data(), buffer_.size());
        buffer_.clear();
    }

    void writeOut(std::uint64_t offset, const char* bytes, std::size_t count)
    {
        while (count > 0 && error_ == 0) {
            const ssize_t written = pwrite(number_, bytes, count, static_cast<off_t>(offset));
            if (written < 0 && errno == EINTR)
                continue;
            if (written <= 0) {
                error_ = written < 0 ? errno : EIO;
                return;
            }
            bytes += written;
            offset += static_cast<std::uint64_t>(written);
            count -= static_cast<std::size_t>(written);
        }
    }

    int number_;
    std::string buffer_;
    std::uint64_t start_ = 0;
    int error_ = 0;
};

// Whether a tree can be written at all, asked before anything is.
class Inspection {
public:
    HResult inspect(const Element& storage)
    {
        if (!census_.add(storage.children().size()))
            return kStorageTooLarge;
        for (const ElementPtr& child : storage.children()) {
            const HResult result = inspectChild(*child);
            if (result < 0)
                return result;
        }
        return kStorageOk;
    }

private:
    // A file of another program may have names that nobody may give; they stay as they are if libgsf
    // can write them.
    static bool canBeWritten(const std::wstring& name)
    {
        return !name.empty() && utf16Length(name) <= 31 && fromUtf8(toUtf8(name)) == name;
    }

    HResult inspectChild(const Element& child)
    {
        if (!canBeWritten(child.name()))
            return kStorageInvalidName;
        return child.kind() == Kind::kStorage ? inspect(child) : kStorageOk;
    }

    Census census_;
};

class GsfTreeWriter {
public:
    explicit GsfTreeWriter(FileSink& sink) : sink_(sink) {}

    HResult write(Element& root, std::size_t sectorSize)
    {
        const Object<GsfOutput> output = makeGsfOutput(sink_);
        const Object<GsfOutfile> outfile(
            gsf_outfile_msole_new_full(output.get(), static_cast<guint>(sectorSize), 64));
        const HResult result = fill(outfile.get(), root);
        // Closed in any case: libgsf complains of an end without.
        const bool closed = gsf_output_close(GSF_OUTPUT(outfile.get()));
        return result < 0 ? result : closed ? kStorageOk : kStorageWriteFault;
    }

private:
    // As deep as storages nest, which is limited.
    HResult fill(GsfOutfile* outfile, Element& storage)
    {
        gsf_outfile_msole_set_class_id(GSF_OUTFILE_MSOLE(outfile), storage.classId.data());
        for (const ElementPtr& child : storage.children()) {
            const HResult result = writeChild(outfile, *child);
            if (result < 0)
                return result;
        }
        return kStorageOk;
    }

    HResult writeChild(GsfOutfile* outfile, Element& child)
    {
        const bool isStorage = child.kind() == Kind::kStorage;
        const Object<GsfOutput> made(newChild(outfile, child, isStorage));
        if (!made)
            return kStorageWriteFault;
        const HResult result =
            isStorage ? fill(GSF_OUTFILE(made.get()), child) : writeStream(made.get(), child);
        const bool closed = gsf_output_close(made.get());
        return result < 0 ? result : closed ? kStorageOk : kStorageWriteFault;
    }

    static GsfOutput* newChild(GsfOutfile* outfile, const Element& child, bool isStorage)
    {
        const std::string name = toUtf8(child.name());
        if (!isStorage || !child.modified)
            return gsf_outfile_new_child(outfile, name.c_str(), isStorage);
        GDateTime* seconds = g_date_time_new_from_unix_utc(*child.modified / 1000000);
        GDateTime* time = seconds ? g_date_time_add(seconds, *child.modified % 1000000) : nullptr;
        GsfOutput* made = gsf_outfile_new_child_full(outfile, name.c_str(), TRUE, "modtime", time, nullptr);
        for (GDateTime* used : {seconds, time})
            if (used)
                g_date_time_unref(used);
        return made;
    }

    HResult writeStream(GsfOutput* output, Element& stream) const
    {
        return copyBytes(stream, [&](const void* piece, std::size_t count) {
            return gsf_output_write(output, count, static_cast<const guint8*>(piece)) && !sink_.failed();
        });
    }

    FileSink& sink_;
};

HResult writeTree(int number, Element& root, std::size_t sectorSize)
{
    BufferedSink sink(number);
    const HResult result = GsfTreeWriter(sink).write(root, sectorSize);
    // What the system said of the file tells more than what libgsf made of it.
    const HResult finished = sink.finish();
    return finished < 0 ? finished : result;
}

class HandleWriter final : public TreeWriter {
public:
    HandleWriter(int number, std::size_t sectorSize) : number_(number), sectorSize_(sectorSize) {}

    HResult write(Element& root) override
    {
        const HResult result = Inspection().inspect(root);
        if (result < 0)
            return result;
        const QuietSizeLimit quiet;
        if (ftruncate(number_, 0) != 0)
            return resultOfErrno(errno);
        return writeTree(number_, root, sectorSize_);
    }

private:
    int number_;
    std::size_t sectorSize_;
};

class FileWriter final : public TreeWriter {
public:
    FileWriter(std::string path, std::size_t sectorSize) : path_(std::move(path)), sectorSize_(sectorSize)
    {
    }

    HResult write(Element& root) override
    {
        const HResult result = Inspection().inspect(root);
        if (result < 0)
            return result;
        const QuietSizeLimit quiet;
        NewFile file(path_);
        const HResult opened = file.open();
        return opened < 0 ? opened : writeInto(file, root);
    }

private:
    HResult writeInto(NewFile& file, Element& root) const
    {
        const HResult result = writeTree(file.number(), root, sectorSize_);
        return result < 0 ? result : file.replaceTarget();
    }

    std::string path_;
    std::size_t sectorSize_;
};

}  // namespace

std::unique_ptr<TreeWriter> makeFileWriter(std::string path, std::size_t sectorSize)
{
    return std::make_unique<FileWriter>(std::move(path), sectorSize);
}

std::unique_ptr<TreeWriter> makeHandleWriter(int number, std::size_t sectorSize)
{
    return std::make_unique<HandleWriter>(number, sectorSize);
}

}  // namespace platform::compound
