#include <gmock/gmock.h>

#include <filesystem>

#include "CompoundFileTools.h"
#include "TemporaryFolder.h"

namespace {

using namespace compound_tests;
using testing::IsNull;
using testing::NotNull;

struct SizeCase {
    const char* name;
    std::size_t size;
};
const SizeCase kSizes[] = {
    {"empty", 0},
    {"one_byte", 1},
    {"one_small_sector", 64},
    {"last_size_in_small_sectors", 4095},
    {"first_size_in_large_sectors", 4096},
    {"one_byte_into_a_sector", 4097},
    {"a_megabyte", 1 << 20},
    {"beyond_the_table_sectors_of_the_header", 8 << 20},
};

class StreamSizes : public testing::TestWithParam<SizeCase> {};

TEST_P(StreamSizes, ComeBackFromTheFile)
{
    const TemporaryFolder folder;
    const std::string bytes = pattern(GetParam().size);
    {
        const Storage root = createFile(folder / "a.doc");
        put(*root.get(), L"Data", bytes);
    }
    EXPECT_TRUE(bytesOf(*openFile(folder / "a.doc").get(), L"Data") == bytes);
}

TEST_P(StreamSizes, ComeBackFromAStorageInAStorage)
{
    const TemporaryFolder folder;
    const std::string bytes = pattern(GetParam().size);
    {
        const Storage root = createFile(folder / "a.doc");
        const Storage outer = createIn(*root.get(), L"ThirdPtyStore");
        const Storage inner = createIn(*outer.get(), L"Raylume");
        put(*inner.get(), L"ShaderData", bytes);
    }
    const Storage root = openFile(folder / "a.doc");
    const Storage outer = openIn(*root.get(), L"ThirdPtyStore");
    const Storage inner = openIn(*outer.get(), L"Raylume");
    EXPECT_TRUE(bytesOf(*inner.get(), L"ShaderData") == bytes);
}

TEST_P(StreamSizes, SurviveARewriteForSomethingElse)
{
    const TemporaryFolder folder;
    const std::string bytes = pattern(GetParam().size);
    {
        const Storage root = createFile(folder / "a.doc");
        put(*root.get(), L"Data", bytes);
    }
    put(*openFile(folder / "a.doc", true).get(), L"Other", "x");
    const Storage root = openFile(folder / "a.doc");
    EXPECT_TRUE(bytesOf(*root.get(), L"Data") == bytes);
    EXPECT_EQ(bytesOf(*root.get(), L"Other"), "x");
}

INSTANTIATE_TEST_SUITE_P(Rows, StreamSizes, testing::ValuesIn(kSizes),
                         [](const auto& row) { return row.param.name; });

class CompoundFile : public testing::Test {
protected:
    const TemporaryFolder folder;
    const std::string path = folder / "a.doc";

    HResult open(const std::string& file, bool writable = false)
    {
        Storage root;
        const HResult result = platform::openCompoundFile(platform::fromUtf8(file), writable, root.out());
        EXPECT_EQ(static_cast<bool>(root), result == 0);
        return result;
    }

    HResult create(const std::string& file, bool replace = false)
    {
        Storage root;
        const HResult result = platform::createCompoundFile(platform::fromUtf8(file), replace, root.out());
        EXPECT_EQ(static_cast<bool>(root), result == 0);
        return result;
    }

    /// A file with the stream "Data" at its root.
    void make(const std::string& bytes = "old") { put(*createFile(path).get(), L"Data", bytes); }
};

using OpeningAFile = CompoundFile;

TEST_F(OpeningAFile, TellsWhyItFails)
{
    EXPECT_RESULT(0x80030002, open(folder / "missing.doc"));
    EXPECT_RESULT(0x80030002, open(folder / "missing.doc", true));
    EXPECT_RESULT(0x80030003, open(folder / "missing/a.doc"));
    EXPECT_RESULT(0x80030003, open(folder.write("file", "") + "/a.doc"));
    EXPECT_RESULT(0x80030005, open(folder.path()));
    EXPECT_RESULT(0x80030005, open("/dev/zero"));
    EXPECT_RESULT(0x80030050, open(folder.write("empty", "")));
    EXPECT_RESULT(0x80030050, open(folder.write("text", std::string(2000, 'x'))));
    EXPECT_RESULT(0x80030109, open(folder.write("start", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1")));
    EXPECT_RESULT(0x80030009, platform::openCompoundFile(L"x", false, nullptr));
    EXPECT_RESULT(0x80030002, platform::openCompoundFile(L"", false, Storage().out()));
}

TEST_F(OpeningAFile, TakesPathsAsDocumentsWriteThem)
{
    make();
    Storage root;
    EXPECT_RESULT(0, platform::openCompoundFile(folder.wide() + L"\\A.DOC", false, root.out()));
}

TEST_F(OpeningAFile, ForReadingLeavesTheFileAlone)
{
    make();
    const std::string before = readFile(path);
    {
        const Storage root = openFile(path);
        Storage made;
        Stream stream;
        EXPECT_RESULT(0x80030005, root->CreateStorage(L"New", kWriting, made.out()));
        EXPECT_RESULT(0x80030005, root->CreateStream(L"New", kWriting, stream.out()));
        EXPECT_RESULT(0x80030005, root->DestroyElement(L"Data"));
        EXPECT_RESULT(0x80030002, root->DestroyElement(L"missing"));
        EXPECT_RESULT(0x80030005, root->OpenStream(L"Data", kWriting, stream.out()));
        EXPECT_FALSE(made || stream);
        EXPECT_RESULT(0, root->Commit(0));
    }
    EXPECT_TRUE(readFile(path) == before);
}

using CreatingAFile = CompoundFile;

TEST_F(CreatingAFile, MakesAnEmptyOneAtOnce)
{
    const Storage root = createFile(path);
    const Storage seen = openFile(path);
    Stream stream;
    EXPECT_RESULT(0x80030002, seen->OpenStream(L"Data", kReading, stream.out()));
}

TEST_F(CreatingAFile, DoesNotTouchAFileThatIsThere)
{
    const std::string file = folder.write("b.doc", "precious");
    EXPECT_RESULT(0x80030050, create(file));
    EXPECT_EQ(readFile(file), "precious");
    EXPECT_RESULT(0x80030050, create(folder.path()));
    EXPECT_RESULT(0x80030005, create(folder.path(), true));
}

TEST_F(CreatingAFile, ReplacesAFileWhenItIsCommitted)
{
    const std::string file = folder.write("b.doc", "old");
    const Storage root = createFile(file, true);
    put(*root.get(), L"Data", "new");
    EXPECT_EQ(readFile(file), "old");
    EXPECT_RESULT(0, root->Commit(0));
    EXPECT_EQ(bytesOf(*openFile(file).get(), L"Data"), "new");
}

TEST_F(CreatingAFile, ReplacesAFileAtTheLastReleaseAlsoByAnEmptyOne)
{
    make();
    createFile(path, true);
    EXPECT_EQ(bytesOf(*openFile(path).get(), L"Data"), "no stream");
}

TEST_F(CreatingAFile, TellsWhyItFails)
{
    EXPECT_RESULT(0x80030003, create(folder / "missing/a.doc"));
    EXPECT_RESULT(0x80030009, platform::createCompoundFile(L"x", false, nullptr));
    EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
}

class Elements : public CompoundFile {
protected:
    Elements()
    {
        const Storage made = createFile(path);
        put(*made.get(), L"Data", "0123456789");
        const Storage inner = createIn(*made.get(), L"Inner");
        put(*inner.get(), L"Deep", "deep");
        EXPECT_RESULT(0, made->Commit(0));
        root = openFile(path, true);
    }

    HResult openStream(const wchar_t* name, std::uint32_t mode = kReading)
    {
        Stream stream;
        const HResult result = root->OpenStream(name, mode, stream.out());
        EXPECT_EQ(static_cast<bool>(stream), result == 0);
        return result;
    }

    HResult openStorage(const wchar_t* name, std::uint32_t mode = kReading)
    {
        Storage storage;
        const HResult result = root->OpenStorage(name, mode, storage.out());
        EXPECT_EQ(static_cast<bool>(storage), result == 0);
        return result;
    }

    HResult createStorage(const wchar_t* name, std::uint32_t mode = kWriting)
    {
        Storage storage;
        const HResult result = root->CreateStorage(name, mode, storage.out());
        EXPECT_EQ(static_cast<bool>(storage), result == 0);
        return result;
    }

    HResult createStream(const wchar_t* name, std::uint32_t mode = kWriting)
    {
        Stream stream;
        const HResult result = root->CreateStream(name, mode, stream.out());
        EXPECT_EQ(static_cast<bool>(stream), result == 0);
        return result;
    }

    Storage root;
};

TEST_F(Elements, OpenByTheirNameWithoutCase)
{
    EXPECT_RESULT(0, openStream(L"Data"));
    EXPECT_RESULT(0, openStream(L"dATA"));
    EXPECT_RESULT(0, openStorage(L"INNER"));
    EXPECT_EQ(bytesOf(*openIn(*root.get(), L"inner").get(), L"DEEP"), "deep");
    EXPECT_RESULT(0, createStorage(L"\u00C4rger"));
    EXPECT_RESULT(0, openStorage(L"\u00E4rGER"));
}

TEST_F(Elements, AreNotFoundUnderAnythingElse)
{
    for (const wchar_t* name :
         {L"", L"Dat", L"Data ", L"Data1", L"Inner/Deep", L"Inner\\Deep", L".", L".."}) {
        EXPECT_RESULT(0x80030002, openStream(name)) << platform::toUtf8(name);
        EXPECT_RESULT(0x80030002, openStorage(name)) << platform::toUtf8(name);
        EXPECT_RESULT(0x80030002, root->DestroyElement(name)) << platform::toUtf8(name);
    }
}

TEST_F(Elements, OfTheOtherKindAreNotFound)
{
    EXPECT_RESULT(0x80030002, openStorage(L"Data"));
    EXPECT_RESULT(0x80030002, openStream(L"Inner"));
}

TEST_F(Elements, RefusePointersToNothing)
{
    EXPECT_RESULT(0x80030009, root->OpenStream(L"Data", kReading, nullptr));
    EXPECT_RESULT(0x80030009, root->OpenStorage(L"Inner", kReading, nullptr));
    EXPECT_RESULT(0x80030009, root->CreateStorage(L"New", kWriting, nullptr));
    EXPECT_RESULT(0x80030009, root->CreateStream(L"New", kWriting, nullptr));
    EXPECT_RESULT(0x80030009, openStream(nullptr));
    EXPECT_RESULT(0x80030009, openStorage(nullptr));
    EXPECT_RESULT(0x80030009, createStorage(nullptr));
    EXPECT_RESULT(0x80030009, createStream(nullptr));
    EXPECT_RESULT(0x80030009, root->DestroyElement(nullptr));
    Stream stream;
    ASSERT_RESULT(0, root->OpenStream(L"Data", kWriting, stream.out()));
    EXPECT_RESULT(0x80030009, stream->Read(nullptr, 1, nullptr));
    EXPECT_RESULT(0x80030009, stream->Write(nullptr, 1, nullptr));
}

TEST_F(Elements, RefuseAModeThatIsNone)
{
    constexpr std::uint32_t kNone = kModeExclusive + 3;
    EXPECT_RESULT(0x800300FF, openStream(L"Data", kNone));
    EXPECT_RESULT(0x800300FF, openStorage(L"Inner", kNone));
    EXPECT_RESULT(0x800300FF, createStorage(L"New", kNone));
    EXPECT_RESULT(0x800300FF, createStream(L"New", kNone));
    EXPECT_RESULT(0x80030002, openStream(L"New"));
}

TEST_F(Elements, OpenedForReadingAreNotWritten)
{
    Stream stream;
    ASSERT_RESULT(0, root->OpenStream(L"Data", kReading, stream.out()));
    std::uint32_t count = 7;
    EXPECT_RESULT(0x80030005, stream->Write("x", 1, &count));
    EXPECT_EQ(count, 0u);
    const Storage inner = openIn(*root.get(), L"Inner");
    EXPECT_RESULT(0x80030005, inner->DestroyElement(L"Deep"));
    EXPECT_RESULT(0x80030005, inner->CreateStorage(L"New", kWriting, Storage().out()));
    EXPECT_RESULT(0x80030005, inner->OpenStream(L"Deep", kWriting, Stream().out()));
}

struct NameCase {
    const char* name;
    std::wstring text;
    std::uint32_t result;
};
const NameCase kNames[] = {
    {"one_character", L"a", 0},
    {"thirty_one_units", std::wstring(31, L'n'), 0},
    {"thirty_two_units", std::wstring(32, L'n'), 0x800300FC},
    {"pairs_that_make_thirty_units", std::wstring(15, L'\U0001F600'), 0},
    {"pairs_that_make_thirty_two_units", std::wstring(16, L'\U0001F600'), 0x800300FC},
    {"empty", L"", 0x800300FC},
    {"slash", L"a/b", 0x800300FC},
    {"backslash", L"a\\b", 0x800300FC},
    {"colon", L"a:b", 0x800300FC},
    {"exclamation_mark", L"!", 0x800300FC},
    {"half_of_a_pair", std::wstring(1, static_cast<wchar_t>(0xD800)), 0x800300FC},
    {"beyond_unicode", std::wstring(1, static_cast<wchar_t>(0x110000)), 0x800300FC},
    {"control_character_at_the_front", L"\x05SummaryInformation", 0},
    {"dots", L"..", 0},
    {"blank", L" ", 0},
    {"that_of_a_stream", L"Data", 0x80030050},
    {"that_of_a_storage_in_other_case", L"iNNER", 0x80030050},
};

class NewNames : public Elements, public testing::WithParamInterface<NameCase> {};

TEST_P(NewNames, OfStorages)
{
    EXPECT_RESULT(GetParam().result, createStorage(GetParam().text.c_str()));
    EXPECT_RESULT(0, root->Commit(0));
    const bool there = GetParam().result == 0;
    Storage opened;
    const HResult result = openFile(path)->OpenStorage(GetParam().text.c_str(), kReading, opened.out());
    if (GetParam().result != 0x80030050) {
        EXPECT_EQ(result == 0, there);
    }
    EXPECT_EQ(bytesOf(*root.get(), L"Data"), "0123456789");
}

TEST_P(NewNames, OfStreams)
{
    EXPECT_RESULT(GetParam().result, createStream(GetParam().text.c_str()));
    EXPECT_RESULT(0, root->Commit(0));
    if (GetParam().result == 0) {
        EXPECT_EQ(bytesOf(*openFile(path).get(), GetParam().text.c_str()), "");
    }
    EXPECT_EQ(bytesOf(*root.get(), L"Data"), "0123456789");
}

INSTANTIATE_TEST_SUITE_P(Rows, NewNames, testing::ValuesIn(kNames),
                         [](const auto& row) { return row.param.name; });

TEST_F(Elements, AreReplacedOnlyWhenTheModeSaysSo)
{
    EXPECT_RESULT(0x80030050, createStream(L"DATA"));
    EXPECT_EQ(bytesOf(*root.get(), L"Data"), "0123456789");
    EXPECT_RESULT(0, createStream(L"DATA", kWriting + kModeCreate));
    EXPECT_EQ(bytesOf(*root.get(), L"Data"), "");
    EXPECT_RESULT(0, createStorage(L"Data", kWriting + kModeCreate));
    EXPECT_RESULT(0x80030002, openStream(L"Data"));
    EXPECT_RESULT(0, openStorage(L"Data"));
}

TEST_F(Elements, DestroyedAreGoneFromTheFile)
{
    EXPECT_RESULT(0, root->DestroyElement(L"dATA"));
    EXPECT_RESULT(0x80030002, openStream(L"Data"));
    EXPECT_RESULT(0x80030002, root->DestroyElement(L"Data"));
    EXPECT_RESULT(0, root->DestroyElement(L"Inner"));
    EXPECT_RESULT(0, root->Commit(0));
    const Storage seen = openFile(path);
    EXPECT_RESULT(0x80030002, seen->OpenStream(L"Data", kReading, Stream().out()));
    EXPECT_RESULT(0x80030002, seen->OpenStorage(L"Inner", kReading, Storage().out()));
}

TEST_F(Elements, DestroyedLeaveTheirViewsWithoutGround)
{
    const Storage inner = openIn(*root.get(), L"Inner", kWriting);
    Stream deep;
    ASSERT_RESULT(0, inner->OpenStream(L"Deep", kWriting, deep.out()));
    ASSERT_RESULT(0, root->DestroyElement(L"Inner"));
    char byte;
    std::uint32_t count = 7;
    EXPECT_RESULT(0x80030102, deep->Read(&byte, 1, &count));
    EXPECT_EQ(count, 0u);
    EXPECT_RESULT(0x80030102, deep->Write("x", 1, nullptr));
    EXPECT_RESULT(0x80030102, inner->OpenStream(L"Deep", kReading, Stream().out()));
    EXPECT_RESULT(0x80030102, inner->OpenStorage(L"x", kReading, Storage().out()));
    EXPECT_RESULT(0x80030102, inner->CreateStorage(L"x", kWriting, Storage().out()));
    EXPECT_RESULT(0x80030102, inner->CreateStream(L"x", kWriting, Stream().out()));
    EXPECT_RESULT(0x80030102, inner->DestroyElement(L"Deep"));
    EXPECT_RESULT(0x80030102, inner->Commit(0));
    EXPECT_RESULT(0, createStorage(L"Inner"));
    EXPECT_RESULT(0x80030102, inner->Commit(0));
}

TEST_F(Elements, CountTheirReferences)
{
    IStorage* inner = nullptr;
    ASSERT_RESULT(0, root->OpenStorage(L"Inner", kReading, &inner));
    EXPECT_EQ(inner->AddRef(), 2u);
    EXPECT_EQ(inner->Release(), 1u);
    EXPECT_EQ(inner->Release(), 0u);
    IStream* data = nullptr;
    ASSERT_RESULT(0, root->OpenStream(L"Data", kReading, &data));
    EXPECT_EQ(data->AddRef(), 2u);
    EXPECT_EQ(data->Release(), 1u);
    EXPECT_EQ(data->Release(), 0u);
}

TEST_F(Elements, KeepTheTreeAlive)
{
    Storage inner = openIn(*root.get(), L"Inner");
    Stream deep;
    ASSERT_RESULT(0, inner->OpenStream(L"Deep", kReading, deep.out()));
    root.reset();
    inner.reset();
    EXPECT_EQ(readAll(*deep.get()), "deep");
}

TEST_F(Elements, ShowAnEditInEveryViewAtOnce)
{
    const Storage first = openIn(*root.get(), L"Inner", kWriting);
    const Storage second = openIn(*root.get(), L"Inner");
    Stream before;
    ASSERT_RESULT(0, second->OpenStream(L"Deep", kReading, before.out()));
    char start[2];
    ASSERT_RESULT(0, before->Read(start, 2, nullptr));
    Stream edited;
    ASSERT_RESULT(0, first->OpenStream(L"Deep", kWriting, edited.out()));
    ASSERT_RESULT(0, edited->Write("DEEPER", 6, nullptr));
    EXPECT_EQ(readAll(*before.get()), "EPER");
    EXPECT_EQ(bytesOf(*second.get(), L"Deep"), "DEEPER");
    put(*first.get(), L"New", "new");
    EXPECT_EQ(bytesOf(*second.get(), L"New"), "new");
    ASSERT_RESULT(0, first->DestroyElement(L"New"));
    EXPECT_EQ(bytesOf(*second.get(), L"New"), "no stream");
}

TEST_F(Elements, EachViewReadsFromItsOwnPlace)
{
    Stream first;
    Stream second;
    ASSERT_RESULT(0, root->OpenStream(L"Data", kReading, first.out()));
    ASSERT_RESULT(0, root->OpenStream(L"Data", kReading, second.out()));
    char bytes[4];
    std::uint32_t count = 0;
    ASSERT_RESULT(0, first->Read(bytes, 4, &count));
    EXPECT_EQ(readAll(*second.get()), "0123456789");
    ASSERT_RESULT(0, first->Read(bytes, 4, &count));
    EXPECT_EQ(std::string(bytes, count), "4567");
    ASSERT_RESULT(0, first->Read(bytes, 4, &count));
    EXPECT_EQ(std::string(bytes, count), "89");
    ASSERT_RESULT(0, first->Read(bytes, 4, &count));
    EXPECT_EQ(count, 0u);
    EXPECT_RESULT(0, first->Read(bytes, 0, nullptr));
}

TEST_F(Elements, AreWrittenOverAndGrow)
{
    Stream stream;
    ASSERT_RESULT(0, root->OpenStream(L"Data", kWriting, stream.out()));
    ASSERT_RESULT(0, stream->Write("ab", 2, nullptr));
    EXPECT_EQ(readAll(*stream.get()), "23456789");
    std::uint32_t count = 0;
    ASSERT_RESULT(0, stream->Write("cd", 2, &count));
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(bytesOf(*root.get(), L"Data"), "ab23456789cd");
}

TEST_F(Elements, LargerThanAPieceOfMemoryAreEditedInTheMiddle)
{
    const std::string bytes = pattern(300000);
    put(*root.get(), L"Large", bytes);
    root.reset();
    root = openFile(path, true);
    Stream stream;
    ASSERT_RESULT(0, root->OpenStream(L"Large", kWriting, stream.out()));
    std::string skipped(65530, '\0');
    ASSERT_RESULT(0, stream->Read(skipped.data(), 65530, nullptr));
    ASSERT_RESULT(0, stream->Write("0123456789", 10, nullptr));
    stream.reset();
    root.reset();
    std::string wanted = bytes;
    wanted.replace(65530, 10, "0123456789");
    EXPECT_TRUE(bytesOf(*openFile(path).get(), L"Large") == wanted);
}

TEST_F(Elements, NestAsDeepAsTheLimitAndNoDeeper)
{
    Storage storage = openIn(*root.get(), L"Inner", kWriting);
    for (int depth = 2; depth <= 1000; ++depth)
        storage = createIn(*storage.get(), L"x");
    EXPECT_RESULT(0x80030111, storage->CreateStorage(L"x", kWriting, Storage().out()));
    EXPECT_RESULT(0x80030111, storage->CreateStream(L"x", kWriting, Stream().out()));
    EXPECT_RESULT(0, root->Commit(0));
    Storage seen = openIn(*openFile(path).get(), L"Inner");
    for (int depth = 2; depth <= 1000; ++depth)
        seen = openIn(*seen.get(), L"x");
    EXPECT_RESULT(0x80030002, seen->OpenStorage(L"x", kReading, Storage().out()));
}

TEST_F(Elements, ComeByThousands)
{
    wchar_t name[16];
    for (int i = 0; i < 3000; ++i) {
        swprintf(name, 16, L"n%d", i);
        put(*root.get(), name, std::to_string(i));
    }
    root.reset();
    const Storage seen = openFile(path);
    for (int i = 0; i < 3000; i += 7) {
        swprintf(name, 16, L"N%d", i);
        ASSERT_EQ(bytesOf(*seen.get(), name), std::to_string(i));
    }
}

}  // namespace
