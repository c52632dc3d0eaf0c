#include "raylume/persist/RLByteStream.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <stdexcept>
#include <vector>

#include "raylume/load/ReaderInterface.h"
#include "raylume/platform/CompoundFile.h"
#include "tests/persist/Archives.h"
#include "tests/persist/StreamBuilder.h"
#include "tests/platform/ScopedCodePage.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

using namespace persist_tests;
using testing::Each;
using testing::ElementsAre;

constexpr int kReadOnly = 2;
constexpr int kEndOfFile = 3;
constexpr int kWriteOnly = 4;

template <class Value>
std::string written(const Value& value)
{
    Storing storing;
    storing.stream().write(value);
    return storing.bytes();
}

template <class Value>
Value readAs(const std::string& bytes)
{
    Loading loading(bytes);
    Value value{};
    loading.stream().read(value);
    EXPECT_EQ(loading.rest(), "");
    return value;
}

std::string hex(std::initializer_list<int> values)
{
    std::string bytes;
    for (const int value : values)
        bytes.push_back(static_cast<char>(value));
    return bytes;
}

// Pieces end where a test wants them to, as those of a pipe may.
class ScriptedSource final : public RLByteSource {
public:
    explicit ScriptedSource(std::string bytes, std::size_t most = SIZE_MAX)
        : bytes_(std::move(bytes)), most_(most)
    {
    }
    std::size_t read(void* buffer, std::size_t size) override
    {
        asked.push_back(size);
        const std::size_t count = std::min({size, most_, bytes_.size() - at_});
        bytes_.copy(static_cast<char*>(buffer), count, at_);
        at_ += count;
        return count;
    }
    std::vector<std::size_t> asked;

private:
    std::string bytes_;
    std::size_t most_;
    std::size_t at_ = 0;
};

class CountingSink final : public RLByteSink {
public:
    void write(const void* data, std::size_t size) override
    {
        sizes.push_back(size);
        bytes.append(static_cast<const char*>(data), size);
    }
    std::vector<std::size_t> sizes;
    std::string bytes;
};

TEST(ByteStreamValues, AreLittleEndian)
{
    EXPECT_EQ(written(std::uint32_t{0x04030201}), hex({1, 2, 3, 4}));
    EXPECT_EQ(written(std::int32_t{-2}), hex({0xFE, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(written(std::uint64_t{0x0807060504030201}), hex({1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(written(1.0f), hex({0, 0, 0x80, 0x3F}));
    EXPECT_EQ(readAs<std::uint32_t>(hex({1, 2, 3, 0x84})), 0x84030201u);
    EXPECT_EQ(readAs<std::int32_t>(hex({0xFE, 0xFF, 0xFF, 0xFF})), -2);
    EXPECT_EQ(readAs<std::uint64_t>(hex({1, 2, 3, 4, 5, 6, 7, 0x88})), 0x8807060504030201u);
    EXPECT_EQ(readAs<float>(hex({0, 0, 0x80, 0x3F})), 1.0f);
}

TEST(ByteStreamValues, HaveNoPaddingBetweenThem)
{
    Storing storing;
    storing.stream().write(true);
    storing.stream().write(std::uint32_t{1});
    storing.stream().write(std::uint64_t{2});
    EXPECT_EQ(storing.bytes(), hex({1, 1, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(ByteStreamValues, OfABoolAreOneByte)
{
    EXPECT_EQ(written(true), hex({1}));
    EXPECT_EQ(written(false), hex({0}));
    EXPECT_FALSE(readAs<bool>(hex({0})));
    for (const int byte : {1, 2, 7, 0x80, 0xFF})
        EXPECT_TRUE(readAs<bool>(hex({byte}))) << byte;
    EXPECT_EQ(written(readAs<bool>(hex({7}))), hex({1}));
}

class FloatBits : public testing::TestWithParam<std::uint32_t> {};

TEST_P(FloatBits, PassUntouched)
{
    const float value = readAs<float>(written(GetParam()));
    EXPECT_EQ(std::bit_cast<std::uint32_t>(value), GetParam());
    EXPECT_EQ(written(value), written(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Rows, FloatBits,
                         testing::Values(0x7F800001u, 0xFFC00000u, 0x80000000u, 0x00000001u, 0xFF7FFFFFu));

TEST(ByteStreamDirection, IsWhatItWasMadeFor)
{
    Loading loading("");
    Storing storing;
    EXPECT_TRUE(loading.stream().isLoading());
    EXPECT_FALSE(loading.stream().isStoring());
    EXPECT_TRUE(storing.stream().isStoring());
    EXPECT_FALSE(storing.stream().isLoading());
}

struct DirectionCase {
    const char* name;
    void (*call)(RLByteStream& stream);
};

template <class Value>
void readOne(RLByteStream& stream)
{
    Value value{};
    stream.read(value);
}

template <class Value>
void writeOne(RLByteStream& stream)
{
    stream.write(Value{});
}

void readBlock(RLByteStream& stream)
{
    char block[8000];
    stream.readRaw(block, sizeof block);
}

void writeBlock(RLByteStream& stream)
{
    const char block[8000] = {};
    stream.writeRaw(block, sizeof block);
}

const DirectionCase kReads[] = {
    {"bool", readOne<bool>},
    {"unsigned_32", readOne<std::uint32_t>},
    {"signed_32", readOne<std::int32_t>},
    {"unsigned_64", readOne<std::uint64_t>},
    {"float", readOne<float>},
    {"string", readOne<std::string>},
    {"raw", readBlock},
    {"no_raw", [](RLByteStream& stream) { stream.readRaw(nullptr, 0); }},
    {"count", [](RLByteStream& stream) { stream.readCount(); }},
};

class Reading : public testing::TestWithParam<DirectionCase> {};

TEST_P(Reading, FromAStoringStreamIsCause4AndTouchesNothing)
{
    Storing storing;
    storing.stream().write(std::uint32_t{0x01020304});
    EXPECT_EQ(causeOf([&] { GetParam().call(storing.stream()); }), kWriteOnly);
    storing.stream().write(true);
    EXPECT_EQ(storing.bytes(), hex({4, 3, 2, 1, 1}));
}

INSTANTIATE_TEST_SUITE_P(Rows, Reading, testing::ValuesIn(kReads),
                         [](const auto& row) { return std::string(row.param.name); });

const DirectionCase kWrites[] = {
    {"bool", writeOne<bool>},
    {"unsigned_32", writeOne<std::uint32_t>},
    {"signed_32", writeOne<std::int32_t>},
    {"unsigned_64", writeOne<std::uint64_t>},
    {"float", writeOne<float>},
    {"empty_string", writeOne<std::string>},
    {"plain_string", [](RLByteStream& stream) { stream.write(std::string("plain")); }},
    {"other_string", [](RLByteStream& stream) { stream.write(std::string("\xC3\xA9")); }},
    {"long_string", [](RLByteStream& stream) { stream.write(std::string(300, 'a')); }},
    {"length", [](RLByteStream& stream) { stream.writeLength(3); }},
    {"raw", writeBlock},
    {"no_raw", [](RLByteStream& stream) { stream.writeRaw(nullptr, 0); }},
    {"count", [](RLByteStream& stream) { stream.writeCount(3); }},
};

class Writing : public testing::TestWithParam<DirectionCase> {};

TEST_P(Writing, ToALoadingStreamIsCause2AndTouchesNothing)
{
    Loading loading(hex({9, 4, 3, 2, 1, 5}));
    bool first = false;
    loading.stream().read(first);
    EXPECT_EQ(causeOf([&] { GetParam().call(loading.stream()); }), kReadOnly);
    std::uint32_t second = 0;
    loading.stream().read(second);
    EXPECT_EQ(second, 0x01020304u);
    EXPECT_EQ(loading.rest(), hex({5}));
}

INSTANTIATE_TEST_SUITE_P(Rows, Writing, testing::ValuesIn(kWrites),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ByteStreamDirection, ClosingALoadingStreamDoesNothing)
{
    Loading loading(hex({1}));
    loading.stream().close();
    EXPECT_EQ(loading.rest(), hex({1}));
}

TEST(ByteStreamEnd, InsideAFixedValueIsCause3AndLeavesTheTarget)
{
    for (std::size_t length = 0; length < 4; ++length) {
        Loading loading(std::string(length, 'x'));
        std::uint32_t value = 5;
        EXPECT_EQ(causeOf([&] { loading.stream().read(value); }), kEndOfFile) << length;
        EXPECT_EQ(value, 5u);
    }
    Loading loading("");
    bool flag = true;
    EXPECT_EQ(causeOf([&] { loading.stream().read(flag); }), kEndOfFile);
    EXPECT_TRUE(flag);
}

TEST(ByteStreamEnd, InsideARawBlockGivesWhatCame)
{
    Loading loading("abc");
    char block[5] = {};
    EXPECT_EQ(loading.stream().readRaw(block, 5), 3u);
    EXPECT_STREQ(block, "abc");
    EXPECT_EQ(loading.stream().readRaw(block, 5), 0u);
}

// --- strings

struct LengthCase {
    const char* name;
    std::uint64_t length;
    std::string bytes;
};

const LengthCase kLengths[] = {
    {"none", 0, hex({0})},
    {"l_254_is_one_byte", 254, hex({0xFE})},
    {"l_255_takes_two_more", 255, hex({0xFF, 0xFF, 0x00})},
    {"l_0xFFFD_takes_two_more", 0xFFFD, hex({0xFF, 0xFD, 0xFF})},
    {"l_0xFFFE_takes_four_more", 0xFFFE, hex({0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0, 0})},
    {"l_0xFFFF_takes_four_more", 0xFFFF, hex({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0})},
    {"l_0xFFFFFFFE_takes_four_more", 0xFFFFFFFE, hex({0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF})},
    {"l_0xFFFFFFFF_takes_eight_more", 0xFFFFFFFF,
     hex({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0})},
    {"l_above_32_bits", 0x123456789A,
     hex({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x9A, 0x78, 0x56, 0x34, 0x12, 0, 0, 0})},
};

class StringLength : public testing::TestWithParam<LengthCase> {};

TEST_P(StringLength, IsWrittenAsShortAsItGoes)
{
    Storing storing;
    storing.stream().writeLength(GetParam().length);
    EXPECT_EQ(storing.bytes(), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Rows, StringLength, testing::ValuesIn(kLengths),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(StoredString, IsTheEmptyWideFormWhenEmpty)
{
    EXPECT_EQ(written(std::string()), hex({0xFF, 0xFE, 0xFF, 0x00}));
}

TEST(StoredString, IsWideWithItsMarkerAndNoTerminator)
{
    EXPECT_EQ(written(std::string("aZ")), hex({0xFF, 0xFE, 0xFF, 2, 'a', 0, 'Z', 0}));
}

TEST(StoredString, EndsAtItsFirstNul)
{
    EXPECT_EQ(written(std::string("a\0b", 3)), written(std::string("a")));
    EXPECT_EQ(written(std::string("\xC3\xA9\0b", 4)), written(std::string("\xC3\xA9")));
}

TEST(StoredString, CountsUnitsAndWritesPairs)
{
    // U+00E9, U+1F600, "a": one, two and one unit.
    EXPECT_EQ(written(std::string("\xC3\xA9\xF0\x9F\x98\x80"
                                  "a")),
              hex({0xFF, 0xFE, 0xFF, 4, 0xE9, 0, 0x3D, 0xD8, 0x00, 0xDE, 'a', 0}));
}

TEST(StoredString, GoesThroughTheCodePage)
{
    const ScopedCodePage page(1252);
    ASSERT_TRUE(page.isSet());
    EXPECT_EQ(written(std::string("\x80")), hex({0xFF, 0xFE, 0xFF, 1, 0xAC, 0x20}));
}

struct BoundaryCase {
    const char* name;
    std::size_t length;
    std::string head;
};

const BoundaryCase kBoundaries[] = {
    {"l_254", 254, hex({0xFF, 0xFE, 0xFF, 0xFE})},
    {"l_255", 255, hex({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0x00})},
    {"l_2048_which_fills_the_buffer", 2048, hex({0xFF, 0xFE, 0xFF, 0xFF, 0x00, 0x08})},
    {"l_2049", 2049, hex({0xFF, 0xFE, 0xFF, 0xFF, 0x01, 0x08})},
    {"l_0xFFFD", 0xFFFD, hex({0xFF, 0xFE, 0xFF, 0xFF, 0xFD, 0xFF})},
    {"l_0xFFFE", 0xFFFE, hex({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0, 0})},
    {"l_0xFFFF", 0xFFFF, hex({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0})},
};

class StringBoundary : public testing::TestWithParam<BoundaryCase> {};

TEST_P(StringBoundary, IsWrittenAndReadBack)
{
    std::string text(GetParam().length, 'a');
    text.front() = 'f';
    text.back() = 'l';
    const std::string bytes = written(text);
    EXPECT_EQ(bytes.substr(0, GetParam().head.size()), GetParam().head);
    EXPECT_EQ(bytes.size(), GetParam().head.size() + 2 * text.size());
    EXPECT_EQ(readAs<std::string>(bytes), text);
}

INSTANTIATE_TEST_SUITE_P(Rows, StringBoundary, testing::ValuesIn(kBoundaries),
                         [](const auto& row) { return std::string(row.param.name); });

struct LoadedCase {
    const char* name;
    std::string bytes;
    std::string text;
};

const LoadedCase kLoaded[] = {
    {"narrow", hex({2, 'a', 'b'}), "ab"},
    {"narrow_empty", hex({0}), ""},
    {"narrow_that_fills_the_buffer", hex({0xFF, 0x00, 0x10}) + std::string(4095, 'n') + 'l',
     std::string(4095, 'n') + 'l'},
    {"narrow_longer_than_the_buffer", hex({0xFF, 0x01, 0x10}) + std::string(4096, 'n') + 'l',
     std::string(4096, 'n') + 'l'},
    {"wide_empty", hex({0xFF, 0xFE, 0xFF, 0}), ""},
    {"narrow_in_two_bytes_though_short", hex({0xFF, 2, 0, 'a', 'b'}), "ab"},
    {"narrow_in_four_bytes_though_short", hex({0xFF, 0xFF, 0xFF, 2, 0, 0, 0, 'a', 'b'}), "ab"},
    {"narrow_in_eight_bytes_though_short",
     hex({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 2, 0, 0, 0, 0, 0, 0, 0, 'a', 'b'}), "ab"},
    {"wide_in_two_bytes_though_short", hex({0xFF, 0xFE, 0xFF, 0xFF, 1, 0, 'a', 0}), "a"},
    {"wide_in_four_bytes_though_short", hex({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 1, 0, 0, 0, 'a', 0}), "a"},
    {"wide_in_eight_bytes_though_short",
     hex({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 1, 0, 0, 0, 0, 0, 0, 0, 'a', 0}),
     "a"},
    {"second_marker_is_followed_by_four_bytes",
     hex({0xFF, 0xFE, 0xFF, 0xFF, 0xFE, 0xFF, 1, 0, 0, 0, 'a', 0}), "a"},
    {"narrow_ends_at_its_first_nul", hex({4, 'a', 0, 'b', 'c'}), "a"},
    {"wide_ends_at_its_first_nul", hex({0xFF, 0xFE, 0xFF, 3, 'a', 0, 0, 0, 'b', 0}), "a"},
    {"nul_first", hex({2, 0, 'b'}), ""},
    {"unit_with_a_zero_low_byte_is_no_nul", hex({0xFF, 0xFE, 0xFF, 2, 0, 1, 'b', 0}),
     "\xC4\x80"
     "b"},
    {"pair_of_units", hex({0xFF, 0xFE, 0xFF, 3, 0x3D, 0xD8, 0x00, 0xDE, 'a', 0}),
     "\xF0\x9F\x98\x80"
     "a"},
    {"lone_lead_unit", hex({0xFF, 0xFE, 0xFF, 2, 0x3D, 0xD8, 'a', 0}),
     "\xEF\xBF\xBD"
     "a"},
    {"lead_unit_at_the_end", hex({0xFF, 0xFE, 0xFF, 1, 0x3D, 0xD8}), "\xEF\xBF\xBD"},
    {"lone_trail_unit", hex({0xFF, 0xFE, 0xFF, 1, 0x00, 0xDE}), "\xEF\xBF\xBD"},
    {"invalid_narrow_bytes_change", hex({3, 'a', 0xFF, 'b'}),
     "a\xEF\xBF\xBD"
     "b"},
    {"delete_is_plain", hex({0xFF, 0xFE, 0xFF, 2, 0x7F, 0, 1, 0}), "\x7F\x01"},
};

class LoadedString : public testing::TestWithParam<LoadedCase> {};

TEST_P(LoadedString, IsTheText)
{
    EXPECT_EQ(readAs<std::string>(GetParam().bytes), GetParam().text);
}

TEST_P(LoadedString, CutAnywhereIsCause3AndLeavesTheTarget)
{
    const std::string& bytes = GetParam().bytes;
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        Loading loading(bytes.substr(0, length));
        std::string text = "before";
        EXPECT_EQ(causeOf([&] { loading.stream().read(text); }), kEndOfFile) << length;
        EXPECT_EQ(text, "before");
    }
}

TEST_P(LoadedString, IsTheSameFromASourceOfSingleBytes)
{
    ScriptedSource source(GetParam().bytes, 1);
    RLByteStream stream(source, kFileName);
    std::string text;
    stream.read(text);
    EXPECT_EQ(text, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Rows, LoadedString, testing::ValuesIn(kLoaded),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(LoadedStringInACodePage, LosesWhatThePageLacks)
{
    const ScopedCodePage page(1252);
    ASSERT_TRUE(page.isSet());
    EXPECT_EQ(readAs<std::string>(hex({0xFF, 0xFE, 0xFF, 1, 0xAC, 0x20})), "\x80");
    EXPECT_EQ(readAs<std::string>(hex({0xFF, 0xFE, 0xFF, 2, 0x9F, 0x6F, 'a', 0})), "?a");
    EXPECT_EQ(readAs<std::string>(hex({0xFF, 0xFE, 0xFF, 2, 0x3D, 0xD8, 0x00, 0xDE})), "??");
    EXPECT_EQ(readAs<std::string>(hex({1, 0x80})), "\x80");
}

TEST(LoadedStringInACodePage, TakesNarrowBytesInPairs)
{
    const ScopedCodePage page(932);
    ASSERT_TRUE(page.isSet());
    EXPECT_EQ(readAs<std::string>(hex({3, 0x83, 0x5C, 'a'})),
              "\x83\x5C"
              "a");
    EXPECT_EQ(readAs<std::string>(hex({0xFF, 0xFE, 0xFF, 1, 0xBD, 0x30})), "\x83\x5C");
}

TEST(LoadedStringInACodePage, WithOtherBytesForAsciiGoesThroughIt)
{
    const ScopedCodePage page(37);
    if (!page.isSet())
        GTEST_SKIP() << "this machine has no converter for code page 37";
    EXPECT_EQ(readAs<std::string>(hex({0xFF, 0xFE, 0xFF, 1, 'A', 0})), "\xC1");
    EXPECT_EQ(written(std::string("\xC1")), hex({0xFF, 0xFE, 0xFF, 1, 'A', 0}));
}

TEST(LongString, OfEitherFormIsReadInPieces)
{
    const std::size_t length = 300'000;
    Bytes narrow, wide;
    narrow.u8(0xFF).u16(0xFFFF).u32(length).raw(std::string(length, 'n'));
    wide.u8(0xFF).u16(0xFFFE).u8(0xFF).u16(0xFFFF).u32(length);
    for (std::size_t i = 0; i < length; ++i)
        wide.u16('w');
    EXPECT_EQ(readAs<std::string>(narrow.get()), std::string(length, 'n'));
    EXPECT_EQ(readAs<std::string>(wide.get()), std::string(length, 'w'));
    EXPECT_EQ(causeOf([&] { readAs<std::string>(narrow.get().substr(0, length)); }), kEndOfFile);
    EXPECT_EQ(causeOf([&] { readAs<std::string>(wide.get().substr(0, 2 * length)); }), kEndOfFile);
}

TEST(LongString, WithAPairAcrossPiecesIsWhole)
{
    Bytes wide;
    wide.u8(0xFF).u16(0xFFFE).u8(0xFF).u16(0xFFFF).u32(0x8001);
    for (int i = 0; i < 0x7FFF; ++i)
        wide.u16('a');
    wide.u16(0xD83D).u16(0xDE00);
    EXPECT_EQ(readAs<std::string>(wide.get()), std::string(0x7FFF, 'a') + "\xF0\x9F\x98\x80");
}

// Each of these claims more than a process can have, half of them more than doubles without wrapping.
const std::uint64_t kHugeLengths[] = {0xFFFFFFFEull,         0xFFFFFFFFFFull,       0x7FFFFFFFFFFFFFFFull,
                                      0x8000000000000000ull, 0x8000000000000001ull, 0xFFFFFFFFFFFFFFFFull};

class HugeLength : public testing::TestWithParam<std::uint64_t> {};

TEST_P(HugeLength, IsCause3WithoutMemoryForIt)
{
    for (const bool isWide : {false, true}) {
        Bytes bytes;
        if (isWide)
            bytes.u8(0xFF).u16(0xFFFE);
        bytes.u8(0xFF).u16(0xFFFF).u32(0xFFFFFFFF).u64(GetParam()).raw(std::string(100'000, 'x'));
        Loading loading(bytes.get());
        std::string text = "before";
        EXPECT_EQ(causeOf([&] { loading.stream().read(text); }), kEndOfFile);
        EXPECT_EQ(text, "before");
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, HugeLength, testing::ValuesIn(kHugeLengths));

// --- counts of lists

struct CountCase {
    const char* name;
    std::uint64_t count;
    std::string bytes;
};

const CountCase kCounts[] = {
    {"none", 0, hex({0, 0})},
    {"l_0xFFFE", 0xFFFE, hex({0xFE, 0xFF})},
    {"l_0xFFFF", 0xFFFF, hex({0xFF, 0xFF, 0xFF, 0xFF, 0, 0})},
    {"l_0xFFFFFFFE", 0xFFFFFFFE, hex({0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF})},
    {"l_0xFFFFFFFF", 0xFFFFFFFF,
     hex({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0})},
};

class ListCount : public testing::TestWithParam<CountCase> {};

TEST_P(ListCount, IsWrittenAndReadBack)
{
    Storing storing;
    storing.stream().writeCount(GetParam().count);
    EXPECT_EQ(storing.bytes(), GetParam().bytes);
    Loading loading(GetParam().bytes);
    EXPECT_EQ(loading.stream().readCount(), GetParam().count);
    EXPECT_EQ(loading.rest(), "");
}

INSTANTIATE_TEST_SUITE_P(Rows, ListCount, testing::ValuesIn(kCounts),
                         [](const auto& row) { return std::string(row.param.name); });

CRectItem* itemAt(std::uint64_t address)
{
    return std::bit_cast<CRectItem*>(address);
}

TEST(EmbeddedItems, AreStoredAsTheirNumberAndEightBytesEach)
{
    CList<CRectItem*, CRectItem*> items;
    items.AddTail(itemAt(0x0102030405060708));
    items.AddTail(nullptr);
    Storing storing;
    items.Serialize(storing.stream());
    EXPECT_EQ(storing.bytes(), Bytes().u16(2).u64(0x0102030405060708).u64(0).get());
}

TEST(EmbeddedItems, AreAppendedWhenLoaded)
{
    CList<CRectItem*, CRectItem*> items;
    items.AddTail(itemAt(1));
    Loading loading(Bytes().u16(2).u64(2).u64(3).raw("rest").get());
    items.Serialize(loading.stream());
    EXPECT_EQ(loading.rest(), "rest");
    Storing storing;
    items.Serialize(storing.stream());
    EXPECT_EQ(storing.bytes(), Bytes().u16(3).u64(1).u64(2).u64(3).get());
}

TEST(EmbeddedItems, OfAHugeNumberAreThoseThatAreThere)
{
    CList<CRectItem*, CRectItem*> items;
    Loading loading(Bytes().u16(0xFFFF).u32(0xFFFFFFFF).u64(UINT64_MAX).u64(1).get());
    EXPECT_EQ(causeOf([&] { items.Serialize(loading.stream()); }), kEndOfFile);
    EXPECT_EQ(items.GetCount(), 1);
}

// --- the buffer

TEST(StreamBuffer, AsksItsSourceForBlocks)
{
    constexpr std::size_t kFloats = 1 << 18;
    ScriptedSource source(std::string(4 * kFloats, '\0'));
    RLByteStream stream(source, kFileName);
    float value = 1;
    for (std::size_t i = 0; i < kFloats; ++i)
        stream.read(value);
    EXPECT_EQ(source.asked.size(), 256u);
    EXPECT_THAT(source.asked, Each(0x1000u));
}

TEST(StreamBuffer, IsFilledOnlyWhenAValueWouldCrossItsEnd)
{
    ScriptedSource source(std::string(0x2000, '\0'));
    RLByteStream stream(source, kFileName);
    EXPECT_TRUE(source.asked.empty());
    bool flag = true;
    stream.read(flag);
    std::uint32_t value = 0;
    for (int i = 0; i < 0x3FF; ++i)
        stream.read(value);
    EXPECT_EQ(source.asked.size(), 1u);
    stream.read(value);  // Three bytes are left of the first block.
    EXPECT_EQ(source.asked, (std::vector<std::size_t>{0x1000, 0x1000 - 3}));
}

TEST(StreamBuffer, TakesShortPiecesWithoutLosingBytes)
{
    Bytes bytes;
    for (std::uint32_t i = 0; i < 5000; ++i)
        bytes.u32(i);
    for (const std::size_t most : {1u, 3u, 7u, 1000u}) {
        ScriptedSource source(bytes.get(), most);
        RLByteStream stream(source, kFileName);
        for (std::uint32_t i = 0; i < 5000; ++i) {
            std::uint32_t value = 0;
            stream.read(value);
            ASSERT_EQ(value, i);
        }
    }
}

TEST(StreamBuffer, PassesLargeRawBlocksBy)
{
    std::string bytes(0x5000, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 31 / 7);
    for (const std::size_t most : {std::size_t{5}, std::size_t{0x1001}, SIZE_MAX}) {
        ScriptedSource source(bytes, most);
        RLByteStream stream(source, kFileName);
        std::uint32_t first = 0;
        stream.read(first);
        std::string block(0x4321, '\0');
        EXPECT_EQ(stream.readRaw(block.data(), block.size()), block.size());
        EXPECT_EQ(block, bytes.substr(4, block.size()));
        std::string rest(bytes.size(), '\0');
        rest.resize(stream.readRaw(rest.data(), rest.size()));
        EXPECT_EQ(rest, bytes.substr(4 + block.size()));
    }
}

TEST(StreamBuffer, ReachesItsSinkWhenAValueWouldCrossItsEnd)
{
    CountingSink sink;
    RLByteStream stream(sink, kFileName);
    for (std::uint32_t i = 0; i < 0x400; ++i)
        stream.write(i);
    EXPECT_TRUE(sink.sizes.empty());
    stream.write(true);
    EXPECT_THAT(sink.sizes, ElementsAre(0x1000u));
    stream.close();
    stream.close();
    EXPECT_THAT(sink.sizes, ElementsAre(0x1000u, 1u));
    EXPECT_EQ(sink.bytes.size(), 0x1001u);
}

TEST(StreamBuffer, LetsLargeRawBlocksThroughInOrder)
{
    const std::string block(0x2345, 'b');
    CountingSink sink;
    RLByteStream stream(sink, kFileName);
    stream.write(true);
    stream.writeRaw(block.data(), block.size());
    stream.write(false);
    stream.close();
    EXPECT_EQ(sink.bytes, '\1' + block + '\0');
    EXPECT_THAT(sink.sizes, ElementsAre(1u, 0x2000u, 0x346u));
}

TEST(StreamBuffer, IsNotFlushedByTheDestructor)
{
    CountingSink sink;
    {
        RLByteStream stream(sink, kFileName);
        stream.write(true);
    }
    EXPECT_TRUE(sink.sizes.empty());
}

TEST(StreamBuffer, StoresStringsAcrossItsEnd)
{
    std::string expected, text;
    Storing storing;
    Bytes bytes;
    for (int i = 0; i < 2000; ++i) {
        text = std::string(static_cast<std::size_t>(i % 250), 't');
        storing.stream().write(text);
        bytes.text(text);
    }
    EXPECT_EQ(storing.bytes(), bytes.get());
    Loading loading(bytes.get());
    for (int i = 0; i < 2000; ++i) {
        loading.stream().read(text);
        ASSERT_EQ(text.size(), static_cast<std::size_t>(i % 250));
    }
}

class RaisingSource final : public RLByteSource {
public:
    std::size_t read(void*, std::size_t) override { throw std::runtime_error("torn"); }
};

TEST(StreamSource, MayRaiseWhatItLikes)
{
    RaisingSource source;
    RLByteStream stream(source, kFileName);
    std::uint32_t value = 5;
    EXPECT_THROW(stream.read(value), std::runtime_error);
    EXPECT_EQ(value, 5u);
}

// --- the ends

TEST(FileEnds, WriteAFileAndReadIt)
{
    const TemporaryFolder folder;
    const std::wstring path = folder.wide() + L"\\settings.bin";
    {
        RLFileSink sink(path);
        ASSERT_TRUE(sink.isOpen());
        RLByteStream stream(sink, path);
        stream.write(std::string("in a file"));
        stream.close();
    }
    RLFileSource source(path);
    ASSERT_TRUE(source.isOpen());
    RLByteStream stream(source, path);
    std::string text;
    stream.read(text);
    EXPECT_EQ(text, "in a file");
}

TEST(FileEnds, ThatAreNotThereFail)
{
    const TemporaryFolder folder;
    RLFileSource source(folder.wide() + L"\\missing");
    RLFileSink sink(folder.wide() + L"\\missing\\file");
    EXPECT_FALSE(source.isOpen());
    EXPECT_FALSE(sink.isOpen());
    char byte;
    EXPECT_EQ(source.read(&byte, 1), 0u);
    EXPECT_THROW(sink.write(&byte, 1), platform::OleError);
}

// A stream of a compound file that answers what a test says.
class ScriptedStream final : public IStream {
public:
    std::uint32_t AddRef() override { return 1; }
    std::uint32_t Release() override { return 1; }
    HResult Read(void* buffer, std::uint32_t size, std::uint32_t* read) override
    {
        *read = std::min(size, most);
        std::fill_n(static_cast<char*>(buffer), *read, 'r');
        return result;
    }
    HResult Write(const void*, std::uint32_t size, std::uint32_t* written) override
    {
        *written = std::min(size, most);
        total += *written;
        return result;
    }

    HResult result = 0;
    std::uint32_t most = 10;
    std::size_t total = 0;
};

TEST(CompoundEnds, TakeWhatTheStreamGives)
{
    ScriptedStream stream;
    RLStreamSource source(stream);
    RLStreamSink sink(stream);
    char buffer[25];
    EXPECT_EQ(source.read(buffer, 25), 10u);
    sink.write(buffer, 25);
    EXPECT_EQ(stream.total, 25u);
}

TEST(CompoundEnds, ThatFailAreTheEndWhenReadAndRaiseTheirCodeWhenWritten)
{
    ScriptedStream stream;
    stream.result = static_cast<HResult>(0x8003001Eu);
    RLStreamSource source(stream);
    RLStreamSink sink(stream);
    char buffer[25];
    EXPECT_EQ(source.read(buffer, 25), 0u);
    try {
        sink.write(buffer, 25);
        FAIL() << "no failure";
    } catch (const platform::OleError& error) {
        EXPECT_EQ(error.code(), 0x8003001Eu);
    }
}

TEST(CompoundEnds, ThatTakeNothingRaiseAWriteFault)
{
    ScriptedStream stream;
    stream.most = 0;
    RLStreamSink sink(stream);
    try {
        sink.write("a", 1);
        FAIL() << "no failure";
    } catch (const platform::OleError& error) {
        EXPECT_EQ(error.code(), 0x8003001Du);
    }
}

}  // namespace
