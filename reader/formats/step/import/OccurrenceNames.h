// Tokens of component paths.
#pragma once

#include <string>
#include <unordered_map>

#include "reader/ComponentNames.h"

namespace ovdl::step {

/// Numbers siblings of one name from 1.
class OccurrenceNumbers {
public:
    int next(const std::wstring& name) { return ++counts_[name]; }

private:
    std::unordered_map<std::wstring, int> counts_;
};

inline std::wstring componentToken(const std::wstring& name, int number, const std::wstring& owner)
{
    return name + L"-" + std::to_wstring(number) + L"@" + owner;
}

}  // namespace ovdl::step
