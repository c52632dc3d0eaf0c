// Bitmap files, and the ones inside icons.
#pragma once

#include <memory>

#include "raylume/platform/images/BmpHeader.h"
#include "raylume/platform/images/Picture.h"

namespace platform {

/// Null when the header is none that this knows, or the file is too short for the pixels.
std::unique_ptr<Picture> openBmpPicture(const std::shared_ptr<ImageSource>& source, BmpForm form);

}  // namespace platform
