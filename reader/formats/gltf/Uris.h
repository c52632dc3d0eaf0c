// What a document may say about where its buffers and images lie.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ovdl::gltf {

/// The path behind a relative reference, percent-decoded, with "/" between its parts; or none when it
/// is no path below the document's folder: empty, absolute, with a scheme or drive (any ":"), with a
/// "\", a "..", a zero byte or a broken escape, or not UTF-8.
std::optional<std::wstring> relativePath(std::string_view uri);

bool isDataUri(std::string_view uri);
/// The bytes of a data URI, base64 or percent-encoded; none when it is broken.
std::optional<std::vector<unsigned char>> dataUriBytes(std::string_view uri);

}  // namespace ovdl::gltf
