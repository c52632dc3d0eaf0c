#include "tools/OutputFile.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "Folder.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using tool_test::Folder;
using tool_test::readFile;
using tool_test::writeFile;

void writeHello(std::ostream& out)
{
    out << "hello";
}

TEST(WriteWhole, MakesAFile)
{
    const Folder folder;
    tool::writeWhole(folder / "new.glb", writeHello);
    EXPECT_EQ(readFile(folder / "new.glb"), "hello");
    EXPECT_THAT(folder.entries(), ElementsAre("new.glb"));
}

TEST(WriteWhole, TakesTheLongestNames)
{
    const Folder folder;
    const std::string name(255, 'n');
    tool::writeWhole(folder / name, writeHello);
    EXPECT_THAT(folder.entries(), ElementsAre(name));
}

TEST(WriteWhole, ReplacesAFileAndKeepsItsPermissions)
{
    const Folder folder;
    writeFile(folder / "old.glb", "a longer text than the new one");
    fs::permissions(folder / "old.glb", fs::perms::owner_read | fs::perms::owner_write);
    tool::writeWhole(folder / "old.glb", writeHello);
    EXPECT_EQ(readFile(folder / "old.glb"), "hello");
    EXPECT_EQ(fs::status(folder / "old.glb").permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(WriteWhole, ReplacesWhatALinkPointsAt)
{
    const Folder folder;
    writeFile(folder / "target.glb", "old");
    fs::create_symlink("target.glb", folder / "link.glb");
    tool::writeWhole(folder / "link.glb", writeHello);
    EXPECT_TRUE(fs::is_symlink(folder / "link.glb"));
    EXPECT_EQ(readFile(folder / "target.glb"), "hello");
}

TEST(WriteWhole, LeavesTheOldFileWhenWritingRaises)
{
    const Folder folder;
    writeFile(folder / "old.glb", "old");
    EXPECT_THROW(tool::writeWhole(folder / "old.glb",
                                  [](std::ostream& out) {
                                      out << "half";
                                      throw std::runtime_error("stopped");
                                  }),
                 std::runtime_error);
    EXPECT_EQ(readFile(folder / "old.glb"), "old");
    EXPECT_THAT(folder.entries(), ElementsAre("old.glb"));
}

TEST(WriteWhole, LeavesNothingWhenTheStreamFails)
{
    const Folder folder;
    EXPECT_THROW(
        tool::writeWhole(folder / "new.glb", [](std::ostream& out) { out.setstate(std::ios::badbit); }),
        std::runtime_error);
    EXPECT_THAT(folder.entries(), IsEmpty());
}

TEST(WhyNotWritable, TellsWhatStandsInTheWay)
{
    const Folder folder;
    writeFile(folder / "file", "");
    EXPECT_EQ(tool::whyNotWritable(folder / "new.glb"), "");
    EXPECT_EQ(tool::whyNotWritable(folder / "file"), "");
    EXPECT_EQ(tool::whyNotWritable("relative.glb"), "");
    EXPECT_EQ(tool::whyNotWritable(folder.path()), "it is a folder");
    EXPECT_EQ(tool::whyNotWritable(folder / "gone/new.glb"), "there is no folder for it");
    EXPECT_EQ(tool::whyNotWritable(folder / "file/new.glb"), "there is no folder for it");
    EXPECT_EQ(tool::whyNotWritable("/dev/null"), "it is no regular file");
    EXPECT_EQ(tool::whyNotWritable(""), "it names no file");
}

}  // namespace
