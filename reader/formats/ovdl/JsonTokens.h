// A strict reader of JSON's tokens.
//
// Its own, since what a person wrote by hand has to be refused with the line where it is wrong, and since
// texts of documents may hold unpaired surrogates: the JSON libraries of the system take neither. There is
// no tree and no recursion in it, so a text nests as deeply as its reader lets it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace ovdl::json {

/// Walks over a text, which is borrowed. Every failure is a Refusal that tells line and column.
class Tokens {
public:
    /// `ask` is called between tokens, once for every 64 KB or so.
    explicit Tokens(std::string_view text, std::function<void()> ask = {});

    /// The next character behind blanks, which stays the next one; 0 at the end.
    char peek();
    /// Steps over `c` if it comes next.
    bool take(char c);
    /// Steps over `c`, or refuses what stands there instead.
    void expect(char c);
    /// A number as it stands, of JSON's own form.
    std::string_view number();
    /// true or false.
    bool boolean();
    /// A text. Surrogates that no partner follows are three bytes, like any other value below 10000.
    void string(std::string& target);
    /// A key and the colon behind it.
    void key(std::string& target);
    /// The number behind 0x in a text of exactly that many digits.
    std::uint64_t bits(std::uint32_t digits);
    /// Refuses whatever follows.
    void end();

    /// Refuses what was read last.
    [[noreturn]] void fail(const std::string& reason) const;
    /// Of the whole text.
    std::size_t size() const { return static_cast<std::size_t>(end_ - begin_); }

private:
    [[noreturn]] void failHere(const std::string& reason);
    void skipBlanks();
    void digits();
    void rawCharacter(std::string& target);
    void escape(std::string& target);
    std::uint32_t hexadecimal(std::uint32_t count);

    const char* begin_;
    const char* at_;
    const char* end_;
    const char* token_;
    const char* asked_;
    std::function<void()> ask_;
};

/// Appends the bytes of a value below 110000, surrogate or not.
void appendUtf8(std::string& target, std::uint32_t value);

/// For reasons: what a text says, on one line and not too long.
std::string quoted(std::string_view text);

}  // namespace ovdl::json
