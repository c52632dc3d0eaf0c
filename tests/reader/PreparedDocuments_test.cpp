#include "reader/PreparedDocuments.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include "ReaderFixtures.h"
#include "TemporaryFolder.h"

namespace {

using fixtures::Counted;
using fixtures::emptyAssembly;
using fixtures::emptyPart;
using fixtures::Parting;
using fixtures::Prepared;
using fixtures::readInto;
using ovdl::PreparedDocument;
using testing::ElementsAre;

constexpr wchar_t kPath[] = L"prepared/document";

bool probe(const std::wstring& path)
{
    return suFileStorage::createStorage(path, 0, nullptr, nullptr, 0, 1, nullptr, nullptr)->isOpen() != 0;
}

// Counts what a factory makes and what of it is alive.
struct Counts {
    int made = 0;
    int alive = 0;

    ovdl::DocumentFactory factory()
    {
        return [this] {
            ++made;
            auto document = emptyPart();
            document->own<Counted>(alive);
            return document;
        };
    }
};

TEST(PreparedDocument, HasTheseDefaults)
{
    const PreparedDocument document;
    EXPECT_EQ(document.part, nullptr);
    EXPECT_EQ(document.assembly, nullptr);
    EXPECT_EQ(document.version, 12000u);
    EXPECT_TRUE(document.openable);
    EXPECT_FALSE(document.rejected);
    EXPECT_EQ(document.result, OVXDLReader_Loaded);
    EXPECT_EQ(document.reason, "");
}

TEST(PreparedDocument, DestroysTheDocumentsFirstAndTheNewestOfWhatItOwns)
{
    struct Part : OVDLPartDocument {
        explicit Part(std::vector<std::string>& list) : parting(list, "part") {}
        Parting parting;
    };
    std::vector<std::string> partings;
    auto document = std::make_unique<PreparedDocument>();
    document->own<Parting>(partings, "older");
    document->part = std::make_unique<Part>(partings);
    document->own<Parting>(partings, "newer");
    document.reset();
    EXPECT_THAT(partings, ElementsAre("part", "newer", "older"));
}

TEST(PreparedDocument, KeepsWhatItsArraysAndViewsPointAt)
{
    PreparedDocument document;
    auto* body = document.own<uoTempBodyTessData_c>();
    const auto array = document.array<uoTempBodyTessData_c>({body, nullptr});
    const auto view = document.view<float>({1.0f, 2.0f, 3.0f});
    EXPECT_EQ(array.count, 2);
    EXPECT_EQ(array.at(0), body);
    EXPECT_EQ(array.at(1), nullptr);
    EXPECT_EQ(view.count, 3);
    EXPECT_EQ(view.data[2], 3.0f);
    EXPECT_EQ(document.view<float>({}).count, 0);
}

TEST(PreparedDocument, ReleasesEverythingWithTheDocumentObject)
{
    Counts counts;
    const Prepared prepared(kPath, counts.factory());
    {
        CDispListsDoc document;
        readInto(document, kPath);
        EXPECT_EQ(counts.alive, 1);
    }
    EXPECT_EQ(counts.alive, 0);
}

TEST(PreparedDocument, OutlivesItsPlaceInTheTable)
{
    Counts counts;
    CDispListsDoc document;
    {
        const Prepared prepared(kPath, counts.factory());
        readInto(document, kPath);
    }
    EXPECT_EQ(counts.alive, 1);
    EXPECT_FALSE(document.partDocument->isRejected());
}

TEST(PreparedProbe, MakesTheDocumentThatTheReadThenGets)
{
    Counts counts;
    const Prepared prepared(kPath, counts.factory());
    CDispListsDoc document;
    EXPECT_TRUE(probe(kPath));
    EXPECT_EQ(counts.made, 1);
    readInto(document, kPath);
    EXPECT_EQ(counts.made, 1);
    EXPECT_EQ(counts.alive, 1);
}

TEST(PreparedProbe, MakesNothingAnewWhenAskedAgain)
{
    Counts counts;
    const Prepared prepared(kPath, counts.factory());
    CDispListsDoc document;
    auto* storage = suFileStorage::createStorage(kPath, 0, nullptr, nullptr, 0, 1, nullptr, nullptr);
    EXPECT_EQ(counts.made, 0);
    EXPECT_NE(storage->isOpen(), 0);
    EXPECT_NE(storage->isOpen(), 0);
    EXPECT_TRUE(probe(kPath));
    EXPECT_EQ(counts.made, 1);
    readInto(document, kPath);
    EXPECT_NE(storage->isOpen(), 0);
    EXPECT_EQ(counts.made, 1);
}

TEST(PreparedProbe, IsLetGoWithTheNextDocumentObject)
{
    Counts counts;
    const Prepared prepared(kPath, counts.factory());
    EXPECT_TRUE(probe(kPath));
    EXPECT_EQ(counts.alive, 1);
    CDispListsDoc document;
    EXPECT_EQ(counts.alive, 0);
    readInto(document, kPath);
    EXPECT_EQ(counts.made, 2);
}

TEST(PreparedProbe, IsLetGoWhenTheDocumentIsForgottenOrReplaced)
{
    Counts counts;
    CDispListsDoc document;
    {
        const Prepared prepared(kPath, counts.factory());
        EXPECT_TRUE(probe(kPath));
    }
    EXPECT_EQ(counts.alive, 0);
    ovdl::prepareDocument(kPath, counts.factory());
    EXPECT_TRUE(probe(kPath));
    const Prepared later(kPath, emptyAssembly);
    EXPECT_EQ(counts.alive, 0);
    readInto(document, kPath);
    EXPECT_EQ(document.partDocument, nullptr);
    EXPECT_NE(document.assemblyDocument, nullptr);
}

TEST(PreparedProbe, ServesOneReadOnly)
{
    Counts counts;
    const Prepared prepared(kPath, counts.factory());
    CDispListsDoc document;
    EXPECT_TRUE(probe(kPath));
    readInto(document, kPath);
    readInto(document, kPath);
    EXPECT_EQ(counts.made, 2);
}

TEST(PreparedProbeDeathTest, IsLetGoAtTheEndOfTheProcess)
{
    struct LastWords {
        ~LastWords() { std::fputs("released at the end", stderr); }
    };
    const auto endAfterProbe = [] {
        ovdl::prepareDocument(kPath, [] {
            auto document = emptyPart();
            document->own<LastWords>();
            return document;
        });
        probe(kPath);
        std::exit(0);
    };
    EXPECT_EXIT(endAfterProbe(), testing::ExitedWithCode(0), "released at the end");
}

TEST(PreparedProbe, SaysNoForADocumentThatCannotBeOpened)
{
    int made = 0;
    const Prepared prepared(kPath, [&made] {
        ++made;
        auto document = emptyPart();
        document->openable = false;
        document->reason = "in use by\nsomebody else";
        return document;
    });
    EXPECT_FALSE(probe(kPath));
    EXPECT_EQ(ovdl::lastReason(), "in use by somebody else");
    EXPECT_EQ(made, 1);
    CDispListsDoc document;
    EXPECT_EQ(readInto(document, kPath).result, OVXDLReader_NotOpened);
    EXPECT_EQ(document.partDocument, nullptr);
    EXPECT_EQ(ovdl::lastReason(), "in use by somebody else");
}

struct FactoryCase {
    const char* name;
    ovdl::DocumentFactory factory;
    const char* reason;
};

const FactoryCase kFactories[] = {
    {"null", [] { return nullptr; }, "the prepared document could not be made"},
    {"none", {}, "the prepared document could not be made"},
    {"raising", []() -> std::unique_ptr<PreparedDocument> { throw std::runtime_error("no such recipe"); },
     "no such recipe"},
    {"raising_something_else", []() -> std::unique_ptr<PreparedDocument> { throw 3; },
     "the prepared document could not be made"},
    {"not_openable_without_a_reason",
     [] {
         auto document = emptyPart();
         document->openable = false;
         return document;
     },
     "the prepared document cannot be opened"},
};

class FailingFactory : public testing::TestWithParam<FactoryCase> {};

TEST_P(FailingFactory, IsADocumentThatCannotBeOpened)
{
    const Prepared prepared(kPath, GetParam().factory);
    EXPECT_FALSE(probe(kPath));
    EXPECT_EQ(ovdl::lastReason(), GetParam().reason);
    CDispListsDoc document;
    EXPECT_EQ(readInto(document, kPath).result, OVXDLReader_NotOpened);
    EXPECT_EQ(document.partDocument, nullptr);
    EXPECT_EQ(document.assemblyDocument, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Rows, FailingFactory, testing::ValuesIn(kFactories),
                         [](const auto& row) { return row.param.name; });

TEST(PreparedFactory, LetsOutOfMemoryThrough)
{
    const Prepared prepared(kPath, []() -> std::unique_ptr<PreparedDocument> { throw std::bad_alloc(); });
    EXPECT_THROW(probe(kPath), std::bad_alloc);
}

TEST(PreparedFactory, MayPutAnotherDocumentInItsOwnPlace)
{
    const Prepared prepared(kPath, [] {
        ovdl::prepareDocument(kPath, emptyAssembly);
        return emptyPart();
    });
    CDispListsDoc document;
    readInto(document, kPath);
    EXPECT_NE(document.partDocument, nullptr);
    readInto(document, kPath);
    EXPECT_EQ(document.partDocument, nullptr);
    EXPECT_NE(document.assemblyDocument, nullptr);
}

TEST(PreparedFactory, LivesUntilItIsForgotten)
{
    const auto kept = std::make_shared<int>(0);
    ovdl::prepareDocument(kPath, [kept] { return emptyPart(); });
    EXPECT_EQ(kept.use_count(), 2);
    ovdl::forgetDocument(kPath);
    EXPECT_EQ(kept.use_count(), 1);
}

TEST(PreparedPath, IsComparedExactly)
{
    const Prepared prepared(L"Folder/Part.x", emptyPart);
    EXPECT_TRUE(probe(L"Folder/Part.x"));
    for (const wchar_t* other : {L"folder/Part.x", L"Folder\\Part.x", L"Folder//Part.x", L"./Folder/Part.x",
                                 L"Folder/Part.x ", L""})
        EXPECT_FALSE(probe(other)) << other;
}

TEST(PreparedPath, TakesAnyText)
{
    for (const wchar_t* path : {L"", L" ", L"a\nb", L"\u6a5f\u68b0"}) {
        const Prepared prepared(path, emptyPart);
        EXPECT_TRUE(probe(path));
    }
}

TEST(PreparedPath, TakesThePlaceOfAFile)
{
    const fixtures::TemporaryFolder folder;
    const auto file = folder.write("part.glb", "glTF, but not really");
    {
        const Prepared prepared(file.wstring(), emptyPart);
        CDispListsDoc document;
        EXPECT_EQ(readInto(document, file.wstring()).result, OVXDLReader_Loaded);
        EXPECT_NE(document.partDocument, nullptr);
    }
    {
        const Prepared prepared(file.wstring(), [] { return nullptr; });
        EXPECT_FALSE(probe(file.wstring()));
        EXPECT_EQ(ovdl::lastReason(), "the prepared document could not be made");
    }
}

TEST(PreparedPath, IsFreeAgainOnceForgotten)
{
    ovdl::prepareDocument(kPath, emptyPart);
    ovdl::forgetDocument(kPath);
    EXPECT_FALSE(probe(kPath));
    ovdl::forgetDocument(kPath);
    ovdl::forgetDocument(L"prepared/never there");
    EXPECT_FALSE(probe(kPath));
}

TEST(PreparedPath, HoldsTheLatestDocument)
{
    const Prepared earlier(kPath, emptyPart);
    const Prepared later(kPath, emptyAssembly);
    CDispListsDoc document;
    readInto(document, kPath);
    EXPECT_EQ(document.partDocument, nullptr);
    EXPECT_NE(document.assemblyDocument, nullptr);
}

}  // namespace
