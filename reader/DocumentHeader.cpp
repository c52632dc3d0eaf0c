#include "reader/DocumentHeader.h"

#include "raylume/platform/Reference.h"

namespace ovdl {
namespace {

constexpr std::uint32_t kSize = 12;
constexpr std::uint32_t kLastFormatVersion = 0xFFFF;

std::uint32_t get(const unsigned char* bytes)
{
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

void put(unsigned char* bytes, std::uint32_t number)
{
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>(number >> 8 * i);
}

bool readBytes(IStorage& root, unsigned char* bytes)
{
    platform::Reference<IStream> stream;
    std::uint32_t count = 0;
    return root.OpenStream(kHeaderName, kModeExclusive + kModeRead, stream.out()) >= 0 &&
           stream->Read(bytes, kSize, &count) >= 0 && count == kSize;
}

}  // namespace

std::optional<DocumentHeader> readHeader(IStorage& root)
{
    unsigned char bytes[kSize];
    if (!readBytes(root, bytes))
        return std::nullopt;
    const DocumentHeader header = {get(bytes), get(bytes + 4), get(bytes + 8)};
    if (header.formatVersion == 0 || header.formatVersion > kLastFormatVersion)
        return std::nullopt;
    return header;
}

HResult writeHeader(IStorage& root, const DocumentHeader& header)
{
    unsigned char bytes[kSize];
    put(bytes, header.formatVersion);
    put(bytes + 4, header.documentVersion);
    put(bytes + 8, header.displayListVersion);
    platform::Reference<IStream> stream;
    const HResult result =
        root.CreateStream(kHeaderName, kModeExclusive + kModeReadWrite + kModeCreate, stream.out());
    return result < 0 ? result : stream->Write(bytes, kSize, nullptr);
}

}  // namespace ovdl
