// The settings of real compound files, shown by the built program. What puts them there is a program too.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "Folder.h"
#include "Process.h"
#include "tests/persist/StreamBuilder.h"

namespace {

using nlohmann::json;
using persist_tests::Form;
using persist_tests::sampleStream;
using persist_tests::View;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using tool_test::Finished;
using tool_test::Folder;
using tool_test::Program;

std::string sample(const std::string& name)
{
    return std::string(RAYLUME_SAMPLES) + "/" + name;
}

class ShaderData : public testing::Test {
protected:
    Finished show(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), {RAYLUME_PROGRAM, "shaderdata"});
        Program program{arguments, {{"XDG_DATA_HOME", home.path()}}, false, {}, {}};
        return tool_test::run(program);
    }

    json shown(const std::string& document) const
    {
        const Finished finished = show({document, "--json"});
        EXPECT_EQ(finished.exitStatus, 0);
        EXPECT_EQ(finished.err, "");
        return json::parse(finished.out);
    }

    /// A document with that stream, and its path.
    std::string documentWith(const std::string& stream) const
    {
        tool_test::writeFile(folder / "stream", stream);
        write({"--stream", folder / "stream"});
        return folder / "a.doc";
    }

    void write(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), {RAYLUME_SETTINGS_WRITER, folder / "a.doc"});
        const Finished finished = tool_test::run({arguments, {}, false, {}, {}});
        EXPECT_EQ(finished.exitStatus, 0) << finished.err;
    }

    void expectFailure(const std::string& document, const std::string& message) const
    {
        for (const bool asJson : {false, true}) {
            const Finished finished =
                show(asJson ? std::vector{document, std::string("--json")} : std::vector{document});
            EXPECT_EQ(finished.exitStatus, 1);
            EXPECT_EQ(finished.out, "");
            EXPECT_EQ(finished.err, "raylume-dl: " + document + ": " + message + "\n");
        }
    }

    std::string viewsFolder() const { return home / "Lumenforge/Presets/Views"; }

    Folder folder;
    Folder home;
};

// ------------------------------------------------------------------------ every version, both forms

class EveryVersion : public ShaderData, public testing::WithParamInterface<std::uint32_t> {
protected:
    static bool has(std::uint32_t since) { return GetParam() >= since; }

    static json mask(const std::string& mark)
    {
        json mask = {{"maskName", "name" + mark},
                     {"maskType", "type" + mark},
                     {"maskPTag", "ptag" + mark},
                     {"materialName", "material" + mark},
                     {"diffuseColor", {0.125, 0.25, 0.5, 0.75}},
                     {"materialAtRoot", true},
                     {"advMaterialIsSet", has(1)},
                     {"floatChannels", json::array()},
                     {"stringTags", json::array()}};
        if (has(1)) {
            mask["floatChannels"] = {{{"channelName", "gloss" + mark}, {"floatVal", 1.5}},
                                     {{"channelName", "bump" + mark}, {"floatVal", -2.5}}};
            mask["stringTags"] = json::array({{{"tagID", 77}, {"tag", "tag" + mark}}});
        }
        return mask;
    }

    static json environment()
    {
        json tags = json::array();
        if (has(2))
            tags = {{{"tagID", 5}, {"tag", "five"}}, {{"tagID", 6}, {"tag", "six"}}};
        const auto tone = [](double value) { return has(8) ? json(value) : json("unset"); };
        return {{"environmentName", "studio"}, {"stringTags", tags},
                {"whiteLevel", tone(1.5)},     {"clamp", has(8)},
                {"gamma", tone(2.25)},         {"bloom", has(8)},
                {"bloomThr", tone(3.5)},       {"bloomRad", tone(4.5)},
                {"toneAmt", tone(5.5)}};
    }

    static json camera()
    {
        if (!has(3))
            return nullptr;
        return {{"rotation", {1.0, 2.0, 3.0}},
                {"translation", {4.0, 5.0, 6.0}},
                {"target", 7.0},
                {"focalLength", has(4) ? json(35.5) : json("unset")},
                {"projType", has(4) ? 2 : -1},
                {"focusDist", has(8) ? json(8.5) : json("unset")},
                {"fStop", has(8) ? json(2.75) : json("unset")},
                {"frameWidth", has(8) ? 640 : 100},
                {"frameHeight", has(8) ? 480 : 100},
                {"RDOF", has(8)},
                {"previewRenderQuality", has(8) ? "draft" : ""},
                {"fullRenderQuality", has(8) ? "best" : ""},
                {"imageFormat", has(9) ? "png" : ""}};
    }

    static json scene()
    {
        if (!has(5))
            return nullptr;
        return {{"environmentImage", "environment.hdr"},
                {"envVisibility", true},
                {"backPlateImage", "plate.png"},
                {"bkplVisibility", true},
                {"floor", has(7) ? "XY" : "ZX"},
                {"floorFlip", has(7)},
                {"floorVisibility", !has(7)},
                {"floorType", has(10) ? "reflect" : "shadow"}};
    }

    json views() const
    {
        if (!has(6))
            return nullptr;
        return {{"folder", viewsFolder()}, {"files", {"front.view"}}};
    }
};

TEST_P(EveryVersion, IsShownAsJson)
{
    for (const Form form : {Form::kNarrow, Form::kWide}) {
        const json report = shown(documentWith(
            sampleStream(GetParam(), form, std::vector<View>{{"C:\\Presets\\front.view", "FRONT"}}).get()));
        EXPECT_EQ(report["storageVersion"], GetParam());
        EXPECT_EQ(report["maskMaterials"], json({mask("1"), mask("2")}));
        EXPECT_EQ(report["environmentMaterial"], environment());
        EXPECT_EQ(report["cameraData"], camera());
        EXPECT_EQ(report["sceneData"], scene());
        EXPECT_EQ(report["customViews"], views());
        EXPECT_EQ(report.size(), 6u);
    }
    EXPECT_EQ(tool_test::readFile(viewsFolder() + "/front.view"), has(6) ? "FRONT" : "");
}

TEST_P(EveryVersion, IsShownAsText)
{
    const Finished finished = show({documentWith(sampleStream(GetParam()).get())});
    EXPECT_EQ(finished.exitStatus, 0);
    EXPECT_EQ(finished.err, "");
    EXPECT_THAT(finished.out,
                StartsWith("version: " + std::to_string(GetParam()) + "\nmask materials: 2\n"));
    const auto count = [&](const std::string& line) {
        return finished.out.find(line) != std::string::npos;
    };
    EXPECT_EQ(count("\ncamera\n"), has(3));
    EXPECT_EQ(count("\ncamera: none\n"), !has(3));
    EXPECT_EQ(count("\n  focalLength           35.5\n"), has(4));
    EXPECT_EQ(count("\nscene\n"), has(5));
    EXPECT_EQ(count("\nscene: none\n"), !has(5));
    EXPECT_EQ(count("\ncustom views: 0 in " + viewsFolder() + "\n"), has(6));
    EXPECT_EQ(count("\n  floorType             \"reflect\"\n"), has(10));
}

TEST_P(EveryVersion, ThatIsCutShortIsDamaged)
{
    const std::string whole = sampleStream(GetParam()).get();
    for (const std::size_t size : {std::size_t{0}, std::size_t{3}, whole.size() / 2, whole.size() - 1})
        expectFailure(documentWith(whole.substr(0, size)), "damaged: the settings end too early (cause 3)");
}

INSTANTIATE_TEST_SUITE_P(Versions, EveryVersion,
                         testing::Values(0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 0x80000000u));

// ------------------------------------------------------------------------------------ what is stored

TEST_F(ShaderData, OfTheSampleIsThatOfItsText)
{
    const json wanted = json::parse(tool_test::readFile(sample("settings.json")));
    const json report = shown(sample("settings.cfb"));
    EXPECT_EQ(report["storageVersion"], 10);
    ASSERT_EQ(report["maskMaterials"].size(), wanted["maskMaterials"].size());
    json compared = report;
    compared.erase("storageVersion");
    compared.erase("customViews");
    // Whatever the text does not name has the default of its record.
    compared.merge_patch(wanted);
    for (json& mask : compared["maskMaterials"])
        mask["advMaterialIsSet"] = true;
    for (const char* const record : {"maskMaterials", "environmentMaterial", "cameraData", "sceneData"})
        EXPECT_EQ(report[record], compared[record]) << record;
}

TEST_F(ShaderData, OfTheSampleCanBeMadeAgain)
{
    write({"--json", sample("settings.json")});
    const std::string made = tool_test::readFile(folder / "a.doc");
    EXPECT_FALSE(made.empty());
    EXPECT_TRUE(made == tool_test::readFile(sample("settings.cfb")));
}

TEST_F(ShaderData, OfManyMasksIsWholeJson)
{
    write({"--masks", "3000"});
    const json report = shown(folder / "a.doc");
    ASSERT_EQ(report["maskMaterials"].size(), 3000u);
    EXPECT_EQ(report["maskMaterials"][2999]["maskName"], "Housing-2999@Assembly");
    EXPECT_EQ(report["maskMaterials"][2999]["floatChannels"].size(), 8u);
    EXPECT_EQ(report["maskMaterials"][2999]["stringTags"].size(), 4u);
}

TEST_F(ShaderData, LeavesTheDocumentAsItIs)
{
    const std::string document = documentWith(sampleStream(10).get());
    const std::string before = tool_test::readFile(document);
    shown(document);
    EXPECT_TRUE(tool_test::readFile(document) == before);
    EXPECT_THAT(folder.entries(), testing::UnorderedElementsAre("a.doc", "stream"));
}

TEST_F(ShaderData, ListsWhatLiesInTheFolderOfViews)
{
    std::filesystem::create_directories(viewsFolder() + "/folder");
    for (const char* const name : {"/.hidden", "/earlier.view"})
        tool_test::writeFile(viewsFolder() + name, "x");
    const auto views = std::vector<View>{{"C:\\new.view", "NEW"}, {"C:\\..", "BAD"}, {"/x/y.view", "BAD"}};
    const json report = shown(documentWith(sampleStream(10, Form::kWide, views).get()));
    EXPECT_EQ(report["customViews"]["files"], json({"earlier.view", "new.view"}));
    EXPECT_EQ(tool_test::readFile(viewsFolder() + "/new.view"), "NEW");
}

TEST_F(ShaderData, MakesNoFolderOfViewsForVersionsWithoutThem)
{
    shown(documentWith(sampleStream(5).get()));
    EXPECT_THAT(home.entries(), testing::IsEmpty());
    shown(documentWith(sampleStream(6).get()));
    EXPECT_THAT(home.entries(), ElementsAre("Lumenforge"));
}

// The stream of somebody without such a folder has no number of views in it.
TEST_F(ShaderData, TellsOfNoViewsWhereTheUserHasNoFolder)
{
    tool_test::writeFile(home / "Lumenforge", "in the way");
    const json report = shown(documentWith(sampleStream(10, Form::kWide, std::nullopt).get()));
    EXPECT_EQ(report["customViews"], nullptr);
    EXPECT_EQ(report["cameraData"]["focusDist"], 8.5);
}

// ------------------------------------------------------------------------------------------ failures

TEST_F(ShaderData, OfNoDocumentIsAFailure)
{
    tool_test::writeFile(folder / "text.txt", "no document");
    expectFailure(folder / "missing.doc", "none: the document cannot be opened (there is no such file)");
    expectFailure(folder / "text.txt",
                  "none: the document cannot be opened (no format of this reader recognises the file)");
    expectFailure(folder.path(), "none: the document cannot be opened (a folder is no document)");
}

TEST_F(ShaderData, OfADocumentThatHoldsNoneIsAFailure)
{
    expectFailure(sample("bracket.gltf"),
                  "no settings: the document holds none, or is of a version whose settings are not read");
}

TEST_F(ShaderData, OfADamagedCompoundFileIsAFailure)
{
    const std::string whole = tool_test::readFile(documentWith(sampleStream(10).get()));
    tool_test::writeFile(folder / "torn.doc", whole.substr(0, 600));
    expectFailure(folder / "torn.doc",
                  "none: the document cannot be opened (the compound file is damaged)");
}

// What was unpacked before the stream ended stays.
TEST_F(ShaderData, ThatEndsBehindItsViewsLeavesThem)
{
    const auto views = std::vector<View>{{"C:\\new.view", "NEW"}};
    const std::string whole = sampleStream(10, Form::kWide, views).get();
    expectFailure(documentWith(whole.substr(0, whole.size() - 1)),
                  "damaged: the settings end too early (cause 3)");
    EXPECT_EQ(tool_test::readFile(viewsFolder() + "/new.view"), "NEW");
}

TEST_F(ShaderData, ThatCannotBeWrittenIsAFailure)
{
    Program to{
        {RAYLUME_PROGRAM, "shaderdata", documentWith(sampleStream(1).get())}, {}, false, "/dev/full", {}};
    const Finished finished = tool_test::run(to);
    EXPECT_EQ(finished.exitStatus, 1);
    EXPECT_EQ(finished.err, "raylume-dl: the results cannot be written\n");
}

TEST_F(ShaderData, NeedsADocument)
{
    const Finished finished = show({});
    EXPECT_EQ(finished.exitStatus, 2);
    EXPECT_EQ(finished.out, "");
    EXPECT_THAT(finished.err, HasSubstr("DOC is required"));
}

}  // namespace
