#include "raylume/platform/Errors.h"

#include <cstdio>
#include <utility>

#include "raylume/platform/Text.h"

namespace platform {

namespace {

template <std::size_t size>
void describeCode(char (&text)[size], const char* what, std::uint32_t code)
{
    std::snprintf(text, size, "%s failed with code 0x%08X", what, static_cast<unsigned>(code));
}

const char* describeCause(ArchiveError::Cause cause)
{
    switch (cause) {
    case ArchiveError::kReadOnly:
        return "the archive is open for reading only";
    case ArchiveError::kEndOfFile:
        return "the archive ended too early";
    case ArchiveError::kWriteOnly:
        return "the archive is open for writing only";
    }
    return "the archive failed";
}

}  // namespace

ComError::ComError(std::uint32_t code) noexcept : code_(code)
{
    describeCode(text_, "operation", code);
}
ComError::~ComError() = default;

const char* ComError::what() const noexcept
{
    return text_;
}

OleError::OleError(std::uint32_t code) noexcept : code_(code)
{
    describeCode(text_, "compound file operation", code);
}
OleError::~OleError() = default;

const char* OleError::what() const noexcept
{
    return text_;
}

ArchiveError::ArchiveError(Cause cause, std::wstring fileName)
    : cause_(cause),
      fileName_(std::move(fileName)),
      text_(std::string(describeCause(cause)) + (fileName_.empty() ? "" : ": " + toUtf8(fileName_)))
{
}
ArchiveError::~ArchiveError() = default;

const char* ArchiveError::what() const noexcept
{
    return text_.c_str();
}

void raiseInvalidArgument()
{
    throw ComError(kErrorInvalidArgument);
}

}  // namespace platform
