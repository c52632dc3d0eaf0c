// The streams of a document in a compound file.
#include <gmock/gmock.h>

#include <string>

#include "DocumentComparison.h"
#include "MemoryStreams.h"
#include "RandomDocuments.h"
#include "raylume/platform/Files.h"
#include "raylume/platform/ReplacementFile.h"
#include "raylume/platform/Text.h"
#include "reader/formats/ovdl/CompoundStreams.h"
#include "reader/formats/ovdl/Decoder.h"
#include "reader/formats/ovdl/Encoder.h"
#include "tests/platform/CompoundFileTools.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

using namespace compound_tests;
using namespace ovdl_tests;
using ovdl::DocumentContents;
using testing::IsEmpty;

/// An assembly with a component for each of `count` empty parts.
class ManyParts {
public:
    explicit ManyParts(std::size_t count) : parts(count), components(count), pointers(count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            components[i].tessData = &parts[i];
            pointers[i] = &components[i];
        }
        assembly.components = {pointers.data(), static_cast<long long>(count)};
        contents.assembly = &assembly;
    }
    ManyParts(const ManyParts&) = delete;
    ManyParts& operator=(const ManyParts&) = delete;

    std::vector<uoTempPartTessData_c> parts;
    std::vector<uoTempAssemblySHDData_c> components;
    std::vector<uoTempAssemblySHDData_c*> pointers;
    OVDLAssemblyDocument assembly;
    DocumentContents contents;
};

class CompoundSink : public testing::Test {
protected:
    void encode(const DocumentContents& contents, std::uint64_t largestPiece = ovdl::kLargestPiece)
    {
        const Storage root = openFile(path, true);
        ovdl::encodeDocument(contents, *ovdl::makeCompoundSink(*root.get()), largestPiece);
        ASSERT_RESULT(0, root->Commit(0));
    }

    ovdl::ReadOutcome decoded() const
    {
        WillingContext context;
        return ovdl::decodeDocument(
            ovdl::openCompoundStreams(platform::MappedFile::open(platform::fromUtf8(path))), context);
    }

    std::vector<std::string> differencesFrom(const DocumentContents& contents) const
    {
        const ovdl::ReadOutcome outcome = decoded();
        auto* document = dynamic_cast<ovdl::DecodedDocument*>(outcome.document.get());
        if (!document)
            return {"no document: " + outcome.reason};
        return differences(contents, document->contents());
    }

    bool has(IStorage& storage, const wchar_t* name) const
    {
        Stream stream;
        Storage inner;
        return storage.OpenStream(name, kReading, stream.out()) == 0 ||
               storage.OpenStorage(name, kReading, inner.out()) == 0;
    }

    const TemporaryFolder folder;
    const std::string path = folder / "a.ovdl";
    const Storage created = createFile(path);
};

TEST_F(CompoundSink, WritesDocumentsThatAreReadAgain)
{
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        const auto document = randomDocument(seed, 4);
        encode(contentsOf(*document));
        EXPECT_THAT(differencesFrom(contentsOf(*document)), IsEmpty()) << "seed " << seed;
    }
}

TEST_F(CompoundSink, PutsPiecesIntoAStorageOfTheirTessellation)
{
    std::uint64_t seed = 1;
    for (; seed <= 200; ++seed) {
        const auto document = randomDocument(seed, 5);
        MemorySink counting;
        ovdl::encodeDocument(contentsOf(*document), counting, 3500);
        const auto cut = std::find_if(counting.streams.pieces.begin(), counting.streams.pieces.end(),
                                      [](const auto& entry) { return entry.second > 1; });
        if (cut == counting.streams.pieces.end())
            continue;
        encode(contentsOf(*document), 3500);
        const Storage root = openFile(path);
        const Storage all = openIn(*root.get(), L"Tessellation");
        const Storage one = openIn(*all.get(), std::to_wstring(cut->first).c_str());
        EXPECT_TRUE(has(*one.get(), L"0"));
        EXPECT_TRUE(has(*one.get(), L"1"));
        EXPECT_THAT(differencesFrom(contentsOf(*document)), IsEmpty());
        return;
    }
    FAIL() << "no document was cut";
}

TEST_F(CompoundSink, GroupsTessellationsWhereTheyAreMany)
{
    const ManyParts document(ovdl::kGroupedFrom);
    encode(document.contents);
    const Storage root = openFile(path);
    const Storage all = openIn(*root.get(), L"Tessellation");
    EXPECT_FALSE(has(*all.get(), L"0"));
    EXPECT_FALSE(has(*all.get(), L"g4"));
    const Storage first = openIn(*all.get(), L"g0");
    EXPECT_TRUE(has(*first.get(), L"0"));
    EXPECT_TRUE(has(*first.get(), L"1023"));
    EXPECT_FALSE(has(*first.get(), L"1024"));
    const Storage last = openIn(*all.get(), L"g3");
    EXPECT_TRUE(has(*last.get(), L"3072"));
    EXPECT_TRUE(has(*last.get(), L"4095"));
    EXPECT_THAT(differencesFrom(document.contents), IsEmpty());
}

TEST_F(CompoundSink, LeavesFewerTessellationsUngrouped)
{
    const ManyParts document(ovdl::kGroupedFrom - 1);
    encode(document.contents);
    const Storage root = openFile(path);
    const Storage all = openIn(*root.get(), L"Tessellation");
    EXPECT_TRUE(has(*all.get(), L"0"));
    EXPECT_TRUE(has(*all.get(), L"4094"));
    EXPECT_FALSE(has(*all.get(), L"g0"));
    EXPECT_THAT(differencesFrom(document.contents), IsEmpty());
}

TEST_F(CompoundSink, ReplacesADocumentAndLeavesAllElse)
{
    {
        const Storage root = openFile(path, true);
        put(*createIn(*root.get(), L"ThirdPtyStore").get(), L"Settings", "kept");
        put(*root.get(), L"Other", "kept too");
        ASSERT_RESULT(0, root->Commit(0));
    }
    encode(ManyParts(5).contents);
    const ManyParts smaller(2);
    encode(smaller.contents);
    const Storage root = openFile(path);
    EXPECT_EQ(bytesOf(*openIn(*root.get(), L"ThirdPtyStore").get(), L"Settings"), "kept");
    EXPECT_EQ(bytesOf(*root.get(), L"Other"), "kept too");
    EXPECT_FALSE(has(*openIn(*root.get(), L"Tessellation").get(), L"2"));
    EXPECT_THAT(differencesFrom(smaller.contents), IsEmpty());
}

TEST_F(CompoundSink, LeavesNoTessellationsOfADocumentBefore)
{
    encode(ManyParts(5).contents);
    encode(ManyParts(0).contents);
    EXPECT_FALSE(has(*openFile(path).get(), L"Tessellation"));
}

TEST_F(CompoundSink, RefusesAStorageThatIsOpenedForReading)
{
    const Storage root = openFile(path);
    const ManyParts document(1);
    try {
        ovdl::encodeDocument(document.contents, *ovdl::makeCompoundSink(*root.get()));
        FAIL() << "nothing was refused";
    } catch (const ovdl::Refusal& refusal) {
        EXPECT_STREQ(refusal.what(), "the storage fails (0x80030005)");
    }
}

TEST_F(CompoundSink, RefusesMoreElementsThanAStorageHolds)
{
    const Storage root = openFile(path, true);
    const Storage full = createIn(*root.get(), L"Full");
    for (int i = 0; i < 32768; ++i) {
        Stream stream;
        ASSERT_RESULT(0, full->CreateStream(std::to_wstring(i).c_str(), kWriting, stream.out()));
    }
    const ManyParts document(1);
    try {
        ovdl::encodeDocument(document.contents, *ovdl::makeCompoundSink(*full.get()));
        FAIL() << "nothing was refused";
    } catch (const ovdl::Refusal& refusal) {
        EXPECT_STREQ(refusal.what(), "the document has more parts than fit into a compound file");
    }
    // Nothing of it has to be saved when the last view goes.
    ASSERT_RESULT(0, root->DestroyElement(L"Full"));
}

}  // namespace
