#include "raylume/services/Log.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <vector>

#include "raylume/platform/Messages.h"
#include "tests/platform/ScopedCodePage.h"

namespace {

class Log : public testing::Test {
protected:
    Log()
    {
        platform::setDebugOutputHandler([this](const std::wstring& text) { texts_.push_back(text); });
    }
    ~Log() override { platform::setDebugOutputHandler({}); }

    std::wstring logged(const std::string& text)
    {
        texts_.clear();
        rlu_odprintf("%s", text.c_str());
        return texts_.size() == 1 ? texts_[0] : L"<not one text>";
    }

    std::vector<std::wstring> texts_;
};

TEST_F(Log, FormatsAndEndsTheLine)
{
    rlu_odprintf("%d of %s", 3, "five");
    EXPECT_EQ(texts_, std::vector<std::wstring>{L"3 of five\r\n"});
}

TEST_F(Log, TakesTrailingWhiteSpaceOff)
{
    EXPECT_EQ(logged("BodyProp not null!\n"), L"BodyProp not null!\r\n");
    EXPECT_EQ(logged(" a b \t\n\v\f\r "), L" a b\r\n");
    EXPECT_EQ(logged(" \n "), L"\r\n");
    EXPECT_EQ(logged(""), L"\r\n");
}

TEST_F(Log, CutsAt4093Characters)
{
    EXPECT_EQ(logged(std::string(4093, 'a')), std::wstring(4093, L'a') + L"\r\n");
    EXPECT_EQ(logged(std::string(4093, 'a') + "b"), std::wstring(4093, L'a') + L"\r\n");
    EXPECT_EQ(logged(std::string(100000, 'a')), std::wstring(4093, L'a') + L"\r\n");
}

TEST_F(Log, CutsBeforeItTakesWhiteSpaceOff)
{
    EXPECT_EQ(logged(std::string(4000, 'a') + std::string(93, ' ') + "b"),
              std::wstring(4000, L'a') + L"\r\n");
    EXPECT_EQ(logged(std::string(4092, 'a') + " b"), std::wstring(4092, L'a') + L"\r\n");
}

TEST_F(Log, GoesThroughTheCodePage)
{
    EXPECT_EQ(logged("h\xC3\xB6he"), L"h\u00F6he\r\n");
    const ScopedCodePage page(1252);
    EXPECT_EQ(logged("h\xF6he"), L"h\u00F6he\r\n");
}

TEST_F(Log, CutsThroughACharacterOfSeveralBytes)
{
    EXPECT_EQ(logged(std::string(4092, 'a') + "\xC3\xB6"), std::wstring(4092, L'a') + L"\uFFFD\r\n");
}

TEST_F(Log, SaysNothingWhenTheFormatFails)
{
    // The plain locale has no bytes for this character.
    ASSERT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
    rlu_odprintf("%ls", L"\u65E5");
    rlu_odprintf("%5000d%ls", 1, L"\u65E5");
    EXPECT_TRUE(texts_.empty());
}

TEST_F(Log, SaysNothingWithoutAFormat)
{
    const char* const none = nullptr;
    EXPECT_NO_FATAL_FAILURE(rlu_odprintf(none));
    EXPECT_TRUE(texts_.empty());
}

TEST_F(Log, AssertionsTestNothing)
{
    rlu_ASSERT(false);
    rlu_ASSERT(true);
    EXPECT_TRUE(texts_.empty());
}

}  // namespace
