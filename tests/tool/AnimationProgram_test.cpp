// An assembly with a side file beside it, shown and exported by the built program.
#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>

#include "Folder.h"
#include "Process.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using tool_test::Finished;
using tool_test::Folder;

Finished run(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), RAYLUME_PROGRAM);
    return tool_test::run({arguments, {}, false, {}, {}});
}

json lightNode(int light)
{
    return {{"extensions", {{"KHR_lights_punctual", {{"light", light}}}}}};
}

// A base and two arms of one triangle, and a light of each kind that glTF has.
json robot()
{
    return {{"asset", {{"version", "2.0"}}},
            {"extensionsUsed", {"KHR_lights_punctual"}},
            {"scenes", {{{"nodes", {0, 1, 2, 3, 4, 5}}}}},
            {"nodes",
             {{{"name", "base"}, {"mesh", 0}},
              {{"name", "arm"}, {"mesh", 0}, {"translation", {0, 1, 0}}},
              {{"name", "arm"}, {"mesh", 0}, {"translation", {0, 2, 0}}},
              lightNode(0),
              lightNode(1),
              lightNode(2)}},
            {"meshes", {{{"primitives", {{{"attributes", {{"POSITION", 0}}}}}}}}},
            {"accessors",
             {{{"bufferView", 0},
               {"componentType", 5126},
               {"count", 3},
               {"type", "VEC3"},
               {"min", {0, 0, 0}},
               {"max", {1, 1, 0}}}}},
            {"bufferViews", {{{"buffer", 0}, {"byteLength", 36}}}},
            {"buffers", {{{"byteLength", 36}, {"uri", "robot.bin"}}}},
            {"extensions",
             {{"KHR_lights_punctual",
               {{"lights", {{{"type", "point"}}, {{"type", "spot"}}, {{"type", "directional"}}}}}}}}};
}

std::string attributes(const char* prefix, const std::vector<double>& values)
{
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i)
        text += std::string(" ") + prefix + std::to_string(i) + "=\"" + std::to_string(values[i]) + "\"";
    return text;
}

std::string transform(const char* time, int mode, const std::vector<double>& matrix)
{
    return "<Transform InterpolateMode=\"" + std::to_string(mode) + "\" Time=\"" + time + "\"" +
           attributes("m", matrix) + "/>";
}

std::string noAppearance(int time)
{
    return "<VisualTransform InterpolateMode=\"1\" Time=\"" + std::to_string(time) +
           R"(" Red="0" Green="0" Blue="0" Transparency="0" NullCompVizprop="1"/>)";
}

const std::vector<double> kRest = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 1, 0, 1};
const std::vector<double> kTurned = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0.5, 1, 0, 1};
const std::vector<double> kSheared = {1, 0, 0, 0, 0.5, 1, 0, 0, 0, 0, 1, 0, 0, 1, 0, 1};

std::string component(const char* name, const std::string& keys)
{
    return std::string("<COMPONENT Name=\"") + name + "\">" + keys + "</COMPONENT>";
}

std::string sideFile()
{
    return "<Study><ANIMATION>" +
           component("arm-1@robot",
                     transform("-1", 1, kRest) + transform("1", 7, kTurned) + transform("3", 1, kSheared)) +
           component("arm-2@robot",
                     noAppearance(0) + noAppearance(1) + noAppearance(2) +
                         "<VisualState InterpolateMode=\"1\" Time=\"0.25\" ComponentVisibility=\"0\"/>") +
           component("ghost-1@robot", transform("-50", 1, kRest)) +
           "<VIEWPORT><ViewPointTransform Time=\"0\" InterpolateMode=\"1\"" + attributes("pos", {0, 0, 9}) +
           attributes("mv", std::vector<double>(16, 0.5)) +
           R"( FocalDistance="1" FocalLength="35"/></VIEWPORT>)"
           R"(<LIGHT><LightProperties Time="0" InterpolateMode="1" ID="4" LightType="1" EnabledInRL="1")"
           R"( Red="1" Green="0.5" Blue="0"/></LIGHT></ANIMATION></Study>)";
}

class Robot : public testing::Test {
protected:
    Robot()
    {
        const float corners[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
        tool_test::writeFile(folder / "robot.bin",
                             {reinterpret_cast<const char*>(corners), sizeof corners});
        tool_test::writeFile(document(), robot().dump());
        tool_test::writeFile(folder / "_rlAnimData.xml", sideFile());
    }

    std::string document() const { return folder / "robot.gltf"; }

    Folder folder;
};

TEST_F(Robot, HasItsTracksAsText)
{
    const Finished finished = run({"animation", document()});
    EXPECT_EQ(finished.exitStatus, 0);
    EXPECT_EQ(finished.err, "");
    EXPECT_EQ(finished.out,
              "arm-1@robot\n"
              "    placement 3 keys, -1 to 3\n"
              "arm-2@robot\n"
              "    visibility 1 key at 0.25  appearance 1 key at 0 (2 more thinned out)\n"
              "ghost-1@robot  (no such instance)\n"
              "    placement 1 key at -50\n"
              "viewport\n"
              "    view 1 key at 0\n"
              "light 4\n"
              "    light 1 key at 0\n"
              "tracks that match no instance: 1\n"
              "  ghost-1@robot\n"
              "instances without a track: 1\n"
              "  base-1@robot\n");
}

TEST_F(Robot, HasEveryKeyAsJson)
{
    const Finished finished = run({"animation", document(), "--json"});
    EXPECT_EQ(finished.exitStatus, 0);
    EXPECT_EQ(finished.err, "");
    const json report = json::parse(finished.out);
    ASSERT_EQ(report["components"].size(), 3u);
    const json& arm = report["components"][0];
    EXPECT_EQ(arm["name"], "arm-1@robot");
    EXPECT_EQ(arm["isInstance"], true);
    EXPECT_EQ(arm["placement"]["keyCount"], 3);
    EXPECT_EQ(arm["placement"]["from"], -1.0);
    EXPECT_EQ(arm["placement"]["to"], 3.0);
    EXPECT_EQ(arm["placement"]["keys"][1],
              json({{"time", 1.0}, {"interpolateMode", 7}, {"matrix", kTurned}}));
    EXPECT_EQ(report["components"][1]["appearanceKeysThinned"], 2);
    EXPECT_EQ(report["components"][1]["appearance"]["keys"][0]["nullVizprop"], true);
    EXPECT_EQ(report["components"][1]["visibility"]["keys"][0],
              json({{"time", 0.25}, {"interpolateMode", 1}, {"componentVisibility", 0}}));
    EXPECT_EQ(report["components"][2]["isInstance"], false);
    EXPECT_EQ(report["camera"], nullptr);
    EXPECT_EQ(report["viewport"]["keys"][0]["position"], json({0, 0, 9}));
    EXPECT_EQ(report["viewport"]["keys"][0]["modelView"], json(std::vector<double>(16, 0.5)));
    EXPECT_EQ(report["viewport"]["keys"][0]["focalLength"], 35);
    ASSERT_EQ(report["lights"].size(), 1u);
    EXPECT_EQ(report["lights"][0]["id"], 4);
    EXPECT_EQ(report["lights"][0]["keys"][0]["color"], json({1, 0.5, 0}));
    EXPECT_EQ(report["tracksWithoutInstance"], json({"ghost-1@robot"}));
    EXPECT_EQ(report["instancesWithoutTrack"], json({"base-1@robot"}));
}

TEST_F(Robot, HasNoAnimationWithoutTheSideFile)
{
    std::filesystem::remove(folder / "_rlAnimData.xml");
    EXPECT_EQ(run({"animation", document()}).out, "no animation\n");
    EXPECT_EQ(json::parse(run({"animation", document(), "--json"}).out)["components"], json::array());
}

// ------------------------------------------------------------------------------------------- export

/// The two chunks of a binary file.
class Exported {
public:
    explicit Exported(const std::string& bytes)
    {
        std::uint32_t length = 0;
        std::memcpy(&length, bytes.data() + 12, 4);
        document = json::parse(bytes.substr(20, length));
        binary_ = bytes.substr(28 + length);
    }

    std::vector<float> floats(int accessor) const
    {
        const json& found = document["accessors"][static_cast<std::size_t>(accessor)];
        const json& view = document["bufferViews"][found["bufferView"].get<std::size_t>()];
        const std::size_t width = found["type"] == "SCALAR" ? 1 : found["type"] == "VEC3" ? 3 : 4;
        std::vector<float> values(found["count"].get<std::size_t>() * width);
        const std::size_t from = view.value("byteOffset", 0u) + found.value("byteOffset", 0u);
        std::memcpy(values.data(), binary_.substr(from, 4 * values.size()).data(), 4 * values.size());
        return values;
    }

    json document;

private:
    std::string binary_;
};

class ExportedRobot : public Robot {
protected:
    Exported exported()
    {
        const Finished finished = run({"export", document(), folder / "o.glb"});
        EXPECT_EQ(finished.exitStatus, 0);
        EXPECT_EQ(finished.out, "");
        said = finished.err;
        return Exported(tool_test::readFile(folder / "o.glb"));
    }

    std::string said;
};

TEST_F(ExportedRobot, MovesTheInstanceThatHasATrack)
{
    const Exported file = exported();
    EXPECT_EQ(
        said,
        "raylume-dl: 1 placement key left out: sheared, no finite numbers, or at the time of another\n");
    ASSERT_EQ(file.document["animations"].size(), 1u);
    const json& animation = file.document["animations"][0];
    const float half = std::sqrt(0.5f);
    const std::map<std::string, std::vector<float>> wanted = {{"translation", {0, 1, 0, 0.5f, 1, 0}},
                                                              {"rotation", {0, 0, 0, 1, 0, 0, half, half}},
                                                              {"scale", {1, 1, 1, 1, 1, 1}}};
    ASSERT_EQ(animation["channels"].size(), 3u);
    for (const json& channel : animation["channels"]) {
        const json& node = file.document["nodes"][channel["target"]["node"].get<std::size_t>()];
        EXPECT_EQ(node["name"], "arm");
        EXPECT_FALSE(node.contains("matrix"));
        const json& sampler = animation["samplers"][channel["sampler"].get<std::size_t>()];
        EXPECT_EQ(sampler["interpolation"], "LINEAR");
        EXPECT_THAT(file.floats(sampler["input"]), ElementsAre(0, 2)) << "no time may be negative";
        EXPECT_THAT(file.floats(sampler["output"]),
                    testing::Pointwise(testing::FloatEq(), wanted.at(channel["target"]["path"])));
    }
}

TEST_F(ExportedRobot, HasItsLights)
{
    const Exported file = exported();
    std::vector<std::string> types;
    for (const json& light : file.document["extensions"]["KHR_lights_punctual"]["lights"])
        types.push_back(light["type"]);
    EXPECT_THAT(types, testing::UnorderedElementsAre("point", "spot", "directional"));
    const json again = json::parse(run({"info", folder / "o.glb", "--json"}).out);
    EXPECT_EQ(again["lightCount"], 3);
    EXPECT_EQ(again["instanceCount"], 3);
}

TEST_F(ExportedRobot, HasNoAnimationWithoutATrackOfAnInstance)
{
    tool_test::writeFile(
        folder / "_rlAnimData.xml",
        "<r><ANIMATION>" + component("ghost-1@robot", transform("1", 1, kRest)) + "</ANIMATION></r>");
    const Exported file = exported();
    EXPECT_EQ(said, "");
    EXPECT_FALSE(file.document.contains("animations"));
}

}  // namespace
