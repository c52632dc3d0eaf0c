#include "raylume/platform/Folders.h"

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <span>

#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

using platform::IfTaken;
using platform::SaveFile;
using Names = std::vector<std::wstring>;

TEST(MatchingNames, BeginBehindADriveToo)
{
    const TemporaryFolder drives;
    drives.makeFolder("c:/Jobs");
    drives.write("c:/plain", "");
    const ScopedVariable variable("RAYLUME_DRIVES", drives.path());
    EXPECT_EQ(platform::matchingNames(L"c:j*"), Names{L"Jobs"});
    EXPECT_EQ(platform::matchingNames(L"C:\\PL?IN"), Names{L"plain"});
    EXPECT_EQ(platform::matchingNames(L"c:jobs"), Names{L"Jobs"});
    EXPECT_EQ(platform::matchingNames(L"c:"), Names());
}

class SavedFile : public testing::Test {
protected:
    SaveFile save(const std::wstring& name, const std::string& text, IfTaken ifTaken) const
    {
        const std::span bytes(reinterpret_cast<const unsigned char*>(text.data()), text.size());
        const std::span<const unsigned char> pieces[] = {bytes.first(1), bytes.subspan(1)};
        return platform::saveInOwnFolder(folder_.wide(), name, pieces, ifTaken, nullptr);
    }
    bool saves() const
    {
        return save(L"new", "fresh", IfTaken::kLeave) == SaveFile::kSaved &&
               save(L"new", "other", IfTaken::kLeave) == SaveFile::kNameTaken &&
               save(L"link", "other", IfTaken::kLeave) == SaveFile::kNameTaken &&
               save(L"old", "newer", IfTaken::kReplace) == SaveFile::kSaved;
    }
    void expectSaved() const
    {
        EXPECT_EQ(readFile(folder_ / "new"), "fresh");
        EXPECT_EQ(readFile(folder_ / "old"), "newer");
        EXPECT_FALSE(std::filesystem::exists(folder_ / "nowhere"));
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.path()), {}), 3);
    }
    void SetUp() override
    {
        folder_.write("old", "old");
        std::filesystem::create_symlink("nowhere", folder_ / "link");
    }

    TemporaryFolder folder_;
};

TEST_F(SavedFile, TakesNoNameThatIsTaken)
{
    EXPECT_TRUE(saves());
    expectSaved();
}

enum Refused : int { kRefusedRename = 1, kRefusedLink = 2 };

// As on a file system that cannot do it. False where processes may not be filtered.
bool refuse(int calls)
{
    constexpr std::uint32_t argument =
        offsetof(seccomp_data, args) + 4 * sizeof(std::uint64_t);  // the flags
    const auto link = (calls & kRefusedLink) != 0 ? static_cast<std::uint32_t>(SYS_linkat) : UINT32_MAX;
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_renameat2, 2, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, link, 3, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, argument),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 0, 1, 2),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
    };
    const sock_fprog filter{static_cast<unsigned short>(std::size(program)), program};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

class SavedFileWithout : public SavedFile, public testing::WithParamInterface<int> {};

TEST_P(SavedFileWithout, TakesNoNameThatIsTakenEither)
{
    const auto saveRefused = [&] {
        if (!refuse(GetParam())) {
            std::_Exit(77);
        }
        std::_Exit(saves() ? 0 : 1);
    };
    const auto isSavedOrMayNot = [](int status) {
        return WIFEXITED(status) && (WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == 77);
    };
    EXPECT_EXIT(saveRefused(), isSavedOrMayNot, "");
    if (!std::filesystem::exists(folder_ / "new")) {
        GTEST_SKIP() << "calls of the system cannot be refused here";
    }
    expectSaved();
}

INSTANTIATE_TEST_SUITE_P(Rows, SavedFileWithout,
                         testing::Values(kRefusedRename, kRefusedRename | kRefusedLink),
                         [](const auto& row) {
                             return row.param == kRefusedRename ? "a_rename_that_keeps"
                                                                : "hard_links_either";
                         });

}  // namespace
