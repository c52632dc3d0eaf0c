// Whole loads through the real rooms; the reader alone is the recording one.
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

#include "raylume/load/StorageRegistry.h"
#include "raylume/platform/Messages.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"
#include "tests/load/Builders.h"
#include "tests/recording_reader/RecordingReader.h"

namespace {

using build::Component;
using build::Components;
using testing::ElementsAre;
using testing::IsEmpty;

class LoadedModel : public testing::Test {
protected:
    LoadedModel()
    {
        recorder().reset();
        g_terminateLoad = false;
        std::string pattern = (std::filesystem::temp_directory_path() / "raylume-model-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        for (const char* variable : {"temp", "TEMP", "tmp", "TMP"})
            unsetenv(variable);
        platform::setDebugOutputHandler([this](const std::wstring& text) { traces.push_back(text); });
    }

    ~LoadedModel() override
    {
        platform::setDebugOutputHandler(nullptr);
        std::filesystem::remove_all(folder);
        recorder().reset();
        g_terminateLoad = false;
    }

    static recording::Recorder& recorder() { return recording::Recorder::get(); }

    void givePart(build::Part& part)
    {
        partDocument.tessData = &part;
        recorder().answers.partDocument = &partDocument;
    }

    void giveAssembly(Components& components)
    {
        assemblyDocument.components = components;
        recorder().answers.assemblyDocument = &assemblyDocument;
    }

    static std::unique_ptr<dlModel> load(const std::string& path = "folder/a.doc")
    {
        return std::unique_ptr<dlModel>(dlModel::ReadModel(path.c_str()));
    }

    // A temporary folder of its own with a file that names that configuration.
    std::string folderNaming(const std::string& name)
    {
        const std::string made = folder + "/" + name;
        std::filesystem::create_directory(made);
        std::ofstream(made + "/LDRConfigName.txt") << "chosen by the host\t" << name << "\n";
        return made;
    }

    std::string folder;
    std::vector<std::wstring> traces;
    build::TrianglePart bolt;
    build::TrianglePart nut{100.0f};
    OVDLPartDocument partDocument;
    OVDLAssemblyDocument assemblyDocument;
};

TEST_F(LoadedModel, OfAPartDocumentShowsThePartOnce)
{
    givePart(bolt.part);
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_TRUE(model->isPartDocument);
    EXPECT_EQ(model->instanceCount, 1);
    EXPECT_EQ(model->singletonCount, 1);
    EXPECT_EQ(model->modelName, "a.doc");
    std::vector<dlPart*> parts;
    model->getAllDLParts(parts);
    ASSERT_EQ(parts.size(), 1u);
    EXPECT_EQ(parts[0]->name, model->modelName);
    EXPECT_EQ(parts[0]->instanceUseCount, 0);
    EXPECT_EQ(model->instances[0].leafName, "root");
    EXPECT_EQ(model->instances[0].node, model->assemblyRoot);
    EXPECT_EQ(model->bbox.min[0], 0.0f);
    EXPECT_EQ(model->bbox.max[2], 22.0f);
    EXPECT_EQ(model->scene.getFloorOrient(), 2);
}

TEST_F(LoadedModel, OfAPartWithoutBodiesHasAnInstanceThatShowsNothing)
{
    build::Part empty;
    givePart(empty);
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->instanceCount, 1);
    EXPECT_EQ(model->instances[0].part->bodyCount, 0);
    EXPECT_EQ(model->bbox.isSet(), 0);
}

TEST_F(LoadedModel, OfAnAssemblyHasTreeBoxAndSingletons)
{
    Component first(L"sub-1@top/bolt-1@sub", &bolt.part);
    Component second(L"sub-1@top/bolt-2@sub", &bolt.part);
    Component third(L"nut-1@top", &nut.part);
    Components components{&first, &second.at(-10, 0, 0), &third};
    giveAssembly(components);
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_FALSE(model->isPartDocument);
    ASSERT_EQ(model->instanceCount, 3);
    EXPECT_EQ(model->singletonCount, 1);
    EXPECT_EQ(model->assemblyRoot->name, "top");
    EXPECT_EQ(model->assemblyRoot->subtreeCount, 3);
    EXPECT_EQ(model->instances[1].node->path, "sub-1@top");
    EXPECT_EQ(model->instances[1].leafName, "bolt-2@sub");
    EXPECT_EQ(model->instances[0].part->shortName, "bolt");
    EXPECT_EQ(model->instances[0].part->instanceUseCount, 2);
    EXPECT_EQ(model->bbox.min[0], -10.0f);
    EXPECT_EQ(model->bbox.max[0], 102.0f);
    EXPECT_EQ(model->componentXforms.size(), 3u);
}

TEST_F(LoadedModel, OfARejectedDocumentHasAnEmptyTreeAndItsName)
{
    partDocument.rejected = true;
    givePart(bolt.part);
    const auto model = load("folder/a.doc");
    ASSERT_NE(model, nullptr);
    EXPECT_TRUE(model->loadRejected);
    EXPECT_EQ(model->singletonCount, 0);
    EXPECT_EQ(model->modelName, "a.doc");
    EXPECT_TRUE(model->animationTracks.empty());
    ASSERT_NE(model->assemblyRoot, nullptr);
    EXPECT_EQ(model->assemblyRoot->name, "");
    EXPECT_EQ(model->assemblyRoot->path, "");
    EXPECT_EQ(model->assemblyRoot->instanceCount, 0);
    EXPECT_EQ(model->assemblyRoot->subtreeCount, 0);
    EXPECT_NE(model->assemblyRoot->instances, nullptr);
    EXPECT_EQ(model->bbox.isSet(), 0);
}

TEST_F(LoadedModel, TracesABodyWithAMaterialThroughTheLog)
{
    build::Visual visual(L"v", 1, 0);
    bolt.body.bodyVizProps[0] = &visual;
    givePart(bolt.part);
    const auto model = load();
    EXPECT_THAT(traces, ElementsAre(L"BodyProp not null!\r\n"));
}

TEST_F(LoadedModel, TracesNothingElse)
{
    givePart(bolt.part);
    const auto model = load();
    EXPECT_THAT(traces, IsEmpty());
}

TEST_F(LoadedModel, GroupsEqualOverridesOfDifferentObjects)
{
    build::Visual red(L"paint", 1, 0);
    build::Visual redAgain(L"paint", 1, 0);
    build::Visual blue(L"paint", 1, 0);
    red.colorRef = redAgain.colorRef = 0x0000FF;
    blue.colorRef = 0xFF0000;
    Component first(L"c-1@a", &bolt.part);
    Component second(L"c-2@a", &bolt.part);
    Component third(L"c-3@a", &bolt.part);
    first.vizProps = &red;
    second.vizProps = &redAgain;
    third.vizProps = &blue;
    Components components{&first, &second, &third};
    giveAssembly(components);
    const auto model = load();
    ASSERT_NE(model, nullptr);
    const auto& groups = model->instances[0].part->associatedInstances;
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_THAT(groups.at(&model->instances[0]), ElementsAre(&model->instances[0], &model->instances[1]));
}

struct FolderCase {
    const char* name;
    bool temp;
    bool tmp;
    const char* chosen;  // Null: the document's own array.
};

class ConfigurationFolder : public LoadedModel, public testing::WithParamInterface<FolderCase> {};

TEST_P(ConfigurationFolder, IsTheTemporaryOneOfTheEnvironment)
{
    Component standard(L"standard-1@a", &bolt.part);
    Component fromTemp(L"fromTemp-1@a", &bolt.part);
    Component fromTmp(L"fromTmp-1@a", &bolt.part);
    Components standardOnes{&standard};
    Components tempOnes{&fromTemp};
    Components tmpOnes{&fromTmp};
    giveAssembly(standardOnes);
    recorder().answers.configurations = {{L"fromTemp", &tempOnes}, {L"fromTmp", &tmpOnes}};
    const std::string tempFolder = folderNaming("fromTemp");
    const std::string tmpFolder = folderNaming("fromTmp");
    if (GetParam().temp)
        setenv("temp", tempFolder.c_str(), 1);
    if (GetParam().tmp)
        setenv("tmp", tmpFolder.c_str(), 1);
    const auto model = load();
    ASSERT_NE(model, nullptr);
    ASSERT_EQ(model->instanceCount, 1);
    EXPECT_EQ(model->instances[0].name,
              std::string(GetParam().chosen ? GetParam().chosen : "standard") + "-1@a");
    const auto entries = std::filesystem::directory_iterator(tempFolder);
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);  // No folder of this process in it.
    for (const char* variable : {"temp", "tmp"})
        unsetenv(variable);
}

const FolderCase kFolders[] = {
    {"temp_is_preferred", true, true, "fromTemp"},
    {"temp_alone", true, false, "fromTemp"},
    {"tmp_alone", false, true, "fromTmp"},
    {"neither_gives_the_documents_own_array", false, false, nullptr},
};
INSTANTIATE_TEST_SUITE_P(Rows, ConfigurationFolder, testing::ValuesIn(kFolders),
                         [](const auto& row) { return row.param.name; });

}  // namespace
