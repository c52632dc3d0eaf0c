#include "raylume/platform/MappedCompoundFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "tests/platform/CompoundFileTools.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

using namespace compound_tests;
using platform::MappedFile;
using platform::StreamBytes;
using MappedPtr = std::shared_ptr<const MappedFile>;

constexpr std::size_t kBig = 20000;

// A file with small sectors, a stream "Big" in one piece, and small ones.
std::string soundFile()
{
    const TemporaryFolder folder;
    const std::string path = folder / "a.bin";
    {
        const Storage root = createFile(path);
        put(*root.get(), L"Big", pattern(kBig, 1));
        put(*root.get(), L"Small", pattern(100, 2));
        put(*root.get(), L"Empty", "");
        put(*createIn(*root.get(), L"Sub").get(), L"Deep", pattern(9000, 3));
        EXPECT_RESULT(0, root->Commit(0));
    }
    return readFile(path);
}

// A mapped file that is in no folder any more.
MappedPtr mapped(const std::string& bytes)
{
    const TemporaryFolder folder;
    return MappedFile::open(platform::fromUtf8(folder.write("a.bin", bytes)));
}

Storage openMapped(const MappedPtr& file)
{
    Storage root;
    EXPECT_RESULT(0, platform::openMappedCompoundFile(file, root.out()));
    return root;
}

StreamBytes bytesIn(IStorage& storage, const wchar_t* name)
{
    StreamBytes bytes;
    EXPECT_RESULT(0, platform::streamBytes(storage, name, bytes));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes.data.get()) % 8, 0u);
    return bytes;
}

std::string textOf(const StreamBytes& bytes)
{
    return std::string(reinterpret_cast<const char*>(bytes.data.get()), bytes.size);
}

bool isIn(const MappedFile& file, const StreamBytes& bytes)
{
    return bytes.data.get() >= file.data() && bytes.data.get() + bytes.size <= file.data() + file.size();
}

TEST(MappedCompoundFile, GivesAStreamWhereItLies)
{
    const MappedPtr file = mapped(soundFile());
    const Storage root = openMapped(file);
    const StreamBytes big = bytesIn(*root.get(), L"Big");
    EXPECT_TRUE(isIn(*file, big));
    EXPECT_EQ(textOf(big), pattern(kBig, 1));
    const StreamBytes deep = bytesIn(*openIn(*root.get(), L"Sub").get(), L"Deep");
    EXPECT_TRUE(isIn(*file, deep));
    EXPECT_EQ(textOf(deep), pattern(9000, 3));
    EXPECT_EQ(bytesIn(*root.get(), L"Big").data.get(), big.data.get());
}

TEST(MappedCompoundFile, CopiesSmallStreams)
{
    const MappedPtr file = mapped(soundFile());
    const Storage root = openMapped(file);
    const StreamBytes small = bytesIn(*root.get(), L"Small");
    EXPECT_FALSE(isIn(*file, small));
    EXPECT_EQ(textOf(small), pattern(100, 2));
    EXPECT_EQ(bytesIn(*root.get(), L"Empty").size, 0u);
}

TEST(MappedCompoundFile, ReadsAsAnyOther)
{
    const Storage root = openMapped(mapped(soundFile()));
    EXPECT_EQ(bytesOf(*root.get(), L"Big"), pattern(kBig, 1));
    EXPECT_EQ(bytesOf(*root.get(), L"Small"), pattern(100, 2));
    Stream stream;
    EXPECT_RESULT(kStorageAccessDenied, root->CreateStream(L"New", kWriting, stream.out()));
}

TEST(MappedCompoundFile, BytesOutliveStorageAndFile)
{
    MappedPtr file = mapped(soundFile());
    Storage root = openMapped(file);
    const StreamBytes big = bytesIn(*root.get(), L"Big");
    const StreamBytes small = bytesIn(*root.get(), L"Small");
    root.reset();
    file.reset();
    EXPECT_EQ(textOf(big), pattern(kBig, 1));
    EXPECT_EQ(textOf(small), pattern(100, 2));
}

// Swaps two neighbours in the chain of "Big", which stays the same stream.
std::string fragmentedFile(std::uint32_t at)
{
    RawCompoundFile file(soundFile());
    const std::uint32_t first = file.firstSector(u"Big") + at;
    const std::uint32_t second = first + 1;
    const std::size_t size = file.sectorSize();
    std::swap_ranges(file.bytes.begin() + static_cast<std::ptrdiff_t>(file.sector(first)),
                     file.bytes.begin() + static_cast<std::ptrdiff_t>(file.sector(first) + size),
                     file.bytes.begin() + static_cast<std::ptrdiff_t>(file.sector(second)));
    const std::uint32_t behind = file.get32(file.tablePlace(second));
    file.put32(file.tablePlace(second), first);
    file.put32(file.tablePlace(first), behind);
    if (at == 0)
        file.put32(file.entry(u"Big") + 116, second);
    else
        file.put32(file.tablePlace(first - 1), second);
    return file.bytes;
}

class FragmentedStream : public testing::TestWithParam<std::uint32_t> {};

TEST_P(FragmentedStream, IsCopied)
{
    const MappedPtr file = mapped(fragmentedFile(GetParam()));
    const Storage root = openMapped(file);
    const StreamBytes big = bytesIn(*root.get(), L"Big");
    EXPECT_FALSE(isIn(*file, big));
    EXPECT_EQ(textOf(big), pattern(kBig, 1));
    EXPECT_TRUE(isIn(*file, bytesIn(*openIn(*root.get(), L"Sub").get(), L"Deep")));
}

// At the beginning, in the middle and at the end of 40 sectors.
INSTANTIATE_TEST_SUITE_P(Places, FragmentedStream, testing::Values(0u, 1u, 20u, 38u));

// "Big" moved to the end of the file, which ends with it or `missing` bytes before.
std::string fileThatEndsWithBig(std::size_t missing)
{
    RawCompoundFile file(soundFile());
    const auto sectors = static_cast<std::uint32_t>(file.bytes.size() / file.sectorSize()) - 1;
    const auto count = static_cast<std::uint32_t>((kBig + 511) / 512);
    file.put32(file.entry(u"Big") + 116, sectors);
    for (std::uint32_t i = 0; i < count; ++i)
        file.put32(file.tablePlace(sectors + i),
                   i + 1 < count ? sectors + i + 1 : RawCompoundBuilder::kEnd);
    file.bytes += pattern(kBig, 1);
    file.bytes.resize(file.bytes.size() - missing);
    return file.bytes;
}

TEST(MappedCompoundFile, TakesAStreamWhoseLastSectorIsNotWhole)
{
    const MappedPtr file = mapped(fileThatEndsWithBig(0));
    const Storage root = openMapped(file);
    const StreamBytes big = bytesIn(*root.get(), L"Big");
    EXPECT_TRUE(isIn(*file, big));
    EXPECT_EQ(textOf(big), pattern(kBig, 1));
}

TEST(MappedCompoundFile, HasNoBytesBehindTheEndOfTheFile)
{
    const Storage root = openMapped(mapped(fileThatEndsWithBig(1)));
    StreamBytes bytes;
    EXPECT_LT(platform::streamBytes(*root.get(), L"Big", bytes), 0);
    EXPECT_EQ(bytes.data, nullptr);
}

TEST(MappedCompoundFile, GivesTheOthersBesideADamagedStream)
{
    RawCompoundFile raw(soundFile());
    raw.put32(raw.tablePlace(raw.firstSector(u"Big")), raw.firstSector(u"Big"));
    const MappedPtr file = mapped(raw.bytes);
    const Storage root = openMapped(file);
    StreamBytes bytes;
    EXPECT_RESULT(kStorageCorrupt, platform::streamBytes(*root.get(), L"Big", bytes));
    const StreamBytes deep = bytesIn(*openIn(*root.get(), L"Sub").get(), L"Deep");
    EXPECT_TRUE(isIn(*file, deep));
    EXPECT_EQ(textOf(deep), pattern(9000, 3));
}

TEST(MappedCompoundFile, TellsWhatIsWrong)
{
    Storage root;
    EXPECT_RESULT(kStorageInvalidPointer, platform::openMappedCompoundFile(nullptr, root.out()));
    EXPECT_RESULT(kStorageInvalidPointer, platform::openMappedCompoundFile(mapped(soundFile()), nullptr));
    EXPECT_RESULT(kStorageExists, platform::openMappedCompoundFile(mapped("no compound file"), root.out()));
    EXPECT_RESULT(kStorageExists, platform::openMappedCompoundFile(mapped(""), root.out()));
    EXPECT_RESULT(kStorageCorrupt,
                  platform::openMappedCompoundFile(mapped(soundFile().substr(0, 600)), root.out()));
    EXPECT_EQ(root.get(), nullptr);
}

TEST(StreamBytes, OfWhatIsNoStreamFail)
{
    const Storage root = openMapped(mapped(soundFile()));
    StreamBytes bytes;
    EXPECT_RESULT(kStorageNotFound, platform::streamBytes(*root.get(), L"None", bytes));
    EXPECT_RESULT(kStorageNotFound, platform::streamBytes(*root.get(), L"Sub", bytes));
}

TEST(StreamBytes, OfAnEditedStreamAreTheEditedOnes)
{
    const TemporaryFolder folder;
    const Storage root = createFile(folder / "a.bin");
    put(*root.get(), L"Big", pattern(100000, 5));
    EXPECT_EQ(textOf(bytesIn(*root.get(), L"Big")), pattern(100000, 5));
}

TEST(StreamBytes, OfAFileThatIsNotMappedAreCopied)
{
    const TemporaryFolder folder;
    const Storage root = openFile(folder.write("a.bin", soundFile()));
    EXPECT_EQ(textOf(bytesIn(*root.get(), L"Big")), pattern(kBig, 1));
}

TEST(ElementNames, AreFoundAmongMany)
{
    const TemporaryFolder folder;
    const Storage root = createFile(folder / "a.bin");
    for (int i = 0; i < 3000; ++i)
        put(*root.get(), (L"Element" + std::to_wstring(i)).c_str(), std::to_string(i));
    EXPECT_RESULT(0, root->DestroyElement(L"element1500"));
    EXPECT_EQ(bytesOf(*root.get(), L"ELEMENT1499"), "1499");
    EXPECT_EQ(bytesOf(*root.get(), L"Element1500"), "no stream");
    EXPECT_EQ(bytesOf(*root.get(), L"Element1501"), "1501");
    EXPECT_EQ(bytesOf(*root.get(), L"eLEMENT2999"), "2999");
}

}  // namespace
