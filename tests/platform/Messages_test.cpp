#include "raylume/platform/Messages.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

using Texts = std::vector<std::wstring>;

class Messages : public testing::Test {
protected:
    ~Messages() override
    {
        platform::setMessageBoxHandler({});
        platform::setDebugOutputHandler({});
    }
};

TEST_F(Messages, BoxIsOneLineOnStandardErrorByDefault)
{
    testing::internal::CaptureStderr();
    platform::showMessageBox(L"h\u00F6he\r\nnext");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "h\xC3\xB6he  next\n");
}

TEST_F(Messages, BoxKeepsTerminalControlsOut)
{
    testing::internal::CaptureStderr();
    platform::showMessageBox(L"a\x1B[31m\u009Bz");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "a [31m z\n");
}

TEST_F(Messages, BoxGoesToTheHandlerAlone)
{
    Texts texts;
    platform::setMessageBoxHandler([&](const std::wstring& text) { texts.push_back(text); });
    testing::internal::CaptureStderr();
    platform::showMessageBox(L"one\ntwo");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(texts, Texts{L"one\ntwo"});
}

TEST_F(Messages, BoxComesBackWithAnEmptyHandler)
{
    Texts texts;
    platform::setMessageBoxHandler([&](const std::wstring& text) { texts.push_back(text); });
    platform::setMessageBoxHandler({});
    testing::internal::CaptureStderr();
    platform::showMessageBox(L"again");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "again\n");
    EXPECT_TRUE(texts.empty());
}

TEST_F(Messages, HandlerMayReplaceItself)
{
    Texts texts;
    platform::setMessageBoxHandler([&](const std::wstring& text) {
        platform::setMessageBoxHandler([&](const std::wstring&) { texts.push_back(L"second"); });
        texts.push_back(text);
    });
    platform::showMessageBox(L"first");
    platform::showMessageBox(L"x");
    EXPECT_EQ(texts, (Texts{L"first", L"second"}));
}

TEST_F(Messages, DebugOutputIsDroppedByDefault)
{
    const ScopedVariable variable("RAYLUME_DEBUG_OUTPUT", std::nullopt);
    testing::internal::CaptureStderr();
    platform::debugOutput(L"x\r\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Messages, DebugOutputGoesToStandardErrorForADash)
{
    const ScopedVariable variable("RAYLUME_DEBUG_OUTPUT", "-");
    testing::internal::CaptureStderr();
    platform::debugOutput(L"\u00F6\r\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "\xC3\xB6\r\n");
}

TEST_F(Messages, DebugOutputIsAppendedToAFile)
{
    const TemporaryFolder folder;
    const ScopedVariable variable("RAYLUME_DEBUG_OUTPUT", folder / "log.txt");
    platform::debugOutput(L"one\r\n");
    platform::debugOutput(L"tw\u00F6\r\n");
    EXPECT_EQ(readFile(folder / "log.txt"), "one\r\ntw\xC3\xB6\r\n");
}

TEST_F(Messages, DebugOutputSurvivesAFileThatCannotBe)
{
    const TemporaryFolder folder;
    for (const std::string& path : {folder / "no/such/folder/log", folder.path()}) {
        const ScopedVariable variable("RAYLUME_DEBUG_OUTPUT", path);
        EXPECT_NO_THROW(platform::debugOutput(L"x\r\n"));
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

// Without a reader on the other side an open that waits would hold this test.
TEST_F(Messages, DebugOutputDoesNotWaitForAPipe)
{
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    const ScopedVariable variable("RAYLUME_DEBUG_OUTPUT", folder / "pipe");
    platform::debugOutput(L"x\r\n");
    EXPECT_TRUE(std::filesystem::is_fifo(folder / "pipe"));
}

// Past the limit the system would end the process instead of failing the call.
TEST_F(Messages, DebugOutputThatAFileMayNotHoldIsLost)
{
    const TemporaryFolder folder;
    const ScopedVariable variable("RAYLUME_DEBUG_OUTPUT", folder / "log.txt");
    const auto writeUnderLimit = [] {
        const rlimit limit{10, 10};
        setrlimit(RLIMIT_FSIZE, &limit);
        for (const wchar_t* const text : {L"12345678", L"9abc", L"9a", L"b"}) {
            platform::debugOutput(text);
        }
        std::_Exit(0);
    };
    EXPECT_EXIT(writeUnderLimit(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(readFile(folder / "log.txt"), "123456789a");
}

TEST_F(Messages, DebugOutputGoesToTheHandlerAlone)
{
    const TemporaryFolder folder;
    const ScopedVariable variable("RAYLUME_DEBUG_OUTPUT", folder / "log.txt");
    Texts texts;
    platform::setDebugOutputHandler([&](const std::wstring& text) { texts.push_back(text); });
    platform::debugOutput(L"x\r\n");
    EXPECT_EQ(texts, Texts{L"x\r\n"});
    EXPECT_FALSE(std::filesystem::exists(folder / "log.txt"));
    platform::setDebugOutputHandler({});
    platform::debugOutput(L"y\r\n");
    EXPECT_EQ(readFile(folder / "log.txt"), "y\r\n");
}

}  // namespace
