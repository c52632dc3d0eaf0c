// Images that lie inside a document and so have no path of their own.
#pragma once

#include <string>
#include <vector>

#include "raylume/platform/Export.h"

namespace ovdl {

/// The bytes of an image file inside a document, by the name that textures give it:
/// "<document>#image<n>". As the document has them, so check what they are. Empty when the document
/// cannot be read or has no such image. Reads the document anew on each call.
OVDL_API std::vector<unsigned char> embeddedImage(const std::wstring& name);

}  // namespace ovdl
