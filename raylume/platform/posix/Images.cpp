#include "raylume/platform/Images.h"

#include <algorithm>
#include <string_view>

#include "raylume/platform/images/BmpPicture.h"
#include "raylume/platform/images/IcoPicture.h"
#include "raylume/platform/posix/CodecPictures.h"
#include "raylume/platform/posix/RegularFile.h"

namespace platform {

namespace {

using namespace std::string_view_literals;

std::unique_ptr<Picture> openBmpFile(const std::shared_ptr<ImageSource>& source)
{
    return openBmpPicture(source, BmpForm::kFile);
}

struct Kind {
    std::string_view start;
    std::unique_ptr<Picture> (*open)(const std::shared_ptr<ImageSource>&);
};

constexpr Kind kKinds[] = {
    {"\x89PNG\r\n\x1A\n"sv, openPngPicture},
    {"\xFF\xD8\xFF"sv, openJpegPicture},
    {"GIF87a"sv, openGifPicture},
    {"GIF89a"sv, openGifPicture},
    {"II*\0"sv, openTiffPicture},
    {"MM\0*"sv, openTiffPicture},
    {"II+\0"sv, openTiffPicture},
    {"MM\0+"sv, openTiffPicture},
    {"BM"sv, openBmpFile},
    {"BA"sv, openBmpFile},
    {"\0\0\1\0"sv, openIcoPicture},
};

class PictureFile final : public ImageFile {
public:
    explicit PictureFile(std::unique_ptr<Picture> picture) : picture_(std::move(picture)) {}

    ImageSize size() const override { return picture_->size(); }

    bool decode(ImageSize wanted, bool turnOver, unsigned char* pixels) override
    {
        RowScaler rows(picture_->reduceFor(wanted), {wanted, turnOver, pixels}, picture_->hasAlpha());
        return picture_->decode(rows);
    }

private:
    std::unique_ptr<Picture> picture_;
};

}  // namespace

std::unique_ptr<Picture> openPicture(const std::shared_ptr<ImageSource>& source)
{
    char start[8];
    const std::string_view bytes(start, source->readAt(0, start, sizeof start));
    const auto kind = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Kind& candidate) {
        return bytes.starts_with(candidate.start);
    });
    auto picture = kind == std::end(kKinds) ? nullptr : kind->open(source);
    return picture && isWithinLimits(*picture) ? std::move(picture) : nullptr;
}

ImageFile::ImageFile() = default;
ImageFile::~ImageFile() = default;

std::unique_ptr<ImageFile> ImageFile::open(const std::wstring& path)
{
    const auto source = openRegularFile(path);
    auto picture = source ? openPicture(source) : nullptr;
    return picture ? std::make_unique<PictureFile>(std::move(picture)) : nullptr;
}

}  // namespace platform
