#include "raylume/platform/images/IcoPicture.h"

#include <optional>
#include <tuple>

#include "raylume/platform/images/BmpPicture.h"

namespace platform {

namespace {

struct Entry {
    std::uint32_t pixels = 0;
    std::uint32_t bits = 0;
    std::uint32_t bytes = 0;
    std::uint32_t offset = 0;
};

bool isLess(const Entry& a, const Entry& b)
{
    return std::tie(a.pixels, a.bits) < std::tie(b.pixels, b.bits);
}

// A side of 256 is written as 0.
std::uint32_t readSide(SourceReader& reader)
{
    const std::uint32_t side = reader.byte();
    return side == 0 ? 256 : side;
}

Entry readEntry(SourceReader& reader)
{
    Entry entry;
    entry.pixels = readSide(reader);
    entry.pixels *= readSide(reader);
    reader.littleEndian16();
    reader.littleEndian16();
    entry.bits = reader.littleEndian16();
    entry.bytes = reader.littleEndian32();
    entry.offset = reader.littleEndian32();
    return entry;
}

std::optional<Entry> largestEntry(SourceReader& reader)
{
    constexpr std::uint64_t kCountOffset = 4;
    reader.seek(kCountOffset);
    const std::uint32_t count = reader.littleEndian16();
    std::optional<Entry> largest;
    for (std::uint32_t index = 0; index < count; ++index) {
        const Entry entry = readEntry(reader);
        if (!largest || isLess(*largest, entry)) {
            largest = entry;
        }
    }
    return reader.failed() ? std::nullopt : largest;
}

bool isPng(ImageSource& source)
{
    unsigned char start[4] = {};
    return source.readAt(0, start, sizeof start) == sizeof start && start[0] == 0x89 && start[1] == 'P' &&
           start[2] == 'N' && start[3] == 'G';
}

}  // namespace

std::unique_ptr<Picture> openIcoPicture(const std::shared_ptr<ImageSource>& source)
{
    SourceReader reader(source);
    const auto entry = largestEntry(reader);
    if (!entry) {
        return nullptr;
    }
    const auto part = std::make_shared<PartOfSource>(source, entry->offset, entry->bytes);
    return isPng(*part) ? openPicture(part) : openBmpPicture(part, BmpForm::kIcon);
}

}  // namespace platform
