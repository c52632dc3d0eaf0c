#include "raylume/platform/Files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "tests/platform/TemporaryFolder.h"

using platform::InputFile;
using platform::MakeFolder;
using platform::MappedFile;
using platform::PathKind;

namespace {

class Files : public testing::Test {
protected:
    std::wstring wide(const std::wstring& name) const { return folder_.wide() + L"\\" + name; }

    TemporaryFolder folder_;
};

TEST_F(Files, PathsHaveAKind)
{
    folder_.makeFolder("Folder");
    folder_.write("File.txt", "x");
    EXPECT_EQ(platform::pathKind(wide(L"Folder")), PathKind::kFolder);
    EXPECT_EQ(platform::pathKind(wide(L"folder\\")), PathKind::kFolder);
    EXPECT_EQ(platform::pathKind(wide(L"FILE.TXT")), PathKind::kFile);
    EXPECT_EQ(platform::pathKind(wide(L"Other")), PathKind::kNothing);
    EXPECT_EQ(platform::pathKind(wide(L"File.txt\\below")), PathKind::kNothing);
    EXPECT_EQ(platform::pathKind(L""), PathKind::kNothing);
}

TEST_F(Files, WhatIsNoFolderCountsAsAFile)
{
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(platform::pathKind(wide(L"pipe")), PathKind::kFile);
    EXPECT_EQ(platform::pathKind(L"/dev/null"), PathKind::kFile);
}

TEST_F(Files, LinksCountAsWhatTheyLeadTo)
{
    folder_.makeFolder("Folder");
    std::filesystem::create_symlink("Folder", folder_ / "Link");
    std::filesystem::create_symlink("nowhere", folder_ / "Dangling");
    EXPECT_EQ(platform::pathKind(wide(L"Link")), PathKind::kFolder);
    EXPECT_EQ(platform::pathKind(wide(L"Dangling")), PathKind::kNothing);
}

TEST_F(Files, FoldersAreMadeOneAtATime)
{
    EXPECT_EQ(platform::makeFolder(wide(L"A\\")), MakeFolder::kMade);
    EXPECT_TRUE(std::filesystem::is_directory(folder_ / "A"));
    EXPECT_EQ(platform::makeFolder(wide(L"A\\")), MakeFolder::kExists);
    EXPECT_EQ(platform::makeFolder(wide(L"a")), MakeFolder::kExists);
    EXPECT_EQ(platform::makeFolder(wide(L"B\\C")), MakeFolder::kFailed);
    EXPECT_FALSE(std::filesystem::exists(folder_ / "B"));
    EXPECT_EQ(platform::makeFolder(L""), MakeFolder::kFailed);
}

TEST_F(Files, AFileInTheWayOfAFolderExists)
{
    folder_.write("File", "");
    EXPECT_EQ(platform::makeFolder(wide(L"File")), MakeFolder::kExists);
    EXPECT_EQ(platform::makeFolder(wide(L"File\\")), MakeFolder::kExists);
    EXPECT_EQ(platform::makeFolder(wide(L"File\\Below")), MakeFolder::kFailed);
}

TEST_F(Files, NewFoldersAreForTheUserAlone)
{
    platform::makeFolder(wide(L"Own"));
    struct stat status;
    ASSERT_EQ(stat((folder_ / "Own").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 077, 0u);
}

TEST_F(Files, AreReadInPieces)
{
    folder_.write("File.bin", std::string("ab\0cd", 5));
    const auto file = InputFile::open(wide(L"file.BIN"));
    ASSERT_NE(file, nullptr);
    char buffer[8] = {};
    EXPECT_EQ(file->read(buffer, 3), 3u);
    EXPECT_EQ(std::memcmp(buffer, "ab\0", 3), 0);
    EXPECT_EQ(file->read(buffer, sizeof buffer), 2u);
    EXPECT_EQ(std::memcmp(buffer, "cd", 2), 0);
    EXPECT_EQ(file->read(buffer, sizeof buffer), 0u);
    EXPECT_EQ(file->read(buffer, 0), 0u);
}

TEST_F(Files, AreMappedWhole)
{
    const std::string bytes = std::string(100000, 'x') + "end";
    folder_.write("File.bin", bytes);
    const auto file = MappedFile::open(wide(L"File.bin"));
    ASSERT_NE(file, nullptr);
    ASSERT_EQ(file->size(), bytes.size());
    EXPECT_EQ(std::memcmp(file->data(), bytes.data(), bytes.size()), 0);
}

TEST_F(Files, MapTheEmptyOne)
{
    folder_.write("Empty", "");
    const auto file = MappedFile::open(wide(L"Empty"));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->size(), 0u);
    EXPECT_NE(file->data(), nullptr);
}

TEST_F(Files, StayMappedAfterTheyAreGone)
{
    folder_.write("File", "abc");
    const auto file = MappedFile::open(wide(L"File"));
    ASSERT_NE(file, nullptr);
    std::filesystem::remove(folder_ / "File");
    EXPECT_EQ(file->data()[2], 'c');
}

struct RefusedCase {
    const char* name;
    const wchar_t* below;
};

const RefusedCase kRefusedCases[] = {
    {"missing", L"\\missing"},  {"a_folder", L"\\folder"},      {"a_pipe", L"\\pipe"},
    {"the_folder_itself", L""}, {"below_a_file", L"\\file\\x"}, {"a_link_to_a_device", L"\\null"},
};

class Refused : public testing::TestWithParam<RefusedCase> {};

// A pipe that blocked would hold this test until its time runs out.
TEST_P(Refused, DoesNotOpen)
{
    const TemporaryFolder folder;
    folder.makeFolder("folder");
    folder.write("file", "x");
    std::filesystem::create_symlink("/dev/null", folder / "null");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(InputFile::open(folder.wide() + GetParam().below), nullptr);
    EXPECT_EQ(MappedFile::open(folder.wide() + GetParam().below), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Rows, Refused, testing::ValuesIn(kRefusedCases),
                         [](const auto& row) { return row.param.name; });

TEST(NoName, DoesNotOpen)
{
    EXPECT_EQ(InputFile::open(L""), nullptr);
    EXPECT_EQ(MappedFile::open(L""), nullptr);
}

TEST_F(Files, AreClosedAgain)
{
    folder_.write("File", "x");
    const auto openFiles = [] {
        const std::filesystem::directory_iterator all("/proc/self/fd");
        return std::distance(begin(all), end(all));
    };
    const auto before = openFiles();
    for (int i = 0; i < 10; ++i) {
        InputFile::open(wide(L"File"));
        InputFile::open(folder_.wide());
        MappedFile::open(wide(L"File"));
    }
    EXPECT_EQ(openFiles(), before);
}

}  // namespace
