// In which order a save reaches the disk, and what it leaves when it does not. The system's calls are
// replaced in the whole program.
#include <gmock/gmock.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "CompoundFileTools.h"
#include "TemporaryFolder.h"

namespace {

// What the library asks of the system, while a test records.
struct System {
    bool records = false;
    bool failsFlush = false;
    bool hidesOpenFiles = false;
    std::vector<std::string> calls;
};

System system_;

void note(const char* call)
{
    if (system_.records)
        system_.calls.emplace_back(call);
}

template <class Function>
Function* original(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool isFolder(int number)
{
    struct stat status = {};
    return fstat(number, &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

#define REPLACES_THE_SYSTEMS extern "C" __attribute__((visibility("default")))

REPLACES_THE_SYSTEMS int fsync(int number)
{
    note(isFolder(number) ? "fsync(folder)" : "fsync(file)");
    if (system_.failsFlush) {
        errno = EIO;
        return -1;
    }
    return original<int(int)>("fsync")(number);
}

REPLACES_THE_SYSTEMS int linkat(int oldFolder, const char* oldName, int newFolder, const char* newName,
                                int flags) noexcept
{
    note("linkat");
    return original<int(int, const char*, int, const char*, int)>("linkat")(oldFolder, oldName, newFolder,
                                                                            newName, flags);
}

REPLACES_THE_SYSTEMS int rename(const char* oldName, const char* newName) noexcept
{
    note("rename");
    return original<int(const char*, const char*)>("rename")(oldName, newName);
}

REPLACES_THE_SYSTEMS mode_t umask(mode_t mask) noexcept
{
    note("umask");
    return original<mode_t(mode_t)>("umask")(mask);
}

REPLACES_THE_SYSTEMS int access(const char* path, int mode) noexcept
{
    if (system_.hidesOpenFiles && std::string(path) == "/proc/self/fd") {
        errno = ENOENT;
        return -1;
    }
    return original<int(const char*, int)>("access")(path, mode);
}

namespace {

using namespace compound_tests;
using testing::ElementsAre;

class Flush : public testing::Test {
protected:
    Flush() { put(*createFile(path).get(), L"Data", "old"); }
    ~Flush() override { system_ = {}; }

    HResult commitNew(const std::string& file)
    {
        const Storage root = file == path ? openFile(file, true) : createFile(file);
        put(*root.get(), L"New", "new");
        system_.calls.clear();
        system_.records = true;
        const HResult result = root->Commit(0);
        system_.records = false;
        return result;
    }

    mode_t modeOf(const std::string& file) const
    {
        struct stat status = {};
        EXPECT_EQ(stat(file.c_str(), &status), 0);
        return status.st_mode & 07777;
    }

    std::ptrdiff_t fileCount() const
    {
        return std::distance(std::filesystem::directory_iterator(folder.path()),
                             std::filesystem::directory_iterator());
    }

    const TemporaryFolder folder;
    const std::string path = folder / "a.doc";
};

// A temporary folder in memory may not have files without a name; then the file has one from the start.
bool hasNamelessFiles(const std::string& folder)
{
    const int number = open(folder.c_str(), O_TMPFILE | O_RDWR, 0600);
    if (number >= 0)
        close(number);
    return number >= 0;
}

TEST_F(Flush, OfTheFileComesBeforeItsNamesAndThatOfTheFolderBehind)
{
    ASSERT_RESULT(0, commitNew(path));
    if (hasNamelessFiles(folder.path()))
        EXPECT_THAT(system_.calls, ElementsAre("fsync(file)", "linkat", "rename", "fsync(folder)"));
    else
        EXPECT_THAT(system_.calls, ElementsAre("fsync(file)", "rename", "fsync(folder)"));
    EXPECT_EQ(bytesOf(*openFile(path).get(), L"New"), "new");
}

TEST_F(Flush, OfAFileThatHadANameFromTheStartIsTheSame)
{
    system_.hidesOpenFiles = true;
    ASSERT_RESULT(0, commitNew(path));
    EXPECT_THAT(system_.calls, ElementsAre("fsync(file)", "rename", "fsync(folder)"));
    EXPECT_EQ(bytesOf(*openFile(path).get(), L"New"), "new");
    EXPECT_EQ(fileCount(), 1);
}

TEST_F(Flush, ThatFailsLeavesTheOldFileAndNoOther)
{
    for (const bool named : {false, true}) {
        system_.hidesOpenFiles = named;
        system_.failsFlush = true;
        const std::string before = readFile(path);
        const Storage root = openFile(path, true);
        put(*root.get(), L"New", "new");
        system_.calls.clear();
        system_.records = true;
        EXPECT_RESULT(0x8003001D, root->Commit(0));
        system_.records = false;
        EXPECT_THAT(system_.calls, ElementsAre("fsync(file)"));
        EXPECT_TRUE(readFile(path) == before);
        EXPECT_EQ(fileCount(), 1);
        system_.failsFlush = false;
        EXPECT_RESULT(0, root->Commit(0));
        EXPECT_EQ(bytesOf(*openFile(path).get(), L"New"), "new");
        ASSERT_RESULT(0, root->DestroyElement(L"New"));
        EXPECT_RESULT(0, root->Commit(0));
    }
}

// The mask belongs to all threads of a host, which may be making files just now.
TEST_F(Flush, OfANewFileLeavesTheProcessMaskAlone)
{
    const mode_t before = umask(027);
    for (const bool named : {false, true}) {
        system_.hidesOpenFiles = named;
        const std::string file = folder / (named ? "named.doc" : "nameless.doc");
        EXPECT_RESULT(0, commitNew(file));
        EXPECT_THAT(system_.calls, testing::Not(testing::Contains("umask")));
        EXPECT_EQ(modeOf(file), 0640u);
    }
    umask(before);
}

TEST_F(Flush, OfAFileInTheOldOnesPlaceGivesItsPermissions)
{
    for (const bool named : {false, true}) {
        system_.hidesOpenFiles = named;
        ASSERT_EQ(chmod(path.c_str(), 0604), 0);
        EXPECT_RESULT(0, commitNew(path));
        EXPECT_EQ(modeOf(path), 0604u);
        const Storage root = openFile(path, true);
        ASSERT_RESULT(0, root->DestroyElement(L"New"));
    }
}

}  // namespace
