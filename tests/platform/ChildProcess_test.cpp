#include "raylume/platform/ChildProcess.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <link.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "TemporaryFolder.h"
#include "raylume/platform/Reference.h"
#include "raylume/platform/WorkerProcess.h"

namespace {

using platform::AnonymousFile;
using platform::ChildProcess;
using Heard = ChildProcess::Heard;

class Child : public testing::Test {
protected:
    // A shell script: 3 is the pipe and 4 the file.
    std::unique_ptr<ChildProcess> start(const std::string& body,
                                        const std::vector<std::string>& arguments = {})
    {
        const std::string path = folder_.write("program", "#!/bin/sh\n" + body + "\n");
        chmod(path.c_str(), 0755);
        return ChildProcess::start(platform::fromUtf8(path), arguments, {}, *file_);
    }
    static std::string hearAll(ChildProcess& child)
    {
        std::string text;
        for (int i = 0; i < 1000 && child.listen(20, text) != Heard::kEnd; ++i) {
        }
        return text;
    }

    TemporaryFolder folder_;
    std::unique_ptr<AnonymousFile> file_ = AnonymousFile::create();
};

TEST_F(Child, IsHeardUntilItEnds)
{
    const auto child = start("echo one >&3; echo two >&3; exit 7");
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(hearAll(*child), "one\ntwo\n");
    const auto end = child->end();
    ASSERT_TRUE(end);
    EXPECT_FALSE(end->bySignal);
    EXPECT_EQ(end->number, 7);
    EXPECT_EQ(child->end()->number, 7);
}

TEST_F(Child, GetsItsArgumentsAsTheyAre)
{
    const auto child =
        start("for text; do echo \"<$text>\" >&3; done", {"a b", "", "$HOME", "\xC3\xA9'\""});
    EXPECT_EQ(hearAll(*child), "<a b>\n<>\n<$HOME>\n<\xC3\xA9'\">\n");
}

TEST_F(Child, WritesToTheFile)
{
    const auto child = start("echo text >&4");
    hearAll(*child);
    EXPECT_EQ(file_->size(), 5u);
}

TEST_F(Child, TellsTheSignalThatEndedIt)
{
    const auto child = start("kill -TERM $$");
    hearAll(*child);
    const auto end = child->end();
    ASSERT_TRUE(end);
    EXPECT_TRUE(end->bySignal);
    EXPECT_EQ(end->number, SIGTERM);
}

TEST_F(Child, HasAGroupOfItsOwn)
{
    // Behind the name stand state, parent and group.
    const auto child = start("read -r number rest < /proc/self/stat; set -- $rest; echo $$ $4 >&3");
    std::string text = hearAll(*child);
    const std::size_t blank = text.find(' ');
    ASSERT_NE(blank, std::string::npos);
    EXPECT_EQ(std::stoi(text), std::stoi(text.substr(blank)));
    EXPECT_NE(std::stoi(text.substr(blank)), getpgrp());
}

TEST_F(Child, IsListenedToNoLongerThanAsked)
{
    const auto child = start("sleep 60");
    std::string text;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(child->listen(30, text), Heard::kNothing);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

TEST_F(Child, EndsWhenItIsKilled)
{
    const auto child = start("exec sleep 60");
    child->kill();
    EXPECT_EQ(hearAll(*child), "");
    const auto end = child->end();
    ASSERT_TRUE(end);
    EXPECT_EQ(end->number, SIGKILL);
}

TEST_F(Child, EndsWithTheObject)
{
    auto child = start("echo $$ >&3; exec sleep 60");
    std::string text;
    while (text.find('\n') == std::string::npos)
        child->listen(20, text);
    child.reset();
    EXPECT_EQ(kill(std::stoi(text), 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

TEST_F(Child, IsKilledAndHeardWhereAHostIgnoresItsChildren)
{
    signal(SIGCHLD, SIG_IGN);
    const auto quick = start("echo word >&3");
    EXPECT_EQ(hearAll(*quick), "word\n");
    EXPECT_FALSE(quick->end());
    quick->kill();
    const auto slow = start("exec sleep 60");
    slow->kill();
    hearAll(*slow);
    EXPECT_FALSE(slow->end());
    signal(SIGCHLD, SIG_DFL);
}

TEST_F(Child, MayBeWaitedForByTheHostItself)
{
    const auto child = start("exit 3");
    hearAll(*child);
    EXPECT_GT(waitpid(-1, nullptr, 0), 0);
    EXPECT_FALSE(child->end());
    child->kill();
}

TEST_F(Child, IsNullForAProgramThatIsNone)
{
    EXPECT_EQ(ChildProcess::start(folder_.wide() + L"/missing", {}, {}, *file_), nullptr);
    EXPECT_EQ(ChildProcess::start(folder_.wide(), {}, {}, *file_), nullptr);
    EXPECT_FALSE(platform::isProgram(folder_.wide() + L"/missing"));
    EXPECT_FALSE(platform::isProgram(folder_.wide()));
    EXPECT_TRUE(platform::isProgram(L"/bin/sh"));
}

// The folder of relative paths, as long as this lives.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::filesystem::path& path) { std::filesystem::current_path(path); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;
    ~CurrentFolder() { std::filesystem::current_path(before_); }

private:
    std::filesystem::path before_ = std::filesystem::current_path();
};

TEST_F(Child, IsNotLookedForInTheCurrentFolder)
{
    start("exit 0");
    const CurrentFolder there(folder_.path());
    ASSERT_TRUE(std::filesystem::exists("program"));
    EXPECT_EQ(ChildProcess::start(L"program", {}, {}, *file_), nullptr);
    EXPECT_EQ(ChildProcess::start(L"./program", {}, {}, *file_), nullptr);
    EXPECT_EQ(ChildProcess::start(L"", {}, {}, *file_), nullptr);
}

TEST(FolderOfCode, IsAbsoluteForALibraryThatWasLoadedByARelativeName)
{
    void* const original = dlopen("libm.so.6", RTLD_NOW);
    ASSERT_NE(original, nullptr);
    const TemporaryFolder folder;
    const std::string below = folder.makeFolder("a b\nc");
    std::filesystem::copy_file(std::filesystem::canonical(static_cast<link_map*>(original)->l_name),
                               below + "/copy.so");
    void* copy = nullptr;
    {
        const CurrentFolder there(below);
        copy = dlopen("./copy.so", RTLD_NOW | RTLD_LOCAL);
    }
    ASSERT_NE(copy, nullptr);
    const void* const address = static_cast<link_map*>(copy)->l_ld;
    EXPECT_EQ(platform::toUtf8(platform::folderOfCode(address)),
              std::filesystem::canonical(below).string() + "/");
    dlclose(copy);
    dlclose(original);
}

TEST(FolderOfCode, IsThatOfTheLibraryOrTheProgram)
{
    const auto library = platform::folderOfCode(reinterpret_cast<const void*>(&platform::isProgram));
    EXPECT_THAT(platform::toUtf8(library), testing::EndsWith("/"));
    EXPECT_TRUE(std::filesystem::exists(platform::toUtf8(library) + "libraylume_platform.so"));
    EXPECT_EQ(platform::folderOfCode(nullptr), L"");
}

std::string textOf(const platform::MappedFile& file)
{
    return {reinterpret_cast<const char*>(file.data()), file.size()};
}

TEST(AnonymousFile, CanBeChangedByNobodyOnceItIsSealed)
{
    auto file = AnonymousFile::create();
    const int other = dup(file->number());
    ASSERT_EQ(write(other, "text", 4), 4);
    auto mapped = file->sealAndMap();
    ASSERT_NE(mapped, nullptr);
    EXPECT_EQ(write(other, "more", 4), -1);
    EXPECT_EQ(pwrite(other, "T", 1, 0), -1);
    EXPECT_EQ(ftruncate(other, 1), -1);
    EXPECT_EQ(mmap(nullptr, 4, PROT_READ | PROT_WRITE, MAP_SHARED, other, 0), MAP_FAILED);
    close(other);
    file.reset();
    EXPECT_EQ(textOf(*mapped), "text");
}

TEST(AnonymousFile, IsNotMappedWhileSomebodyMayWriteToItsMemory)
{
    const auto file = AnonymousFile::create();
    ASSERT_EQ(ftruncate(file->number(), 4096), 0);
    void* memory = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, file->number(), 0);
    ASSERT_NE(memory, MAP_FAILED);
    EXPECT_EQ(file->sealAndMap(), nullptr);
    munmap(memory, 4096);
    EXPECT_NE(file->sealAndMap(), nullptr);
}

TEST(AnonymousFile, IsTakenOverOnlyFromAHandleThatCanBeWritten)
{
    const auto file = AnonymousFile::create();
    const auto inherited = AnonymousFile::inherited(dup(file->number()));
    ASSERT_NE(inherited, nullptr);
    EXPECT_NE(fcntl(inherited->number(), F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_EQ(AnonymousFile::inherited(-1), nullptr);
    const int readOnly = open("/proc/self/status", O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(AnonymousFile::inherited(readOnly), nullptr);
    close(readOnly);
    const int device = open("/dev/null", O_RDWR | O_CLOEXEC);
    EXPECT_EQ(AnonymousFile::inherited(device), nullptr);
    close(device);
}

TEST(AnonymousFile, HoldsACompoundFile)
{
    const auto file = AnonymousFile::create();
    const std::string bytes(1000000, 'x');
    {
        platform::Reference<IStorage> root;
        ASSERT_EQ(file->createCompound(root.out()), kStorageOk);
        platform::Reference<IStream> stream;
        ASSERT_EQ(root->CreateStream(L"Stream", kModeReadWrite + kModeExclusive, stream.out()), kStorageOk);
        ASSERT_EQ(stream->Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()), nullptr),
                  kStorageOk);
        ASSERT_EQ(root->Commit(0), kStorageOk);
    }
    const std::wstring path = L"/proc/self/fd/" + std::to_wstring(file->number());
    platform::Reference<IStorage> read;
    ASSERT_EQ(platform::openCompoundFile(path, false, read.out()), kStorageOk);
    platform::Reference<IStream> stream;
    ASSERT_EQ(read->OpenStream(L"Stream", kModeRead + kModeExclusive, stream.out()), kStorageOk);
    std::string back(bytes.size() + 1, '\0');
    std::uint32_t count = 0;
    ASSERT_EQ(stream->Read(back.data(), static_cast<std::uint32_t>(back.size()), &count), kStorageOk);
    back.resize(count);
    EXPECT_EQ(back, bytes);
    EXPECT_EQ(file->createCompound(nullptr), kStorageInvalidPointer);
}

// Runs `work` in a process that is a worker on a pipe; gives what it wrote and how it ended.
template <class Work>
std::pair<std::string, int> asWorker(Work work)
{
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    const pid_t worker = fork();
    if (worker == 0) {
        close(ends[0]);
        work(ends[1]);
        _exit(0);
    }
    close(ends[1]);
    std::string text;
    char buffer[256];
    for (ssize_t count; (count = read(ends[0], buffer, sizeof(buffer))) > 0;)
        text.append(buffer, static_cast<std::size_t>(count));
    close(ends[0]);
    int status = 0;
    waitpid(worker, &status, 0);
    return {text, status};
}

TEST(WorkerProcess, AnnouncesItsCrash)
{
    const auto [text, status] = asWorker([](int pipe) {
        platform::announceCrashes(pipe, "crashed");
        raise(SIGFPE);
    });
    EXPECT_EQ(text, "crashed 8\n");
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGFPE);
}

TEST(WorkerProcess, AnnouncesTheEndOfItsProcessorTime)
{
    const auto [text, status] = asWorker([](int pipe) {
        platform::announceCrashes(pipe, "crashed");
        platform::limitThisProcess({1, 0, 0});
        volatile bool goesOn = true;
        while (goesOn) {
        }
    });
    EXPECT_EQ(text, "crashed 24\n");
    EXPECT_TRUE(WIFSIGNALED(status));
}

TEST(WorkerProcess, StaysWithinTheLimitsOfItsHost)
{
    const auto [text, status] = asWorker([](int pipe) {
        const rlimit hosts = {1000, 1 << 20};
        setrlimit(RLIMIT_FSIZE, &hosts);
        setrlimit(RLIMIT_CPU, &hosts);
        platform::limitThisProcess({500, 0, 4096});
        rlimit file = {};
        rlimit processor = {};
        getrlimit(RLIMIT_FSIZE, &file);
        getrlimit(RLIMIT_CPU, &processor);
        platform::writeToPipe(pipe, std::to_string(file.rlim_cur) + " " + std::to_string(file.rlim_max) +
                                        " " + std::to_string(processor.rlim_cur) + " " +
                                        std::to_string(processor.rlim_max));
    });
    EXPECT_EQ(text, "1000 4096 500 502");
    EXPECT_EQ(status, 0);
}

TEST(WorkerProcess, FailsToWriteFilesPastItsLimitWithoutASignal)
{
    const auto [text, status] = asWorker([](int pipe) {
        platform::limitThisProcess({0, 0, 4096});
        const int file = memfd_create("test", 0);
        const std::string bytes(8192, 'x');
        const ssize_t first = write(file, bytes.data(), bytes.size());
        const ssize_t second = write(file, bytes.data(), bytes.size());
        platform::writeToPipe(pipe, std::to_string(first) + " " + std::to_string(second));
    });
    EXPECT_EQ(text, "4096 -1");
    EXPECT_EQ(status, 0);
}

TEST(WorkerProcess, EndsWithItsPipe)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t worker = fork();
    if (worker == 0) {
        close(ends[0]);
        platform::endWithPipe(ends[1]);
        platform::writeToPipe(ends[1], "x");
        for (;;)
            pause();
    }
    close(ends[1]);
    char byte = 0;
    ASSERT_EQ(read(ends[0], &byte, 1), 1);
    // It outlives several looks at the pipe as long as that is held.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(waitpid(worker, nullptr, WNOHANG), 0);
    close(ends[0]);
    int status = 0;
    for (int i = 0; i < 300 && waitpid(worker, &status, WNOHANG) == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), EXIT_FAILURE);
    EXPECT_EQ(kill(worker, 0), -1);
}

}  // namespace
