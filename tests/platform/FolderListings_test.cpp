#include "raylume/platform/posix/FolderListings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/TemporaryFolder.h"

using platform::FolderListings;

namespace {

std::timespec changeTime(const std::string& path)
{
    struct stat status;
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return std::max(status.st_ctim, status.st_mtim, [](const auto& a, const auto& b) {
        return a.tv_sec != b.tv_sec ? a.tv_sec < b.tv_sec : a.tv_nsec < b.tv_nsec;
    });
}

class Listings : public testing::Test {
protected:
    // The clock stands that long after the last change of the folder; `nanoseconds` come on top.
    void stand(std::time_t seconds, long nanoseconds = 0)
    {
        now_ = changeTime(folder_.path());
        now_.tv_sec += seconds;
        now_.tv_nsec += nanoseconds;
        if (now_.tv_nsec < 0) {
            now_.tv_nsec += 1'000'000'000;
            --now_.tv_sec;
        }
    }

    std::string find(const std::string& name)
    {
        return listings_.find(folder_.path(), name).name.value_or("none");
    }

    TemporaryFolder folder_;
    std::timespec now_{};
    FolderListings listings_{[this] { return now_; }};
};

TEST_F(Listings, ReadASettledFolderOnce)
{
    folder_.write("Oak.jpg", "");
    stand(3);
    EXPECT_EQ(find("OAK.JPG"), "Oak.jpg");
    EXPECT_EQ(find("oak.jpg"), "Oak.jpg");
    EXPECT_EQ(find("elm.jpg"), "none");
    EXPECT_EQ(listings_.readCount(), 1u);
}

TEST_F(Listings, DoNotTrustAFolderYoungerThanTwoSeconds)
{
    folder_.write("Oak.jpg", "");
    stand(2, -1);
    EXPECT_EQ(find("oak.jpg"), "Oak.jpg");
    EXPECT_EQ(find("oak.jpg"), "Oak.jpg");
    EXPECT_EQ(listings_.readCount(), 2u);
    EXPECT_EQ(listings_.keptBytes(), 0u);
    stand(2);
    EXPECT_EQ(find("oak.jpg"), "Oak.jpg");
    EXPECT_EQ(find("oak.jpg"), "Oak.jpg");
    EXPECT_EQ(listings_.readCount(), 3u);
}

// A listing that was young when it was made does not become old by waiting.
TEST_F(Listings, DoNotTrustAListingLaterThatWasMadeTooEarly)
{
    folder_.write("Oak.jpg", "");
    stand(1);
    find("oak.jpg");
    stand(10);
    find("oak.jpg");
    EXPECT_EQ(listings_.readCount(), 2u);
}

TEST_F(Listings, DoNotTrustAFolderFromTheFuture)
{
    stand(-10);
    find("a");
    find("a");
    EXPECT_EQ(listings_.readCount(), 2u);
}

TEST_F(Listings, AreDroppedWhenTheFolderChanges)
{
    folder_.write("Oak.jpg", "");
    stand(3);
    EXPECT_EQ(find("elm.jpg"), "none");
    const auto before = changeTime(folder_.path());
    do {
        folder_.write("Elm.jpg", "");
        std::filesystem::remove(folder_ / "Oak.jpg");
        folder_.write("other", "");
        std::filesystem::remove(folder_ / "other");
    } while (changeTime(folder_.path()).tv_nsec == before.tv_nsec);
    EXPECT_EQ(find("elm.jpg"), "Elm.jpg");
    EXPECT_EQ(find("oak.jpg"), "none");
}

TEST_F(Listings, GoByTheFolderAndNotByItsPath)
{
    const TemporaryFolder other;
    folder_.write("Oak.jpg", "");
    std::filesystem::create_directory_symlink(folder_.path(), other / "link");
    stand(3);
    find("a");
    EXPECT_EQ(listings_.find(other / "link", "oak.jpg").name, "Oak.jpg");
    EXPECT_EQ(listings_.readCount(), 1u);
    std::filesystem::remove(other / "link");
    std::filesystem::create_directory(other / "link");
    EXPECT_EQ(listings_.find(other / "link", "oak.jpg").name, std::nullopt);
}

TEST_F(Listings, SettleATieByTheOrderOfBytesWhetherKeptOrNot)
{
    for (const char* name : {"oak.jpg", "oAK.jpg", "OAk.jpg", "oaK.jpg"}) {
        folder_.write(name, "");
    }
    for (const std::time_t age : {0, 3, 3}) {
        stand(age);
        EXPECT_EQ(find("OAK.JPG"), "OAk.jpg");
    }
    EXPECT_EQ(listings_.readCount(), 2u);
}

TEST_F(Listings, PreferTheExactNameWhetherKeptOrNot)
{
    for (const char* name : {"oak.jpg", "oAK.jpg", "OAk.jpg", "oaK.jpg"}) {
        folder_.write(name, "");
    }
    for (const std::time_t age : {0, 3, 3}) {
        for (const char* name : {"oak.jpg", "oAK.jpg", "OAk.jpg", "oaK.jpg"}) {
            stand(age);
            EXPECT_EQ(find(name), name);
        }
    }
    EXPECT_EQ(listings_.readCount(), 5u);
}

TEST_F(Listings, MeetNamesThatAreNoUtf8)
{
    folder_.write("caf\xE9.txt", "");
    for (const std::time_t age : {0, 3, 3}) {
        stand(age);
        EXPECT_EQ(find("CAF\xEF\xBF\xBD.txt"), "caf\xE9.txt");
    }
}

TEST_F(Listings, TellWhatIsNoFolder)
{
    folder_.write("File", "");
    EXPECT_FALSE(listings_.find(folder_ / "File", "a").isFolder);
    EXPECT_FALSE(listings_.find(folder_ / "missing", "a").isFolder);
    EXPECT_TRUE(listings_.find(folder_.path(), "a").isFolder);
    EXPECT_TRUE(listings_.find("", "a").isFolder);
    EXPECT_EQ(listings_.readCount(), 2u);
}

TEST_F(Listings, LetAnExactNameThroughThatTheFolderDoesNotList)
{
    if (geteuid() == 0) {
        GTEST_SKIP() << "this user may list every folder";
    }
    folder_.makeFolder("Closed");
    folder_.write("Closed/Oak.jpg", "");
    std::filesystem::permissions(folder_ / "Closed", std::filesystem::perms::owner_exec);
    EXPECT_EQ(listings_.find(folder_ / "Closed", "Oak.jpg").name, "Oak.jpg");
    EXPECT_EQ(listings_.find(folder_ / "Closed/", "oak.jpg").name, std::nullopt);
    std::filesystem::permissions(folder_ / "Closed", std::filesystem::perms::owner_all);
}

TEST_F(Listings, OfAFolderTooLargeAreReadEachTime)
{
    FolderListings small([this] { return now_; }, 1000);
    for (int i = 0; i < 100; ++i) {
        folder_.write("Name" + std::to_string(i), "");
    }
    stand(3);
    EXPECT_EQ(small.find(folder_.path(), "name99").name, "Name99");
    EXPECT_EQ(small.find(folder_.path(), "name0").name, "Name0");
    EXPECT_EQ(small.readCount(), 2u);
    EXPECT_EQ(small.keptBytes(), 0u);
}

TEST_F(Listings, ForgetWhatWasUsedLongestAgo)
{
    FolderListings small([this] { return now_; }, 1500);
    std::vector<std::string> folders;
    for (const char* name : {"a", "b", "c"}) {
        folders.push_back(folder_.makeFolder(name));
        folder_.write(std::string(name) + "/Long name " + std::string(100, 'x'), "");
    }
    stand(3);
    small.find(folders[0], "x");
    small.find(folders[1], "x");
    small.find(folders[0], "x");
    small.find(folders[2], "x");
    EXPECT_EQ(small.readCount(), 3u);
    EXPECT_LE(small.keptBytes(), 1500u);
    small.find(folders[0], "x");
    EXPECT_EQ(small.readCount(), 3u);
    small.find(folders[1], "x");
    EXPECT_EQ(small.readCount(), 4u);
}

TEST_F(Listings, KeepABoundedNumberOfFolders)
{
    std::vector<std::string> folders;
    for (int i = 0; i < 200; ++i) {
        folders.push_back(folder_.makeFolder(std::to_string(i)));
    }
    stand(3);
    for (int round = 0; round < 2; ++round) {
        for (const std::string& folder : folders) {
            listings_.find(folder, "x");
        }
    }
    EXPECT_EQ(listings_.readCount(), 400u);
    listings_.find(folders.back(), "x");
    EXPECT_EQ(listings_.readCount(), 400u);
}

TEST_F(Listings, ServeSeveralThreads)
{
    for (int i = 0; i < 10; ++i) {
        folder_.makeFolder(std::to_string(i));
        folder_.write(std::to_string(i) + "/Oak.jpg", "");
    }
    stand(3);
    FolderListings small([this] { return now_; }, 2000);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i) {
                const std::string folder = folder_ / std::to_string(i % 10);
                wrong += small.find(folder, "OAK.jpg").name != "Oak.jpg";
                wrong += small.find(folder, "elm.jpg").name.has_value();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_LE(small.keptBytes(), 2000u);
}

}  // namespace
