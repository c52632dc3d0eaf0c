// How JSON stands on the page: one field a line in records, many numbers a line in arrays.
#pragma once

#include <string>
#include <string_view>

#include "reader/formats/ovdl/JsonText.h"

namespace ovdl::json {

/// Collects text and hands it out in pieces of moderate size.
class Layout {
public:
    explicit Layout(TextOutput output);

    void write(std::string_view text);
    /// A new line, indented by as many blanks.
    void line(unsigned indent);
    /// One of several elements: on this line if there is room, else on a new one.
    void element(std::string_view text, bool first, unsigned indent);
    /// Hands out what is left.
    void flush();

private:
    TextOutput output_;
    std::string text_;
    std::size_t column_ = 0;
};

/// Appends a text in quotes, with escapes where JSON needs them or a reader would see nothing. Surrogates
/// that no partner follows are escaped.
/// Returns false, and appends nothing, for what a text of JSON cannot hold: values above 10FFFF, and two
/// surrogates that would be taken for one character.
bool appendQuoted(std::string& target, std::wstring_view text);

}  // namespace ovdl::json
