// Files that appear complete or not at all.
#include "raylume/platform/ReplacementFile.h"

#include <gmock/gmock.h>

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "CompoundFileTools.h"
#include "TemporaryFolder.h"

namespace {

using namespace compound_tests;
using platform::ReplacementFile;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class Replacement : public testing::Test {
protected:
    std::vector<std::string> names() const
    {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            found.push_back(entry.path().filename());
        return found;
    }

    static std::string contentOf(const std::string& file)
    {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    std::unique_ptr<ReplacementFile> create(const std::string& file) const
    {
        std::unique_ptr<ReplacementFile> made;
        EXPECT_RESULT(0, ReplacementFile::create(platform::fromUtf8(file), made));
        return made;
    }

    HResult failure(const std::string& file) const
    {
        std::unique_ptr<ReplacementFile> made;
        const HResult result = ReplacementFile::create(platform::fromUtf8(file), made);
        EXPECT_EQ(made, nullptr);
        return result;
    }

    const TemporaryFolder folder;
    const std::string path = folder / "a.txt";
};

TEST_F(Replacement, AppearsWhenItIsPutInItsPlace)
{
    const auto file = create(path);
    ASSERT_RESULT(0, file->write("first ", 6));
    ASSERT_RESULT(0, file->write("second", 6));
    EXPECT_FALSE(std::filesystem::exists(path));
    ASSERT_RESULT(0, file->commit());
    EXPECT_EQ(contentOf(path), "first second");
    EXPECT_THAT(names(), ElementsAre("a.txt"));
}

TEST_F(Replacement, LeavesNothingWhenItIsDropped)
{
    ASSERT_RESULT(0, create(path)->write("text", 4));
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Replacement, LeavesTheOldFileUntilThen)
{
    folder.write("a.txt", "old");
    const auto file = create(path);
    ASSERT_RESULT(0, file->write("new", 3));
    EXPECT_EQ(contentOf(path), "old");
    ASSERT_RESULT(0, file->commit());
    EXPECT_EQ(contentOf(path), "new");
    EXPECT_THAT(names(), ElementsAre("a.txt"));
}

TEST_F(Replacement, TakesThePermissionsOfTheOldFile)
{
    folder.write("a.txt", "old");
    std::filesystem::permissions(path, std::filesystem::perms(0640));
    ASSERT_RESULT(0, create(path)->commit());
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0640));
}

TEST_F(Replacement, FollowsALink)
{
    folder.write("target.txt", "old");
    std::filesystem::create_symlink("target.txt", path);
    const auto file = create(path);
    ASSERT_RESULT(0, file->write("new", 3));
    ASSERT_RESULT(0, file->commit());
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_EQ(contentOf(folder / "target.txt"), "new");
}

TEST_F(Replacement, NeedsAFolderAndARegularFile)
{
    EXPECT_RESULT(0x80030003, failure(folder / "missing/a.txt"));
    EXPECT_RESULT(0x80030005, failure(folder.path()));
    EXPECT_RESULT(0x80030005, failure("/dev/null"));
}

TEST_F(Replacement, FailsWhereTheProcessMayWriteNoMore)
{
    rlimit old;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    const auto file = create(path);
    const rlimit small = {1000, old.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string bytes(5000, 'x');
    const HResult result = file->write(bytes.data(), bytes.size());
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_LT(result, 0);
}

class CompoundReplacement : public Replacement {};

TEST_F(CompoundReplacement, HasWhatWasPutIntoIt)
{
    ASSERT_RESULT(0, platform::replaceCompoundFile(platform::fromUtf8(path), [](IStorage& root) {
                      put(*createIn(root, L"Inner").get(), L"Data", "bytes");
                  }));
    EXPECT_EQ(bytesOf(*openIn(*openFile(path).get(), L"Inner").get(), L"Data"), "bytes");
    EXPECT_THAT(names(), ElementsAre("a.txt"));
}

TEST_F(CompoundReplacement, TakesThePlaceOfAnyFile)
{
    folder.write("a.txt", "no compound file");
    ASSERT_RESULT(0, platform::replaceCompoundFile(platform::fromUtf8(path),
                                                   [](IStorage& root) { put(root, L"Data", "new"); }));
    EXPECT_EQ(bytesOf(*openFile(path).get(), L"Data"), "new");
}

TEST_F(CompoundReplacement, LeavesNothingWhenFillingItRaises)
{
    struct Failure {};
    const auto fill = [](IStorage& root) {
        put(root, L"Data", "half");
        throw Failure();
    };
    EXPECT_THROW(platform::replaceCompoundFile(platform::fromUtf8(path), fill), Failure);
    EXPECT_THAT(names(), IsEmpty());
    folder.write("a.txt", "old");
    EXPECT_THROW(platform::replaceCompoundFile(platform::fromUtf8(path), fill), Failure);
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_THAT(names(), ElementsAre("a.txt"));
}

TEST_F(CompoundReplacement, WritesNothingBeforeItIsFilled)
{
    folder.write("a.txt", "old");
    ASSERT_RESULT(0, platform::replaceCompoundFile(platform::fromUtf8(path), [this](IStorage& root) {
                      put(root, L"Data", "new");
                      EXPECT_RESULT(0, root.Commit(0));
                      EXPECT_EQ(contentOf(path), "old");
                  }));
    EXPECT_EQ(bytesOf(*openFile(path).get(), L"Data"), "new");
}

TEST_F(CompoundReplacement, IsNotFilledForAPathThatCannotBeReplaced)
{
    const auto fill = [](IStorage&) { FAIL() << "there is no place for it"; };
    EXPECT_RESULT(0x80030003,
                  platform::replaceCompoundFile(platform::fromUtf8(folder / "missing/a.doc"), fill));
    EXPECT_RESULT(0x80030005, platform::replaceCompoundFile(folder.wide(), fill));
}

TEST_F(CompoundReplacement, MayBeFilledFromTheFileThatItReplaces)
{
    put(*createFile(path).get(), L"Data", "old");
    const Storage old = openFile(path);
    ASSERT_RESULT(0, platform::replaceCompoundFile(platform::fromUtf8(path), [&old](IStorage& root) {
                      put(root, L"Data", bytesOf(*old.get(), L"Data") + " and new");
                  }));
    EXPECT_EQ(bytesOf(*openFile(path).get(), L"Data"), "old and new");
    EXPECT_EQ(bytesOf(*old.get(), L"Data"), "old");
}

}  // namespace
