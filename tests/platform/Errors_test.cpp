#include "raylume/platform/Errors.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

using platform::ArchiveError;
using platform::ComError;
using platform::OleError;

namespace {

static_assert(std::is_base_of_v<std::exception, ComError>);
static_assert(std::is_base_of_v<std::exception, OleError>);
static_assert(std::is_base_of_v<std::exception, ArchiveError>);

TEST(Errors, CarryTheirCodes)
{
    EXPECT_EQ(ComError(platform::kErrorTypeMismatch).code(), 0x80020005u);
    EXPECT_STREQ(ComError(0x80020005u).what(), "operation failed with code 0x80020005");
    EXPECT_EQ(OleError(0x80030002u).code(), 0x80030002u);
    EXPECT_STREQ(OleError(0x80030002u).what(), "compound file operation failed with code 0x80030002");
}

TEST(Errors, OfAnArchiveCarryCauseAndFile)
{
    const ArchiveError error(ArchiveError::kEndOfFile, L"h\u00F6he.ovdl");
    EXPECT_EQ(error.cause(), 3);
    EXPECT_EQ(error.fileName(), L"h\u00F6he.ovdl");
    EXPECT_STREQ(error.what(), "the archive ended too early: h\xC3\xB6he.ovdl");
    EXPECT_STREQ(ArchiveError(ArchiveError::kReadOnly, L"").what(), "the archive is open for reading only");
    EXPECT_STREQ(ArchiveError(ArchiveError::kWriteOnly, L"").what(),
                 "the archive is open for writing only");
}

TEST(Errors, AreCaughtByTypeAcrossTheLibrary)
{
    try {
        platform::raiseInvalidArgument();
        FAIL() << "nothing was raised";
    } catch (const ComError& error) {
        EXPECT_EQ(error.code(), platform::kErrorInvalidArgument);
    }
}

TEST(Errors, KeepTheirTextWhenCopied)
{
    const auto copyOf = [](const std::string& name) {
        const ArchiveError error(ArchiveError::kReadOnly, std::wstring(name.begin(), name.end()));
        return ArchiveError(error);
    };
    EXPECT_STREQ(copyOf("a").what(), "the archive is open for reading only: a");
}

}  // namespace
