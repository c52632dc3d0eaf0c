// Pictures by the codecs that this system has. Each is null when its header is broken.
#pragma once

#include <memory>

#include "raylume/platform/images/Picture.h"

namespace platform {

std::unique_ptr<Picture> openGifPicture(const std::shared_ptr<ImageSource>& source);
std::unique_ptr<Picture> openJpegPicture(const std::shared_ptr<ImageSource>& source);
std::unique_ptr<Picture> openPngPicture(const std::shared_ptr<ImageSource>& source);
std::unique_ptr<Picture> openTiffPicture(const std::shared_ptr<ImageSource>& source);

}  // namespace platform
