// What saving does to the file and to its neighbourhood.
#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <optional>

#include "CompoundFileTools.h"
#include "RawCompoundFile.h"
#include "TemporaryFolder.h"

namespace {

using namespace compound_tests;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

class Saving : public testing::Test {
protected:
    Saving() { put(*createFile(path).get(), L"Data", "old"); }

    std::vector<std::string> names() const
    {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            found.push_back(entry.path().filename());
        return found;
    }

    ino_t inode(const std::string& file) const
    {
        struct stat status = {};
        EXPECT_EQ(stat(file.c_str(), &status), 0);
        return status.st_ino;
    }

    mode_t mode(const std::string& file) const
    {
        struct stat status = {};
        EXPECT_EQ(stat(file.c_str(), &status), 0);
        return status.st_mode & 07777;
    }

    std::string data(const std::string& file) const { return bytesOf(*openFile(file).get(), L"Data"); }

    const TemporaryFolder folder;
    const std::string path = folder / "a.doc";
};

TEST_F(Saving, HappensAtCommitOnAnyWritableStorage)
{
    const Storage root = openFile(path, true);
    const Storage inner = createIn(*root.get(), L"Inner");
    Stream open;
    ASSERT_RESULT(0, inner->CreateStream(L"Open", kWriting, open.out()));
    ASSERT_RESULT(0, open->Write("unreleased", 10, nullptr));
    EXPECT_EQ(bytesOf(*openFile(path).get(), L"Inner"), "no stream");
    EXPECT_RESULT(0, inner->Commit(0));
    EXPECT_EQ(bytesOf(*openIn(*openFile(path).get(), L"Inner").get(), L"Open"), "unreleased");
    ASSERT_RESULT(0, open->Write(" more", 5, nullptr));
    EXPECT_RESULT(0, root->Commit(0));
    EXPECT_EQ(bytesOf(*openIn(*openFile(path).get(), L"Inner").get(), L"Open"), "unreleased more");
}

TEST_F(Saving, HappensAtTheLastReleaseAndNotBefore)
{
    Stream last;
    {
        const Storage root = openFile(path, true);
        ASSERT_RESULT(0, root->OpenStream(L"Data", kWriting, last.out()));
        ASSERT_RESULT(0, last->Write("new", 3, nullptr));
    }
    EXPECT_EQ(data(path), "old");
    last.reset();
    EXPECT_EQ(data(path), "new");
}

TEST_F(Saving, IsNotAskedForThroughAViewForReading)
{
    const Storage root = openFile(path, true);
    createIn(*root.get(), L"Inner");
    const Storage reading = openIn(*root.get(), L"Inner");
    EXPECT_RESULT(0, reading->Commit(0));
    EXPECT_RESULT(0x80030002, openFile(path)->OpenStorage(L"Inner", kReading, Storage().out()));
}

TEST_F(Saving, WritesNothingWhenNothingWasEdited)
{
    const ino_t before = inode(path);
    {
        const Storage root = openFile(path, true);
        EXPECT_EQ(bytesOf(*root.get(), L"Data"), "old");
        EXPECT_RESULT(0, root->Commit(0));
    }
    EXPECT_EQ(inode(path), before);
}

TEST_F(Saving, MakesANewFileAndLeavesNoOther)
{
    const ino_t before = inode(path);
    put(*openFile(path, true).get(), L"New", "new");
    EXPECT_NE(inode(path), before);
    EXPECT_THAT(names(), ElementsAre("a.doc"));
}

TEST_F(Saving, DoesNotDisturbWhoReadsTheOldFile)
{
    put(*openFile(path, true).get(), L"Large", pattern(100000));
    const Storage reader = openFile(path);
    Stream large;
    ASSERT_RESULT(0, reader->OpenStream(L"Large", kReading, large.out()));
    const Storage writer = openFile(path, true);
    ASSERT_RESULT(0, writer->DestroyElement(L"Large"));
    ASSERT_RESULT(0, writer->Commit(0));
    EXPECT_TRUE(readAll(*large.get()) == pattern(100000));
    EXPECT_EQ(bytesOf(*reader.get(), L"Data"), "old");
}

TEST_F(Saving, GoesOnAfterwards)
{
    const Storage root = openFile(path, true);
    for (const char* text : {"first", "second", "third"}) {
        Stream stream;
        ASSERT_RESULT(0, root->CreateStream(L"Data", kWriting + kModeCreate, stream.out()));
        ASSERT_RESULT(0, stream->Write(text, 5, nullptr));
        ASSERT_RESULT(0, root->Commit(0));
        EXPECT_EQ(data(path), std::string(text, 5));
    }
}

TEST_F(Saving, KeepsThePermissionsOfTheFile)
{
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    put(*openFile(path, true).get(), L"New", "new");
    EXPECT_EQ(mode(path), 0640u);
}

TEST_F(Saving, GivesANewFileWhatTheProcessGives)
{
    const mode_t before = umask(027);
    createFile(folder / "b.doc");
    umask(before);
    EXPECT_EQ(mode(folder / "b.doc"), 0640u);
}

TEST_F(Saving, ReplacesTheFileThatALinkLeadsTo)
{
    folder.makeFolder("far");
    std::filesystem::rename(path, folder / "far/real.doc");
    std::filesystem::create_symlink("far/real.doc", folder / "near.doc");
    std::filesystem::create_symlink("near.doc", path);
    {
        const Storage root = openFile(path, true);
        put(*root.get(), L"New", "new");
    }
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "near.doc"));
    EXPECT_EQ(bytesOf(*openFile(folder / "far/real.doc").get(), L"New"), "new");
    EXPECT_THAT(names(), UnorderedElementsAre("a.doc", "near.doc", "far"));
    {
        const Storage root = createFile(path, true);
        put(*root.get(), L"Data", "replaced");
    }
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_EQ(data(folder / "far/real.doc"), "replaced");
}

TEST_F(Saving, GoesWhereTheFileWasWhenTheWorkingFolderChanges)
{
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    {
        const Storage root = openFile("a.doc", true);
        put(*root.get(), L"New", "new");
        const Storage made = createFile("b.doc");
        put(*made.get(), L"New", "new");
        std::filesystem::current_path(before);
    }
    EXPECT_EQ(bytesOf(*openFile(path).get(), L"New"), "new");
    EXPECT_EQ(bytesOf(*openFile(folder / "b.doc").get(), L"New"), "new");
    EXPECT_FALSE(std::filesystem::exists("b.doc"));
}

TEST_F(Saving, MakesTheFileThatALinkLeadsToNothingFor)
{
    folder.makeFolder("far");
    std::filesystem::create_symlink("far/real.doc", folder / "near.doc");
    std::filesystem::create_symlink("near.doc", folder / "nearer.doc");
    put(*createFile(folder / "nearer.doc").get(), L"Data", "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "nearer.doc"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "near.doc"));
    EXPECT_EQ(data(folder / "far/real.doc"), "new");
}

// Failures: the result of Commit, the old file, and no trace.

class FailingSave : public Saving {
protected:
    void expectOld()
    {
        EXPECT_EQ(data(path), "old");
        EXPECT_THAT(names(), ElementsAre("a.doc"));
    }
};

/// Limits the size of files while it lives. The signal keeps its default, which ends the process.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size)
    {
        getrlimit(RLIMIT_FSIZE, &before_);
        const struct rlimit limit = {size, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before_); }

private:
    struct rlimit before_;
};

class FullDisk : public FailingSave, public testing::WithParamInterface<std::size_t> {};

TEST_P(FullDisk, LeavesTheOldFileAndTheEdits)
{
    {
        const Storage root = openFile(path, true);
        put(*root.get(), L"Large", pattern(200000));
        put(*root.get(), L"Small", pattern(100));
        {
            const FileSizeLimit limit(GetParam());
            EXPECT_RESULT(0x80030070, root->Commit(0));
            expectOld();
            EXPECT_RESULT(0x80030070, root->Commit(0));
        }
        EXPECT_RESULT(0, root->Commit(0));
    }
    EXPECT_TRUE(bytesOf(*openFile(path).get(), L"Large") == pattern(200000));
}

TEST_P(FullDisk, AtTheLastReleaseLeavesTheOldFile)
{
    const FileSizeLimit limit(GetParam());
    put(*openFile(path, true).get(), L"Large", pattern(200000));
    expectOld();
}

INSTANTIATE_TEST_SUITE_P(AtBytes, FullDisk,
                         testing::Values(0, 1, 511, 512, 513, 4096, 100000, 200000, 202000, 203000));

TEST_F(FailingSave, AtEveryLengthOfTheFileIsNoticed)
{
    std::size_t full = 0;
    {
        const Storage root = createFile(folder / "full");
        put(*root.get(), L"Data", "old");
        put(*root.get(), L"Large", pattern(5000));
        ASSERT_RESULT(0, root->Commit(0));
        full = readFile(folder / "full").size();
    }
    std::filesystem::remove(folder / "full");
    const Storage root = openFile(path, true);
    put(*root.get(), L"Large", pattern(5000));
    for (std::size_t size = 0; size < full; size += 64) {
        const FileSizeLimit limit(size);
        ASSERT_RESULT(0x80030070, root->Commit(0)) << size;
    }
    expectOld();
    EXPECT_RESULT(0, root->Commit(0));
    EXPECT_EQ(readFile(path).size(), full);
}

TEST_F(FailingSave, BecauseTheFolderIsGone)
{
    folder.makeFolder("sub");
    const std::string file = folder / "sub/b.doc";
    const Storage root = createFile(file);
    put(*root.get(), L"Data", "new");
    std::filesystem::remove_all(folder / "sub");
    EXPECT_RESULT(0x80030003, root->Commit(0));
    folder.makeFolder("sub");
    EXPECT_RESULT(0, root->Commit(0));
    EXPECT_EQ(data(file), "new");
}

TEST_F(FailingSave, BecauseAFolderHasTheName)
{
    const Storage root = openFile(path, true);
    put(*root.get(), L"New", "new");
    std::filesystem::remove(path);
    folder.makeFolder("a.doc/full");
    EXPECT_LT(root->Commit(0), 0);
    EXPECT_THAT(names(), ElementsAre("a.doc"));
}

/// Becomes a user without rights for as long as it lives, where the process is root.
class PlainUser {
public:
    PlainUser()
    {
        if (geteuid() == 0)
            changed_ = seteuid(65534) == 0;
    }
    ~PlainUser()
    {
        if (changed_ && seteuid(0) != 0)
            std::abort();
    }
    bool changed() const { return changed_; }

private:
    bool changed_ = false;
};

TEST_F(FailingSave, BecauseTheFolderIsWriteProtected)
{
    ASSERT_EQ(chmod(path.c_str(), 0666), 0);
    ASSERT_EQ(chmod(folder.path().c_str(), 0555), 0);
    {
        const PlainUser user;
        const Storage root = openFile(path, true);
        put(*root.get(), L"New", "new");
        EXPECT_RESULT(0x80030005, root->Commit(0));
        Storage made;
        EXPECT_RESULT(0x80030005,
                      platform::createCompoundFile(folder.wide() + L"/b.doc", false, made.out()));
    }
    expectOld();
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
}

TEST_F(FailingSave, BecauseTheFileIsWriteProtected)
{
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
    const PlainUser user;
    EXPECT_RESULT(0x80030005, platform::openCompoundFile(folder.wide() + L"/a.doc", true, Storage().out()));
    EXPECT_RESULT(0x80030005,
                  platform::createCompoundFile(folder.wide() + L"/a.doc", true, Storage().out()));
    EXPECT_EQ(data(path), "old");
}

TEST_F(FailingSave, BecauseAStreamThatNobodyTouchedIsDamaged)
{
    put(*openFile(path, true).get(), L"Large", pattern(10000));
    RawCompoundFile raw(readFile(path));
    raw.put32(raw.entry(u"Large") + 116, 0x00FFFFFF);
    folder.write("a.doc", raw.bytes);
    {
        const Storage root = openFile(path, true);
        EXPECT_EQ(bytesOf(*root.get(), L"Data"), "old");
        put(*root.get(), L"New", "new");
        EXPECT_RESULT(0x80030109, root->Commit(0));
    }
    EXPECT_TRUE(readFile(path) == raw.bytes);
    const Storage root = openFile(path, true);
    put(*root.get(), L"New", "new");
    EXPECT_RESULT(0, root->DestroyElement(L"Large"));
    EXPECT_RESULT(0, root->Commit(0));
    EXPECT_EQ(data(path), "old");
}

// What a rewrite keeps of the file besides names and bytes.

TEST_F(Saving, KeepsClassIdentifiers)
{
    {
        const Storage root = openFile(path, true);
        put(*createIn(*root.get(), L"Inner").get(), L"x", "x");
    }
    RawCompoundFile raw(readFile(path));
    const std::string rootId = "0123456789abcdef";
    const std::string innerId = "\xFF\x01zyxwvutsrqpon\xFE";
    raw.bytes.replace(raw.entry(u"Root Entry") + 80, 16, rootId);
    raw.bytes.replace(raw.entry(u"Inner") + 80, 16, innerId);
    folder.write("a.doc", raw.bytes);
    put(*openFile(path, true).get(), L"New", "new");
    const RawCompoundFile seen(readFile(path));
    EXPECT_EQ(seen.bytes.substr(seen.entry(u"Root Entry") + 80, 16), rootId);
    EXPECT_EQ(seen.bytes.substr(seen.entry(u"Inner") + 80, 16), innerId);
}

TEST_F(Saving, KeepsWhenAStorageWasChanged)
{
    {
        const Storage root = openFile(path, true);
        put(*createIn(*root.get(), L"Inner").get(), L"x", "x");
    }
    RawCompoundFile raw(readFile(path));
    const std::string stamp("\x80\x1C\x2B\x70\x96\x8D\xC0\x01", 8);
    raw.bytes.replace(raw.entry(u"Inner") + 108, 8, stamp);
    folder.write("a.doc", raw.bytes);
    put(*openFile(path, true).get(), L"New", "new");
    const RawCompoundFile seen(readFile(path));
    EXPECT_EQ(seen.bytes.substr(seen.entry(u"Inner") + 108, 8), stamp);
}

TEST_F(Saving, KeepsLargeSectors)
{
    folder.write("large.doc", largeSectorFile());
    const std::string file = folder / "large.doc";
    put(*openFile(file, true).get(), L"New", pattern(20000));
    EXPECT_EQ(readFile(file).substr(26, 2), std::string("\x04\0", 2));
    EXPECT_EQ(readFile(file).substr(30, 2), std::string("\x0C\0", 2));
    const Storage root = openFile(file);
    EXPECT_TRUE(bytesOf(*root.get(), L"New") == pattern(20000));
    EXPECT_TRUE(bytesOf(*root.get(), L"Large") == pattern(70000, 2));
    EXPECT_TRUE(bytesOf(*root.get(), L"Small") == pattern(100, 3));
}

TEST_F(Saving, KeepsEmptyStreamsAndStorages)
{
    {
        const Storage root = openFile(path, true);
        createIn(*root.get(), L"Inner");
        put(*root.get(), L"Empty", "");
    }
    put(*openFile(path, true).get(), L"New", "new");
    const Storage root = openFile(path);
    EXPECT_EQ(bytesOf(*root.get(), L"Empty"), "");
    EXPECT_RESULT(0, root->OpenStorage(L"Inner", kReading, Storage().out()));
}

}  // namespace
