// The binary form of a glTF document, fields in order (all 32-bit, little-endian):
//   magic "glTF", version 2, length of the whole file; then chunks: length, type, bytes.
// The first chunk is "JSON", the second may be "BIN\0"; further ones are passed over.
#pragma once

#include <cstdint>
#include <span>

namespace ovdl::gltf {

using Bytes = std::span<const unsigned char>;

/// True when the bytes begin with the magic.
bool hasBinaryMagic(Bytes start);

struct GlbChunks {
    Bytes json;
    Bytes binary;
    bool hasBinary = false;
};

/// Finds the chunks of a file with the magic. Raises Refusal when it is of another version, cut
/// short, or has no JSON chunk in front. Bytes behind the stated length are left alone.
GlbChunks openGlb(Bytes file);

}  // namespace ovdl::gltf
