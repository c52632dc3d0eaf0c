// How model values become JSON values and lines of text.
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "raylume/scene/dlBBox.h"

namespace tool {

/// Keeps the order in which fields are written.
using Json = nlohmann::ordered_json;

/// A float as the number with the fewest digits that reads back as that float; one that is not
/// finite as the text "Infinity", "-Infinity" or "NaN", since JSON has no number for it.
Json floatValue(float value);
Json floatValues(const float* values, int count);
/// The same for a double.
Json doubleValue(double value);
/// Finite doubles as an array.
Json jsonNumbers(const double* values, std::size_t count);
/// {"min": [x, y, z], "max": [x, y, z]}, or null for a box that saw no point.
Json boxValue(dlBBox box);

/// The shortest text that reads back as that float, without a needless ".0".
std::string floatText(float value);
/// The same for a double.
std::string doubleText(double value);
/// "x y z".
std::string vectorText(const float* values);

/// A text of the model, which is in the ANSI code page, as UTF-8. What is no text in that code page
/// becomes U+FFFD.
std::string utf8(std::string_view modelText);
/// One line of UTF-8 out of any text: line ends and other control characters become blanks, bytes that
/// are no UTF-8 become U+FFFD.
std::string oneLine(std::string_view text);

/// "1 part", "2 parts".
std::string counted(long long number, std::string_view singular);

}  // namespace tool
