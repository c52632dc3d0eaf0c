#include "reader/formats/step/import/TextEncoding.h"

#include <fstream>
#include <vector>

namespace ovdl::step {
namespace {

// Takes bytes one by one, by the table of well-formed sequences of the Unicode Standard (3.9, table 3-7):
// only the second byte has bounds of its own, by the first.
class Utf8Check {
public:
    bool take(unsigned char byte)
    {
        if (left_ == 0)
            return byte < 0x80 || begin(byte);
        const bool fits = byte >= least_ && byte <= most_;
        --left_;
        least_ = 0x80;
        most_ = 0xBF;
        return fits;
    }
    bool isComplete() const { return left_ == 0; }

private:
    bool begin(unsigned char byte)
    {
        if (byte < 0xC2 || byte > 0xF4)
            return false;
        left_ = byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3;
        least_ = byte == 0xE0 ? 0xA0 : byte == 0xF0 ? 0x90 : 0x80;
        most_ = byte == 0xED ? 0x9F : byte == 0xF4 ? 0x8F : 0xBF;
        return true;
    }

    int left_ = 0;
    unsigned char least_ = 0x80;
    unsigned char most_ = 0xBF;
};

}  // namespace

bool isUtf8File(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::vector<char> buffer(65536);
    Utf8Check check;
    while (file.read(buffer.data(), static_cast<std::streamsize>(buffer.size())) || file.gcount() > 0)
        for (std::streamsize i = 0; i < file.gcount(); ++i)
            if (!check.take(static_cast<unsigned char>(buffer[static_cast<std::size_t>(i)])))
                return false;
    return file.eof() && check.isComplete();
}

}  // namespace ovdl::step
