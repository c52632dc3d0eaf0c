// What the built program shows of the packed samples, against files that were checked by hand with the
// samples' sources. Times are left out, and paths of this machine are cut.
#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "tests/tool/Folder.h"
#include "tests/tool/Process.h"

namespace {

using nlohmann::json;
using tool_test::Finished;
using tool_test::Folder;

std::string packed(const std::string& name)
{
    return std::string(RAYLUME_PACKED_SAMPLES) + "/" + name + "/" + name + ".ovdl";
}

std::string source(const std::string& name)
{
    return std::string(RAYLUME_SAMPLES) + "/" + name + "/" + name + ".json";
}

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

// The sun's hours are local ones, and the data folder has nothing that a machine may have.
Finished run(std::vector<std::string> arguments, const Folder& home)
{
    arguments.insert(arguments.begin(), RAYLUME_PROGRAM);
    return tool_test::run(
        {arguments,
         {{"TZ", "UTC"}, {"XDG_DATA_HOME", home.path()}, {"RAYLUME_REGISTRY", home / "none.reg"}},
         false,
         {},
         {}});
}

// A path of this machine without its folders.
json withoutFolders(const std::string& text)
{
    const bool isOurs = text.rfind('/', 0) == 0 || text.find(RAYLUME_PACKED_SAMPLES) != std::string::npos;
    return isOurs ? ".../" + text.substr(text.find_last_of("/\\") + 1) : text;
}

// Where images were looked for depends on the machine, and is tested elsewhere.
json normalised(json value)
{
    if (value.is_string())
        return withoutFolders(value.get<std::string>());
    if (value.is_object())
        for (const char* key : {"loadSeconds", "probes", "probeCount"})
            value.erase(key);
    if (value.is_structured())
        for (auto& element : value)
            element = normalised(element);
    return value;
}

struct ShownCase {
    const char* name;
    const char* sample;
    std::vector<std::string> arguments;
};
const ShownCase kShown[] = {
    {"lamp_info", "desk-lamp", {"info"}},
    {"lamp_tree", "desk-lamp", {"tree"}},
    {"lamp_materials", "desk-lamp", {"materials"}},
    {"lamp_animation", "desk-lamp", {"animation"}},
    {"lamp_shaderdata", "desk-lamp", {"shaderdata"}},
    {"lamp_reading_info", "desk-lamp", {"--configuration", "Reading", "info"}},
    {"lamp_folded_info", "desk-lamp", {"--configuration", "Folded", "info"}},
    {"lamp_folded_tree", "desk-lamp", {"--configuration", "Folded", "tree"}},
    {"lamp_wall_info", "desk-lamp", {"--configuration", "Wall", "info"}},
    {"lamp_wall_tree", "desk-lamp", {"--configuration", "Wall", "tree"}},
    {"lamp_wall_materials", "desk-lamp", {"--configuration", "Wall", "materials"}},
    {"bell_info", "bicycle-bell", {"info"}},
    {"bell_tree", "bicycle-bell", {"tree"}},
    {"bell_materials", "bicycle-bell", {"materials"}},
};

class Samples : public testing::TestWithParam<ShownCase> {};
TEST_P(Samples, AreWhatTheyAreMeantToBe)
{
    const Folder home;
    std::vector<std::string> arguments = GetParam().arguments;
    arguments.insert(arguments.end(), {packed(GetParam().sample), "--json"});
    const Finished finished = run(arguments, home);
    ASSERT_EQ(finished.exitStatus, 0) << finished.err;
    EXPECT_EQ(finished.err, "");
    const json shown = normalised(json::parse(finished.out));
    const json expected =
        json::parse(contentOf(std::string(RAYLUME_EXPECTED) + "/" + GetParam().name + ".json"));
    EXPECT_EQ(shown, expected) << json::diff(expected, shown).dump(1) << "\n" << shown.dump(1);
}
INSTANTIATE_TEST_SUITE_P(Rows, Samples, testing::ValuesIn(kShown),
                         [](const auto& row) { return row.param.name; });

class SampleSources : public testing::TestWithParam<const char*> {};

// The JSON and the packed document are one: there and back again changes no byte.
TEST_P(SampleSources, ComeBackFromAPackedDocument)
{
    const Folder folder;
    const auto convert = [&folder](const std::string& from, const std::string& to) {
        const Finished finished = run({"convert", from, to}, folder);
        EXPECT_EQ(finished.exitStatus, 0) << finished.err;
    };
    convert(source(GetParam()), folder / "first.ovdl");
    convert(folder / "first.ovdl", folder / "first.json");
    convert(folder / "first.json", folder / "second.ovdl");
    convert(folder / "second.ovdl", folder / "second.json");
    EXPECT_EQ(contentOf(folder / "first.ovdl"), contentOf(folder / "second.ovdl"));
    EXPECT_EQ(contentOf(folder / "first.json"), contentOf(folder / "second.json"));
}

// A document is the same whether it is opened as JSON or packed.
TEST_P(SampleSources, ShowTheSameModelAsThePackedDocument)
{
    const Folder home;
    for (const char* command : {"info", "tree"}) {
        const auto shown = [&](const std::string& document) {
            const Finished finished = run({command, document, "--json"}, home);
            EXPECT_EQ(finished.exitStatus, 0) << finished.err;
            std::string text = finished.out;
            for (const std::string ending : {".ovdl\"", ".json\""})
                for (std::size_t at; (at = text.find(ending)) != std::string::npos;)
                    text.replace(at, ending.size(), "\"");
            return normalised(json::parse(text));
        };
        EXPECT_EQ(shown(source(GetParam())), shown(packed(GetParam()))) << command;
    }
}

// What the sources hold, by their own words: the kinds that a sample is there to show.
json listOf(const char* sample, const char* list)
{
    return json::parse(contentOf(source(sample))).at("document").at(list);
}

TEST(DeskLamp, HasEveryKindOfDecalAndMask)
{
    std::set<int> kinds;
    std::set<bool> inverted;
    bool hasColours = false;
    bool hasMirrored = false;
    for (const json& decal : listOf("desk-lamp", "decals")) {
        kinds.insert(decal.value("mappingKind", 0));
        if (decal.contains("maskFileName"))
            inverted.insert(decal.value("maskInvert", 0) != 0);
        hasColours |= decal.value("colorMask", json::array()).size() > 1;
        for (const json& mapping : decal.at("faceMappings"))
            hasMirrored |= mapping.value("mirrored", 0) != 0;
    }
    EXPECT_THAT(kinds, testing::ElementsAre(0, 1, 2, 3, 4));
    EXPECT_THAT(inverted, testing::ElementsAre(false, true));
    EXPECT_TRUE(hasColours);
    EXPECT_TRUE(hasMirrored);
}

TEST(DeskLamp, HasEveryTypeOfLight)
{
    std::multiset<int> types;
    for (const json& light : listOf("desk-lamp", "lights"))
        types.insert(light.value("lightType", 4));
    EXPECT_THAT(types, testing::ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(DeskLamp, HasThreeConfigurationsOverSharedParts)
{
    std::vector<std::string> names;
    for (const json& configuration : listOf("desk-lamp", "configurations"))
        names.push_back(configuration.at("name"));
    EXPECT_THAT(names, testing::ElementsAre("Reading", "Folded", "Wall"));
    std::map<int, int> uses;
    for (const json& component : listOf("desk-lamp", "components"))
        ++uses[component.at("tessData").get<int>()];
    EXPECT_EQ(uses.size(), 7u);
    EXPECT_THAT(uses, testing::Each(testing::Pair(testing::_, testing::Ge(2))));
}

// Settings go along from one packed document to another.
TEST(DeskLamp, KeepsItsSettingsWhenItIsConverted)
{
    const Folder folder;
    ASSERT_EQ(run({"convert", packed("desk-lamp"), folder / "copy.ovdl"}, folder).exitStatus, 0);
    const Finished first = run({"shaderdata", packed("desk-lamp"), "--json"}, folder);
    const Finished second = run({"shaderdata", folder / "copy.ovdl", "--json"}, folder);
    EXPECT_EQ(second.exitStatus, 0) << second.err;
    EXPECT_EQ(normalised(json::parse(second.out)), normalised(json::parse(first.out)));
}

// JSON has no place for settings, and whoever loses them hears of it.
TEST(DeskLamp, SaysThatJsonHasNoSettings)
{
    const Folder folder;
    const auto convert = [&folder](const std::string& from, const std::string& to) {
        const Finished finished = run({"convert", from, to}, folder);
        EXPECT_EQ(finished.exitStatus, 0) << finished.err;
        EXPECT_EQ(finished.out, "");
        return finished.err;
    };
    const std::string line =
        "raylume-dl: settings that are stored in the document are not part of the JSON\n";
    EXPECT_EQ(convert(packed("desk-lamp"), folder / "lamp.json"), line);
    EXPECT_EQ(convert(packed("desk-lamp"), folder / "lamp.ovdl"), "");
    // Over itself: the document is JSON by the time that it could be asked.
    std::filesystem::copy_file(packed("desk-lamp"), folder / "self.json");
    EXPECT_EQ(convert(folder / "self.json", folder / "self.json"), line);
    EXPECT_EQ(convert(folder / "lamp.json", folder / "again.json"), "");
    EXPECT_EQ(convert(packed("bicycle-bell"), folder / "bell.json"), "");
    // A document that is packed over another has none of its settings.
    EXPECT_EQ(run({"shaderdata", folder / "lamp.ovdl"}, folder).exitStatus, 0);
    EXPECT_EQ(convert(folder / "lamp.json", folder / "lamp.ovdl"), "");
    EXPECT_EQ(run({"shaderdata", folder / "lamp.ovdl"}, folder).exitStatus, 1);
    // Nothing is said of a document that was not written.
    EXPECT_EQ(
        run({"--configuration", "none", "convert", packed("desk-lamp"), folder / "no.json"}, folder).err,
        "raylume-dl: " + packed("desk-lamp") +
            ": not converted: the document has no configuration \"none\"\n");
}

// What is packed has masks by whole paths, however the source was laid out.
TEST(Packing, FindsMasksWhateverBlanksStandAround)
{
    const Folder folder;
    const std::string from = folder / "edited";
    const std::string to = folder / "a \"1\" b";
    std::filesystem::copy(std::string(RAYLUME_SAMPLES) + "/desk-lamp", from);
    std::filesystem::create_directory(to);
    std::string text = contentOf(source("desk-lamp"));
    const std::string key = "\"maskFileName\": \"";
    const char* const forms[] = {"\"maskFileName\":\"", "\"maskFileName\" :\t\"",
                                 "\"maskFileName\"\n:\r\n  \""};
    std::size_t count = 0;
    for (std::size_t at; (at = text.find(key)) != std::string::npos; ++count)
        text.replace(at, key.size(), forms[count % std::size(forms)]);
    ASSERT_GE(count, std::size(forms));
    tool_test::writeFile(from + "/desk-lamp.json", text);
    const Finished finished = tool_test::run(
        {{RAYLUME_CMAKE, "-D", "NAME=desk-lamp", "-D", "SOURCE=" + from, "-D", "FOLDER=" + to, "-D",
          std::string("TOOL=") + RAYLUME_PROGRAM, "-P", std::string(RAYLUME_SAMPLES) + "/pack.cmake"},
         {},
         false,
         {},
         {}});
    ASSERT_EQ(finished.exitStatus, 0) << finished.err;
    EXPECT_EQ(run({"convert", to + "/desk-lamp.ovdl", folder / "masks.json"}, folder).exitStatus, 0);
    std::size_t found = 0;
    const json document = json::parse(contentOf(folder / "masks.json")).at("document");
    for (const json& decal : document.at("decals"))
        if (decal.contains("maskFileName")) {
            EXPECT_EQ(decal["maskFileName"], to + "/brand-mask.png");
            ++found;
        }
    EXPECT_EQ(found, count);
}

INSTANTIATE_TEST_SUITE_P(Rows, SampleSources, testing::Values("desk-lamp", "bicycle-bell"),
                         [](const auto& row) {
                             return std::string(row.param) == "desk-lamp" ? "the_desk_lamp"
                                                                          : "the_bicycle_bell";
                         });

}  // namespace
