// The first page of a TIFF by libtiff.
#include <tiffio.h>

#include <algorithm>
#include <vector>

#include "raylume/platform/posix/CodecPictures.h"

namespace platform {

namespace {

// For one strip or tile.
constexpr tmsize_t kMostSingleBytes = tmsize_t{1} << 30;

struct Cursor {
    std::shared_ptr<ImageSource> bytes;
    std::uint64_t position = 0;
    std::vector<unsigned char> copy{};  ///< Of the whole file, for openTiff(); empty otherwise.
};

extern "C" {

static tmsize_t readTiffBytes(thandle_t handle, void* buffer, tmsize_t size)
{
    auto& cursor = *static_cast<Cursor*>(handle);
    const std::size_t count = cursor.bytes->readAt(cursor.position, buffer, static_cast<std::size_t>(size));
    cursor.position += count;
    return static_cast<tmsize_t>(count);
}

static tmsize_t writeNoTiffBytes(thandle_t, void*, tmsize_t)
{
    return 0;
}

static toff_t seekTiff(thandle_t handle, toff_t offset, int from)
{
    auto& cursor = *static_cast<Cursor*>(handle);
    const toff_t base = from == SEEK_CUR ? cursor.position : from == SEEK_END ? cursor.bytes->size() : 0;
    cursor.position = base + offset;
    return cursor.position;
}

static toff_t sizeOfTiff(thandle_t handle)
{
    return static_cast<Cursor*>(handle)->bytes->size();
}

static int leaveTiffOpen(thandle_t)
{
    return 0;
}

static int mapTiffCopy(thandle_t handle, void** base, toff_t* size)
{
    auto& cursor = *static_cast<Cursor*>(handle);
    *base = cursor.copy.data();
    *size = cursor.copy.size();
    return cursor.copy.empty() ? 0 : 1;
}

static void unmapNothing(thandle_t, void*, toff_t)
{
}

static int ignoreTiffMessage(TIFF*, void*, const char*, const char*, va_list)
{
    return 1;  // and keep the handler of the process out of it
}
}

struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, CloseTiff>;

TiffHandle openTiff(Cursor& cursor)
{
    cursor.position = 0;
    TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
    if (!options) {
        return nullptr;
    }
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, kMostSingleBytes);
    TIFFOpenOptionsSetErrorHandlerExtR(options, ignoreTiffMessage, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options, ignoreTiffMessage, nullptr);
    TiffHandle tiff(TIFFClientOpenExt("", cursor.copy.empty() ? "rm" : "r", &cursor, readTiffBytes,
                                      writeNoTiffBytes, seekTiff, leaveTiffOpen, sizeOfTiff, mapTiffCopy,
                                      unmapNothing, options));
    TIFFOpenOptionsFree(options);
    return tiff;
}

// Some releases of the library refuse plain tiles that are no multiple of this, unless the file is mapped.
bool needsCopy(TIFF* tiff)
{
    constexpr tmsize_t kUnit = 1024;
    std::uint16_t compression = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &compression);
    return TIFFIsTiled(tiff) && compression == COMPRESSION_NONE && TIFFTileSize(tiff) % kUnit != 0;
}

// A copy and no mapping: the file may be cut short while it is read. Files beyond the limit stay as they
// are.
void copyWhole(Cursor& cursor)
{
    constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 28;
    if (cursor.bytes->size() > kMostBytes) {
        return;
    }
    cursor.copy.resize(static_cast<std::size_t>(cursor.bytes->size()));
    cursor.copy.resize(cursor.bytes->readAt(0, cursor.copy.data(), cursor.copy.size()));
}

enum class Alpha { kNone, kStraight, kPremultiplied };

// Files that say nothing of a fourth sample mean alpha by it; ones that call it unspecified do not.
Alpha alphaOf(TIFF* tiff)
{
    std::uint16_t samples = 1;
    std::uint16_t extraCount = 0;
    std::uint16_t photometric = PHOTOMETRIC_MINISWHITE;
    const std::uint16_t* extras = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric);
    if (TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &extraCount, &extras) == 1 && extraCount > 0) {
        return extras[0] == EXTRASAMPLE_ASSOCALPHA   ? Alpha::kPremultiplied
               : extras[0] == EXTRASAMPLE_UNASSALPHA ? Alpha::kStraight
                                                     : Alpha::kNone;
    }
    return samples > 3 && photometric == PHOTOMETRIC_RGB ? Alpha::kStraight : Alpha::kNone;
}

unsigned char divided(std::uint32_t premultiplied, std::uint32_t alpha)
{
    return static_cast<unsigned char>(
        std::min<std::uint32_t>((premultiplied * 255 + alpha / 2) / alpha, 255));
}

void convertPixel(std::uint32_t packed, Alpha kind, unsigned char* pixel)
{
    const std::uint32_t alpha = kind == Alpha::kNone ? 255 : TIFFGetA(packed);
    const std::uint32_t colours[] = {TIFFGetB(packed), TIFFGetG(packed), TIFFGetR(packed)};
    for (int channel = 0; channel < 3; ++channel) {
        pixel[channel] = kind == Alpha::kPremultiplied && alpha > 0
                             ? divided(colours[channel], alpha)
                             : static_cast<unsigned char>(colours[channel]);
    }
    pixel[3] = static_cast<unsigned char>(alpha);
}

class TiffPicture final : public Picture {
public:
    explicit TiffPicture(std::shared_ptr<ImageSource> source) : cursor_{std::move(source)} {}
    ~TiffPicture() override
    {
        if (hasBegun_) {
            TIFFRGBAImageEnd(&image_);
        }
    }

    bool readHeader();
    ImageSize size() const override { return size_; }
    bool hasAlpha() const override { return alpha_ != Alpha::kNone; }
    bool comesByRows() const override { return bandHeight_ < size_.height; }
    bool decode(RowScaler& rows) override;

private:
    bool isConvertible() const;
    bool begin();
    int findBandHeight() const;
    bool readBand(int first, int count, std::vector<std::uint32_t>& band);

    Cursor cursor_;
    TiffHandle tiff_;
    TIFFRGBAImage image_{};
    bool hasBegun_ = false;
    ImageSize size_;
    Alpha alpha_ = Alpha::kNone;
    int bandHeight_ = 0;  // of the strips or tiles, which are decoded whole
};

int TiffPicture::findBandHeight() const
{
    std::uint32_t rows = 0;
    if (TIFFIsTiled(tiff_.get())) {
        TIFFGetField(tiff_.get(), TIFFTAG_TILELENGTH, &rows);
    } else {
        TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_ROWSPERSTRIP, &rows);
    }
    return static_cast<int>(std::min<std::uint32_t>(rows, static_cast<std::uint32_t>(size_.height)));
}

// Kinds that are not read are none from the header on.
bool TiffPicture::isConvertible() const
{
    char reason[1024];
    TIFFRGBAImage trial;
    if (TIFFRGBAImageOK(tiff_.get(), reason) == 0 ||
        TIFFRGBAImageBegin(&trial, tiff_.get(), 1, reason) == 0) {
        return false;
    }
    TIFFRGBAImageEnd(&trial);
    return true;
}

bool TiffPicture::readHeader()
{
    tiff_ = openTiff(cursor_);
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    if (!tiff_ || TIFFGetField(tiff_.get(), TIFFTAG_IMAGEWIDTH, &width) != 1 ||
        TIFFGetField(tiff_.get(), TIFFTAG_IMAGELENGTH, &height) != 1 || width > kLongestSide ||
        height > kLongestSide) {
        return false;
    }
    size_ = {static_cast<int>(width), static_cast<int>(height)};
    alpha_ = alphaOf(tiff_.get());
    bandHeight_ = findBandHeight();
    return bandHeight_ > 0 && std::int64_t{size_.width} * bandHeight_ <= kMostPixelsAtOnce &&
           isConvertible();
}

// The library multiplies straight alpha in, so it is told that this has been done. Pictures are not turned,
// whatever the file says of its orientation.
bool TiffPicture::begin()
{
    if (needsCopy(tiff_.get())) {
        copyWhole(cursor_);
        tiff_ = openTiff(cursor_);
        if (!tiff_) {
            return false;
        }
    }
    char reason[1024];
    const std::uint16_t associated = EXTRASAMPLE_ASSOCALPHA;
    if (alpha_ == Alpha::kStraight) {
        TIFFSetField(tiff_.get(), TIFFTAG_EXTRASAMPLES, 1, &associated);
    }
    hasBegun_ = TIFFRGBAImageOK(tiff_.get(), reason) != 0 &&
                TIFFRGBAImageBegin(&image_, tiff_.get(), 1, reason) != 0;
    image_.orientation = image_.req_orientation = ORIENTATION_TOPLEFT;
    return hasBegun_;
}

bool TiffPicture::readBand(int first, int count, std::vector<std::uint32_t>& band)
{
    image_.row_offset = first;
    image_.col_offset = 0;
    return TIFFRGBAImageGet(&image_, band.data(), static_cast<std::uint32_t>(size_.width),
                            static_cast<std::uint32_t>(count)) != 0;
}

bool TiffPicture::decode(RowScaler& rows)
{
    if (!begin()) {
        return false;
    }
    const auto width = static_cast<std::size_t>(size_.width);
    std::vector<std::uint32_t> band(width * static_cast<std::size_t>(bandHeight_));
    for (int row = 0; row < size_.height; ++row) {
        const int inBand = row % bandHeight_;
        if (inBand == 0 && !readBand(row, std::min(bandHeight_, size_.height - row), band)) {
            return false;
        }
        const std::uint32_t* packed = band.data() + width * static_cast<std::size_t>(inBand);
        unsigned char* pixel = rows.row(row);
        for (std::size_t column = 0; column < width; ++column, pixel += 4) {
            convertPixel(packed[column], alpha_, pixel);
        }
        rows.finishRow(row);
    }
    return true;
}

}  // namespace

std::unique_ptr<Picture> openTiffPicture(const std::shared_ptr<ImageSource>& source)
{
    auto picture = std::make_unique<TiffPicture>(source);
    return picture->readHeader() ? std::move(picture) : nullptr;
}

}  // namespace platform
