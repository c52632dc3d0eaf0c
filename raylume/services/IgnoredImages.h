// The names of images whose absence is not to be reported.
#pragma once

#include <list>
#include <string>

/// What rlu_PopulateIgnoredMissingImagesList read last: lower case, no repeats, in file order. Unguarded.
extern std::list<std::wstring> g_ignoredImages;
