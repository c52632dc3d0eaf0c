#include "ScriptedFormats.h"

// The list of formats of the unit tests: none of the real ones.
std::vector<std::unique_ptr<ovdl::DocumentFormat>> ovdl::makeFormats()
{
    std::vector<std::unique_ptr<DocumentFormat>> formats;
    formats.push_back(std::make_unique<scripted::Format>("first"));
    formats.push_back(std::make_unique<scripted::Format>("second"));
    return formats;
}
