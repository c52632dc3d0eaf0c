#include "raylume/platform/posix/CodePage.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <new>

#include "raylume/platform/posix/ShiftJisControls.h"
#include "raylume/platform/posix/Utf.h"

namespace platform {

namespace {

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

bool isConversionFailure(UConverterCallbackReason reason)
{
    return reason <= UCNV_IRREGULAR;
}

// The library's own substitution drops characters without a glyph and uses each table's own
// substitute; here every UTF-16 unit leaves its mark.
void writeQuestionMarks(const void*, UConverterFromUnicodeArgs* arguments, const UChar*, int32_t length,
                        UChar32, UConverterCallbackReason reason, UErrorCode* error)
{
    if (!isConversionFailure(reason)) {
        return;
    }
    static constexpr UChar kMarks[] = {u'?', u'?'};
    *error = U_ZERO_ERROR;
    const UChar* source = kMarks;
    ucnv_cbFromUWriteUChars(arguments, &source, kMarks + (length > 1 ? 2 : 1), 0, error);
}

// The library's own substitution gives U+001A for a single bad byte in some tables.
void writeReplacement(const void*, UConverterToUnicodeArgs* arguments, const char*, int32_t,
                      UConverterCallbackReason reason, UErrorCode* error)
{
    if (!isConversionFailure(reason)) {
        return;
    }
    static constexpr UChar kReplacement = static_cast<UChar>(kReplacementCharacter);
    *error = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(arguments, &kReplacement, 1, 0, error);
}

Converter openConverter(const std::string& name)
{
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(name.c_str(), &error));
    if (U_FAILURE(error)) {
        return nullptr;
    }
    ucnv_setFallback(converter.get(), false);
    ucnv_setFromUCallBack(converter.get(), writeQuestionMarks, nullptr, nullptr, nullptr, &error);
    ucnv_setToUCallBack(converter.get(), writeReplacement, nullptr, nullptr, nullptr, &error);
    return U_SUCCESS(error) ? std::move(converter) : nullptr;
}

Converter openOrThrow(const CodePage& page)
{
    Converter converter = openConverter(page.converterName);
    if (!converter) {
        throw std::bad_alloc();
    }
    return converter;
}

// Without a destructor, so that it can be read after the other objects of the thread are gone: those
// of the main thread go before objects of static life, which may still convert.
struct KeptConverter {
    const CodePage* page = nullptr;
    UConverter* converter = nullptr;
    bool isOver = false;
};
thread_local KeptConverter kept;

struct CloseKept {
    ~CloseKept()
    {
        ucnv_close(kept.converter);
        kept = {nullptr, nullptr, true};
    }
};

void keep(const CodePage& page)
{
    thread_local const CloseKept closeAtTheEnd;
    static_cast<void>(closeAtTheEnd);
    Converter opened = openOrThrow(page);
    ucnv_close(kept.converter);
    kept.converter = opened.release();
    kept.page = &page;
}

/// The converter for one call. Opening one costs a thousand short conversions, so each thread keeps
/// its last one; a thread that keeps none any more opens one for this call.
class CallConverter {
public:
    explicit CallConverter(const CodePage& page) : own_(kept.isOver ? openOrThrow(page) : nullptr)
    {
        if (!own_ && kept.page != &page) {
            keep(page);
        }
    }

    UConverter* get() const { return own_ ? own_.get() : kept.converter; }

private:
    Converter own_;
};

using Chunk = std::array<char, 1024>;
using WideChunk = std::array<UChar, 1024>;

std::string bytesOf(UConverter* converter, std::u16string_view units)
{
    std::string bytes;
    Chunk chunk;
    const UChar* source = units.data();
    const UChar* const end = source + units.size();
    UErrorCode error = U_ZERO_ERROR;
    ucnv_resetFromUnicode(converter);
    do {
        error = U_ZERO_ERROR;
        char* target = chunk.data();
        ucnv_fromUnicode(converter, &target, target + chunk.size(), &source, end, nullptr, true, &error);
        bytes.append(chunk.data(), target);
    } while (error == U_BUFFER_OVERFLOW_ERROR);
    return bytes;
}

std::u16string unitsOf(UConverter* converter, std::string_view bytes)
{
    std::u16string units;
    WideChunk chunk;
    const char* source = bytes.data();
    const char* const end = source + bytes.size();
    UErrorCode error = U_ZERO_ERROR;
    ucnv_resetToUnicode(converter);
    do {
        error = U_ZERO_ERROR;
        UChar* target = chunk.data();
        ucnv_toUnicode(converter, &target, target + chunk.size(), &source, end, nullptr, true, &error);
        units.append(chunk.data(), target);
    } while (error == U_BUFFER_OVERFLOW_ERROR);
    return units;
}

UChar32 asTableHasIt(UChar32 character)
{
    switch (character) {
    case 0x1A:
        return 0x1C;
    case 0x1C:
        return 0x7F;
    case 0x7F:
        return 0x1A;
    default:
        return character;
    }
}

// For characters of private use the library fits the best that it has, whatever it is told; such a
// one is taken out of the text before it.
UChar32 withoutPrivateFit(UConverter* converter, UChar32 character)
{
    if (character < 0xE000 || character > 0xF8FF) {
        return character;
    }
    const char16_t unit = static_cast<char16_t>(character);
    const bool isExact = unitsOf(converter, bytesOf(converter, {&unit, 1})) == std::u16string(1, unit);
    return isExact ? character : kReplacementCharacter;
}

std::string allAscii()
{
    std::string bytes;
    for (char c = 0;; ++c) {
        bytes.push_back(c);
        if (c == 0x7F) {
            return bytes;
        }
    }
}

std::wstring allWideAscii()
{
    const std::string bytes = allAscii();
    return std::wstring(bytes.begin(), bytes.end());
}

std::string encodeWith(UConverter* converter, bool rotatesControls, std::wstring_view text)
{
    std::u16string units;
    units.reserve(text.size());
    for (const wchar_t character : text) {
        const UChar32 value = withoutPrivateFit(converter, scalarValue(character));
        appendUtf16(units, rotatesControls ? asTableHasIt(value) : value);
    }
    return bytesOf(converter, units);
}

std::wstring decodeWith(UConverter* converter, bool rotatesControls, std::string_view bytes)
{
    std::u16string units = unitsOf(converter, bytes);
    if (rotatesControls) {
        for (char16_t& unit : units) {
            unit = controlAsByteHasIt(unit);
        }
    }
    return fromUtf16(units);
}

CodePage describe(int number, const std::string& name, UConverter* converter)
{
    CodePage page;
    page.number = number;
    page.converterName = name;
    page.isUtf8 = ucnv_getType(converter) == UCNV_UTF8;
    const bool rotates = unitsOf(converter, "\x1A\x1C\x7F") == u"\x1C\x7F\x1A";
    page.rotatesControls = rotates;
    page.keepsAscii = decodeWith(converter, rotates, allAscii()) == allWideAscii() &&
                      encodeWith(converter, rotates, allWideAscii()) == allAscii();
    return page;
}

std::string isoName(int number)
{
    const int part = number - 28590;
    return part >= 1 && part <= 16 ? "iso-8859-" + std::to_string(part) : std::string();
}

// The first name that the library knows; code page numbers are spread over three families of names.
Converter openByNumber(int number, std::string& name)
{
    const std::string digits = std::to_string(number);
    for (const std::string& candidate :
         {"windows-" + digits, "cp" + digits, "ibm-" + digits, isoName(number)}) {
        // An empty name would mean the library's default.
        Converter converter = candidate.empty() ? nullptr : openConverter(candidate);
        if (converter) {
            name = candidate;
            return converter;
        }
    }
    return nullptr;
}

// Texts end at the first zero byte, so UTF-16 and its like cannot serve.
bool canServe(const Converter& converter)
{
    return converter && ucnv_getMinCharSize(converter.get()) == 1;
}

}  // namespace

const CodePage* findCodePage(int number)
{
    static std::mutex guard;
    static auto& known = *new std::map<int, CodePage>;
    const std::lock_guard<std::mutex> lock(guard);
    if (const auto found = known.find(number); found != known.end()) {
        return &found->second;
    }
    std::string name;
    const Converter converter = number > 0 ? openByNumber(number, name) : nullptr;
    if (!canServe(converter)) {
        return nullptr;
    }
    return &known.emplace(number, describe(number, name, converter.get())).first->second;
}

std::string encode(const CodePage& page, std::wstring_view text)
{
    return encodeWith(CallConverter(page).get(), page.rotatesControls, text);
}

std::wstring decode(const CodePage& page, std::string_view bytes)
{
    return decodeWith(CallConverter(page).get(), page.rotatesControls, bytes);
}

}  // namespace platform
