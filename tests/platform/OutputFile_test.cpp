#include "raylume/platform/OutputFile.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "raylume/platform/Text.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using platform::fileLength;
using platform::OutputFile;
using platform::OutputFolder;

class OutputFiles : public testing::Test {
protected:
    std::unique_ptr<OutputFile> create(const std::wstring& name) const
    {
        return OutputFile::create(folder.wide() + L"\\" + name);
    }

    TemporaryFolder folder;
};

TEST_F(OutputFiles, AreMadeAndWritten)
{
    const auto file = create(L"new");
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(file->write("ab", 2));
    EXPECT_TRUE(file->write("", 0));
    EXPECT_TRUE(file->write("c", 1));
    EXPECT_EQ(readFile(folder / "new"), "abc");
}

TEST_F(OutputFiles, AreEmptiedWhenTheyAreThere)
{
    folder.write("old", "long content");
    ASSERT_NE(create(L"old"), nullptr);
    EXPECT_EQ(fs::file_size(folder / "old"), 0u);
}

TEST_F(OutputFiles, AreFoundWithoutCase)
{
    folder.write("Old", "long content");
    ASSERT_NE(create(L"OLD"), nullptr);
    EXPECT_EQ(fs::file_size(folder / "Old"), 0u);
    EXPECT_FALSE(fs::exists(folder / "OLD"));
}

TEST_F(OutputFiles, GetALengthOfZerosThatTakeNoRoom)
{
    const auto file = create(L"sparse");
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(file->write("abc", 3));
    EXPECT_TRUE(file->setLength(std::uint64_t{1} << 32));
    struct stat status;
    ASSERT_EQ(stat((folder / "sparse").c_str(), &status), 0);
    EXPECT_EQ(status.st_size, off_t{1} << 32);
    EXPECT_LT(status.st_blocks, 1000);
    EXPECT_TRUE(file->setLength(5));
    EXPECT_EQ(readFile(folder / "sparse"), std::string("abc\0\0", 5));
}

TEST_F(OutputFiles, FailPastTheUsersLimitInsteadOfEndingTheProcess)
{
    struct rlimit old;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    const struct rlimit small = {1000, old.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto file = create(L"limited");
    ASSERT_NE(file, nullptr);
    EXPECT_FALSE(file->setLength(1001));
    EXPECT_FALSE(file->write(std::string(1001, 'x').data(), 1001));
    EXPECT_TRUE(file->write(std::string(600, 'x').data(), 600));
    EXPECT_FALSE(file->write(std::string(600, 'x').data(), 600));
    EXPECT_TRUE(file->setLength(1000));
    setrlimit(RLIMIT_FSIZE, &old);
}

TEST_F(OutputFiles, HaveNoLengthThatTheSystemCannotSay)
{
    const auto file = create(L"file");
    ASSERT_NE(file, nullptr);
    EXPECT_FALSE(file->setLength(UINT64_MAX));
}

TEST_F(OutputFiles, AreRegularFilesOnly)
{
    folder.makeFolder("folder");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(create(L"folder"), nullptr);
    EXPECT_EQ(create(L"pipe"), nullptr);
    // With a reader at its other end a pipe would open.
    const int reader = open((folder / "pipe").c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(create(L"pipe"), nullptr);
    close(reader);
    EXPECT_EQ(OutputFile::create(L"/dev/null"), nullptr);
    EXPECT_EQ(OutputFile::create(L""), nullptr);
    EXPECT_EQ(create(L"missing\\file"), nullptr);
}

TEST_F(OutputFiles, AreNotReachedThroughALink)
{
    folder.write("target", "untouched");
    fs::create_symlink(folder / "target", folder / "link");
    fs::create_symlink(folder / "new", folder / "dangling");
    EXPECT_EQ(create(L"link"), nullptr);
    EXPECT_EQ(create(L"dangling"), nullptr);
    EXPECT_EQ(readFile(folder / "target"), "untouched");
    EXPECT_FALSE(fs::exists(folder / "new"));
}

// --- many in one folder

class OutputFolders : public OutputFiles {
protected:
    std::unique_ptr<OutputFolder> open() const { return OutputFolder::open(folder.wide() + L"\\"); }
};

TEST_F(OutputFolders, MakeAndEmptyFiles)
{
    folder.write("old", "long content");
    const auto target = open();
    ASSERT_NE(target, nullptr);
    ASSERT_NE(target->create(L"old"), nullptr);
    const auto file = target->create(L"new");
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(file->write("abc", 3));
    EXPECT_EQ(readFile(folder / "old"), "");
    EXPECT_EQ(readFile(folder / "new"), "abc");
}

TEST_F(OutputFolders, FindFilesWithoutCaseThatWereThereOrThatTheyMade)
{
    folder.write("Old", "long content");
    folder.write("OLD", "long content");
    folder.write("exacT", "long content");
    folder.write("Exact", "long content");
    const auto target = open();
    ASSERT_NE(target->create(L"old"), nullptr);
    ASSERT_NE(target->create(L"exacT"), nullptr);
    ASSERT_NE(target->create(L"New\u00C9"), nullptr);
    const auto again = target->create(L"NEW\u00E9");
    ASSERT_NE(again, nullptr);
    EXPECT_TRUE(again->write("new", 3));
    EXPECT_EQ(fs::file_size(folder / "OLD"), 0u);  // The first in byte order.
    EXPECT_EQ(fs::file_size(folder / "Old"), 12u);
    EXPECT_EQ(fs::file_size(folder / "exacT"), 0u);
    EXPECT_EQ(fs::file_size(folder / "Exact"), 12u);
    EXPECT_EQ(readFile(folder / "New\xC3\x89"), "new");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 5);
}

TEST_F(OutputFolders, StayTheFolderThatWasOpened)
{
    folder.makeFolder("before");
    const auto target = OutputFolder::open(folder.wide() + L"\\BEFORE");
    ASSERT_NE(target, nullptr);
    fs::rename(folder / "before", folder / "after");
    EXPECT_NE(target->create(L"file"), nullptr);
    EXPECT_TRUE(fs::exists(folder / "after/file"));
}

TEST_F(OutputFolders, MakeRegularFilesOfSingleNamesOnly)
{
    folder.makeFolder("folder");
    folder.write("target", "untouched");
    fs::create_symlink(folder / "target", folder / "link");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    const auto target = open();
    for (const std::wstring& name :
         {std::wstring(), std::wstring(L"."), std::wstring(L".."), std::wstring(L"folder/a"),
          std::wstring(L"folder\\a"), std::wstring(L"a\0b", 3), std::wstring(L"folder"),
          std::wstring(L"link"), std::wstring(L"LINK"), std::wstring(L"pipe"), std::wstring(300, L'n')})
        EXPECT_EQ(target->create(name), nullptr) << platform::toUtf8(name);
    EXPECT_EQ(readFile(folder / "target"), "untouched");
    EXPECT_TRUE(fs::is_empty(folder / "folder"));
}

TEST_F(OutputFolders, AreFoldersOnly)
{
    folder.write("file", "");
    EXPECT_EQ(OutputFolder::open(folder.wide() + L"\\file"), nullptr);
    EXPECT_EQ(OutputFolder::open(folder.wide() + L"\\missing"), nullptr);
}

TEST_F(OutputFiles, HaveALengthWhenTheyAreRegular)
{
    folder.write("file", "abc");
    folder.makeFolder("folder");
    fs::create_symlink(folder / "file", folder / "link");
    EXPECT_EQ(fileLength(folder.wide() + L"\\file"), 3u);
    EXPECT_EQ(fileLength(folder.wide() + L"\\link"), 3u);
    EXPECT_EQ(fileLength(folder.wide() + L"\\folder"), std::nullopt);
    EXPECT_EQ(fileLength(folder.wide() + L"\\missing"), std::nullopt);
    EXPECT_EQ(fileLength(L"/dev/null"), std::nullopt);
    EXPECT_EQ(fileLength(L""), std::nullopt);
}

}  // namespace
