#include "raylume/load/ExtraData.h"

#include <cmath>
#include <optional>
#include <stdexcept>

#include "tests/load/FakeStorages.h"
#include "tests/load/LoadFixture.h"

namespace {

using namespace fakes;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr std::uint32_t kWriteFault = 0x8003001Du;

class ExtraData : public LoadFixture {
protected:
    ~ExtraData() override { session.reset(); }

    void registerFile(const std::wstring& path = L"a.doc")
    {
        g_storageRegistry[path] = new FakeFile(document.answers);
        recorder().reset();
    }

    std::uint32_t codeOf(const std::function<void()>& run)
    {
        try {
            run();
            return 0;
        } catch (const platform::OleError& error) {
            return error.code();
        }
    }

    Document document;
    FakeFile file{document.answers};
    std::optional<CDispListsDocRL> session{std::in_place};
};

// --- openAddinSubStorage

TEST_F(ExtraData, OpensTheStorageForReading)
{
    document.answers.second = &document.second;
    recorder().reset();
    EXPECT_EQ(openAddinSubStorage(*session, L"Raylume", file, 0), &document.raylume);
    EXPECT_THAT(lines(), ElementsAre("file.openSubStorage(ThirdPtyStore,0,0,0)", "file.subStorageInterface",
                                     "file.secondInterface", "second.AddRef", "file.endOpen",
                                     "third.OpenStorage(Raylume,10)"));
    EXPECT_EQ(session->thirdPartyStorage, &document.third);
    EXPECT_EQ(session->secondStorageInterface, &document.second);
    EXPECT_EQ(session->openStorageCount, 1);
    document.raylume.Release();
}

TEST_F(ExtraData, NeedsNoSecondInterface)
{
    EXPECT_EQ(openAddinSubStorage(*session, L"Raylume", file, 0), &document.raylume);
    EXPECT_EQ(session->secondStorageInterface, nullptr);
    document.raylume.Release();
}

TEST_F(ExtraData, OfADocumentWithoutThirdPartiesIsNullAndRaisesNothing)
{
    document.answers.thirdParty = nullptr;
    for (const int forWrite : {0, 1}) {
        recorder().reset();
        EXPECT_EQ(openAddinSubStorage(*session, L"Raylume", file, forWrite), nullptr);
        EXPECT_THAT(lines(),
                    ElementsAre("file.openSubStorage(ThirdPtyStore," + std::to_string(forWrite) + ",0,0)"));
        EXPECT_EQ(session->openStorageCount, 0);
    }
}

TEST_F(ExtraData, OfASubStorageWithoutInterfaceIsNullAndCountsNothing)
{
    document.answers.givesInterface = false;
    document.answers.second = &document.second;
    for (const std::uint32_t attempt : {1u, 2u}) {
        recorder().reset();
        EXPECT_EQ(openAddinSubStorage(*session, L"Raylume", file, 0), nullptr) << attempt;
        EXPECT_EQ(recorder().count("file.openSubStorage(ThirdPtyStore,0,0,0)"), 1u);
        EXPECT_EQ(recorder().count("file.endOpen"), 1u);
        EXPECT_EQ(lines().back(), "file.endOpen");
        EXPECT_EQ(session->thirdPartyStorage, nullptr);
        EXPECT_EQ(session->openStorageCount, 0);
        EXPECT_EQ(document.second.references, 1u);
    }
    session.reset();
    EXPECT_EQ(document.second.references, 0u);
}

TEST_F(ExtraData, WithoutTheStorageRaisesTheCodeOfTheOpen)
{
    for (const HResult result : {kNotFound, kAccessDenied, static_cast<HResult>(0xFFFFFFFFu)}) {
        document.third.openResult = result;
        recorder().reset();
        EXPECT_EQ(codeOf([&] { openAddinSubStorage(*session, L"Raylume", file, 0); }),
                  static_cast<std::uint32_t>(result));
        EXPECT_EQ(recorder().countBeginning("third.CreateStorage"), 0u);
        EXPECT_EQ(session->openStorageCount, 0);
    }
}

TEST_F(ExtraData, TakesAnyOtherResultForSuccess)
{
    document.third.storages[L"x"] = &document.raylume;
    document.third.openResult = 1;
    EXPECT_NE(openAddinSubStorage(*session, L"x", file, 0), nullptr);
    document.raylume.Release();
}

TEST_F(ExtraData, ReusesWhatTheSessionHasOpen)
{
    openAddinSubStorage(*session, L"Raylume", file, 0);
    recorder().reset();
    EXPECT_EQ(openAddinSubStorage(*session, L"Raylume", file, 0), &document.raylume);
    EXPECT_THAT(lines(), ElementsAre("third.OpenStorage(Raylume,10)"));
    EXPECT_EQ(session->openStorageCount, 2);
    EXPECT_EQ(document.third.references, 1u);
    document.raylume.Release();
    document.raylume.Release();
}

TEST_F(ExtraData, OpensForWritingWithTheWritingMode)
{
    recorder().reset();
    EXPECT_EQ(openAddinSubStorage(*session, L"Raylume", file, 5), &document.raylume);
    EXPECT_THAT(lines(), Contains("file.openSubStorage(ThirdPtyStore,5,0,0)"));
    EXPECT_EQ(lines().back(), "third.OpenStorage(Raylume,12)");
    document.raylume.Release();
}

TEST_F(ExtraData, MakesWhatIsMissingForWritingWhateverTheRemovalGives)
{
    document.third.storages.clear();
    document.third.destroyResult = kNotFound;
    EXPECT_EQ(openAddinSubStorage(*session, L"Raylume", file, 1), &document.raylume);
    EXPECT_THAT(recorder().linesBeginning({"third."}),
                ElementsAre("third.OpenStorage(Raylume,12)", "third.DestroyElement(Raylume)",
                            "third.CreateStorage(Raylume,12)"));
    EXPECT_EQ(session->openStorageCount, 1);
    document.raylume.Release();
}

TEST_F(ExtraData, RaisesWhenWhatIsMissingCannotBeMade)
{
    document.third.storages.clear();
    document.third.createResult = static_cast<HResult>(kWriteFault);
    EXPECT_EQ(codeOf([&] { openAddinSubStorage(*session, L"Raylume", file, 1); }), kWriteFault);
    EXPECT_EQ(session->openStorageCount, 0);
}

TEST_F(ExtraData, MakesNothingWhenTheOpenFailsOtherwise)
{
    document.third.openResult = kAccessDenied;
    EXPECT_EQ(codeOf([&] { openAddinSubStorage(*session, L"Raylume", file, 1); }), 0x80030005u);
    EXPECT_THAT(recorder().linesBeginning({"third."}), ElementsAre("third.OpenStorage(Raylume,12)"));
}

// --- openRaylumeStorage

TEST_F(ExtraData, GoesThroughTheRegistryTheVersionsAndTheRestores)
{
    registerFile();
    EXPECT_EQ(openRaylumeStorage(*session, L"a.doc"), &document.raylume);
    EXPECT_THAT(lines(),
                ElementsAre("file.isOpen", "file.isOpen", "file.loadVersion", "file.loadDLVersion",
                            "iRestoreVersionHistory", "iRestoreConfigManager",
                            "file.openSubStorage(ThirdPtyStore,0,0,0)", "file.subStorageInterface",
                            "file.secondInterface", "file.endOpen", "third.OpenStorage(Raylume,10)"));
    EXPECT_EQ(session->documentPath, L"a.doc");
}

TEST_F(ExtraData, OpensADocumentForReadingAlone)
{
    EXPECT_EQ(openRaylumeStorage(*session, L"new.doc"),
              nullptr);  // The recording reader's has nothing in it.
    EXPECT_EQ(recorder().count("suStructuredStorage(new.doc,0,null,null,0,1)"), 1u);
}

TEST_F(ExtraData, OfADocumentThatDoesNotOpenIsNull)
{
    answers().structuredStorageOpen = false;
    EXPECT_EQ(openRaylumeStorage(*session, L"new.doc"), nullptr);
    EXPECT_EQ(recorder().countBeginning("iRestore"), 0u);
    EXPECT_EQ(session->documentPath, L"new.doc");
}

TEST_F(ExtraData, OfADocumentThatClosesInBetweenIsNullAndNotOpenedAnew)
{
    document.answers.isOpen = {1, 0};
    registerFile();
    EXPECT_EQ(openRaylumeStorage(*session, L"a.doc"), nullptr);
    EXPECT_THAT(lines(), ElementsAre("file.isOpen", "file.isOpen"));
}

struct VersionCase {
    const char* name;
    unsigned long version;
    unsigned long listVersion;
    bool passes;
};

const VersionCase kVersions[] = {
    {"newest", 16000, 0, true},
    {"too_new", 16001, 0, false},
    {"too_new_whatever_the_list_version", 16001, 700, false},
    {"list_version_has_no_upper_limit", 12000, 20000, true},
    {"oldest", 629, 0, true},
    {"too_old", 628, 0, false},
    {"too_old_but_for_its_list_version", 100, 629, true},
    {"too_old_by_its_list_version", 10000, 628, false},
    {"no_version", 0, 0, false},
    {"unsigned", 0xFFFFFFFF, 0, false},
    {"unsigned_list_version", 700, 0xFFFFFFFF, true},
};

class ExtraDataVersion : public ExtraData, public testing::WithParamInterface<VersionCase> {};

TEST_P(ExtraDataVersion, LetsThroughWhatCanBeRead)
{
    document.answers.version = GetParam().version;
    document.answers.listVersion = GetParam().listVersion;
    registerFile();
    EXPECT_EQ(openRaylumeStorage(*session, L"a.doc") != nullptr, GetParam().passes);
    EXPECT_EQ(recorder().countBeginning("iRestore"), GetParam().passes ? 2u : 0u);
}

TEST_P(ExtraDataVersion, HoldsForTheRemovalToo)
{
    document.answers.version = GetParam().version;
    document.answers.listVersion = GetParam().listVersion;
    registerFile();
    eraseShaderData(*session, L"a.doc");
    EXPECT_EQ(recorder().count("raylume.DestroyElement(ShaderData)"), GetParam().passes ? 1u : 0u);
}

INSTANTIATE_TEST_SUITE_P(Rows, ExtraDataVersion, testing::ValuesIn(kVersions),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(ExtraData, DoesNotLookAtWhatTheRestoresGive)
{
    registerFile();
    recorder().answers.restoreResult = false;
    EXPECT_EQ(openRaylumeStorage(*session, L"a.doc"), &document.raylume);
    eraseShaderData(*session, L"a.doc");
    EXPECT_EQ(recorder().count("iRestoreVersionHistory"), 2u);
    EXPECT_EQ(recorder().count("iRestoreConfigManager"), 2u);
    EXPECT_EQ(recorder().count("raylume.DestroyElement(ShaderData)"), 1u);
}

TEST_F(ExtraData, CatchesWhatTheRestoresAndTheOpenRaise)
{
    registerFile();
    for (const char* const line :
         {"iRestoreVersionHistory", "iRestoreConfigManager", "file.openSubStorage", "third.OpenStorage"}) {
        recorder().reset();
        recorder().onCall(line, [] { throw 42; });
        EXPECT_EQ(openRaylumeStorage(*session, L"a.doc"), nullptr) << line;
    }
    recorder().reset();
    document.third.openResult = kNotFound;
    EXPECT_EQ(openRaylumeStorage(*session, L"a.doc"), nullptr);
    EXPECT_EQ(session->openStorageCount, 0);
}

TEST_F(ExtraData, DoesNotCatchWhatTheVersionRaises)
{
    document.answers.onVersion = [] { throw std::runtime_error("unreadable"); };
    registerFile();
    EXPECT_THROW(openRaylumeStorage(*session, L"a.doc"), std::runtime_error);
    EXPECT_THROW(eraseShaderData(*session, L"a.doc"), std::runtime_error);
}

// --- closeRaylumeStorage and the end of the session

TEST_F(ExtraData, ClosesByCommittingTwoOfThreeInterfaces)
{
    document.answers.second = &document.second;
    registerFile();
    openRaylumeStorage(*session, L"a.doc");
    document.spare.AddRef();
    session->spareStorageInterface = &document.spare;
    document.third.commitResult = static_cast<HResult>(kWriteFault);  // Nobody looks.
    recorder().reset();
    closeRaylumeStorage(*session);
    EXPECT_THAT(lines(), ElementsAre("third.Commit", "third.Release", "second.Commit", "second.Release",
                                     "spare.Release"));
    EXPECT_EQ(session->thirdPartyStorage, nullptr);
    EXPECT_EQ(session->secondStorageInterface, nullptr);
    EXPECT_EQ(session->spareStorageInterface, nullptr);
    EXPECT_EQ(session->openStorageCount, 0);
}

TEST_F(ExtraData, ClosesASpareStorageWithoutCommittingIt)
{
    registerFile();
    openRaylumeStorage(*session, L"a.doc");
    document.second.AddRef();
    session->spareStorageInterface = &document.second;
    recorder().reset();
    closeRaylumeStorage(*session);
    EXPECT_THAT(lines(), ElementsAre("third.Commit", "third.Release", "second.Release"));
}

TEST_F(ExtraData, ClosesASecondInterfaceThatIsNoStorage)
{
    document.answers.second = &document.spare;
    registerFile();
    openRaylumeStorage(*session, L"a.doc");
    recorder().reset();
    closeRaylumeStorage(*session);
    EXPECT_THAT(lines(), ElementsAre("third.Commit", "third.Release", "spare.Release"));
}

TEST_F(ExtraData, ClosesOnceForAllThatWasOpened)
{
    registerFile();
    openRaylumeStorage(*session, L"a.doc");
    openRaylumeStorage(*session, L"a.doc");
    EXPECT_EQ(session->openStorageCount, 2);
    closeRaylumeStorage(*session);
    EXPECT_EQ(session->openStorageCount, 1);
    recorder().reset();
    closeRaylumeStorage(*session);
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_EQ(session->openStorageCount, 1);
}

TEST_F(ExtraData, ClosesNothingWhenTheFirstInterfaceIsMissing)
{
    document.spare.AddRef();
    session->spareStorageInterface = &document.spare;
    recorder().reset();
    closeRaylumeStorage(*session);
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_EQ(session->openStorageCount, 0);
    EXPECT_EQ(session->spareStorageInterface, &document.spare);
}

TEST_F(ExtraData, EndsWithTheSession)
{
    document.answers.second = &document.second;
    registerFile();
    openRaylumeStorage(*session, L"a.doc");
    openRaylumeStorage(*session, L"a.doc");
    recorder().reset();
    session.reset();
    EXPECT_EQ(document.references(), 0u);
    EXPECT_EQ(lines().back(), "~CDispListsDoc");
    EXPECT_EQ(recorder().countBeginning("third.Commit"), 0u);
}

TEST_F(ExtraData, EndsWithTheSessionAfterAClose)
{
    registerFile();
    openRaylumeStorage(*session, L"a.doc");
    closeRaylumeStorage(*session);
    EXPECT_EQ(document.raylume.references, 1u);
    session.reset();
    EXPECT_EQ(document.references(), 0u);
}

// --- eraseShaderData

TEST_F(ExtraData, ErasesTheStreamAfterItsRelease)
{
    registerFile();
    eraseShaderData(*session, L"a.doc");
    EXPECT_THAT(
        recorder().linesBeginning({"iRestore", "file.openSubStorage", "third.", "raylume.", "settings."}),
        ElementsAre("iRestoreVersionHistory", "iRestoreConfigManager",
                    "file.openSubStorage(ThirdPtyStore,1,0,0)", "third.OpenStorage(Raylume,12)",
                    "raylume.OpenStream(ShaderData,10)", "settings.Release",
                    "raylume.DestroyElement(ShaderData)"));
    EXPECT_EQ(session->openStorageCount, 1);
    closeRaylumeStorage(*session);
    EXPECT_EQ(session->openStorageCount, 0);
    session.reset();
    EXPECT_EQ(document.references(), 0u);
}

TEST_F(ExtraData, ErasesInADocumentOpenedForWriting)
{
    eraseShaderData(*session, L"new.doc");
    EXPECT_EQ(recorder().count("suStructuredStorage(new.doc,1,null,null,0,1)"), 1u);
}

TEST_F(ExtraData, ErasesNothingWhenThereIsNoStream)
{
    document.raylume.streams.clear();
    registerFile();
    eraseShaderData(*session, L"a.doc");
    EXPECT_EQ(recorder().countBeginning("raylume.DestroyElement"), 0u);
    EXPECT_EQ(session->openStorageCount, 1);
}

TEST_F(ExtraData, ErasesNothingWithoutThirdParties)
{
    document.answers.thirdParty = nullptr;
    registerFile();
    eraseShaderData(*session, L"a.doc");
    EXPECT_EQ(recorder().countBeginning("raylume."), 0u);
    EXPECT_EQ(session->openStorageCount, 0);
}

TEST_F(ExtraData, ErasesNothingWhenARestoreRaises)
{
    registerFile();
    recorder().onCall("iRestoreConfigManager", [] { throw 42; });
    eraseShaderData(*session, L"a.doc");
    EXPECT_THAT(lines(), Not(Contains("file.openSubStorage(ThirdPtyStore,1,0,0)")));
}

TEST_F(ExtraData, TellsWhyItCouldNotErase)
{
    document.third.openResult = kAccessDenied;
    registerFile();
    EXPECT_EQ(codeOf([&] { eraseShaderData(*session, L"a.doc"); }), 0x80030005u);
}

// --- matrixToAngles; its cases stand with the shared formula

TEST_F(ExtraData, TakesARotationApart)
{
    const double general[9] = {0.25, 9, 9, 0.5, 9, 9, 0.125, -0.75, 0.375};
    double first = 7, second = 7, third = 7;
    matrixToAngles(general, first, second, third);
    EXPECT_EQ(first, std::atan2(-0.75, 0.375));
    EXPECT_EQ(second, -std::asin(0.125));
    EXPECT_EQ(third, std::atan2(0.5, 0.25));
    const double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    matrixToAngles(identity, first, second, third);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(third, 0);
}

}  // namespace
