// Icon files: a list of pictures, of which the largest counts.
#pragma once

#include <memory>

#include "raylume/platform/images/Picture.h"

namespace platform {

/// The picture with the most pixels, among those with the most bits a pixel. Null when the list or that
/// picture is broken.
std::unique_ptr<Picture> openIcoPicture(const std::shared_ptr<ImageSource>& source);

}  // namespace platform
