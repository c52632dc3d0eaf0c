#include "reader/formats/gltf/Buffers.h"

#include "reader/formats/gltf/Refusal.h"
#include "reader/formats/gltf/Uris.h"

namespace ovdl::gltf {

Buffers::Buffers(const Records& records, const GlbChunks& chunks, const DocumentPath& path, Budget& budget)
    : records_(records), budget_(budget)
{
    buffers_.reserve(records.buffers.size());
    for (std::size_t i = 0; i < records.buffers.size(); ++i) {
        const Bytes bytes = open(records.buffers[i], i, chunks, path);
        if (records.buffers[i].length > bytes.size())
            refuse(numbered("buffers", i) + " has " + std::to_string(bytes.size()) + " bytes of " +
                   std::to_string(records.buffers[i].length));
        buffers_.push_back(bytes.first(records.buffers[i].length));
    }
}

Bytes Buffers::open(const BufferRecord& record, std::size_t index, const GlbChunks& chunks,
                    const DocumentPath& path)
{
    if (record.hasUri)
        return isDataUri(record.uri) ? openData(record, index) : openFile(record, index, path);
    if (index == 0 && chunks.hasBinary)
        return chunks.binary;
    // Filled by an extension that this reader does not know.
    return {};
}

Bytes Buffers::openFile(const BufferRecord& record, std::size_t index, const DocumentPath& path)
{
    const std::optional<std::wstring> relative = relativePath(record.uri);
    if (!relative)
        refuse(numbered("buffers", index) + " does not lie below the document's folder");
    auto& file = files_[*relative];
    if (!file) {
        file = platform::MappedFile::open(path.folder + *relative);
        if (!file)
            refuse(numbered("buffers", index) +
                   " cannot be opened: " + std::string(record.uri.substr(0, 200)));
        budget_.addBytes(file->size());
    }
    return {file->data(), file->size()};
}

Bytes Buffers::openData(const BufferRecord& record, std::size_t index)
{
    std::optional<std::vector<unsigned char>> bytes = dataUriBytes(record.uri);
    if (!bytes)
        refuse(numbered("buffers", index) + " has a broken data URI");
    return decoded_.emplace_back(std::move(*bytes));
}

Bytes Buffers::view(std::int32_t index) const
{
    const ViewRecord& record = records_.views[static_cast<std::size_t>(index)];
    const Bytes buffer = buffers_[static_cast<std::size_t>(record.buffer)];
    if (record.offset > buffer.size() || record.length > buffer.size() - record.offset)
        refuse(numbered("bufferViews", static_cast<std::size_t>(index)) + " reaches out of its buffer");
    return buffer.subspan(record.offset, record.length);
}

}  // namespace ovdl::gltf
