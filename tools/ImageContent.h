// What is in the files behind images.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tool {

/// The sides of the picture in a file, before any limit; none when the library cannot read it.
struct ImageSize {
    int width = 0;
    int height = 0;
};
std::optional<ImageSize> imageSize(const std::wstring& path);

/// An image as a glTF file holds it.
struct ImageBytes {
    std::vector<unsigned char> bytes;
    const char* mediaType = "";  ///< "image/png" or "image/jpeg".
};

/// The file's own bytes where it is PNG, or JPEG with one or three components, whatever its name says;
/// anything else that the library reads comes as PNG, its longer side at most 2048. None when the library
/// cannot read it, or the file has more than 1 GiB.
std::optional<ImageBytes> imageForGltf(const std::wstring& path);

/// An image inside a document ("<document>#image<n>"), if it is PNG, or JPEG as above. It is copied without
/// being decoded.
std::optional<ImageBytes> embeddedImageForGltf(const std::wstring& name);

/// Blue, green, red, alpha for each pixel, rows from the top without gaps, as a PNG file. Raises
/// std::runtime_error when the encoder fails.
std::vector<unsigned char> encodePng(const unsigned char* pixels, int width, int height);

}  // namespace tool
