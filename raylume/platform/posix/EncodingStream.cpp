#include "raylume/platform/posix/EncodingStream.h"

#include <unicode/ucnv.h>

#include <array>
#include <cstring>
#include <string_view>
#include <utility>

#include "raylume/platform/posix/ShiftJisControls.h"

namespace platform {

namespace {

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

Converter openStopping(const char* name)
{
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(name, &error));
    if (U_SUCCESS(error)) {
        ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
        // Some encodings can say halves of characters, which UTF-8 cannot.
        ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                              &error);
    }
    return U_SUCCESS(error) ? std::move(converter) : nullptr;
}

bool decodesTo(UConverter* converter, std::string_view bytes, std::u16string_view expected)
{
    std::array<UChar, 256> units;
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(converter, units.data(), static_cast<int32_t>(units.size()),
                                         bytes.data(), static_cast<int32_t>(bytes.size()), &error);
    ucnv_reset(converter);
    return U_SUCCESS(error) &&
           std::u16string_view(units.data(), static_cast<std::size_t>(length)) == expected;
}

// Where bytes of ASCII mean something else behind certain others: what looks like markup there may be none.
bool switchesTables(UConverterType type)
{
    switch (type) {
    case UCNV_UTF7:
    case UCNV_IMAP_MAILBOX:
    case UCNV_ISO_2022:
    case UCNV_HZ:
    case UCNV_SCSU:
    case UCNV_BOCU1:
    case UCNV_COMPOUND_TEXT:
        return true;
    default:
        return type >= UCNV_LMBCS_1 && type <= UCNV_LMBCS_LAST;
    }
}

// All that markup is made of.
bool keepsAscii(UConverter* converter)
{
    std::string bytes = "\t\r\n";
    for (char character = ' '; character < 0x7F; ++character) {
        bytes.push_back(character);
    }
    return !switchesTables(ucnv_getType(converter)) && ucnv_getMinCharSize(converter) == 1 &&
           decodesTo(converter, bytes, std::u16string(bytes.begin(), bytes.end()));
}

class TranscodedFile final : public InputFile {
public:
    TranscodedFile(std::unique_ptr<InputFile> file, Converter from, Converter to, bool* isBroken)
        : file_(std::move(file)), from_(std::move(from)), to_(std::move(to)), isBroken_(isBroken)
    {
        // The library's tables for Shift_JIS rotate three controls.
        rotatesControls_ = decodesTo(from_.get(), "\x1A\x1C\x7F", u"\x1C\x7F\x1A");
    }

    std::size_t read(void* buffer, std::size_t size) override
    {
        char* const start = static_cast<char*>(buffer);
        char* target = start;
        while (!isOver_ && target == start && size > 0) {
            step(target, start + size);
        }
        if (rotatesControls_) {
            for (char* at = start; at < target; ++at) {
                *at = controlAsByteHasIt(*at);
            }
        }
        return static_cast<std::size_t>(target - start);
    }

private:
    void step(char*& target, char* end)
    {
        if (source_ == sourceEnd_ && !sawEnd_) {
            const std::size_t count = file_->read(bytes_.data(), bytes_.size());
            source_ = bytes_.data();
            sourceEnd_ = source_ + count;
            sawEnd_ = count == 0;
        }
        UErrorCode error = U_ZERO_ERROR;
        ucnv_convertEx(to_.get(), from_.get(), &target, end, &source_, sourceEnd_, units_.data(),
                       &unitsRead_, &unitsWritten_, units_.data() + units_.size(), isFirst_, sawEnd_,
                       &error);
        isFirst_ = false;
        if (error == U_BUFFER_OVERFLOW_ERROR) {
            return;  // The rest comes with the next call.
        }
        *isBroken_ = *isBroken_ || U_FAILURE(error);
        isOver_ = sawEnd_ || U_FAILURE(error);
    }

    const std::unique_ptr<InputFile> file_;
    const Converter from_;
    const Converter to_;
    bool* const isBroken_;
    bool rotatesControls_ = false;
    bool isFirst_ = true;
    bool sawEnd_ = false;
    bool isOver_ = false;
    std::array<char, 16384> bytes_;
    const char* source_ = nullptr;
    const char* sourceEnd_ = nullptr;
    std::array<UChar, 8192> units_;
    UChar* unitsRead_ = units_.data();
    UChar* unitsWritten_ = units_.data();
};

}  // namespace

std::unique_ptr<InputFile> openAsUtf8(std::unique_ptr<InputFile> file, const std::string& encoding,
                                      bool* isBroken)
{
    Converter from = openStopping(encoding.c_str());
    Converter to = openStopping("UTF-8");
    if (!file || !from || !to || !keepsAscii(from.get())) {
        return nullptr;
    }
    return std::make_unique<TranscodedFile>(std::move(file), std::move(from), std::move(to), isBroken);
}

}  // namespace platform
