#include "raylume/platform/posix/CompoundGsf.h"

#include <gsf/gsf-input-impl.h>
#include <gsf/gsf-output-impl.h>

#include <mutex>
#include <new>
#include <vector>

namespace platform::compound {

namespace {

using File = std::shared_ptr<const FileBytes>;

// What the type system of GLib wants of a class: plain data, made and ended by functions.
struct FileInput {
    GsfInput base;
    File* file;
    std::vector<guint8>* buffer;
};

struct FileInputClass {
    GsfInputClass base;
};

GObjectClass* parentClass = nullptr;

FileInput* asFileInput(void* object)
{
    return static_cast<FileInput*>(object);
}

void finalizeInput(GObject* object)
{
    FileInput* input = asFileInput(object);
    delete input->file;
    delete input->buffer;
    parentClass->finalize(object);
}

// One zero more than was asked for: libgsf looks for the end of a text in what it gets.
guint8* ownBuffer(FileInput& input, std::size_t count)
{
    try {
        if (input.buffer->size() < count + 1)
            input.buffer->resize(count + 1);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    (*input.buffer)[count] = 0;
    return input.buffer->data();
}

const guint8* readInput(GsfInput* object, size_t count, guint8* buffer)
{
    FileInput* input = asFileInput(object);
    guint8* to = buffer ? buffer : ownBuffer(*input, count);
    if (!to || object->cur_offset < 0)
        return nullptr;
    return (*input->file)->read(static_cast<std::uint64_t>(object->cur_offset), to, count) ? to : nullptr;
}

// The base class keeps the place, which is all there is.
gboolean seekInput(GsfInput*, gsf_off_t, GSeekType)
{
    return FALSE;
}

GsfInput* newInput(const File& file);

// No exception passes through libgsf.
GsfInput* duplicateInput(GsfInput* object, GError**)
{
    try {
        return newInput(*asFileInput(object)->file);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void initialiseClass(gpointer made, gpointer)
{
    auto* type = static_cast<FileInputClass*>(made);
    parentClass = static_cast<GObjectClass*>(g_type_class_peek_parent(made));
    type->base.g_object_class.finalize = finalizeInput;
    type->base.Dup = duplicateInput;
    type->base.Read = readInput;
    type->base.Seek = seekInput;
}

GType inputType()
{
    static const GType type =
        g_type_register_static_simple(GSF_INPUT_TYPE, "RaylumeCompoundInput", sizeof(FileInputClass),
                                      initialiseClass, sizeof(FileInput), nullptr, GTypeFlags(0));
    return type;
}

GsfInput* newInput(const File& file)
{
    auto held = std::make_unique<File>(file);
    auto buffer = std::make_unique<std::vector<guint8>>();
    auto* input = static_cast<FileInput*>(g_object_new(inputType(), nullptr));
    input->file = held.release();
    input->buffer = buffer.release();
    gsf_input_set_size(&input->base, static_cast<gsf_off_t>(file->size()));
    return &input->base;
}

struct FileOutput {
    GsfOutput base;
    FileSink* sink;
};

struct FileOutputClass {
    GsfOutputClass base;
};

gboolean writeOutput(GsfOutput* object, size_t count, const guint8* bytes)
{
    auto* output = static_cast<FileOutput*>(static_cast<void*>(object));
    output->sink->write(static_cast<std::uint64_t>(object->cur_offset), bytes, count);
    return TRUE;
}

// The base class keeps the place here, too.
gboolean seekOutput(GsfOutput*, gsf_off_t, GSeekType)
{
    return TRUE;
}

gboolean closeOutput(GsfOutput*)
{
    return TRUE;
}

void initialiseOutputClass(gpointer made, gpointer)
{
    auto* type = static_cast<FileOutputClass*>(made);
    type->base.Write = writeOutput;
    type->base.Seek = seekOutput;
    type->base.Close = closeOutput;
}

GType outputType()
{
    static const GType type =
        g_type_register_static_simple(GSF_OUTPUT_TYPE, "RaylumeCompoundOutput", sizeof(FileOutputClass),
                                      initialiseOutputClass, sizeof(FileOutput), nullptr, GTypeFlags(0));
    return type;
}

void swallow(const gchar*, GLogLevelFlags, const gchar*, gpointer)
{
}

}  // namespace

void prepareGsf()
{
    static std::once_flag once;
    std::call_once(once, [] {
        gsf_init();
        const auto levels =
            static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK | G_LOG_FLAG_FATAL | G_LOG_FLAG_RECURSION);
        for (const char* domain : {"libgsf", "libgsf:msole"})
            g_log_set_handler(domain, levels, swallow, nullptr);
    });
}

Object<GsfInput> makeGsfInput(std::shared_ptr<const FileBytes> file)
{
    prepareGsf();
    return Object<GsfInput>(newInput(file));
}

Object<GsfOutput> makeGsfOutput(FileSink& sink)
{
    prepareGsf();
    auto* output = static_cast<FileOutput*>(g_object_new(outputType(), nullptr));
    output->sink = &sink;
    return Object<GsfOutput>(&output->base);
}

}  // namespace platform::compound
