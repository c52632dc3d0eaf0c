#include "raylume/services/SideFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "tests/platform/ScopedCodePage.h"
#include "tests/platform/TemporaryFolder.h"

using namespace std::string_literals;

namespace {

using Lines = std::vector<std::wstring>;

constexpr std::size_t kCut = 1024 * 1024;

class SideFileLines : public testing::Test {
protected:
    Lines of(const std::string& bytes) const
    {
        folder_.write("file.txt", bytes);
        SideFile file(folder_.wide() + L"\\file.txt");
        EXPECT_TRUE(file.isOpen());
        Lines lines;
        while (auto line = file.nextLine()) {
            lines.push_back(std::move(*line));
        }
        EXPECT_FALSE(file.nextLine());
        return lines;
    }

    TemporaryFolder folder_;
};

struct LineCase {
    const char* name;
    std::string bytes;
    Lines lines;
};

const LineCase kLineCases[] = {
    {"nothing", "", {}},
    {"one", "a\n", {L"a"}},
    {"last_without_an_end", "a\nb", {L"a", L"b"}},
    {"returns_go_with_the_feed", "a\r\nb\r\n", {L"a", L"b"}},
    {"one_return_goes", "a\r\r\n", {L"a\r"}},
    {"return_alone_stays", "a\rb\n\rc", {L"a\rb", L"\rc"}},
    {"return_at_the_end_stays", "a\r", {L"a\r"}},
    {"empty_lines", "\n\r\n\n", {L"", L"", L""}},
    {"ends_at_the_mark",
     "a\nb\x1A"
     "c\nd\n",
     {L"a", L"b"}},
    {"mark_at_the_start_of_a_line", "a\n\x1A\nb\n", {L"a"}},
    {"mark_first",
     "\x1A"
     "a\n",
     {}},
    {"return_before_the_mark_stays", "a\r\x1A\n", {L"a\r"}},
    {"byte_order_mark_is_part_of_the_line",
     "\xEF\xBB\xBF"
     "a\n",
     {L"\uFEFFa"}},
    {"zeros_are_kept", "a\0b\n"s, {L"a\0b"s}},
    {"what_is_no_character", "a\xFF\n", {L"a\uFFFD"}},
};

class SideFileLine : public SideFileLines, public testing::WithParamInterface<LineCase> {};

TEST_P(SideFileLine, EndsWhereItShould)
{
    EXPECT_EQ(of(GetParam().bytes), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(Rows, SideFileLine, testing::ValuesIn(kLineCases),
                         [](const auto& row) { return row.param.name; });

TEST_F(SideFileLines, AreInTheCodePage)
{
    const ScopedCodePage page(932);
    ASSERT_TRUE(page.isSet());
    EXPECT_EQ(of("\x83\x5C\n"), Lines{L"\u30BD"});
}

TEST_F(SideFileLines, AreCutAtOneMebibyte)
{
    const std::string whole(kCut, 'x');
    const std::wstring wide(kCut, L'x');
    EXPECT_EQ(of(whole + "\nb"), (Lines{wide, L"b"}));
    EXPECT_EQ(of(whole + "\r\nb"), (Lines{wide, L"b"}));
    EXPECT_EQ(of(whole + "yz\nb"), (Lines{wide, L"b"}));
    EXPECT_EQ(of(whole + "y\r\nb"), (Lines{wide, L"b"}));
    EXPECT_EQ(of(whole + whole + "\x1A\nb"), Lines{wide});
    const std::wstring shorter(kCut - 1, L'x');
    EXPECT_EQ(of(whole.substr(1) + "\r\nb"), (Lines{shorter, L"b"}));
    EXPECT_EQ(of(whole.substr(1) + "\ry\nb"), (Lines{shorter + L"\r", L"b"}));
}

TEST_F(SideFileLines, MayHaveTheirEndsInDifferentReads)
{
    for (std::size_t size = 65530; size < 65545; ++size) {
        const std::string bytes = std::string(size, 'x') + "\r\ny\r\n\x1Az";
        EXPECT_EQ(of(bytes), (Lines{std::wstring(size, L'x'), L"y"})) << size;
    }
}

TEST_F(SideFileLines, OfEveryBeginningAreABeginning)
{
    const std::string bytes = "k\tC:\\maps\r\nDEFAULT_COLOR\t255\r\n\r\nlast\tx";
    const Lines all = of(bytes);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        const Lines some = of(bytes.substr(0, size));
        ASSERT_LE(some.size(), all.size());
        for (std::size_t i = 0; i + 1 < some.size(); ++i) {
            EXPECT_EQ(some[i], all[i]);
        }
    }
}

TEST_F(SideFileLines, AreThoseOfARegularFileOnly)
{
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    for (const wchar_t* name : {L"\\pipe", L"\\missing", L"\\", L""}) {
        SideFile file(folder_.wide() + name);
        EXPECT_FALSE(file.isOpen());
        EXPECT_FALSE(file.nextLine());
    }
}

TEST(ImageLocation, IsSplitAtTheFirstTab)
{
    const auto line = splitImageLocation(L" key \tvalue\tmore ");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->key, L" key ");
    EXPECT_EQ(line->value, L"value\tmore ");
    EXPECT_FALSE(splitImageLocation(L""));
    EXPECT_FALSE(splitImageLocation(L"key value"));
    EXPECT_FALSE(splitImageLocation(L"key\t"));
    ASSERT_TRUE(splitImageLocation(L"\tvalue"));
    EXPECT_EQ(splitImageLocation(L"\tvalue")->key, L"");
    EXPECT_EQ(splitImageLocation(L"key\t\t")->value, L"\t");
}

}  // namespace
