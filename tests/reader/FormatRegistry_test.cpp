#include "reader/FormatRegistry.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <new>
#include <stdexcept>

#include "ReaderFixtures.h"
#include "ScriptedFormats.h"
#include "TemporaryFolder.h"

namespace {

using ovdl::FormatRegistry;
using scripted::Format;
using testing::ElementsAre;

class TwoFormats : public testing::Test {
protected:
    TwoFormats()
    {
        auto one = std::make_unique<Format>("one");
        auto two = std::make_unique<Format>("two");
        first = one.get();
        second = two.get();
        std::vector<std::unique_ptr<ovdl::DocumentFormat>> formats;
        formats.push_back(std::move(one));
        formats.push_back(std::move(two));
        registry = std::make_unique<FormatRegistry>(std::move(formats));
        first->onRecognise = second->onRecognise = no;
    }

    static bool no(const std::wstring&, std::string&) { return false; }

    Format* first;
    Format* second;
    std::unique_ptr<FormatRegistry> registry;
    std::string reason;
};

TEST_F(TwoFormats, GivesTheFirstThatRecognisesThePath)
{
    first->onRecognise = nullptr;
    second->onRecognise = nullptr;
    EXPECT_EQ(registry->find(L"x", reason), first);
    EXPECT_EQ(second->questions, 0);
    EXPECT_EQ(reason, "");
}

TEST_F(TwoFormats, GoesOnToTheNextFormat)
{
    second->onRecognise = [](const std::wstring& path, std::string&) { return path == L"x.two"; };
    EXPECT_EQ(registry->find(L"x.two", reason), second);
    EXPECT_EQ(first->questions, 1);
    EXPECT_EQ(reason, "");
}

TEST_F(TwoFormats, StopsAtAFormatThatClaimsThePathAndCannotOpenIt)
{
    first->onRecognise = [](const std::wstring&, std::string& why) {
        why = "locked";
        return false;
    };
    second->onRecognise = nullptr;
    EXPECT_EQ(registry->find(L"x", reason), nullptr);
    EXPECT_EQ(reason, "locked");
    EXPECT_EQ(second->questions, 0);
}

TEST_F(TwoFormats, TakesAFailureWhileLookingForAClaim)
{
    first->onRecognise = [](const std::wstring&, std::string&) -> bool {
        throw std::runtime_error("bad sector");
    };
    EXPECT_EQ(registry->find(L"x", reason), nullptr);
    EXPECT_EQ(reason, "one: bad sector");
    first->onRecognise = [](const std::wstring&, std::string&) -> bool { throw 1; };
    EXPECT_EQ(registry->find(L"x", reason), nullptr);
    EXPECT_EQ(reason, "one: failed while looking at the document");
}

TEST_F(TwoFormats, LetsOutOfMemoryThrough)
{
    first->onRecognise = [](const std::wstring&, std::string&) -> bool { throw std::bad_alloc(); };
    EXPECT_THROW(registry->find(L"x", reason), std::bad_alloc);
}

TEST_F(TwoFormats, SaysWhyNothingOpens)
{
    const fixtures::TemporaryFolder folder;
    const auto file = folder.write("plain.txt", "text");
    const auto whyNot = [this](const std::filesystem::path& path) {
        EXPECT_EQ(registry->find(path.wstring(), reason), nullptr);
        return reason;
    };
    EXPECT_EQ(whyNot(folder.path() / "absent"), "there is no such file");
    EXPECT_EQ(whyNot(folder.path()), "a folder is no document");
    EXPECT_EQ(whyNot(file), "no format of this reader recognises the file");
    EXPECT_EQ(whyNot("/dev/null"), "the file cannot be opened for reading");
    EXPECT_EQ(whyNot(""), "there is no such file");
}

TEST_F(TwoFormats, MakesANoTheLastReasonAndClearsItWithAYes)
{
    first->onRecognise = [](const std::wstring&, std::string& why) {
        why = "locked\nand bolted";
        return false;
    };
    EXPECT_FALSE(registry->canOpen(L"x"));
    EXPECT_EQ(ovdl::lastReason(), "locked and bolted");
    first->onRecognise = nullptr;
    EXPECT_TRUE(registry->canOpen(L"x"));
    EXPECT_EQ(ovdl::lastReason(), "");
}

TEST_F(TwoFormats, TellsAllFormatsToForgetTheirProbes)
{
    registry->forgetProbes();
    EXPECT_EQ(first->forgotten, 1);
    EXPECT_EQ(second->forgotten, 1);
}

TEST_F(TwoFormats, NamesItsFormatsInOrder)
{
    EXPECT_THAT(registry->names(), ElementsAre("one", "two"));
}

TEST(FormatNames, AreThoseOfTheReadersList)
{
    EXPECT_THAT(ovdl::formatNames(), ElementsAre("first", "second"));
}

}  // namespace
