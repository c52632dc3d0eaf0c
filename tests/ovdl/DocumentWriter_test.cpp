// Documents written and converted, through the surface that hosts have.
#include "reader/DocumentWriter.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "DocumentComparison.h"
#include "RandomDocuments.h"
#include "raylume/platform/Text.h"
#include "reader/DocumentHeader.h"
#include "reader/HostHandlers.h"
#include "tests/platform/CompoundFileTools.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

using namespace compound_tests;
using namespace ovdl_tests;
using ovdl::PreparedDocument;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

/// A document put under a path for as long as the object lives, made anew for each read.
class Prepared {
public:
    Prepared(std::wstring path, ovdl::DocumentFactory factory) : path_(std::move(path))
    {
        ovdl::prepareDocument(path_, std::move(factory));
    }
    Prepared(const Prepared&) = delete;
    Prepared& operator=(const Prepared&) = delete;
    ~Prepared() { ovdl::forgetDocument(path_); }

    const std::wstring& path() const { return path_; }

private:
    std::wstring path_;
};

/// An assembly of one component, named as told, and a configuration of another one.
std::unique_ptr<PreparedDocument> twoConfigurations()
{
    auto document = std::make_unique<PreparedDocument>();
    document->assembly = std::make_unique<OVDLAssemblyDocument>();
    auto* stored = document->own<uoTempAssemblySHDData_c>();
    stored->name = L"stored-1@t";
    auto* open = document->own<uoTempAssemblySHDData_c>();
    open->name = L"open-1@t";
    document->assembly->components = document->array<uoTempAssemblySHDData_c>({stored});
    document->configurations[L"Stored"] = document->array<uoTempAssemblySHDData_c>({stored});
    document->configurations[L"Open \u00e4"] = document->array<uoTempAssemblySHDData_c>({open});
    document->version = 12345;
    return document;
}

class WrittenDocument : public testing::Test {
protected:
    ~WrittenDocument() override
    {
        ovdl::setCancelHandler({});
        ovdl::setProgressHandler({});
    }

    std::wstring place(const std::string& name) const { return platform::fromUtf8(folder / name); }

    std::vector<std::string> names() const
    {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            found.push_back(entry.path().filename());
        return found;
    }

    void write(const std::wstring& path, const PreparedDocument& document)
    {
        std::string reason;
        ASSERT_TRUE(ovdl::writeDocument(path, document, reason)) << reason;
        ASSERT_EQ(reason, "");
    }

    void convert(const std::wstring& from, const std::wstring& to, const std::wstring& configuration = L"")
    {
        std::string reason;
        ASSERT_TRUE(ovdl::convertDocument(from, to, configuration, reason)) << reason;
        ASSERT_EQ(reason, "");
    }

    std::string whyNotConverted(const std::wstring& from, const std::wstring& to,
                                const std::wstring& configuration = L"")
    {
        std::string reason = "left alone";
        EXPECT_FALSE(ovdl::convertDocument(from, to, configuration, reason));
        return reason;
    }

    static std::string contentOf(const std::string& file)
    {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    const TemporaryFolder folder;
};

/// A document as a host reads it.
class HostsRead {
public:
    explicit HostsRead(const std::wstring& path)
    {
        result = document.ReadFile(kReaderAccess, path, version, true);
    }

    std::vector<std::wstring> namesOf(uoTempAssemblySHDDataArray_c* array)
    {
        std::vector<std::wstring> names;
        for (long long i = 0; array && i < array->count; ++i)
            names.push_back(array->at(i)->name);
        return names;
    }
    std::vector<std::wstring> components()
    {
        return namesOf(document.assemblyDocument ? &document.assemblyDocument->components : nullptr);
    }
    std::vector<std::wstring> configuration(std::wstring name)
    {
        return namesOf(document.getTempDispListDataSHDArrayForConfig(name));
    }

    CDispListsDoc document;
    unsigned long version = 0;
    OVXDLReader_FileLoadResult result;
};

/// What was read, to be compared with what was written. Configurations are asked for by name.
ovdl::DocumentContents contentsOf(HostsRead& read, const ovdl::DocumentContents& expected)
{
    ovdl::DocumentContents contents;
    contents.documentVersion = static_cast<std::uint32_t>(read.version);
    contents.part = read.document.partDocument;
    contents.assembly = read.document.assemblyDocument;
    for (const auto& [name, components] : expected.configurations) {
        std::wstring text = name;
        if (auto* found = read.document.getTempDispListDataSHDArrayForConfig(text))
            contents.configurations[name] = found;
    }
    contents.reason = expected.reason;
    return contents;
}

struct Target {
    const char* name;
    const char* file;
};
const Target kTargets[] = {{"compound", "a.ovdl"}, {"json", "a.json"}, {"json_in_capitals", "A.JSON"}};
class EveryTarget : public WrittenDocument, public testing::WithParamInterface<Target> {};
INSTANTIATE_TEST_SUITE_P(Rows, EveryTarget, testing::ValuesIn(kTargets),
                         [](const auto& row) { return row.param.name; });

TEST_P(EveryTarget, GivesAHostTheSameDocument)
{
    const std::wstring path = place(GetParam().file);
    for (std::uint64_t seed = 1; seed <= 30; ++seed) {
        const auto document = randomDocument(seed, 4);
        // A rejected document is one all the same.
        write(path, *document);
        HostsRead read(path);
        const auto expected = ovdl_tests::contentsOf(*document);
        EXPECT_THAT(differences(expected, contentsOf(read, expected)), IsEmpty()) << "seed " << seed;
    }
    EXPECT_THAT(names(), SizeIs(1));
}

TEST_P(EveryTarget, ConvertsPreparedDocuments)
{
    const Prepared source(L"/prepared/two.asm", twoConfigurations);
    convert(source.path(), place(GetParam().file));
    HostsRead read(place(GetParam().file));
    EXPECT_EQ(read.version, 12345u);
    EXPECT_THAT(read.components(), ElementsAre(L"stored-1@t"));
    EXPECT_THAT(read.configuration(L"Stored"), ElementsAre(L"stored-1@t"));
    EXPECT_THAT(read.configuration(L"Open \u00e4"), ElementsAre(L"open-1@t"));
}

TEST_P(EveryTarget, ConvertsADocumentOntoItself)
{
    const std::wstring path = place(GetParam().file);
    write(path, *twoConfigurations());
    convert(path, path, L"Open \u00e4");
    HostsRead read(path);
    EXPECT_THAT(read.components(), ElementsAre(L"open-1@t"));
    EXPECT_THAT(read.configuration(L"Stored"), ElementsAre(L"stored-1@t"));
    EXPECT_THAT(names(), SizeIs(1));
}

TEST_P(EveryTarget, OpensWithTheConfigurationThatWasAskedFor)
{
    const Prepared source(L"/prepared/two.asm", twoConfigurations);
    convert(source.path(), place(GetParam().file), L"Open \u00e4");
    HostsRead read(place(GetParam().file));
    EXPECT_THAT(read.components(), ElementsAre(L"open-1@t"));
    EXPECT_THAT(read.configuration(L"Stored"), ElementsAre(L"stored-1@t"));
}

TEST_P(EveryTarget, IsTheSameFileForTheSameDocument)
{
    write(place("first" + std::string(GetParam().file)), *randomDocument(7, 4));
    write(place("second" + std::string(GetParam().file)), *randomDocument(7, 4));
    EXPECT_EQ(contentOf(folder / ("first" + std::string(GetParam().file))),
              contentOf(folder / ("second" + std::string(GetParam().file))));
}

TEST_P(EveryTarget, StaysAsItWasWhenTheDocumentCannotBeWritten)
{
    folder.write(GetParam().file, "old");
    auto document = twoConfigurations();
    document->assembly->components.count = -1;
    std::string reason;
    EXPECT_FALSE(ovdl::writeDocument(place(GetParam().file), *document, reason));
    EXPECT_EQ(reason, "the assembly document, components: a negative count");
    EXPECT_EQ(contentOf(folder / GetParam().file), "old");
    EXPECT_THAT(names(), SizeIs(1));
}

TEST_P(EveryTarget, IsNotMadeWhenTheDocumentCannotBeWritten)
{
    auto document = twoConfigurations();
    document->assembly->components.count = -1;
    std::string reason;
    EXPECT_FALSE(ovdl::writeDocument(place(GetParam().file), *document, reason));
    EXPECT_THAT(names(), IsEmpty());
}

TEST_P(EveryTarget, NeedsAFolder)
{
    std::string reason;
    EXPECT_FALSE(ovdl::writeDocument(place("missing/" + std::string(GetParam().file)), *twoConfigurations(),
                                     reason));
    EXPECT_EQ(reason, "the file cannot be written (there is no folder for it)");
}

TEST_F(WrittenDocument, IsRejectedWhereThePreparedOneIs)
{
    auto document = twoConfigurations();
    document->rejected = true;
    document->reason = "it is \u00fcber 9000";
    write(place("a.ovdl"), *document);
    HostsRead read(place("a.ovdl"));
    EXPECT_EQ(read.result, OVXDLReader_Rejected);
    EXPECT_TRUE(read.document.assemblyDocument->isRejected());
    EXPECT_EQ(ovdl::lastReason(), "it is \u00fcber 9000");
    EXPECT_THAT(read.components(), ElementsAre(L"stored-1@t"));
    // The objects themselves stay as they are.
    EXPECT_FALSE(document->assembly->rejected);
}

TEST_F(WrittenDocument, IsNoneWhereThePreparedOneCannotBeOpened)
{
    auto document = twoConfigurations();
    document->openable = false;
    document->reason = "it is locked";
    std::string reason;
    EXPECT_FALSE(ovdl::writeDocument(place("a.ovdl"), *document, reason));
    EXPECT_EQ(reason, "the document cannot be opened (it is locked)");
}

TEST_F(WrittenDocument, MayHaveBothAPartAndAnAssembly)
{
    auto document = twoConfigurations();
    document->part = std::make_unique<OVDLPartDocument>();
    document->part->activeConfigIndex = 3;
    write(place("a.ovdl"), *document);
    HostsRead read(place("a.ovdl"));
    ASSERT_NE(read.document.partDocument, nullptr);
    EXPECT_EQ(read.document.partDocument->activeConfigIndex, 3);
    EXPECT_THAT(read.components(), ElementsAre(L"stored-1@t"));
}

// ------------------------------------------------------------------------------------- conversions

TEST_F(WrittenDocument, ConvertsBackAndForthWithoutADifference)
{
    const auto document = randomDocument(11, 4);
    document->reason.clear();
    if (document->part)
        document->part->rejected = false;
    if (document->assembly)
        document->assembly->rejected = false;
    write(place("a.ovdl"), *document);
    convert(place("a.ovdl"), place("b.json"));
    convert(place("b.json"), place("c.ovdl"));
    HostsRead read(place("c.ovdl"));
    const auto expected = ovdl_tests::contentsOf(*document);
    EXPECT_THAT(differences(expected, contentsOf(read, expected)), IsEmpty());
}

TEST_F(WrittenDocument, KeepsTheDisplayListVersion)
{
    write(place("a.ovdl"), *twoConfigurations());
    {
        const Storage root = openFile(folder / "a.ovdl", true);
        ASSERT_RESULT(0, ovdl::writeHeader(*root.get(), {1, 13000, 77}));
        ASSERT_RESULT(0, root->Commit(0));
    }
    convert(place("a.ovdl"), place("b.json"));
    convert(place("b.json"), place("c.ovdl"));
    const auto header = ovdl::readHeader(*openFile(folder / "c.ovdl").get());
    ASSERT_TRUE(header.has_value());
    EXPECT_EQ(header->formatVersion, 1u);
    EXPECT_EQ(header->documentVersion, 13000u);
    EXPECT_EQ(header->displayListVersion, 77u);
}

TEST_F(WrittenDocument, IsNotConvertedWithAConfigurationThatItLacks)
{
    const Prepared source(L"/prepared/two.asm", twoConfigurations);
    EXPECT_EQ(whyNotConverted(source.path(), place("a.ovdl"), L"Closed"),
              "the document has no configuration \"Closed\"");
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(WrittenDocument, OfAPartHasNoConfigurations)
{
    const Prepared source(L"/prepared/part.prt", [] {
        auto document = std::make_unique<PreparedDocument>();
        document->part = std::make_unique<OVDLPartDocument>();
        document->configurations[L"Open"] = {};
        return document;
    });
    EXPECT_EQ(whyNotConverted(source.path(), place("a.ovdl"), L"Open"),
              "the document has no configuration \"Open\"");
}

TEST_F(WrittenDocument, NeedsADocumentThatOpens)
{
    EXPECT_EQ(whyNotConverted(place("missing.gltf"), place("a.ovdl")),
              "the document cannot be opened (there is no such file)");
}

TEST_F(WrittenDocument, NeedsADocumentThatCanBeRead)
{
    folder.write("damaged.json", "{\"ovdl\":1,\"document\":{\"part\":{\"rejected\":true}},");
    EXPECT_THAT(whyNotConverted(place("damaged.json"), place("a.ovdl")),
                testing::StartsWith("the document is rejected ("));
    EXPECT_THAT(names(), ElementsAre("damaged.json"));
}

class RefusingCallbacks final : public OVDL_Callbacks {
public:
    int CheckVersions(int, int) override { return 0; }
};

// What is left of one is no document, though it says that it is rejected.
TEST_F(WrittenDocument, NeedsADocumentThatTheHostAccepts)
{
    const Prepared source(L"/prepared/two.asm", twoConfigurations);
    RefusingCallbacks callbacks;
    SetOVDL_Callbacks(&callbacks);
    EXPECT_EQ(whyNotConverted(source.path(), place("a.ovdl")),
              "the document is rejected (the document's version 12345 was refused)");
    SetOVDL_Callbacks(nullptr);
    EXPECT_THAT(names(), IsEmpty());
}

/// Rejected by what it answers, not by what it holds.
class RejectedByItsAnswer final : public OVDLAssemblyDocument {
public:
    bool isRejected() override { return true; }
};

std::unique_ptr<PreparedDocument> rejectedByItsAnswer()
{
    auto document = twoConfigurations();
    auto assembly = std::make_unique<RejectedByItsAnswer>();
    assembly->components = document->assembly->components;
    document->assembly = std::move(assembly);
    document->reason = "because";
    return document;
}

void expectRejected(const std::wstring& path, const char* reason, const wchar_t* component)
{
    HostsRead read(path);
    EXPECT_EQ(read.result, OVXDLReader_Rejected);
    EXPECT_EQ(ovdl::lastReason(), reason);
    ASSERT_NE(read.document.assemblyDocument, nullptr);
    EXPECT_TRUE(read.document.assemblyDocument->isRejected());
    EXPECT_THAT(read.components(), ElementsAre(component));
    EXPECT_THAT(read.configuration(L"Stored"), ElementsAre(L"stored-1@t"));
}

TEST_P(EveryTarget, ConvertsADocumentThatSaysThatItIsRejected)
{
    const Prepared source(L"/prepared/rejected.asm", [] {
        auto document = twoConfigurations();
        document->rejected = true;
        document->reason = "too old";
        return document;
    });
    convert(source.path(), place(GetParam().file));
    expectRejected(place(GetParam().file), "too old", L"stored-1@t");
    const std::wstring again = place("again-" + std::string(GetParam().file));
    convert(place(GetParam().file), again, L"Open \u00e4");
    expectRejected(again, "too old", L"open-1@t");
}

TEST_F(WrittenDocument, IsRejectedWhereTheSourceSaysSoWithoutAReason)
{
    const Prepared quiet(L"/prepared/quiet.asm", [] {
        auto document = twoConfigurations();
        document->assembly->rejected = true;
        return document;
    });
    convert(quiet.path(), place("a.ovdl"));
    expectRejected(place("a.ovdl"), "the document says itself that it is rejected", L"stored-1@t");
}

TEST_F(WrittenDocument, ConvertsARejectedPartInJson)
{
    folder.write("a.json",
                 "{\"ovdl\":1,\"document\":{\"part\":{\"rejected\":true},\"reason\":\"because\"}}");
    convert(place("a.json"), place("b.ovdl"));
    HostsRead read(place("b.ovdl"));
    EXPECT_EQ(read.result, OVXDLReader_Rejected);
    EXPECT_EQ(ovdl::lastReason(), "because");
    ASSERT_NE(read.document.partDocument, nullptr);
    EXPECT_TRUE(read.document.partDocument->isRejected());
}

TEST_P(EveryTarget, IsRejectedWhereTheObjectsAnswerSo)
{
    write(place(GetParam().file), *rejectedByItsAnswer());
    expectRejected(place(GetParam().file), "because", L"stored-1@t");
    const Prepared source(L"/prepared/answer.asm", rejectedByItsAnswer);
    convert(source.path(), place(GetParam().file));
    expectRejected(place(GetParam().file), "the document says itself that it is rejected", L"stored-1@t");
    convert(source.path(), place(GetParam().file), L"Open \u00e4");
    expectRejected(place(GetParam().file), "the document says itself that it is rejected", L"open-1@t");
}

TEST_P(EveryTarget, HasNoZeroCharacterInItsName)
{
    const std::wstring path = place(GetParam().file) + std::wstring(L"\0x.json", 7);
    std::string reason;
    EXPECT_FALSE(ovdl::writeDocument(path, *twoConfigurations(), reason));
    EXPECT_EQ(reason, "the file cannot be written (its name has a zero character)");
    const Prepared source(L"/prepared/two.asm", twoConfigurations);
    EXPECT_EQ(whyNotConverted(source.path(), path), reason);
    EXPECT_THAT(names(), IsEmpty());
}

TEST_P(EveryTarget, MayBeBarredByItsPlaceOrItsFolder)
{
    std::filesystem::create_directory(folder / GetParam().file);
    std::string reason;
    EXPECT_FALSE(ovdl::writeDocument(place(GetParam().file), *twoConfigurations(), reason));
    EXPECT_EQ(reason,
              "the file cannot be written (it is no regular file, or it or its folder may not be written)");
}

TEST_F(WrittenDocument, TellsTheDisplayListVersionOfAPreparedOne)
{
    const auto withVersion = [] {
        auto document = twoConfigurations();
        document->displayListVersion = 77;
        return document;
    };
    write(place("a.ovdl"), *withVersion());
    const Prepared source(L"/prepared/two.asm", withVersion);
    convert(source.path(), place("b.ovdl"));
    for (const char* name : {"a.ovdl", "b.ovdl"}) {
        const auto header = ovdl::readHeader(*openFile(folder / name).get());
        ASSERT_TRUE(header.has_value());
        EXPECT_EQ(header->documentVersion, 12345u);
        EXPECT_EQ(header->displayListVersion, 77u);
        CDispListsDoc document;
        auto* probe =
            suFileStorage::createStorage(place(name), 0, nullptr, nullptr, 0, 1, nullptr, nullptr);
        EXPECT_EQ(probe->loadVersion(), 12345u);
        EXPECT_EQ(probe->loadDLVersion(), 77u);
        EXPECT_NE(probe->isOpen(), 0);
    }
}

TEST_F(WrittenDocument, TellsProgressWhileItIsConverted)
{
    const Prepared source(L"/prepared/two.asm", twoConfigurations);
    std::vector<float> told;
    ovdl::setProgressHandler([&told](float done) { told.push_back(done); });
    convert(source.path(), place("a.ovdl"));
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.back(), 1.0f);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
}

// Asked any number of times: a cancellation at each of them leaves what was there.
TEST_F(WrittenDocument, CanBeCancelledAtEveryQuestion)
{
    const Prepared source(L"/prepared/two.asm", twoConfigurations);
    folder.write("a.ovdl", "old");
    int asked = 0;
    int wanted = 0;
    bool finished = false;
    for (; !finished && wanted < 100; ++wanted) {
        asked = 0;
        ovdl::setCancelHandler([&] { return asked++ == wanted; });
        std::string reason = "left alone";
        finished = ovdl::convertDocument(source.path(), place("a.ovdl"), L"", reason);
        EXPECT_EQ(reason, "");
        EXPECT_EQ(contentOf(folder / "a.ovdl") == "old", !finished) << wanted;
        EXPECT_THAT(names(), ElementsAre("a.ovdl"));
    }
    // In the read, before the document is written, behind it.
    EXPECT_GE(wanted, 4);
    EXPECT_TRUE(finished);
}

class CountingCallbacks final : public OVDL_Callbacks {
public:
    int CheckVersions(int first, int) override
    {
        versions.push_back(first);
        return 1;
    }
    std::vector<int> versions;
};

// A host that converts from within its own load is asked as in any read.
TEST_F(WrittenDocument, IsReadWithTheCallbacksThatAreRegistered)
{
    const Prepared source(L"/prepared/two.asm", twoConfigurations);
    CountingCallbacks callbacks;
    SetOVDL_Callbacks(&callbacks);
    convert(source.path(), place("a.ovdl"));
    convert(source.path(), place("b.ovdl"));
    SetOVDL_Callbacks(nullptr);
    EXPECT_THAT(callbacks.versions, ElementsAre(12345, 12345));
}

// ---------------------------------------------------------------------------------------- settings

class StoredSettings : public WrittenDocument {
protected:
    void putSettings(const std::string& file)
    {
        const Storage root = openFile(folder / file, true);
        const Storage store = createIn(*root.get(), L"ThirdPtyStore");
        put(*createIn(*store.get(), L"Raylume").get(), L"ShaderData", pattern(10000));
        put(*root.get(), L"Other", "of another program");
        ASSERT_RESULT(0, root->Commit(0));
    }

    std::string settingsOf(const std::string& file) const
    {
        const Storage root = openFile(folder / file);
        Storage store;
        if (root->OpenStorage(L"ThirdPtyStore", kReading, store.out()) < 0)
            return "none";
        return bytesOf(*openIn(*store.get(), L"Raylume").get(), L"ShaderData");
    }
};

TEST_F(StoredSettings, AreCarriedOver)
{
    write(place("a.ovdl"), *twoConfigurations());
    putSettings("a.ovdl");
    convert(place("a.ovdl"), place("b.ovdl"));
    EXPECT_EQ(settingsOf("b.ovdl"), pattern(10000));
    EXPECT_EQ(bytesOf(*openFile(folder / "b.ovdl").get(), L"Other"), "no stream");
    EXPECT_THAT(HostsRead(place("b.ovdl")).components(), ElementsAre(L"stored-1@t"));
}

TEST_F(StoredSettings, SurviveAConversionOntoTheSameFile)
{
    write(place("a.ovdl"), *twoConfigurations());
    putSettings("a.ovdl");
    convert(place("a.ovdl"), place("a.ovdl"), L"Open \u00e4");
    EXPECT_EQ(settingsOf("a.ovdl"), pattern(10000));
    EXPECT_THAT(HostsRead(place("a.ovdl")).components(), ElementsAre(L"open-1@t"));
}

TEST_F(StoredSettings, AreNotThoseOfTheFileThatIsReplaced)
{
    write(place("a.ovdl"), *twoConfigurations());
    write(place("b.ovdl"), *twoConfigurations());
    putSettings("b.ovdl");
    convert(place("a.ovdl"), place("b.ovdl"));
    EXPECT_EQ(settingsOf("b.ovdl"), "none");
}

TEST_F(StoredSettings, ComeFromTheFileThatAPreparedDocumentStandsFor)
{
    createFile(folder / "c.doc");
    putSettings("c.doc");
    const Prepared source(place("c.doc"), twoConfigurations);
    convert(source.path(), place("b.ovdl"));
    EXPECT_EQ(settingsOf("b.ovdl"), pattern(10000));
}

}  // namespace
