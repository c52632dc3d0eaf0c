#include "reader/formats/gltf/GlbContainer.h"

#include <cstring>

#include "reader/formats/gltf/Refusal.h"

namespace ovdl::gltf {
namespace {

constexpr std::uint32_t kJsonChunk = 0x4E4F534A;
constexpr std::uint32_t kBinaryChunk = 0x004E4942;
constexpr std::size_t kHeaderSize = 12;
constexpr std::size_t kChunkHeaderSize = 8;

std::uint32_t word(Bytes bytes, std::size_t offset)
{
    return bytes[offset] | bytes[offset + 1] << 8 | bytes[offset + 2] << 16 |
           std::uint32_t(bytes[offset + 3]) << 24;
}

// The part of the file that its header speaks of.
Bytes statedPart(Bytes file)
{
    if (file.size() < kHeaderSize)
        refuse("the file ends within its header");
    const std::uint32_t version = word(file, 4);
    if (version != 2)
        refuse("the container is of version " + std::to_string(version) + ", not 2");
    const std::uint32_t length = word(file, 8);
    if (length > file.size())
        refuse("the file is cut short: it has " + std::to_string(file.size()) + " bytes of " +
               std::to_string(length));
    if (length < kHeaderSize)
        refuse("the header states a length of " + std::to_string(length) + " bytes");
    return file.first(length);
}

struct Chunk {
    std::uint32_t type = 0;
    Bytes bytes;
};

// The chunk at `offset`, which moves behind it.
Chunk takeChunk(Bytes file, std::size_t& offset)
{
    if (file.size() - offset < kChunkHeaderSize)
        refuse("the file ends within the header of a chunk, at byte " + std::to_string(offset));
    const std::uint32_t length = word(file, offset);
    const std::uint32_t type = word(file, offset + 4);
    if (length > file.size() - offset - kChunkHeaderSize)
        refuse("the chunk at byte " + std::to_string(offset) + " reaches behind the end of the file");
    const Bytes bytes = file.subspan(offset + kChunkHeaderSize, length);
    offset += kChunkHeaderSize + length;
    return {type, bytes};
}

}  // namespace

bool hasBinaryMagic(Bytes start)
{
    return start.size() >= 4 && std::memcmp(start.data(), "glTF", 4) == 0;
}

GlbChunks openGlb(Bytes file)
{
    const Bytes stated = statedPart(file);
    std::size_t offset = kHeaderSize;
    const Chunk first = takeChunk(stated, offset);
    if (first.type != kJsonChunk)
        refuse("the first chunk is not the JSON one");
    GlbChunks chunks;
    chunks.json = first.bytes;
    if (offset == stated.size())
        return chunks;
    const Chunk second = takeChunk(stated, offset);
    chunks.hasBinary = second.type == kBinaryChunk;
    if (chunks.hasBinary)
        chunks.binary = second.bytes;
    return chunks;
}

}  // namespace ovdl::gltf
