#include <dirent.h>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <set>

#include "raylume/persist/RLCameraData.h"
#include "tests/persist/Archives.h"
#include "tests/persist/StreamBuilder.h"
#include "tests/persist/ViewsFolder.h"
#include "tests/platform/ScopedCodePage.h"

namespace {

std::atomic<std::size_t> entriesRead = 0;

}  // namespace

// In the place of the system's, to count the entries of folders that the whole process looks at.
extern "C" __attribute__((visibility("default"))) dirent* readdir(DIR* folder)
{
    static const auto real = reinterpret_cast<dirent* (*)(DIR*)>(dlsym(RTLD_NEXT, "readdir"));
    ++entriesRead;
    return real(folder);
}

namespace {

namespace fs = std::filesystem;
using namespace persist_tests;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kReadOnly = 2;
constexpr int kEndOfFile = 3;
constexpr int kWriteOnly = 4;

std::set<std::string> everythingBelow(const std::string& folder)
{
    std::set<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        names.insert(fs::relative(entry.path(), folder).string());
    return names;
}

class CustomViews : public testing::Test {
protected:
    std::string unpack(const std::string& bytes)
    {
        Loading loading(bytes);
        RLCameraData().readCustomViews(loading.archive());
        return loading.rest();
    }

    std::string unpackOne(const std::string& bytes)
    {
        views.make();
        Loading loading(bytes);
        RLCameraData().readCustomView(loading.archive(), views.text());
        return loading.rest();
    }

    std::string pack()
    {
        Storing storing;
        RLCameraData().writeCustomViews(storing.archive());
        return storing.bytes();
    }

    std::vector<std::string> names() const
    {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(views.path()))
            found.push_back(entry.path().filename().string());
        std::sort(found.begin(), found.end());
        return found;
    }

    ViewsFolder views;
};

Bytes oneView(const std::string& path, const std::string& content)
{
    Bytes bytes;
    bytes.text(path).u32(static_cast<std::uint32_t>(content.size())).raw(content);
    return bytes;
}

// --- unpacking

TEST_F(CustomViews, AreUnpackedIntoTheReadersOwnFolder)
{
    Bytes bytes;
    bytes.u32(2);
    bytes.raw(oneView("C:\\Users\\other\\Views\\front.view", "FRONT").get());
    bytes.raw(oneView("/home/other\\back.view", "BACK").get());
    EXPECT_EQ(unpack(bytes.get() + "next"), "next");
    EXPECT_THAT(names(), ElementsAre("back.view", "front.view"));
    EXPECT_EQ(readFile(views / "front.view"), "FRONT");
    EXPECT_EQ(readFile(views / "back.view"), "BACK");
}

TEST_F(CustomViews, TakeTheirNumberFromFourBytes)
{
    EXPECT_EQ(unpack(Bytes().u64(0).raw("next").get()), std::string("\0\0\0\0next", 8));
    EXPECT_EQ(unpack(Bytes().u32(0).raw("next").get()), "next");
}

TEST_F(CustomViews, OfANegativeNumberAreNone)
{
    for (const std::uint32_t count : {0xFFFFFFFFu, 0x80000000u})
        EXPECT_EQ(unpack(Bytes().u32(count).raw("next").get()), "next");
    EXPECT_THAT(names(), IsEmpty());  // The folder is made for the asking.
}

TEST_F(CustomViews, WithoutAFolderReadNothing)
{
    const ScopedVariable none("XDG_DATA_HOME", "/dev/null/none");
    EXPECT_EQ(unpack(Bytes().u32(1).get()), std::string("\1\0\0\0", 4));
}

// A path comes out then too, as far as it was built; it must not be used.
TEST_F(CustomViews, WithHalfAFolderAreNeitherReadNorStored)
{
    views.user().makeFolder("Lumenforge");
    views.user().write("Lumenforge/Presets", "in the way");
    const std::string bytes = Bytes().u32(1).raw(oneView("a", "A").get()).get();
    EXPECT_EQ(unpack(bytes), bytes);
    EXPECT_EQ(pack(), "");
    EXPECT_THAT(everythingBelow(views.user().path()), ElementsAre("Lumenforge", "Lumenforge/Presets"));
}

TEST_F(CustomViews, OfAnEmptyViewAreAnEmptyFile)
{
    EXPECT_EQ(unpackOne(oneView("C:\\a.view", "").get()), "");
    EXPECT_TRUE(fs::is_regular_file(views / "a.view"));
    EXPECT_EQ(fs::file_size(views / "a.view"), 0u);
}

TEST_F(CustomViews, ReplaceAndCutAFileOfTheSameName)
{
    views.write("a.view", "a longer one that was there before");
    unpackOne(oneView("x\\a.view", "new").get());
    EXPECT_EQ(readFile(views / "a.view"), "new");
}

TEST_F(CustomViews, OfAPathWithoutSeparatorHaveThatName)
{
    unpackOne(oneView("plain.view", "P").get());
    EXPECT_EQ(readFile(views / "plain.view"), "P");
}

TEST_F(CustomViews, MayHaveANameOfTheCodePage)
{
    Bytes bytes;
    bytes.u8(0xFF).u16(0xFFFE).u8(2).u16('\\').u16(0xE9).u32(1).raw("E");
    unpackOne(bytes.get());
    EXPECT_EQ(readFile(views / "\xC3\xA9"), "E");
}

// In this code page the second byte of U+30BD is that of "\".
TEST_F(CustomViews, AreCutInTextAndNotInBytes)
{
    const ScopedCodePage page(932);
    ASSERT_TRUE(page.isSet());
    Bytes bytes;
    bytes.u8(0xFF).u16(0xFFFE).u8(3).u16('\\').u16(0x30BD).u16('a').u32(1).raw("S");
    unpackOne(bytes.get());
    EXPECT_THAT(names(), ElementsAre("\xE3\x82\xBD"
                                     "a"));
}

TEST_F(CustomViews, HaveNamesThatAreCheckedAfterNarrowing)
{
    const ScopedCodePage page(1252);
    ASSERT_TRUE(page.isSet());
    Bytes bytes;
    bytes.u8(0xFF).u16(0xFFFE).u8(2).u16(0x30BD).u16('a').u32(1).raw("S");  // Becomes "?a".
    EXPECT_EQ(unpackOne(bytes.get() + "next"), "next");
    EXPECT_THAT(names(), IsEmpty());
}

struct BadName {
    const char* name;
    std::string path;
};

const BadName kBadNames[] = {
    {"empty", ""},
    {"path_that_ends_in_a_separator", "C:\\views\\"},
    {"dot", "x\\."},
    {"dot_dot", "x\\.."},
    {"slash", "a/b"},
    {"way_out", "x\\../../../escape"},
    {"absolute", "/tmp/raylume-escape"},
    {"colon", "c:stream"},
    {"drive", "c:"},
    {"newline", "a\nb"},
    {"delete", "a\x7F"},
    {"star", "a*"},
    {"question_mark", "a?"},
    {"quote", "a\"b"},
    {"less", "a<b"},
    {"greater", "a>b"},
    {"bar", "a|b"},
    {"longer_than_names_go", std::string(300, 'n')},
};

class BadViewName : public CustomViews, public testing::WithParamInterface<BadName> {};

TEST_P(BadViewName, IsAFailedCreateWhoseBytesAreConsumed)
{
    views.make();
    const auto before = everythingBelow(views.user().path());
    Bytes bytes;
    bytes.u32(2).u8(0xFF).u16(static_cast<std::uint32_t>(GetParam().path.size())).raw(GetParam().path);
    bytes.u32(3).raw("BAD");
    bytes.raw(oneView("good.view", "GOOD").get());
    EXPECT_EQ(unpack(bytes.get() + "next"), "next");
    auto expected = before;
    expected.insert("Lumenforge/Presets/Views/good.view");
    EXPECT_EQ(everythingBelow(views.user().path()), expected);
    EXPECT_EQ(readFile(views / "good.view"), "GOOD");
}

INSTANTIATE_TEST_SUITE_P(Rows, BadViewName, testing::ValuesIn(kBadNames),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(CustomViews, AreNeverWrittenThroughALinkOrIntoAPipe)
{
    views.make();
    const std::string outside = views.user().write("outside", "untouched");
    fs::create_symlink(outside, views / "link.view");
    fs::create_symlink(views.user() / "new", views / "dangling.view");
    ASSERT_EQ(mkfifo((views / "pipe.view").c_str(), 0600), 0);
    fs::create_directory(views / "folder.view");
    Bytes bytes;
    bytes.u32(5);
    for (const char* name : {"link.view", "dangling.view", "pipe.view", "folder.view", "good.view"})
        bytes.raw(oneView(name, "CONTENT").get());
    EXPECT_EQ(unpack(bytes.get() + "next"), "next");
    EXPECT_EQ(readFile(outside), "untouched");
    EXPECT_FALSE(fs::exists(views.user() / "new"));
    EXPECT_TRUE(fs::is_symlink(views / "link.view"));
    EXPECT_TRUE(fs::is_fifo(views / "pipe.view"));
    EXPECT_EQ(readFile(views / "good.view"), "CONTENT");
}

TEST_F(CustomViews, CutShortHaveTheirFullLengthAndRaiseNothing)
{
    Bytes bytes;
    bytes.text("a.view").u32(10).raw("abc");
    EXPECT_EQ(unpackOne(bytes.get()), "");
    EXPECT_EQ(readFile(views / "a.view"), std::string("abc\0\0\0\0\0\0\0", 10));
}

TEST_F(CustomViews, CutShortFailWithTheNextField)
{
    Bytes bytes;
    bytes.u32(2).text("a.view").u32(10).raw("abc");
    EXPECT_EQ(causeOf([&] { unpack(bytes.get()); }), kEndOfFile);
    EXPECT_EQ(fs::file_size(views / "a.view"), 10u);
}

// The most memory that the process ever had addresses for, touched or not.
std::size_t mostKilobytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (std::size_t kilobytes = 0; word == "VmPeak:" && status >> kilobytes)
            return kilobytes;
    return 0;
}

// 2 GB, not a negative number; and neither memory nor disk for what is not there.
TEST_F(CustomViews, OfAHugeLengthAreSparse)
{
    const std::size_t before = mostKilobytes();
    ASSERT_GT(before, 0u);
    for (const std::uint32_t length : {0x80000000u, 0xFF000000u}) {
        Bytes bytes;
        bytes.text("huge.view").u32(length).raw("abc");
        EXPECT_EQ(unpackOne(bytes.get()), "");
        struct stat status;
        ASSERT_EQ(stat((views / "huge.view").c_str(), &status), 0);
        EXPECT_EQ(static_cast<std::uint64_t>(status.st_size), length);
        EXPECT_LT(status.st_blocks, 1000);
    }
    EXPECT_LT(mostKilobytes(), before + 256 * 1024);
}

TEST_F(CustomViews, OfAHugeLengthStayWithinTheUsersLimit)
{
    struct rlimit old;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    const struct rlimit small = {100'000, old.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    Bytes bytes;
    bytes.text("huge.view").u32(0x80000000u).raw("abc");
    EXPECT_EQ(unpackOne(bytes.get()), "");  // The system would end the process.
    const std::string large(200'000, 'x');
    EXPECT_EQ(unpackOne(Bytes().text("large.view").u32(200'000).raw(large + "next").get()), "next");
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_EQ(readFile(views / "huge.view"), "abc");
    EXPECT_LE(fs::file_size(views / "large.view"), 100'000u);
}

TEST_F(CustomViews, LongerThanAPieceAreWhole)
{
    std::string content(200'001, '\0');
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 7 / 3);
    Bytes bytes;
    bytes.text("a.view").u32(static_cast<std::uint32_t>(content.size())).raw(content).raw("next");
    EXPECT_EQ(unpackOne(bytes.get()), "next");
    EXPECT_EQ(readFile(views / "a.view"), content);
}

TEST_F(CustomViews, AlreadyUnpackedStayAfterAFailure)
{
    Bytes bytes;
    bytes.u32(2).raw(oneView("a.view", "A").get()).u8(5);
    EXPECT_EQ(causeOf([&] { unpack(bytes.get()); }), kEndOfFile);
    EXPECT_EQ(readFile(views / "a.view"), "A");
}

// Looking through the folder for each new name would be a look at nearly a million entries.
TEST_F(CustomViews, OfAnyNumberTakeOneReadingOfTheirFolder)
{
    constexpr std::size_t kViews = 1000;
    views.write("There.view", "old");
    Bytes bytes;
    bytes.u32(kViews + 1);
    for (std::size_t i = 0; i < kViews; ++i)
        bytes.raw(oneView("v" + std::to_string(i), "").get());
    bytes.raw(oneView("tHERE.view", "new").get());
    entriesRead = 0;
    EXPECT_EQ(unpack(bytes.get() + "next"), "next");
    EXPECT_GT(entriesRead, 0u);
    EXPECT_LT(entriesRead, 100u);
    EXPECT_EQ(names().size(), kViews + 1);
    EXPECT_EQ(readFile(views / "There.view"), "new");
}

// A caller's folder may lack its separator, and is the beginning of the name then.
TEST_F(CustomViews, GoWhereFolderAndNameTogetherSay)
{
    views.make();
    Loading loading(oneView("C:\\a.view", "A").get());
    RLCameraData().readCustomView(loading.archive(), views.text() + L"my ");
    EXPECT_EQ(readFile(views / "my a.view"), "A");
    Loading lost(oneView("C:\\a.view", "A").raw("next").get());
    RLCameraData().readCustomView(lost.archive(), views.text() + L"missing\\");
    EXPECT_EQ(lost.rest(), "next");
}

// --- packing

TEST_F(CustomViews, ArePackedInTheOrderOfTheirBytes)
{
    views.write("b.view", "BB");
    views.write("a.view", "");
    views.write("B.view", "capital");
    Bytes bytes;
    bytes.u64(3);
    bytes.raw(oneView(views.narrowText() + "B.view", "capital").get());
    bytes.raw(oneView(views.narrowText() + "a.view", "").get());
    bytes.raw(oneView(views.narrowText() + "b.view", "BB").get());
    EXPECT_EQ(pack(), bytes.get());
}

TEST_F(CustomViews, OfAnEmptyFolderAreACountOfEightBytes)
{
    EXPECT_EQ(pack(), std::string(8, '\0'));
    EXPECT_TRUE(fs::is_directory(views.path()));  // Made for the asking.
}

TEST_F(CustomViews, WithoutAFolderStoreNothing)
{
    const ScopedVariable none("XDG_DATA_HOME", "/dev/null/none");
    EXPECT_EQ(pack(), "");
}

TEST_F(CustomViews, ThatAreHiddenOrNoFilesDoNotTravel)
{
    views.write("a.view", "A");
    views.write(".hidden", "H");
    fs::create_directory(views / "folder");
    ASSERT_EQ(mkfifo((views / "pipe").c_str(), 0600), 0);
    fs::create_symlink("/nowhere/at/all", views / "dangling");
    EXPECT_EQ(pack(), Bytes().u64(1).raw(oneView(views.narrowText() + "a.view", "A").get()).get());
}

class DeletingSink final : public RLByteSink {
public:
    explicit DeletingSink(std::string path) : path_(std::move(path)) {}
    void write(const void* data, std::size_t size) override
    {
        fs::remove(path_);
        bytes.append(static_cast<const char*>(data), size);
    }
    std::string bytes;

private:
    std::string path_;
};

// The second one goes while the first is on its way.
TEST_F(CustomViews, ThatDoNotOpenStillCount)
{
    const std::string content(10'000, 'a');
    views.write("a.view", content);
    views.write("b.view", "B");
    DeletingSink sink(views / "b.view");
    RLByteStream stream(sink, kFileName);
    RLArchive archive{&stream};
    RLCameraData().writeCustomViews(archive);
    stream.close();
    EXPECT_EQ(sink.bytes, Bytes().u64(2).raw(oneView(views.narrowText() + "a.view", content).get()).get());
}

TEST_F(CustomViews, DoNotReadBackAsTheyWereStored)
{
    views.write("a.view", "A");
    const std::string bytes = pack();
    fs::remove(views / "a.view");
    // The high half of the count is an empty narrow path and the first three bytes of a length, whose last
    // is the first byte of the path's own marker.
    EXPECT_EQ(unpack(bytes), "");
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(CustomViews, StoreTheLowHalfOfALength)
{
    views.make();
    views.write("huge.view", "abcde");
    ASSERT_EQ(truncate((views / "huge.view").c_str(), (off_t{4} << 30) + 3), 0);
    Storing storing;
    EXPECT_EQ(RLCameraData().writeCustomView(storing.archive(), views.text() + L"huge.view"), 1);
    EXPECT_EQ(storing.bytes(), oneView(views.narrowText() + "huge.view", "abc").get());
}

TEST_F(CustomViews, LargerThanAPieceArePackedWhole)
{
    const std::string content(150'000, 'c');
    views.write("a.view", content);
    EXPECT_EQ(pack(), Bytes().u64(1).raw(oneView(views.narrowText() + "a.view", content).get()).get());
}

// --- direction

TEST_F(CustomViews, DoNothingInTheOtherDirectionAndMakeNoFolder)
{
    Storing storing;
    RLCameraData().readCustomViews(storing.archive());
    EXPECT_EQ(storing.bytes(), "");
    Loading loading("next");
    RLCameraData().writeCustomViews(loading.archive());
    EXPECT_EQ(loading.rest(), "next");
    EXPECT_FALSE(fs::exists(views.user() / "Lumenforge"));
}

TEST_F(CustomViews, OneByOneRaiseInTheOtherDirection)
{
    views.write("a.view", "A");
    Storing storing;
    EXPECT_EQ(causeOf([&] { RLCameraData().readCustomView(storing.archive(), views.text()); }), kWriteOnly);
    Loading loading("next");
    EXPECT_EQ(causeOf([&] { RLCameraData().writeCustomView(loading.archive(), views.text() + L"a.view"); }),
              kReadOnly);
    EXPECT_EQ(loading.rest(), "next");
}

TEST_F(CustomViews, ThatAreMissingGive0AndRaiseNothing)
{
    Storing storing;
    EXPECT_EQ(RLCameraData().writeCustomView(storing.archive(), views.text() + L"missing"), 0);
    EXPECT_EQ(storing.bytes(), "");
    Loading loading("next");
    EXPECT_EQ(RLCameraData().writeCustomView(loading.archive(), views.text() + L"missing"), 0);
    EXPECT_EQ(loading.rest(), "next");
}

// --- within the camera

TEST_F(CustomViews, AreNotAskedForUpToVersion5)
{
    for (const std::uint32_t version : {3u, 4u, 5u}) {
        Bytes bytes;
        addCamera(bytes, version);
        RLCameraData camera;
        EXPECT_EQ(load(camera, bytes.get() + "next", version), "next") << version;
        EXPECT_FALSE(fs::exists(views.user() / "Lumenforge"));
    }
}

TEST_F(CustomViews, LieBetweenProjectionAndFocusFromVersion6On)
{
    for (const std::uint32_t version : {6u, 7u, 8u, 9u, 10u, 0x80000000u}) {
        const std::string name = "v" + std::to_string(version);
        Bytes bytes;
        addCamera(bytes, version, std::vector<View>{{"C:\\" + name, "CONTENT"}});
        RLCameraData camera;
        EXPECT_EQ(load(camera, bytes.get() + "next", version), "next") << version;
        EXPECT_EQ(readFile(views / name), "CONTENT");
        EXPECT_EQ(camera.getProjType(), 2);
        EXPECT_EQ(camera.getFocusDist(), version > 7 ? 8.5f : -1e8f);
    }
}

TEST_F(CustomViews, WithoutAnyStillMakeTheFolderFromVersion6On)
{
    Bytes bytes;
    addCamera(bytes, 6);
    RLCameraData camera;
    load(camera, bytes.get(), 6);
    EXPECT_TRUE(fs::is_directory(views.path()));
}

TEST_F(CustomViews, AreStoredBetweenProjectionAndFocus)
{
    views.write("a.view", "A");
    RLCameraData camera;
    camera.setProjType(2);
    const std::string bytes = stored(camera, 0);
    const std::string block = Bytes().u64(1).raw(oneView(views.narrowText() + "a.view", "A").get()).get();
    EXPECT_EQ(bytes.substr(9 * 4, block.size() + 4), block + Bytes().f32(-1e8f).get());
}

}  // namespace
