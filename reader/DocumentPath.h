// The path of the document at hand and what derives from it.
#pragma once

#include <string>

namespace ovdl {

struct DocumentPath {
    explicit DocumentPath(const std::wstring& path);

    std::wstring path;
    std::wstring folder;  ///< With the separator at its end; empty for a bare file name.
    std::wstring stem;    ///< The file's name without folder and last ending.
};

}  // namespace ovdl
