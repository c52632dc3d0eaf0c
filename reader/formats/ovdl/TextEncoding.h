// The texts of a document as bytes: UTF-8 carried on to every value that a wide character can have.
#pragma once

#include <string>
#include <string_view>

namespace ovdl {

/// Every character on its own in the shortest form, halves of UTF-16 pairs too (3 bytes), so that nothing
/// is lost. Values past Unicode go on as UTF-8 once did, up to 6 bytes for 31 bits; with the top bit set
/// they take 7 bytes, the first of which is FE.
std::string encodeText(std::wstring_view text);

/// The way back. Errors: raises Refusal for bytes that encodeText() never writes.
std::wstring decodeText(std::string_view bytes);

}  // namespace ovdl
