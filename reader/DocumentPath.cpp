#include "reader/DocumentPath.h"

namespace ovdl {

DocumentPath::DocumentPath(const std::wstring& whole) : path(whole)
{
    const std::size_t separator = whole.find_last_of(L"/\\");
    const std::size_t begin = separator == std::wstring::npos ? 0 : separator + 1;
    folder = whole.substr(0, begin);
    stem = whole.substr(begin);
    const std::size_t dot = stem.rfind(L'.');
    if (dot != std::wstring::npos && dot != 0)
        stem.resize(dot);
}

}  // namespace ovdl
