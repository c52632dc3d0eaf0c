// Whole loads as a host makes them, of documents that were prepared in memory.
#include <gmock/gmock.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "raylume/platform/Errors.h"
#include "raylume/scene/dlBody.h"
#include "raylume/scene/dlFace.h"
#include "raylume/scene/dlModel.h"
#include "tests/reader/ReaderFixtures.h"
#include "tests/reader/TemporaryFolder.h"

namespace {

using fixtures::component;
using fixtures::Counted;
using fixtures::Prepared;
using fixtures::triangle;
using ovdl::PreparedDocument;
using testing::ElementsAre;

constexpr wchar_t kPath[] = L"folder/Engine.asm";
constexpr char kHostPath[] = "folder/Engine.asm";

std::unique_ptr<dlModel> load(const char* path = kHostPath)
{
    return std::unique_ptr<dlModel>(dlModel::ReadModel(path));
}

std::unique_ptr<PreparedDocument> trianglePart()
{
    auto document = fixtures::emptyPart();
    document->part->tessData = triangle(*document, 2.0f);
    document->version = 9000;
    return document;
}

// Two components that share a part, and a configuration "One" with the first of them alone.
std::unique_ptr<PreparedDocument> twoComponents()
{
    auto document = fixtures::emptyAssembly();
    auto* tess = triangle(*document, 2.0f);
    auto* first = component(*document, L"Bolt-1@Engine", tess, 0.0);
    auto* second = component(*document, L"Bolt-2@Engine", tess, 10.0);
    document->assembly->components = document->array<uoTempAssemblySHDData_c>({first, second});
    document->configurations[L"One"] = document->array<uoTempAssemblySHDData_c>({first});
    return document;
}

class Loading : public testing::Test {
protected:
    ~Loading() override
    {
        g_terminateLoad = false;
        ovdl::setCancelHandler({});
        ovdl::setProgressHandler({});
    }
};

TEST_F(Loading, GivesThePartOfAPartDocument)
{
    const Prepared prepared(kPath, trianglePart);
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_FALSE(model->loadRejected);
    EXPECT_TRUE(model->isPartDocument);
    EXPECT_EQ(model->modelName, "Engine.asm");
    EXPECT_EQ(model->documentVersion, 9000u);
    EXPECT_TRUE(model->versionGatePassed);
    ASSERT_EQ(model->instanceCount, 1);
    const dlPart* part = model->instances[0].part;
    ASSERT_NE(part, nullptr);
    EXPECT_EQ(part->name, "Engine.asm");
    ASSERT_EQ(part->bodyCount, 1);
    ASSERT_EQ(part->bodies[0].faceCount, 1);
    EXPECT_EQ(part->bodies[0].faces[0].vertexCount, 3);
    EXPECT_EQ(part->bodies[0].faces[0].triangleCount, 1);
    EXPECT_THAT(model->bbox.min, ElementsAre(0.0f, 0.0f, 0.0f));
    EXPECT_THAT(model->bbox.max, ElementsAre(2.0f, 2.0f, 0.0f));
}

TEST_F(Loading, GivesTheComponentsOfAnAssembly)
{
    const Prepared prepared(kPath, twoComponents);
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_FALSE(model->isPartDocument);
    EXPECT_EQ(model->documentVersion, 12000u);
    ASSERT_EQ(model->instanceCount, 2);
    EXPECT_EQ(model->instances[0].name, "Bolt-1@Engine");
    EXPECT_EQ(model->instances[1].name, "Bolt-2@Engine");
    EXPECT_EQ(model->instances[0].part, model->instances[1].part);
    EXPECT_EQ(model->instances[1].xform.m[12], 10.0f);
    ASSERT_NE(model->assemblyRoot, nullptr);
    EXPECT_EQ(model->assemblyRoot->name, "Engine");
    EXPECT_EQ(model->assemblyRoot->instanceCount, 2);
    EXPECT_EQ(model->singletonCount, 0);
    std::vector<dlPart*> parts;
    model->getAllDLParts(parts);
    EXPECT_EQ(parts.size(), 1u);
    EXPECT_THAT(model->bbox.max, ElementsAre(12.0f, 2.0f, 0.0f));
}

TEST_F(Loading, NeedsNothingOfTheDocumentAfterwards)
{
    int alive = 0;
    std::unique_ptr<dlModel> model;
    {
        const Prepared prepared(kPath, [&alive] {
            auto document = twoComponents();
            document->own<Counted>(alive);
            return document;
        });
        model = load();
    }
    EXPECT_EQ(alive, 0);
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->instances[0].part->bodies[0].faces[0].vertices[6], 2.0f);
}

TEST_F(Loading, MakesTheDocumentOnce)
{
    int made = 0;
    const Prepared prepared(kPath, [&made] {
        ++made;
        return trianglePart();
    });
    load();
    EXPECT_EQ(made, 1);
    load();
    EXPECT_EQ(made, 2);
}

TEST_F(Loading, GivesNullForAPathWithoutADocument)
{
    EXPECT_EQ(load("folder/unknown.asm"), nullptr);
    EXPECT_EQ(ovdl::lastReason(), "there is no such file");
    EXPECT_EQ(load(""), nullptr);
    EXPECT_EQ(load(nullptr), nullptr);
}

TEST_F(Loading, GivesNullForADocumentThatCannotBeOpened)
{
    const Prepared prepared(kPath, [] {
        auto document = trianglePart();
        document->openable = false;
        document->reason = "locked by another user";
        return document;
    });
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(ovdl::lastReason(), "locked by another user");
}

TEST_F(Loading, GivesAnEmptyModelForARejectedDocument)
{
    const Prepared prepared(kPath, [] {
        auto document = twoComponents();
        document->rejected = true;
        document->reason = "from the future";
        return document;
    });
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_TRUE(model->loadRejected);
    EXPECT_EQ(model->instanceCount, 0);
    EXPECT_EQ(model->instances, nullptr);
    EXPECT_EQ(model->documentVersion, 0xFFFFFFFFu);
    EXPECT_FALSE(model->versionGatePassed);
    EXPECT_EQ(model->modelName, "Engine.asm");
    EXPECT_NE(model->assemblyRoot, nullptr);
    EXPECT_EQ(model->singletonCount, 0);
    EXPECT_EQ(ovdl::lastReason(), "from the future");
}

TEST_F(Loading, GivesAnEmptyModelForADocumentOfNeitherKind)
{
    const Prepared prepared(kPath, [] { return std::make_unique<PreparedDocument>(); });
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_TRUE(model->loadRejected);
}

TEST_F(Loading, TakesThePartOfADocumentOfBothKinds)
{
    const Prepared prepared(kPath, [] {
        auto document = twoComponents();
        document->part = std::make_unique<OVDLPartDocument>();
        document->part->tessData = triangle(*document, 1.0f);
        return document;
    });
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_TRUE(model->isPartDocument);
    EXPECT_EQ(model->instanceCount, 1);
}

TEST_F(Loading, IgnoresTheResultOfTheRead)
{
    const Prepared prepared(kPath, [] {
        auto document = trianglePart();
        document->result = OVXDLReader_NotOpened;
        return document;
    });
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->instanceCount, 1);
}

struct GateCase {
    const char* name;
    std::uint32_t version;
    bool passed;
};

class VersionGate : public Loading, public testing::WithParamInterface<GateCase> {};

TEST_P(VersionGate, ComparesWithoutSign)
{
    const Prepared prepared(kPath, [] {
        auto document = trianglePart();
        document->version = GetParam().version;
        return document;
    });
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->versionGatePassed, GetParam().passed);
    EXPECT_EQ(model->documentVersion, GetParam().version);
}

const GateCase kGates[] = {
    {"version_0", 0, false},         {"version_3869", 3869, false},
    {"version_3870", 3870, true},    {"the_sign_bit", 0x80000000u, true},
    {"all_bits", 0xFFFFFFFFu, true},
};
INSTANTIATE_TEST_SUITE_P(Rows, VersionGate, testing::ValuesIn(kGates),
                         [](const auto& row) { return row.param.name; });

// ------------------------------------------------------------------------ progress and cancelling

TEST_F(Loading, ShowsTheProgressOfTheReadAlone)
{
    const Prepared prepared(kPath, trianglePart);
    std::vector<float> shares;
    ovdl::setProgressHandler([&shares](float done) { shares.push_back(done); });
    EXPECT_NE(load(), nullptr);
    EXPECT_THAT(shares, ElementsAre(0.0f, 1.0f));
}

TEST_F(Loading, GivesNullWhenTheHostCancelsAndSetsTheFlag)
{
    int alive = 0;
    const Prepared prepared(kPath, [&alive] {
        auto document = twoComponents();
        document->own<Counted>(alive);
        return document;
    });
    ovdl::setCancelHandler([] { return g_terminateLoad = true; });
    EXPECT_EQ(load(), nullptr);
    EXPECT_TRUE(g_terminateLoad);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(ovdl::lastReason(), "");
}

TEST_F(Loading, GivesAnEmptyAssemblyWhenTheHostCancelsWithoutTheFlag)
{
    const Prepared prepared(kPath, trianglePart);
    ovdl::setCancelHandler([] { return true; });
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_FALSE(model->loadRejected);
    EXPECT_FALSE(model->isPartDocument);
    EXPECT_EQ(model->instanceCount, 0);
    EXPECT_NE(model->instances, nullptr);
    EXPECT_FALSE(g_terminateLoad);
}

TEST_F(Loading, GivesNullWhileTheFlagIsLeftOnButForRejectedDocuments)
{
    g_terminateLoad = true;
    const Prepared prepared(kPath, trianglePart);
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(load(), nullptr);
    const Prepared rejected(kPath, [] {
        auto document = trianglePart();
        document->rejected = true;
        return document;
    });
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_TRUE(model->loadRejected);
    EXPECT_TRUE(g_terminateLoad);
}

TEST_F(Loading, CallsNobodyAfterTheRead)
{
    struct Watched : uoTempPartTessData_c {
        int getNumBodies() const override
        {
            inTranslation = true;
            return uoTempPartTessData_c::getNumBodies();
        }
        mutable bool inTranslation = false;
    };
    bool asked = false;
    const Watched* watched = nullptr;
    const Prepared prepared(kPath, [&watched] {
        auto document = fixtures::emptyPart();
        auto* tess = document->own<Watched>();
        tess->bodies = triangle(*document, 1.0f)->bodies;
        document->part->tessData = tess;
        watched = tess;
        return document;
    });
    ovdl::setCancelHandler([&] {
        EXPECT_FALSE(watched->inTranslation);
        asked = true;
        return false;
    });
    EXPECT_NE(load(), nullptr);
    EXPECT_TRUE(asked);
}

// ----------------------------------------------------------------------------------- configurations

// Sets the folder for temporary files and writes the configuration file into it.
class ConfigurationFile {
public:
    explicit ConfigurationFile(const std::string& text)
    {
        if (const char* value = std::getenv("temp"))
            before_ = value;
        folder_.write("LDRConfigName.txt", text);
        setenv("temp", folder_.path().c_str(), 1);
    }
    ConfigurationFile(const ConfigurationFile&) = delete;
    ConfigurationFile& operator=(const ConfigurationFile&) = delete;
    ~ConfigurationFile()
    {
        if (before_)
            setenv("temp", before_->c_str(), 1);
        else
            unsetenv("temp");
    }

private:
    fixtures::TemporaryFolder folder_;
    std::optional<std::string> before_;
};

struct ConfigurationCase {
    const char* name;
    const char* text;
    int instances;
};

const ConfigurationCase kConfigurations[] = {
    {"a_known_name_chooses_its_components", "x\tOne\n", 1},
    {"an_unknown_name_leaves_the_default", "x\tTwo\n", 2},
    {"names_have_letter_case", "x\tone\n", 2},
    {"names_keep_their_blanks", "x\tOne \n", 2},
    {"an_empty_name_leaves_the_default", "x\t\n", 2},
    {"no_tab_leaves_the_default", "One\n", 2},
};

class Configuration : public Loading, public testing::WithParamInterface<ConfigurationCase> {};

TEST_P(Configuration, ComesFromTheFileInTheTemporaryFolder)
{
    const ConfigurationFile file(GetParam().text);
    const Prepared prepared(kPath, twoComponents);
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->instanceCount, GetParam().instances);
}

INSTANTIATE_TEST_SUITE_P(Rows, Configuration, testing::ValuesIn(kConfigurations),
                         [](const auto& row) { return row.param.name; });

// ------------------------------------------------------------------------------------ failures

TEST_F(Loading, RaisesInvalidArgumentForArraysThatContradictThemselvesAndReleasesEverything)
{
    struct Lying : uoTempPartTessData_c {
        int getNumBodies() const override { return 2; }
    };
    int alive = 0;
    const Prepared prepared(kPath, [&alive] {
        auto document = fixtures::emptyPart();
        auto* tess = document->own<Lying>();
        tess->bodies = triangle(*document, 1.0f)->bodies;
        document->part->tessData = tess;
        document->own<Counted>(alive);
        return document;
    });
    try {
        load();
        ADD_FAILURE() << "nothing raised";
    } catch (const platform::ComError& error) {
        EXPECT_EQ(error.code(), 0x80070057u);
    }
    EXPECT_EQ(alive, 0);
}

TEST_F(Loading, RaisesWhatTheHostsHandlerRaisesAndGoesOnWithTheNextLoad)
{
    const Prepared prepared(kPath, trianglePart);
    ovdl::setProgressHandler([](float) { throw std::runtime_error("the host's own"); });
    EXPECT_THROW(load(), std::runtime_error);
    ovdl::setProgressHandler({});
    EXPECT_NE(load(), nullptr);
}

TEST_F(Loading, LetsOutOfMemoryThrough)
{
    const Prepared prepared(kPath, []() -> std::unique_ptr<PreparedDocument> { throw std::bad_alloc(); });
    EXPECT_THROW(load(), std::bad_alloc);
}

}  // namespace
