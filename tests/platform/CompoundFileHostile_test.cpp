// Damaged and lying files: a clear outcome, in bounded time and memory, and nothing printed.
#include <gmock/gmock.h>

#include <elf.h>
#include <fcntl.h>
#include <glib.h>
#include <link.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string_view>

#include "CompoundFileTools.h"
#include "TemporaryFolder.h"

namespace {

using namespace compound_tests;
using testing::AnyOf;

using Builder = RawCompoundBuilder;

const wchar_t* const kNames[] = {L"Header", L"Large", L"Empty", L"Second"};

/// What is read of a file: an outcome for each element, and the bytes.
struct Seen {
    HResult opened = 0;
    std::vector<HResult> results;
    std::vector<std::string> bytes;
};

void read(IStorage& storage, Seen& seen)
{
    for (const wchar_t* name : kNames) {
        Stream stream;
        HResult result = storage.OpenStream(name, kReading, stream.out());
        std::string all;
        char piece[4096];
        std::uint32_t count = 1;
        while (result == 0 && count > 0) {
            result = stream->Read(piece, sizeof(piece), &count);
            all.append(piece, count);
        }
        seen.results.push_back(result);
        seen.bytes.push_back(all);
    }
}

class Hostile : public testing::Test {
protected:
    /// Streams of both kinds, at the root and in a storage.
    std::string good() const
    {
        const std::string file = folder / "good.doc";
        {
            const Storage root = createFile(file, true);
            put(*root.get(), L"Header", "header bytes");
            put(*root.get(), L"Large", pattern(5000));
            put(*root.get(), L"Empty", "");
            put(*createIn(*root.get(), L"Inner").get(), L"Second", pattern(70, 2));
        }
        return readFile(file);
    }

    Seen see(const std::string& bytes)
    {
        folder.write("damaged.doc", bytes);
        Seen seen;
        Storage root;
        seen.opened =
            platform::openCompoundFile(platform::fromUtf8(folder / "damaged.doc"), false, root.out());
        EXPECT_EQ(static_cast<bool>(root), seen.opened == 0);
        if (!root)
            return seen;
        read(*root.get(), seen);
        Storage inner;
        if (root->OpenStorage(L"Inner", kReading, inner.out()) == 0)
            read(*inner.get(), seen);
        return seen;
    }

    HResult openResult(const std::string& bytes) { return see(bytes).opened; }

    const TemporaryFolder folder;
};

// Whether a stream opens is another question than whether its bytes can be read.
HResult openingOf(const std::string& file, const wchar_t* name)
{
    Stream stream;
    return openFile(file)->OpenStream(name, kReading, stream.out());
}

// Standard error goes to a file while it lives.
class CapturedOutput {
public:
    CapturedOutput() { testing::internal::CaptureStderr(), testing::internal::CaptureStdout(); }
    std::string text() const
    {
        return testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout();
    }
};

TEST_F(Hostile, EveryPrefixIsAFailureOrLosesOnlyTheEnd)
{
    const std::string whole = good();
    const Seen wanted = see(whole);
    ASSERT_RESULT(0, wanted.opened);
    const CapturedOutput output;
    for (std::size_t size = 0; size < whole.size(); size += size < 600 ? 1 : 17) {
        const Seen seen = see(whole.substr(0, size));
        if (size < 512) {
            ASSERT_THAT(code(seen.opened), AnyOf(0x80030050u, 0x80030109u)) << size;
        }
        for (std::size_t i = 0; i < seen.results.size() && i < wanted.results.size(); ++i) {
            if (seen.results[i] == 0) {
                ASSERT_TRUE(seen.bytes[i] == wanted.bytes[i]) << size << " " << i;
            }
        }
    }
    EXPECT_EQ(output.text(), "");
}

TEST_F(Hostile, EveryFlippedByteHasAClearOutcome)
{
    const std::string whole = good();
    const CapturedOutput output;
    for (std::size_t place = 0; place < whole.size(); ++place) {
        // Inside the large stream a byte is a byte.
        if (place >= 1100 && place < 5000 && place % 97 != 0)
            continue;
        std::string bytes = whole;
        bytes[place] = static_cast<char>(bytes[place] ^ (place % 2 == 0 ? 0xFF : 0x01));
        for (const HResult result : see(bytes).results)
            ASSERT_THAT(code(result), AnyOf(0u, 0x80030002u, 0x80030109u, 0x8003001Eu)) << place;
    }
    EXPECT_EQ(output.text(), "");
}

TEST_F(Hostile, AFlippedByteNeverEndsInARewriteThatLosesMore)
{
    const std::string whole = good();
    const RawCompoundFile raw(whole);
    const std::size_t directory = raw.entry(u"Root Entry");
    for (std::size_t place = directory; place < directory + 6 * 128; place += 3) {
        std::string bytes = whole;
        bytes[place] = static_cast<char>(bytes[place] ^ 0xFF);
        const Seen before = see(bytes);
        if (before.opened != 0)
            continue;
        HResult committed = 0;
        {
            const Storage root = openFile(folder / "damaged.doc", true);
            put(*root.get(), L"New", "new");
            committed = root->Commit(0);
        }
        if (committed < 0) {
            ASSERT_TRUE(readFile(folder / "damaged.doc") == bytes) << place;
            continue;
        }
        const Seen after = see(readFile(folder / "damaged.doc"));
        ASSERT_EQ(after.results, before.results) << place;
        ASSERT_TRUE(after.bytes == before.bytes) << place;
    }
}

TEST_F(Hostile, ADamagedStreamFailsAloneAndLeavesTheOthers)
{
    struct Damage {
        const char* what;
        std::function<void(RawCompoundFile&)> apply;
    };
    const Damage damages[] = {
        {"starts beyond the file", [](auto& raw) { raw.put32(raw.entry(u"Large") + 116, 0x00FFFFFF); }},
        {"starts nowhere", [](auto& raw) { raw.put32(raw.entry(u"Large") + 116, 0xFFFFFFFE); }},
        {"is larger than its sectors", [](auto& raw) { raw.put32(raw.entry(u"Large") + 120, 6000); }},
        {"is larger than the file", [](auto& raw) { raw.put32(raw.entry(u"Large") + 120, 0x7FFFFFFF); }},
        {"runs in a circle",
         [](auto& raw) {
             raw.put32(raw.tablePlace(raw.firstSector(u"Large") + 3), raw.firstSector(u"Large"));
         }},
        {"runs beyond the file inside the table",
         [](auto& raw) {
             raw.put32(raw.tablePlace(raw.firstSector(u"Large") + 3), 100);
             for (std::uint32_t sector = 100; sector < 106; ++sector)
                 raw.put32(raw.tablePlace(sector), sector < 105 ? sector + 1 : 0xFFFFFFFE);
         }},
        {"ends in a free sector",
         [](auto& raw) { raw.put32(raw.tablePlace(raw.firstSector(u"Large") + 9), 0xFFFFFFFF); }},
        {"shares the directory",
         [](auto& raw) { raw.put32(raw.tablePlace(raw.firstSector(u"Large") + 3), raw.get32(48)); }},
    };
    const std::string whole = good();
    const CapturedOutput output;
    for (const Damage& damage : damages) {
        RawCompoundFile raw(whole);
        damage.apply(raw);
        const Seen seen = see(raw.bytes);
        ASSERT_RESULT(0, seen.opened) << damage.what;
        EXPECT_RESULT(0, seen.results[0]) << damage.what;
        EXPECT_EQ(seen.bytes[0], "header bytes");
        EXPECT_RESULT(0x80030109, seen.results[1]) << damage.what;
        EXPECT_RESULT(0x80030109, openingOf(folder / "damaged.doc", L"Large")) << damage.what;
        EXPECT_RESULT(0, seen.results[2]) << damage.what;
        EXPECT_TRUE(seen.bytes[7] == pattern(70, 2)) << damage.what;
    }
    EXPECT_EQ(output.text(), "");
}

TEST_F(Hostile, AnEmptyStreamMayHaveAnyFirstSector)
{
    for (const std::uint32_t first : {0u, 1u, 0xFFFFFFFFu, 0xFFFFFFFEu, 0x12345678u}) {
        RawCompoundFile raw(good());
        raw.put32(raw.entry(u"Empty") + 116, first);
        const Seen seen = see(raw.bytes);
        ASSERT_RESULT(0, seen.opened) << first;
        EXPECT_RESULT(0, seen.results[2]) << first;
        EXPECT_TRUE(seen.bytes[1] == pattern(5000)) << first;
    }
}

TEST_F(Hostile, DamageOfWhatLeadsToTheElementsIsDamageOfTheFile)
{
    struct Damage {
        const char* what;
        std::function<void(RawCompoundFile&)> apply;
    };
    const Damage damages[] = {
        {"sector size of none", [](auto& raw) { raw.put16(30, 10); }},
        {"huge sectors", [](auto& raw) { raw.put16(30, 31); }},
        {"small sector size", [](auto& raw) { raw.put16(32, 9); }},
        {"limit of small streams", [](auto& raw) { raw.put32(56, 0xFFFFFFFF); }},
        {"table sectors without end", [](auto& raw) { raw.put32(44, 0xFFFFFFFF); }},
        {"table sectors out of the file", [](auto& raw) { raw.put32(76, 0x00FFFFFF); }},
        {"the same table sector twice",
         [](auto& raw) {
             raw.put32(44, 2);
             raw.put32(80, raw.get32(76));
         }},
        {"directory out of the file", [](auto& raw) { raw.put32(48, 0x00FFFFFF); }},
        {"directory in a circle",
         [](auto& raw) { raw.put32(raw.tablePlace(raw.get32(48)), raw.get32(48)); }},
        {"no root", [](auto& raw) { raw.bytes[raw.entry(u"Root Entry") + 66] = 1; }},
        {"root with siblings", [](auto& raw) { raw.put32(raw.entry(u"Root Entry") + 72, 1); }},
        {"element out of the directory", [](auto& raw) { raw.put32(raw.entry(u"Empty") + 68, 4000); }},
        {"element below itself", [](auto& raw) { raw.put32(raw.entry(u"Inner") + 76, 0); }},
        {"element of no kind", [](auto& raw) { raw.bytes[raw.entry(u"Header") + 66] = 0; }},
        {"small table in a circle",
         [](auto& raw) { raw.put32(raw.tablePlace(raw.get32(60)), raw.get32(60)); }},
    };
    for (const Damage& damage : damages) {
        RawCompoundFile raw(good());
        damage.apply(raw);
        EXPECT_RESULT(0x80030109, openResult(raw.bytes)) << damage.what;
    }
}

// Siblings hang one below the other, as many writers leave them.
std::string manyElements(std::uint32_t count, bool nested)
{
    Builder builder;
    std::vector<Builder::Entry> entries = {{u"Root Entry", 5, Builder::kNone, Builder::kNone, 1}};
    for (std::uint32_t i = 1; i <= count; ++i) {
        std::u16string name = u"n";
        for (const char digit : std::to_string(i))
            name += static_cast<char16_t>(digit);
        Builder::Entry entry{name, nested ? 1 : 2};
        (nested ? entry.child : entry.right) = i < count ? i + 1 : Builder::kNone;
        entries.push_back(entry);
    }
    return builder.file(entries);
}

TEST_F(Hostile, AStorageHasAtMostSoManyElements)
{
    EXPECT_RESULT(0, openResult(manyElements(12000, false)));
    EXPECT_RESULT(0x80030111, openResult(manyElements(32769, false)));
}

TEST_F(Hostile, StoragesNestAtMostSoDeep)
{
    EXPECT_RESULT(0, openResult(manyElements(1000, true)));
    EXPECT_RESULT(0x80030111, openResult(manyElements(1001, true)));
    EXPECT_RESULT(0x80030111, openResult(manyElements(13000, true)));
}

TEST_F(Hostile, TheWholeFileHasAtMostSoManyPairsOfSiblings)
{
    std::vector<Builder::Entry> entries = {{u"Root Entry", 5, Builder::kNone, Builder::kNone, 1}};
    for (std::uint32_t storage = 0; storage < 6; ++storage) {
        const std::uint32_t place = 1 + storage * 30001;
        entries.push_back(
            {u"s", 1, Builder::kNone, storage < 5 ? place + 30001 : Builder::kNone, place + 1});
        for (std::uint32_t i = 1; i <= 30000; ++i)
            entries.push_back({u"e", 2, Builder::kNone, i < 30000 ? place + i + 1 : Builder::kNone});
    }
    EXPECT_RESULT(0x80030111, openResult(Builder(12).file(entries)));
}

TEST_F(Hostile, NamesThatNobodyMayGiveAreReadAndKept)
{
    Builder builder;
    const std::uint32_t large = builder.add(pattern(5000));
    const std::string file = builder.file({{u"Root Entry", 5, Builder::kNone, Builder::kNone, 1},
                                           {u"a/b:c", 2, Builder::kNone, 2, Builder::kNone, large, 5000},
                                           {u"plain", 2}});
    folder.write("names.doc", file);
    put(*openFile(folder / "names.doc", true).get(), L"New", "new");
    const Storage root = openFile(folder / "names.doc");
    EXPECT_TRUE(bytesOf(*root.get(), L"A/B:C") == pattern(5000));
    EXPECT_EQ(bytesOf(*root.get(), L"plain"), "");
}

TEST_F(Hostile, NamesThatCannotBeWrittenKeepTheFileFromBeingRewritten)
{
    for (const std::u16string& name : {std::u16string(), std::u16string(1, char16_t{0xD800})}) {
        const std::string file = Builder().file({{u"Root Entry", 5, Builder::kNone, Builder::kNone, 1},
                                                 {name, 2, Builder::kNone, 2},
                                                 {u"plain", 2}});
        folder.write("names.doc", file);
        const Storage root = openFile(folder / "names.doc", true);
        EXPECT_EQ(bytesOf(*root.get(), L"plain"), "");
        put(*root.get(), L"New", "new");
        EXPECT_RESULT(0x800300FC, root->Commit(0));
        EXPECT_TRUE(readFile(folder / "names.doc") == file);
    }
}

TEST_F(Hostile, TheSameNameTwiceIsNoStreamAtAll)
{
    Builder builder;
    const std::uint32_t first = builder.add(pattern(5000, 1));
    const std::uint32_t second = builder.add(pattern(5000, 2));
    const std::string file = builder.file({{u"Root Entry", 5, Builder::kNone, Builder::kNone, 1},
                                           {u"Large", 2, Builder::kNone, 2, Builder::kNone, first, 5000},
                                           {u"Large", 2, Builder::kNone, 3, Builder::kNone, second, 5000},
                                           {u"Empty", 2}});
    const Seen seen = see(file);
    ASSERT_RESULT(0, seen.opened);
    EXPECT_RESULT(0x80030109, seen.results[1]);
    EXPECT_RESULT(0, seen.results[2]);
}

TEST_F(Hostile, NamesThatDifferInCaseAloneAreTwoElements)
{
    Builder builder;
    const std::uint32_t first = builder.add(pattern(5000, 1));
    const std::uint32_t second = builder.add(pattern(5000, 2));
    folder.write(
        "case.doc",
        builder.file({{u"Root Entry", 5, Builder::kNone, Builder::kNone, 1},
                      {u"large", 2, Builder::kNone, 2, Builder::kNone, first, 5000},
                      {u"Large", 2, Builder::kNone, Builder::kNone, Builder::kNone, second, 5000}}));
    const Storage root = openFile(folder / "case.doc");
    EXPECT_TRUE(bytesOf(*root.get(), L"large") == pattern(5000, 1));
    EXPECT_TRUE(bytesOf(*root.get(), L"Large") == pattern(5000, 2));
    EXPECT_TRUE(bytesOf(*root.get(), L"LARGE") == pattern(5000, 1));
}

// A host may have set GLib's log writer, which may be set once only.
TEST_F(Hostile, TheLogWriterStaysTheHosts)
{
    static int written = 0;
    const auto count = [](GLogLevelFlags, const GLogField*, gsize, gpointer) {
        ++written;
        return G_LOG_WRITER_HANDLED;
    };
    good();
    g_log_set_writer_func(count, nullptr, nullptr);
    RawCompoundFile raw(good());
    raw.put32(raw.entry(u"Large") + 116, 0x00FFFFFF);
    see(raw.bytes);
    EXPECT_EQ(written, 0);
    g_log_structured("host", G_LOG_LEVEL_WARNING, "MESSAGE", "a word of the host's");
    EXPECT_EQ(written, 1);
}

// The loader's flags of the platform library, when `found` is set.
struct LoaderFlags {
    bool found = false;
    std::uint64_t flags = 0;
};

int readLoaderFlags(dl_phdr_info* library, std::size_t, void* result)
{
    if (!std::string_view(library->dlpi_name).ends_with("libraylume_platform.so.0"))
        return 0;
    auto& seen = *static_cast<LoaderFlags*>(result);
    seen.found = true;
    for (int i = 0; i < library->dlpi_phnum; ++i) {
        if (library->dlpi_phdr[i].p_type != PT_DYNAMIC)
            continue;
        const auto* entry =
            reinterpret_cast<const ElfW(Dyn)*>(library->dlpi_addr + library->dlpi_phdr[i].p_vaddr);
        for (; entry->d_tag != DT_NULL; ++entry)
            if (entry->d_tag == DT_FLAGS_1)
                seen.flags = entry->d_un.d_val;
    }
    return 1;
}

// GLib keeps what it was told of types and handlers of messages for ever.
TEST_F(Hostile, TheLibraryStaysInMemoryWhenAHostUnloadsIt)
{
    LoaderFlags seen;
    dl_iterate_phdr(readLoaderFlags, &seen);
    ASSERT_TRUE(seen.found);
    EXPECT_NE(seen.flags & DF_1_NODELETE, 0u);
}

}  // namespace
