// The first frame of a GIF by giflib.
#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <vector>

#include "raylume/platform/posix/CodecPictures.h"

namespace platform {

namespace {

extern "C" {

static int readGifBytes(GifFileType* gif, GifByteType* destination, int size)
{
    auto& bytes = *static_cast<SourceReader*>(gif->UserData);
    return static_cast<int>(bytes.read(destination, static_cast<std::size_t>(size)));
}
}

class GifPicture final : public Picture {
public:
    explicit GifPicture(std::shared_ptr<ImageSource> source) : bytes_(std::move(source)) {}
    ~GifPicture() override
    {
        if (gif_) {
            DGifCloseFile(gif_, nullptr);
        }
    }

    bool readHeader();
    ImageSize size() const override { return size_; }
    bool hasAlpha() const override { return true; }
    // Of an interlaced frame one byte a pixel stays. Rows beside a frame take time but no bytes of the
    // file, so a few of those could keep a host busy.
    bool comesByRows() const override
    {
        return !gif_->Image.Interlace && size_ == ImageSize{gif_->Image.Width, gif_->Image.Height};
    }
    bool decode(RowScaler& rows) override;

private:
    bool findFrame();
    bool readExtension();
    bool readPalette();
    bool readInterlaced(std::vector<GifPixelType>& indices);
    void convertRow(const GifPixelType* indices, unsigned char* pixels) const;

    SourceReader bytes_;
    GifFileType* gif_ = nullptr;
    ImageSize size_;
    int transparent_ = NO_TRANSPARENT_COLOR;
    std::array<std::array<unsigned char, 4>, 256> palette_{};
};

bool GifPicture::readExtension()
{
    int code = 0;
    GifByteType* block = nullptr;
    if (DGifGetExtension(gif_, &code, &block) == GIF_ERROR) {
        return false;
    }
    while (block) {
        GraphicsControlBlock control;
        if (code == GRAPHICS_EXT_FUNC_CODE && DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK) {
            transparent_ = control.TransparentColor;
        }
        if (DGifGetExtensionNext(gif_, &block) == GIF_ERROR) {
            return false;
        }
    }
    return true;
}

bool GifPicture::findFrame()
{
    GifRecordType type = UNDEFINED_RECORD_TYPE;
    while (DGifGetRecordType(gif_, &type) == GIF_OK && type == EXTENSION_RECORD_TYPE) {
        if (!readExtension()) {
            return false;
        }
    }
    return type == IMAGE_DESC_RECORD_TYPE && DGifGetImageDesc(gif_) == GIF_OK;
}

// The picture is the screen that the file names, or as much more as the frame needs.
bool GifPicture::readHeader()
{
    int error = 0;
    gif_ = DGifOpen(&bytes_, readGifBytes, &error);
    if (!gif_ || !findFrame() || gif_->Image.Width < 1 || gif_->Image.Height < 1) {
        return false;
    }
    size_ = {std::max(gif_->SWidth, gif_->Image.Left + gif_->Image.Width),
             std::max(gif_->SHeight, gif_->Image.Top + gif_->Image.Height)};
    return readPalette();
}

bool GifPicture::readPalette()
{
    const ColorMapObject* const map = gif_->Image.ColorMap ? gif_->Image.ColorMap : gif_->SColorMap;
    if (!map) {
        return false;
    }
    palette_.fill({0, 0, 0, 255});
    for (int index = 0; index < std::min(map->ColorCount, 256); ++index) {
        const GifColorType& colour = map->Colors[index];
        palette_[static_cast<std::size_t>(index)] = {colour.Blue, colour.Green, colour.Red, 255};
    }
    if (transparent_ >= 0 && transparent_ < 256) {
        palette_[static_cast<std::size_t>(transparent_)][3] = 0;
    }
    return true;
}

// What of the screen the frame leaves free is cut out.
void GifPicture::convertRow(const GifPixelType* indices, unsigned char* pixels) const
{
    std::fill_n(pixels, 4 * static_cast<std::size_t>(size_.width), 0);
    if (!indices) {
        return;
    }
    unsigned char* pixel = pixels + 4 * static_cast<std::size_t>(gif_->Image.Left);
    for (int column = 0; column < gif_->Image.Width; ++column, pixel += 4) {
        std::copy_n(palette_[indices[column]].data(), 4, pixel);
    }
}

bool GifPicture::readInterlaced(std::vector<GifPixelType>& indices)
{
    constexpr int kFirst[] = {0, 4, 2, 1};
    constexpr int kStep[] = {8, 8, 4, 2};
    const auto width = static_cast<std::size_t>(gif_->Image.Width);
    indices.resize(width * static_cast<std::size_t>(gif_->Image.Height));
    for (int pass = 0; pass < 4; ++pass) {
        for (int row = kFirst[pass]; row < gif_->Image.Height; row += kStep[pass]) {
            if (DGifGetLine(gif_, &indices[width * static_cast<std::size_t>(row)], gif_->Image.Width) ==
                GIF_ERROR) {
                return false;
            }
        }
    }
    return true;
}

bool GifPicture::decode(RowScaler& rows)
{
    const GifImageDesc& frame = gif_->Image;
    const bool isInterlaced = frame.Interlace;
    const auto width = static_cast<std::size_t>(frame.Width);
    std::vector<GifPixelType> indices(isInterlaced ? 0 : width);
    if (isInterlaced && !readInterlaced(indices)) {
        return false;
    }
    for (int row = 0; row < size_.height; ++row) {
        const bool isInFrame = row >= frame.Top && row - frame.Top < frame.Height;
        const GifPixelType* line = nullptr;
        if (isInFrame && !isInterlaced) {
            if (DGifGetLine(gif_, indices.data(), frame.Width) == GIF_ERROR) {
                return false;
            }
            line = indices.data();
        } else if (isInFrame) {
            line = &indices[width * static_cast<std::size_t>(row - frame.Top)];
        }
        convertRow(line, rows.row(row));
        rows.finishRow(row);
    }
    return true;
}

}  // namespace

std::unique_ptr<Picture> openGifPicture(const std::shared_ptr<ImageSource>& source)
{
    auto picture = std::make_unique<GifPicture>(source);
    return picture->readHeader() ? std::move(picture) : nullptr;
}

}  // namespace platform
