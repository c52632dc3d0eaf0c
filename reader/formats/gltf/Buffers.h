// The bytes of a document's buffers, wherever they lie.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "raylume/platform/Files.h"
#include "reader/formats/gltf/Budget.h"
#include "reader/DocumentPath.h"
#include "reader/formats/gltf/GlbContainer.h"
#include "reader/formats/gltf/Records.h"

namespace ovdl::gltf {

class Buffers {
public:
    /// Opens every buffer: the binary chunk, files beside the document (mapped, each once), data
    /// URIs. Raises Refusal when one is missing, or shorter than it is said to be.
    Buffers(const Records& records, const GlbChunks& chunks, const DocumentPath& path, Budget& budget);

    /// The bytes of a buffer view. Raises Refusal when it reaches out of its buffer.
    Bytes view(std::int32_t index) const;

private:
    Bytes open(const BufferRecord& record, std::size_t index, const GlbChunks& chunks,
               const DocumentPath& path);
    Bytes openFile(const BufferRecord& record, std::size_t index, const DocumentPath& path);
    Bytes openData(const BufferRecord& record, std::size_t index);

    const Records& records_;
    Budget& budget_;
    std::vector<Bytes> buffers_;
    std::map<std::wstring, std::unique_ptr<platform::MappedFile>> files_;
    std::vector<std::vector<unsigned char>> decoded_;
};

}  // namespace ovdl::gltf
