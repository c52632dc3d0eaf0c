#include <unicode/unum.h>
#include <unicode/ures.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "raylume/platform/Environment.h"
#include "raylume/platform/NumberText.h"
#include "raylume/platform/Text.h"

namespace platform {

namespace {

struct CloseFormat {
    void operator()(void* format) const { unum_close(static_cast<UNumberFormat*>(format)); }
};

struct CloseBundle {
    void operator()(void* bundle) const { ures_close(static_cast<UResourceBundle*>(bundle)); }
};

// For a locale that it does not know the library takes the default of the process, which is nobody's
// choice here.
bool isKnown(const std::string& name)
{
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<void, CloseBundle> bundle(ures_open(nullptr, name.c_str(), &error));
    return U_SUCCESS(error) && error != U_USING_DEFAULT_WARNING;
}

std::wstring localeVariable()
{
    for (const char* const name : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
        if (const auto value = environmentVariable(name)) {
            return *value;
        }
    }
    return std::wstring();
}

// Only symbols of one UTF-16 unit; none has more.
wchar_t symbolOf(const UNumberFormat* format, UNumberFormatSymbol symbol, wchar_t otherwise)
{
    UChar text[4] = {};
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = unum_getSymbol(format, symbol, text, 4, &error);
    return U_SUCCESS(error) && length == 1 ? static_cast<wchar_t>(text[0]) : otherwise;
}

// Digits are always 0 to 9 here, so a country's separators are wanted as they go with these.
NumberSeparators separatorsOf(const std::wstring& variable)
{
    NumberSeparators separators;
    const std::string name = toUtf8(variable.substr(0, variable.find_first_of(L".@")));
    if (name.empty() || name == "C" || name == "POSIX" || !isKnown(name)) {
        return separators;
    }
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<void, CloseFormat> format(
        unum_open(UNUM_DECIMAL, nullptr, 0, (name + "@numbers=latn").c_str(), nullptr, &error));
    if (U_FAILURE(error)) {
        return separators;
    }
    const auto* const opened = static_cast<const UNumberFormat*>(format.get());
    separators.decimal = symbolOf(opened, UNUM_DECIMAL_SEPARATOR_SYMBOL, separators.decimal);
    separators.grouping = symbolOf(opened, UNUM_GROUPING_SEPARATOR_SYMBOL, separators.grouping);
    return separators;
}

struct Choice {
    std::mutex guard;
    std::optional<NumberSeparators> ofHost;
    // Opening a format takes longer than reading a small side file.
    std::wstring variable;
    NumberSeparators ofVariable;
};

Choice& choice()
{
    // Never destroyed: other code may still convert while the process ends.
    static auto& instance = *new Choice;
    return instance;
}

}  // namespace

NumberSeparators numberSeparators()
{
    const std::wstring variable = localeVariable();
    Choice& kept = choice();
    const std::lock_guard<std::mutex> lock(kept.guard);
    if (kept.ofHost) {
        return *kept.ofHost;
    }
    if (kept.variable != variable) {
        kept.ofVariable = separatorsOf(variable);
        kept.variable = variable;
    }
    return kept.ofVariable;
}

void setNumberSeparators(wchar_t decimal, wchar_t grouping)
{
    const std::lock_guard<std::mutex> lock(choice().guard);
    choice().ofHost = NumberSeparators{decimal, grouping};
}

void resetNumberSeparators()
{
    const std::lock_guard<std::mutex> lock(choice().guard);
    choice().ofHost.reset();
}

}  // namespace platform
