// Numbers of JSON, from their text.
#pragma once

#include <string_view>

namespace ovdl::gltf {

/// Reads the numbers of a JSON array, one after another.
class NumberList {
public:
    /// `text` is the whole array, brackets included.
    explicit NumberList(std::string_view text);

    /// The next number, rounded to the nearest double. False at the end of the array, and where what
    /// comes is no number: isBroken() then says which it was. So is a number that is too large.
    bool next(double& number);
    bool isBroken() const { return isBroken_; }

private:
    void skipBlanks();
    bool readNumber(double& number);
    bool giveUp();

    const char* at_;
    const char* end_;
    bool isFirst_ = true;
    bool isBroken_ = false;
};

}  // namespace ovdl::gltf
