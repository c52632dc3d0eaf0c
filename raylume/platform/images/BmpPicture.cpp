#include "raylume/platform/images/BmpPicture.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "raylume/platform/images/BmpRuns.h"

namespace platform {

namespace {

constexpr std::uint8_t kOpaque = 255;

// Where the alpha of a pixel comes from.
enum class Alpha {
    kNone,        // opaque
    kDeclared,    // as the channel says
    kFourthByte,  // not declared, but there
    kMask,        // bits behind the picture of an icon, set where it is cut out
};

class BmpPicture final : public Picture {
public:
    BmpPicture(std::shared_ptr<ImageSource> source, const BmpLayout& layout, BmpForm form)
        : reader_(source), maskReader_(std::move(source)), layout_(layout)
    {
        if (layout.alpha.mask != 0) {
            alpha_ = Alpha::kDeclared;
        } else if (layout.bits == 32 && hasSpareByte()) {
            mayHaveFourthByte_ = true;
        }
        isIcon_ = form == BmpForm::kIcon;
    }

    ImageSize size() const override { return layout_.size; }
    bool hasAlpha() const override { return layout_.alpha.mask != 0 || mayHaveFourthByte_ || isIcon_; }
    // Runs have no length that would bound the time for a picture out of all proportion.
    bool comesByRows() const override { return layout_.packing == BmpPacking::kPlain; }
    bool fitsSource() const;
    bool decode(RowScaler& rows) override;

private:
    bool hasSpareByte() const
    {
        return ((layout_.red.mask | layout_.green.mask | layout_.blue.mask) & 0xFF000000u) == 0;
    }
    std::uint64_t pixelBytes() const;
    bool anyFourthByte();
    void chooseAlpha();
    bool readPalette();
    bool decodePlain(RowScaler& rows);
    bool decodeRuns(RowScaler& rows);
    void convertRow(const unsigned char* packed, unsigned char* pixels) const;
    void convertIndices(const unsigned char* packed, unsigned char* pixels) const;
    void convertMasked(const unsigned char* packed, unsigned char* pixels) const;
    void copyIndex(unsigned index, unsigned char* pixel) const
    {
        std::memcpy(pixel, palette_[index].data(), 4);
    }
    std::uint8_t alphaOf(std::uint32_t pixel) const;
    bool applyMask(int row, unsigned char* pixels);
    int pictureRow(int fileRow) const
    {
        return layout_.isTopDown ? fileRow : layout_.size.height - 1 - fileRow;
    }

    SourceReader reader_;
    SourceReader maskReader_;
    BmpLayout layout_;
    bool isIcon_ = false;
    bool mayHaveFourthByte_ = false;
    Alpha alpha_ = Alpha::kNone;
    std::array<std::array<unsigned char, 4>, 256> palette_{};
    std::vector<unsigned char> maskRow_;
};

// The padding behind the last row may be missing.
std::uint64_t BmpPicture::pixelBytes() const
{
    const auto bits =
        static_cast<std::uint64_t>(layout_.size.width) * static_cast<std::uint64_t>(layout_.bits);
    return layout_.rowBytes() * static_cast<std::uint64_t>(layout_.size.height - 1) + (bits + 7) / 8;
}

bool BmpPicture::fitsSource() const
{
    const std::uint64_t needed = layout_.packing == BmpPacking::kPlain ? pixelBytes() : 1;
    return layout_.pixelOffset < reader_.size() && reader_.size() - layout_.pixelOffset >= needed;
}

bool BmpPicture::anyFourthByte()
{
    reader_.seek(layout_.pixelOffset);
    std::vector<unsigned char> row(layout_.rowBytes());
    for (int index = 0; index < layout_.size.height && reader_.readAll(row.data(), row.size()); ++index) {
        for (std::size_t at = 3; at < row.size(); at += 4) {
            if (row[at] != 0) {
                return true;
            }
        }
    }
    return false;
}

void BmpPicture::chooseAlpha()
{
    if (alpha_ == Alpha::kDeclared) {
        return;
    }
    if (mayHaveFourthByte_ && anyFourthByte()) {
        alpha_ = Alpha::kFourthByte;
    } else if (isIcon_) {
        alpha_ = Alpha::kMask;
    }
}

// Entries that are missing stay black.
bool BmpPicture::readPalette()
{
    palette_.fill({0, 0, 0, kOpaque});
    reader_.seek(layout_.paletteOffset);
    for (int index = 0; index < layout_.paletteCount; ++index) {
        if (!reader_.readAll(palette_[static_cast<std::size_t>(index)].data(), 3)) {
            return false;
        }
        if (layout_.paletteEntryBytes == 4) {
            reader_.byte();
        }
    }
    return true;
}

bool BmpPicture::decode(RowScaler& rows)
{
    chooseAlpha();
    if (layout_.bits <= 8 && !readPalette()) {
        return false;
    }
    reader_.seek(layout_.pixelOffset);
    return layout_.packing == BmpPacking::kPlain ? decodePlain(rows) : decodeRuns(rows);
}

bool BmpPicture::decodePlain(RowScaler& rows)
{
    const std::uint64_t lastRowBytes =
        (static_cast<std::uint64_t>(layout_.size.width) * static_cast<std::uint64_t>(layout_.bits) + 7) / 8;
    std::vector<unsigned char> packed(layout_.rowBytes());
    for (int fileRow = 0; fileRow < layout_.size.height; ++fileRow) {
        const int row = pictureRow(fileRow);
        if (reader_.read(packed.data(), packed.size()) < lastRowBytes) {
            return false;
        }
        unsigned char* const pixels = rows.row(row);
        convertRow(packed.data(), pixels);
        if (alpha_ == Alpha::kMask && !applyMask(fileRow, pixels)) {
            return false;
        }
        rows.finishRow(row);
    }
    return true;
}

bool BmpPicture::decodeRuns(RowScaler& rows)
{
    const auto width = static_cast<std::size_t>(layout_.size.width);
    BmpRuns runs(reader_, layout_.packing, layout_.size);
    for (int fileRow = 0; fileRow < layout_.size.height; ++fileRow) {
        if (!runs.nextRow()) {
            return false;
        }
        const int row = pictureRow(fileRow);
        unsigned char* pixel = rows.row(row);
        for (std::size_t column = 0; column < width; ++column, pixel += 4) {
            if (layout_.bits == 24) {
                std::copy_n(runs.colours() + 3 * column, 3, pixel);
                pixel[3] = kOpaque;
            } else {
                copyIndex(runs.colours()[column], pixel);
            }
        }
        rows.finishRow(row);
    }
    return true;
}

void BmpPicture::convertRow(const unsigned char* packed, unsigned char* pixels) const
{
    if (layout_.bits <= 8) {
        convertIndices(packed, pixels);
    } else if (layout_.bits == 24) {
        for (int column = 0; column < layout_.size.width; ++column, packed += 3, pixels += 4) {
            std::copy_n(packed, 3, pixels);
            pixels[3] = kOpaque;
        }
    } else {
        convertMasked(packed, pixels);
    }
}

// The first pixel of a byte stands in its highest bits.
void BmpPicture::convertIndices(const unsigned char* packed, unsigned char* pixels) const
{
    const auto bits = static_cast<unsigned>(layout_.bits);
    const unsigned most = (1u << bits) - 1;
    for (unsigned column = 0; column < static_cast<unsigned>(layout_.size.width); ++column, pixels += 4) {
        const unsigned bit = column * bits;
        copyIndex(packed[bit / 8] >> (8 - bits - bit % 8) & most, pixels);
    }
}

void BmpPicture::convertMasked(const unsigned char* packed, unsigned char* pixels) const
{
    const int bytes = layout_.bits / 8;
    for (int column = 0; column < layout_.size.width; ++column, packed += bytes, pixels += 4) {
        std::uint32_t pixel = packed[0] | static_cast<std::uint32_t>(packed[1]) << 8;
        if (bytes == 4) {
            pixel |= static_cast<std::uint32_t>(packed[2]) << 16 | static_cast<std::uint32_t>(packed[3])
                                                                       << 24;
        }
        pixels[0] = layout_.blue.of(pixel);
        pixels[1] = layout_.green.of(pixel);
        pixels[2] = layout_.red.of(pixel);
        pixels[3] = alphaOf(pixel);
    }
}

std::uint8_t BmpPicture::alphaOf(std::uint32_t pixel) const
{
    switch (alpha_) {
    case Alpha::kDeclared:
        return layout_.alpha.of(pixel);
    case Alpha::kFourthByte:
        return static_cast<std::uint8_t>(pixel >> 24);
    default:
        return kOpaque;
    }
}

// One bit a pixel behind the picture, in rows padded like those of the picture.
bool BmpPicture::applyMask(int fileRow, unsigned char* pixels)
{
    const auto width = static_cast<std::size_t>(layout_.size.width);
    maskRow_.resize((width + 31) / 32 * 4);
    if (fileRow == 0) {
        maskReader_.seek(layout_.pixelOffset +
                         layout_.rowBytes() * static_cast<std::uint64_t>(layout_.size.height));
    }
    if (maskReader_.read(maskRow_.data(), maskRow_.size()) < (width + 7) / 8) {
        return false;
    }
    for (std::size_t column = 0; column < width; ++column) {
        if ((maskRow_[column / 8] >> (7 - column % 8) & 1) != 0) {
            pixels[4 * column + 3] = 0;
        }
    }
    return true;
}

}  // namespace

std::unique_ptr<Picture> openBmpPicture(const std::shared_ptr<ImageSource>& source, BmpForm form)
{
    SourceReader reader(source);
    const auto layout = readBmpLayout(reader, form);
    if (!layout) {
        return nullptr;
    }
    auto picture = std::make_unique<BmpPicture>(source, *layout, form);
    return picture->fitsSource() ? std::move(picture) : nullptr;
}

}  // namespace platform
