// Names as the paths of components have them.
#pragma once

#include <algorithm>
#include <string>

namespace ovdl {

/// A foreign name without the characters that a path of components is cut at: each "/" and "@" becomes "_".
inline std::wstring cleanName(std::wstring name)
{
    std::replace_if(
        name.begin(), name.end(), [](wchar_t c) { return c == L'/' || c == L'@'; }, L'_');
    return name;
}

}  // namespace ovdl
