#include "raylume/platform/Memory.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kMegabyte = 1 << 20;

// Whether the system's account of its mappings has the mark for huge pages at an address.
bool isAdvised(const void* address)
{
    std::ifstream mappings("/proc/self/smaps");
    const auto wanted = reinterpret_cast<std::uintptr_t>(address);
    bool inside = false;
    for (std::string line; std::getline(mappings, line);) {
        std::uintptr_t start = 0;
        std::uintptr_t end = 0;
        char dash = 0;
        std::istringstream range(line);
        if (range >> std::hex >> start >> dash >> end && dash == '-') {
            inside = start <= wanted && wanted < end;
        }
        if (inside && line.rfind("VmFlags:", 0) == 0) {
            return line.find(" hg") != std::string::npos;
        }
    }
    return false;
}

class Mapping {
public:
    explicit Mapping(std::size_t size)
        : size_(size),
          data_(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))
    {
    }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;
    ~Mapping() { munmap(data_, size_); }

    char* data() const { return static_cast<char*>(data_); }

private:
    std::size_t size_;
    void* data_;
};

TEST(HugePages, AreAskedForInLargeBlocksOnly)
{
    if (!std::filesystem::exists("/sys/kernel/mm/transparent_hugepage/enabled")) {
        GTEST_SKIP() << "this system has no huge pages";
    }
    const Mapping large(64 * kMegabyte);
    platform::prepareForFilling(large.data() + 16, 64 * kMegabyte - 16);
    EXPECT_TRUE(isAdvised(large.data() + 32 * kMegabyte));
    const Mapping small(kMegabyte);
    platform::prepareForFilling(small.data(), kMegabyte);
    EXPECT_FALSE(isAdvised(small.data()));
}

std::size_t residentPages(char* data, std::size_t size)
{
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    std::vector<unsigned char> resident(size / page);
    EXPECT_EQ(mincore(data, size, resident.data()), 0);
    return static_cast<std::size_t>(
        std::count_if(resident.begin(), resident.end(), [](unsigned char flags) { return flags & 1; }));
}

TEST(PreparedBlocks, HaveAllTheirPagesUnlessTheyAreSmall)
{
    const Mapping probe(kMegabyte);
    if (madvise(probe.data(), kMegabyte, 23) != 0) {
        GTEST_SKIP() << "this system maps no pages ahead";
    }
    const Mapping block(kMegabyte);
    platform::prepareForFilling(block.data(), kMegabyte);
    EXPECT_EQ(residentPages(block.data(), kMegabyte),
              kMegabyte / static_cast<std::size_t>(sysconf(_SC_PAGESIZE)));
    const Mapping small(kMegabyte);
    platform::prepareForFilling(small.data(), 64 << 10);
    EXPECT_EQ(residentPages(small.data(), kMegabyte), 0u);
}

class HugePageSizes : public testing::TestWithParam<std::size_t> {};

TEST_P(HugePageSizes, LeaveTheBytesAlone)
{
    const std::size_t size = GetParam();
    const std::unique_ptr<unsigned char[]> block(new unsigned char[size + 2]);
    block[0] = 7;
    block[size + 1] = 9;
    platform::prepareForFilling(block.get() + 1, size);
    std::memset(block.get() + 1, 3, size);
    EXPECT_EQ(block[0], 7);
    EXPECT_EQ(block[size + 1], 9);
}

INSTANTIATE_TEST_SUITE_P(Rows, HugePageSizes,
                         testing::Values(0, 1, 4096, 4 * kMegabyte - 1, 4 * kMegabyte, 4 * kMegabyte + 1,
                                         64 * kMegabyte));

TEST(HugePages, OfNoBlockAreNotAskedFor)
{
    EXPECT_NO_FATAL_FAILURE(platform::prepareForFilling(nullptr, 64 * kMegabyte));
}

#if !defined(__SANITIZE_ADDRESS__)
TEST(PreparedHeap, SparesSmallBlocksTheirFaults)
{
    const auto faults = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_minflt;
    };
    const auto fill = [](std::vector<std::unique_ptr<char[]>>& blocks) {
        for (std::unique_ptr<char[]>& block : blocks) {
            block = std::make_unique<char[]>(1000);
        }
    };
    std::vector<std::unique_ptr<char[]>> without(32 * 1024);
    long before = faults();
    fill(without);
    const long many = faults() - before;
    ASSERT_GT(many, 1000);
    std::vector<std::unique_ptr<char[]>> with(32 * 1024);
    const platform::PreparedHeap heap(34 * kMegabyte);
    before = faults();
    fill(with);
    EXPECT_LT(faults() - before, many / 4);
}
#endif

TEST(PreparedHeap, OfAnySizeLeavesTheAllocatorSound)
{
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, 5 * kMegabyte, 100 * kMegabyte}) {
        const platform::PreparedHeap heap(size);
        std::vector<std::string> texts;
        for (int i = 0; i < 1000; ++i) {
            texts.emplace_back(100, static_cast<char>('a' + i % 26));
        }
        EXPECT_EQ(texts[27], std::string(100, 'b'));
    }
}

}  // namespace
