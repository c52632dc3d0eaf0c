#include <png.h>

#include <stdexcept>

#include "tools/ImageContent.h"

namespace tool {

std::vector<unsigned char> encodePng(const unsigned char* pixels, int width, int height)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_BGRA;
    // Large enough for what does not compress, so that one pass does.
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::vector<unsigned char> bytes(size);
    if (!png_image_write_to_memory(&image, bytes.data(), &size, 0, pixels, 0, nullptr))
        throw std::runtime_error(std::string("an image cannot be encoded: ") + image.message);
    bytes.resize(size);
    return bytes;
}

}  // namespace tool
