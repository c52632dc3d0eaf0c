#include "raylume/platform/Errors.h"

#include <cstdio>
#include <utility>

#include "raylume/platform/Text.h"

namespace platform {

namespace {

std::string describeCode(const char* what, std::uint32_t code)
{
    char text[64];
    std::snprintf(text, sizeof text, "%s failed with code 0x%08X", what, static_cast<unsigned>(code));
    return text;
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

ComError::ComError(std::uint32_t code) : code_(code), text_(describeCode("operation", code))
{
}
ComError::~ComError() = default;

const char* ComError::what() const noexcept
{
    return text_.c_str();
}

OleError::OleError(std::uint32_t code) : code_(code), text_(describeCode("compound file operation", code))
{
}
OleError::~OleError() = default;

const char* OleError::what() const noexcept
{
    return text_.c_str();
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
