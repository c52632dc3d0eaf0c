// Texts of records.
#pragma once

#include <string>

namespace persist {

inline std::string textOrEmpty(const char* text)
{
    return text ? std::string(text) : std::string();
}

}  // namespace persist
