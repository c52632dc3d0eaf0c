// PNG by libpng.
#include <png.h>

#include <algorithm>
#include <memory>

#include "raylume/platform/posix/CodecPictures.h"
#include "raylume/platform/posix/Recovery.h"

namespace platform {

namespace {

constexpr png_alloc_size_t kMostChunkBytes = 8u << 20;
constexpr png_uint_32 kMostKeptChunks = 100;

struct Reading {
    explicit Reading(std::shared_ptr<ImageSource> source) : bytes(std::move(source)) {}

    SourceReader bytes;
    std::jmp_buf recovery;
};

extern "C" {

[[noreturn]] static void failPng(png_structp png, png_const_charp)
{
    std::longjmp(static_cast<Reading*>(png_get_error_ptr(png))->recovery, 1);
}

static void ignorePngWarning(png_structp, png_const_charp)
{
}

static void readPngBytes(png_structp png, png_bytep destination, std::size_t size)
{
    if (!static_cast<Reading*>(png_get_io_ptr(png))->bytes.readAll(destination, size)) {
        failPng(png, "");
    }
}
}

class PngPicture final : public Picture {
public:
    explicit PngPicture(std::shared_ptr<ImageSource> source) : reading_(std::move(source)) {}
    ~PngPicture() override { png_destroy_read_struct(&png_, &info_, nullptr); }

    bool readHeader();
    ImageSize size() const override
    {
        return {static_cast<int>(png_get_image_width(png_, info_)),
                static_cast<int>(png_get_image_height(png_, info_))};
    }
    bool hasAlpha() const override { return hasAlpha_; }
    bool comesByRows() const override { return !isInterlaced_; }
    bool decode(RowScaler& rows) override;

private:
    void setLimits();
    void askForBgra();
    bool decodeByRows(RowScaler& rows);
    bool decodeInPasses(RowScaler& rows);
    bool decodeInPassesTo(RowScaler& rows, unsigned char* pixels);
    bool readEnd();

    Reading reading_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    bool isInterlaced_ = false;
    bool hasAlpha_ = false;
    int passes_ = 1;
};

// Chunks beside the picture are not even kept, so that none can be made to swell.
void PngPicture::setLimits()
{
    png_set_user_limits(png_, kLongestSide, kLongestSide);
    png_set_chunk_malloc_max(png_, kMostChunkBytes);
    png_set_chunk_cache_max(png_, kMostKeptChunks);
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
}

void PngPicture::askForBgra()
{
    png_set_expand(png_);
    png_set_scale_16(png_);
    png_set_gray_to_rgb(png_);
    png_set_add_alpha(png_, 0xFF, PNG_FILLER_AFTER);
    png_set_bgr(png_);
    passes_ = png_set_interlace_handling(png_);
}

bool PngPicture::readHeader()
{
    png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reading_, failPng, ignorePngWarning);
    info_ = png_ ? png_create_info_struct(png_) : nullptr;
    return info_ && runGuarded(reading_.recovery, [&] {
               setLimits();
               png_set_read_fn(png_, &reading_, readPngBytes);
               png_read_info(png_, info_);
               isInterlaced_ = png_get_interlace_type(png_, info_) != PNG_INTERLACE_NONE;
               hasAlpha_ = (png_get_color_type(png_, info_) & PNG_COLOR_MASK_ALPHA) != 0 ||
                           png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
           });
}

bool PngPicture::decode(RowScaler& rows)
{
    const bool isReady = runGuarded(reading_.recovery, [&] {
        askForBgra();
        png_read_update_info(png_, info_);
    });
    if (!isReady || png_get_rowbytes(png_, info_) != 4 * static_cast<std::size_t>(size().width)) {
        return false;
    }
    return (isInterlaced_ ? decodeInPasses(rows) : decodeByRows(rows)) && readEnd();
}

bool PngPicture::decodeByRows(RowScaler& rows)
{
    for (int row = 0; row < size().height; ++row) {
        unsigned char* const pixels = rows.row(row);
        if (!runGuarded(reading_.recovery, [&] { png_read_row(png_, pixels, nullptr); })) {
            return false;
        }
        rows.finishRow(row);
    }
    return true;
}

bool PngPicture::decodeInPassesTo(RowScaler& rows, unsigned char* pixels)
{
    const std::size_t rowBytes = 4 * static_cast<std::size_t>(size().width);
    return runGuarded(reading_.recovery, [&] {
        for (int pass = 0; pass < passes_; ++pass) {
            for (int row = 0; row < size().height; ++row) {
                png_read_row(png_,
                             pixels ? pixels + rowBytes * static_cast<std::size_t>(row) : rows.row(row),
                             nullptr);
            }
        }
    });
}

// All pixels have to stay until the last pass: in the result itself where nothing is scaled.
bool PngPicture::decodeInPasses(RowScaler& rows)
{
    if (rows.keepsRows()) {
        return decodeInPassesTo(rows, nullptr);
    }
    const std::size_t rowBytes = 4 * static_cast<std::size_t>(size().width);
    const std::unique_ptr<unsigned char[]> pixels(
        new unsigned char[rowBytes * static_cast<std::size_t>(size().height)]);
    if (!decodeInPassesTo(rows, pixels.get())) {
        return false;
    }
    for (int row = 0; row < size().height; ++row) {
        std::copy_n(pixels.get() + rowBytes * static_cast<std::size_t>(row), rowBytes, rows.row(row));
        rows.finishRow(row);
    }
    return true;
}

// A file that stops behind its pixels has been cut short too.
bool PngPicture::readEnd()
{
    return runGuarded(reading_.recovery, [&] { png_read_end(png_, nullptr); });
}

}  // namespace

std::unique_ptr<Picture> openPngPicture(const std::shared_ptr<ImageSource>& source)
{
    auto picture = std::make_unique<PngPicture>(source);
    return picture->readHeader() ? std::move(picture) : nullptr;
}

}  // namespace platform
