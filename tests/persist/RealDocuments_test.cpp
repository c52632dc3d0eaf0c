// Settings in real compound files, through the shared libraries as a host has them.
#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>

#include "raylume/persist/RLData.h"
#include "raylume/platform/Errors.h"
#include "tests/persist/StreamBuilder.h"
#include "tests/persist/ViewsFolder.h"
#include "tests/platform/CompoundFileTools.h"
#include "tools/shaderdata/Settings.h"
#include "tools/shaderdata/SettingsDocument.h"

namespace {

using namespace compound_tests;
using namespace persist_tests;

class RealDocuments : public testing::Test {
protected:
    std::unique_ptr<RLData> read(const std::string& file) const
    {
        return std::unique_ptr<RLData>(RLData::ReadRaylumeData((folder / file).c_str()));
    }

    void put(const std::string& file, const std::string& bytes) const
    {
        shaderdata::putSettings(folder / file, bytes);
    }

    TemporaryFolder folder;
    ViewsFolder views;
};

TEST_F(RealDocuments, OfEveryVersionAreRead)
{
    for (std::uint32_t version = 0; version <= 11; ++version) {
        for (const Form form : {Form::kNarrow, Form::kWide}) {
            put("a.doc", sampleStream(version, form, std::vector<View>{{"C:\\a.view", "VIEW"}}).get());
            const auto data = read("a.doc");
            ASSERT_NE(data, nullptr) << version;
            EXPECT_EQ(data->getStorageVersion(), version);
            EXPECT_EQ(data->getMaskMaterials().back().getMaterialName(), "material2");
            EXPECT_EQ(data->getEnvironmentMaterial().getEnvironmentName(), "studio");
            EXPECT_EQ(data->hasCameraData(), version > 2);
            EXPECT_EQ(data->hasSceneData(), version >= 5);
        }
    }
    EXPECT_EQ(readFile(views / "a.view"), "VIEW");
}

TEST_F(RealDocuments, OfManySectorsAreRead)
{
    const auto settings = shaderdata::generatedSettings(2000, 8, 4);
    put("large.doc", settings->bytes(false));
    const auto data = read("large.doc");
    ASSERT_NE(data, nullptr);
    ASSERT_EQ(data->getMaskMaterials().size(), 2000u);
    EXPECT_EQ(data->getMaskMaterials().back().getMaskName(), "Housing-1999@Assembly");
    EXPECT_EQ(data->getMaskMaterials().back().getFloatChannels().size(), 8u);
    ASSERT_TRUE(data->hasSceneData());
    EXPECT_EQ(data->getSceneData()->getFloorType(), "shadow");
}

TEST_F(RealDocuments, AreReadTwiceAndKeepNothingOpen)
{
    put("a.doc", sampleStream(10).get());
    EXPECT_NE(read("a.doc"), nullptr);
    put("a.doc", sampleStream(5).get());
    const auto data = read("a.doc");
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->getStorageVersion(), 5u);
}

TEST_F(RealDocuments, AreFoundWithoutCase)
{
    {
        const Storage root = createFile(folder / "a.doc");
        const Storage third = createIn(*root.get(), L"THIRDPTYSTORE");
        const Storage addin = createIn(*third.get(), L"raylume");
        compound_tests::put(*addin.get(), L"shaderdata", sampleStream(4).get());
        ASSERT_RESULT(0, root->Commit(0));
    }
    const auto data = read("a.doc");
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->getStorageVersion(), 4u);
}

TEST_F(RealDocuments, WithoutOneOfTheThreeLevelsAreNull)
{
    {
        const Storage root = createFile(folder / "empty.doc");
        ASSERT_RESULT(0, root->Commit(0));
    }
    {
        const Storage root = createFile(folder / "third.doc");
        createIn(*root.get(), L"ThirdPtyStore");
        ASSERT_RESULT(0, root->Commit(0));
    }
    {
        const Storage root = createFile(folder / "raylume.doc");
        createIn(*createIn(*root.get(), L"ThirdPtyStore").get(), L"Raylume");
        ASSERT_RESULT(0, root->Commit(0));
    }
    for (const char* const file : {"empty.doc", "third.doc", "raylume.doc", "missing.doc"})
        EXPECT_EQ(read(file), nullptr) << file;
    EXPECT_TRUE(RLData::OVFileExists((folder / "empty.doc").c_str()));
    EXPECT_FALSE(RLData::OVFileExists((folder / "missing.doc").c_str()));
}

TEST_F(RealDocuments, ThatAreCutShortRaiseEachTime)
{
    const std::string whole = sampleStream(10).get();
    put("a.doc", whole.substr(0, whole.size() - 1));
    for (int i = 0; i < 2; ++i) {
        try {
            read("a.doc");
            ADD_FAILURE() << "no failure";
        } catch (const platform::ArchiveError& error) {
            EXPECT_EQ(error.cause(), 3);
            EXPECT_EQ(platform::toUtf8(error.fileName()), folder / "a.doc");
        }
    }
    // The document that stayed open is let go of by the next read that comes to its end.
    EXPECT_TRUE(RLData::OVFileExists((folder / "a.doc").c_str()));
    put("a.doc", whole);
    EXPECT_NE(read("a.doc"), nullptr);
}

struct VersionsCase {
    std::uint32_t document;
    std::uint32_t displayList;
    bool isRead;
};

const VersionsCase kVersions[] = {
    {16000, 0, true},  {16001, 0, false},   {16001, 700, false},    {16000, 20000, true},
    {629, 0, true},    {628, 0, false},     {628, 629, true},       {100, 629, true},
    {100, 628, false}, {10000, 628, false}, {0xFFFFFFFF, 0, false},
};

TEST_F(RealDocuments, AreReadWithinARangeOfVersions)
{
    put("a.doc", sampleStream(10).get());
    for (const VersionsCase& versions : kVersions) {
        {
            const Storage root = openFile(folder / "a.doc", true);
            root->DestroyElement(L"Header");
            compound_tests::put(*root.get(), L"Header",
                                Bytes().u32(1).u32(versions.document).u32(versions.displayList).get());
            ASSERT_RESULT(0, root->Commit(0));
        }
        EXPECT_EQ(read("a.doc") != nullptr, versions.isRead)
            << versions.document << " " << versions.displayList;
    }
}

TEST_F(RealDocuments, OfLargeSectorsAreRead)
{
    folder.write("a.doc", largeSectorFile());
    const auto settings = shaderdata::generatedSettings(50, 8, 4);
    for (const std::string& bytes : {sampleStream(10).get(), settings->bytes(false)}) {
        put("a.doc", bytes);
        ASSERT_EQ(RawCompoundFile(readFile(folder / "a.doc")).sectorSize(), 4096u);
        const auto data = read("a.doc");
        ASSERT_NE(data, nullptr);
        EXPECT_TRUE(data->hasCameraData() && data->hasSceneData());
        EXPECT_EQ(data->getStorageVersion(), 10u);
    }
    EXPECT_EQ(read("a.doc")->getMaskMaterials().size(), 50u);
}

// The allocation table has numbers for more sectors than the file has.
TEST_F(RealDocuments, WhoseSectorsLieBeyondTheFileAreNull)
{
    put("a.doc", shaderdata::generatedSettings(10, 8, 4)->bytes(false));
    ASSERT_NE(read("a.doc"), nullptr);
    RawCompoundFile raw(readFile(folder / "a.doc"));
    ASSERT_LT(raw.bytes.size(), 100u * raw.sectorSize());
    const std::size_t size = raw.get32(raw.entry(u"ShaderData") + 120);
    ASSERT_GE(size, 4096u);
    const auto count = static_cast<std::uint32_t>((size + raw.sectorSize() - 1) / raw.sectorSize());
    raw.put32(raw.tablePlace(raw.firstSector(u"ShaderData")), 100);
    for (std::uint32_t i = 1; i < count; ++i)
        raw.put32(raw.tablePlace(99 + i), i + 1 < count ? 100 + i : 0xFFFFFFFE);
    folder.write("a.doc", raw.bytes);
    EXPECT_EQ(read("a.doc"), nullptr);
}

TEST_F(RealDocuments, WithAnEmptyStreamAreDamaged)
{
    put("a.doc", "");
    EXPECT_THROW(read("a.doc"), platform::ArchiveError);
}

TEST_F(RealDocuments, AreLeftUntouchedByReading)
{
    put("a.doc", sampleStream(10).get());
    const std::string before = readFile(folder / "a.doc");
    EXPECT_NE(read("a.doc"), nullptr);
    RLData data;
    EXPECT_FALSE(RLData::WriteRaylumeData((folder / "a.doc").c_str(), &data));
    EXPECT_EQ(readFile(folder / "a.doc"), before);
}

// --- what the writer makes of JSON

TEST_F(RealDocuments, MadeFromJsonHaveItsValues)
{
    const char* const text = R"({
        "maskMaterials": [{"maskName": "n", "maskType": "t", "maskPTag": "p", "materialName": "m",
            "diffuseColor": [0.25, 0.5, 0.75, 1], "materialAtRoot": true,
            "floatChannels": [{"channelName": "c", "floatVal": 1.5}], "stringTags": [{"tagID": 7, "tag": "x"}]}],
        "environmentMaterial": {"environmentName": "e", "gamma": 2.5, "stringTags": [{"tagID": 1, "tag": "y"}]},
        "cameraData": {"target": 3, "imageFormat": "png", "views": [{"path": "C:\\v.view", "content": "V"}]},
        "sceneData": {"floorType": "none", "floorFlip": true}})";
    put("a.doc", shaderdata::settingsFromJson(text)->bytes(false));
    const auto data = read("a.doc");
    ASSERT_NE(data, nullptr);
    ASSERT_EQ(data->getMaskMaterials().size(), 1u);
    const RLMaskMaterial& mask = data->getMaskMaterials().front();
    EXPECT_EQ(mask.getMaskName() + mask.getMaskType() + mask.getMaskPTag() + mask.getMaterialName(),
              "ntpm");
    EXPECT_THAT(mask.diffuseColor, testing::ElementsAre(0.25f, 0.5f, 0.75f, 1.0f));
    EXPECT_TRUE(mask.getMaterialAtRoot());
    EXPECT_EQ(mask.getFloatChannels().front().getFloatVal(), 1.5f);
    EXPECT_EQ(mask.getStringTags().front().getTag(), "x");
    EXPECT_EQ(data->getEnvironmentMaterial().getGamma(), 2.5f);
    EXPECT_EQ(data->getEnvironmentMaterial().getToneAmt(), -1e8f);
    EXPECT_EQ(data->getEnvironmentMaterial().getStringTags().size(), 1u);
    ASSERT_TRUE(data->hasCameraData());
    EXPECT_EQ(data->getCameraData()->getTarget(), 3.0f);
    EXPECT_EQ(data->getCameraData()->getImageFormat(), "png");
    EXPECT_EQ(readFile(views / "v.view"), "V");
    ASSERT_TRUE(data->hasSceneData());
    EXPECT_EQ(data->getSceneData()->getFloorType(), "none");
    EXPECT_TRUE(data->getSceneData()->getFloorFlip());
}

// The half of the number of views that is left over stands in the way of the fields behind it.
TEST_F(RealDocuments, MadeAsTheLibraryStoresThemDoNotReadBackWithACamera)
{
    views.make();
    put("a.doc",
        shaderdata::settingsFromJson(R"({"cameraData": {"focusDist": 5, "fStop": 6}})")->bytes(true));
    const auto data = read("a.doc");
    ASSERT_TRUE(data != nullptr && data->hasCameraData());
    EXPECT_EQ(data->getCameraData()->getFocusDist(), 0);
    EXPECT_EQ(data->getCameraData()->getFStop(), 5);
}

TEST(SettingsFromJson, OfAnotherFormAreRefused)
{
    for (const char* const text : {"", "{", "[1]x", R"({"maskMaterials": [{"maskName": 3}]})",
                                   R"({"maskMaterials": [{"diffuseColor": [1]}]})"})
        EXPECT_THROW(shaderdata::settingsFromJson(text), std::runtime_error) << text;
}

}  // namespace
