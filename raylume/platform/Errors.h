// The exceptions that may leave the library. They are anchored in the platform library, so that a
// host, the display list library and a reader library catch one and the same type.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "raylume/platform/Export.h"

namespace platform {

inline constexpr std::uint32_t kErrorOutOfMemory = 0x8007000Eu;
inline constexpr std::uint32_t kErrorInvalidArgument = 0x80070057u;
inline constexpr std::uint32_t kErrorNullPointer = 0x80004003u;
inline constexpr std::uint32_t kErrorTypeMismatch = 0x80020005u;
inline constexpr std::uint32_t kErrorOverflow = 0x8002000Au;

/// A failed operation with a 32-bit result code: an index outside a reader array
/// (kErrorInvalidArgument), a text that is no number (kErrorTypeMismatch), and the like.
class PLATFORM_API ComError : public std::exception {
public:
    explicit ComError(std::uint32_t code) noexcept;
    ComError(const ComError&) = default;
    ComError& operator=(const ComError&) = default;
    ~ComError() override;

    std::uint32_t code() const noexcept { return code_; }
    /// One line of ASCII with the code in hexadecimal. Owned by the exception.
    const char* what() const noexcept override;

private:
    std::uint32_t code_;
    char text_[64];  // In place: raised also when there is no memory left.
};

/// A failed operation on a compound file, with the storage's own 32-bit result code.
class PLATFORM_API OleError : public std::exception {
public:
    explicit OleError(std::uint32_t code) noexcept;
    OleError(const OleError&) = default;
    OleError& operator=(const OleError&) = default;
    ~OleError() override;

    std::uint32_t code() const noexcept { return code_; }
    const char* what() const noexcept override;

private:
    std::uint32_t code_;
    char text_[64];  // In place: raised also when there is no memory left.
};

/// A failed archive operation: why (one of the three causes) and on which file.
class PLATFORM_API ArchiveError : public std::exception {
public:
    enum Cause : int { kReadOnly = 2, kEndOfFile = 3, kWriteOnly = 4 };

    ArchiveError(Cause cause, std::wstring fileName);
    ArchiveError(const ArchiveError&) = default;
    ArchiveError& operator=(const ArchiveError&) = default;
    ~ArchiveError() override;

    Cause cause() const noexcept { return cause_; }
    const std::wstring& fileName() const noexcept { return fileName_; }
    const char* what() const noexcept override;

private:
    Cause cause_;
    std::wstring fileName_;
    std::string text_;
};

/// Raises ComError with kErrorInvalidArgument. Out of line, so that bounds tests stay small.
[[noreturn]] PLATFORM_API void raiseInvalidArgument();

}  // namespace platform
