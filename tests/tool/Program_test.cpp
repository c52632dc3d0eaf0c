// The built program, run on files.
#include <gmock/gmock.h>

#include <signal.h>

#include <cstring>
#include <nlohmann/json.hpp>

#include "Folder.h"
#include "Process.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using tool_test::Finished;
using tool_test::Folder;
using tool_test::Program;

Program program(std::vector<std::string> arguments)
{
    Program result;
    result.command = {RAYLUME_PROGRAM};
    result.command.insert(result.command.end(), arguments.begin(), arguments.end());
    return result;
}

Finished run(std::vector<std::string> arguments)
{
    return tool_test::run(program(std::move(arguments)));
}

std::string sample(const std::string& name)
{
    return std::string(RAYLUME_SAMPLES) + "/" + name;
}

long lines(const std::string& text)
{
    return std::count(text.begin(), text.end(), '\n');
}

void append32(std::uint32_t value, std::string& bytes)
{
    bytes.append(reinterpret_cast<const char*>(&value), 4);
}

// A square grid of that many quads a side, as a binary file with one mesh that two nodes bear.
std::string gridGlb(std::uint32_t side)
{
    std::string binary;
    for (std::uint32_t y = 0; y <= side; ++y)
        for (std::uint32_t x = 0; x <= side; ++x) {
            const float position[] = {float(x), float(y), 0};
            binary.append(reinterpret_cast<const char*>(position), sizeof position);
        }
    const std::size_t indicesFrom = binary.size();
    for (std::uint32_t y = 0; y < side; ++y)
        for (std::uint32_t x = 0; x < side; ++x) {
            const std::uint32_t a = y * (side + 1) + x;
            for (const std::uint32_t index : {a, a + 1, a + side + 2, a, a + side + 2, a + side + 1})
                append32(index, binary);
        }
    const json document = {
        {"asset", {{"version", "2.0"}}},
        {"scenes", {{{"nodes", {0, 1}}}}},
        {"nodes", {{{"mesh", 0}}, {{"mesh", 0}, {"translation", {0, 0, 1}}}}},
        {"meshes", {{{"primitives", {{{"attributes", {{"POSITION", 0}}}, {"indices", 1}}}}}}},
        {"accessors",
         {{{"bufferView", 0},
           {"componentType", 5126},
           {"count", (side + 1) * (side + 1)},
           {"type", "VEC3"},
           {"min", {0, 0, 0}},
           {"max", {side, side, 0}}},
          {{"bufferView", 1}, {"componentType", 5125}, {"count", 6 * side * side}, {"type", "SCALAR"}}}},
        {"bufferViews",
         {{{"buffer", 0}, {"byteLength", indicesFrom}},
          {{"buffer", 0}, {"byteOffset", indicesFrom}, {"byteLength", binary.size() - indicesFrom}}}},
        {"buffers", {{{"byteLength", binary.size()}}}}};
    std::string text = document.dump();
    text.resize((text.size() + 3) / 4 * 4, ' ');
    std::string file = "glTF";
    append32(2, file);
    append32(static_cast<std::uint32_t>(28 + text.size() + binary.size()), file);
    append32(static_cast<std::uint32_t>(text.size()), file);
    file += "JSON" + text;
    append32(static_cast<std::uint32_t>(binary.size()), file);
    return file + std::string("BIN\0", 4) + binary;
}

TEST(Info, OfTheGearboxSample)
{
    const Finished finished = run({"info", sample("gearbox.gltf"), "--json"});
    EXPECT_EQ(finished.exitStatus, 0);
    EXPECT_EQ(finished.err, "");
    const json info = json::parse(finished.out);
    EXPECT_EQ(info["outcome"], "model");
    EXPECT_EQ(info["modelName"], "gearbox.gltf");
    EXPECT_EQ(info["isPartDocument"], false);
    EXPECT_EQ(info["documentVersion"], 12000);
    EXPECT_EQ(info["versionGatePassed"], true);
    EXPECT_EQ(info["partCount"], 10);
    EXPECT_EQ(info["instanceCount"], 22);
    EXPECT_EQ(info["bodyCount"], 10);
    EXPECT_EQ(info["faceCount"], 22);
    EXPECT_EQ(info["lightCount"], 1);
    EXPECT_EQ(info["singletonCount"], 6);
    EXPECT_EQ(info["triangleCount"], 1678);
    const json& box = info["bbox"];
    EXPECT_FLOAT_EQ(box["min"][0].get<float>(), -0.15f);
    EXPECT_FLOAT_EQ(box["max"][0].get<float>(), 0.15f);
    EXPECT_FLOAT_EQ(box["min"][2].get<float>(), -0.1125f);
    EXPECT_FLOAT_EQ(box["max"][2].get<float>(), 0.1125f);
    EXPECT_NEAR(box["max"][1].get<float>(), 0.064, 0.008);
    EXPECT_GT(info["loadSeconds"].get<double>(), 0.0);
}

// A foreign document as one of our own: the model is the same, and so is that of the JSON made of it.
TEST(Convert, OfTheGearboxSample)
{
    const Folder folder;
    const auto treeOf = [](const std::string& path) { return run({"tree", path}).out; };
    const Finished packed = run({"convert", sample("gearbox.gltf"), folder / "gearbox.ovdl"});
    EXPECT_EQ(packed.exitStatus, 0);
    EXPECT_EQ(packed.out, "");
    EXPECT_EQ(packed.err, "");
    const Finished asText = run({"convert", folder / "gearbox.ovdl", folder / "gearbox.json"});
    EXPECT_EQ(asText.exitStatus, 0) << asText.err;
    json expected = json::parse(run({"info", sample("gearbox.gltf"), "--json"}).out);
    for (const char* name : {"gearbox.ovdl", "gearbox.json"}) {
        json info = json::parse(run({"info", folder / name, "--json"}).out);
        for (const char* own : {"modelName", "loadSeconds"})
            info[own] = expected[own];
        EXPECT_EQ(info, expected) << name;
        EXPECT_EQ(treeOf(folder / name), treeOf(sample("gearbox.gltf"))) << name;
    }
}

TEST(Info, OfTheBracketSample)
{
    const json info = json::parse(run({"info", sample("bracket.gltf"), "--json"}).out);
    EXPECT_EQ(info["isPartDocument"], true);
    EXPECT_EQ(info["partCount"], 1);
    EXPECT_EQ(info["instanceCount"], 1);
    EXPECT_EQ(info["faceCount"], 5);
    EXPECT_EQ(info["triangleCount"], 152);
    EXPECT_EQ(info["singletonCount"], 1);
}

TEST(Info, IsATableForPeople)
{
    const Finished finished = run({"info", sample("gearbox.gltf")});
    EXPECT_EQ(finished.exitStatus, 0);
    EXPECT_EQ(finished.err, "");
    EXPECT_THAT(finished.out, HasSubstr("instances       22\n"));
    EXPECT_THAT(finished.out, HasSubstr("kind            assembly\n"));
}

TEST(Tree, OfTheGearboxSample)
{
    const Finished finished = run({"tree", sample("gearbox.gltf"), "--json"});
    EXPECT_EQ(finished.exitStatus, 0);
    const json root = json::parse(finished.out);
    EXPECT_EQ(root["name"], "gearbox");
    EXPECT_EQ(root["subtreeCount"], 22);
    const json& top = root["components"][0];
    EXPECT_EQ(top["token"], "Gearbox-1@gearbox");
    std::vector<std::string> tokens;
    for (const json& component : top["components"])
        tokens.push_back(component["token"]);
    EXPECT_THAT(tokens,
                testing::ElementsAre("Housing-1@Gearbox", "Input shaft-1@Gearbox", "Output shaft-1@Gearbox",
                                     "Fasteners-1@Gearbox", "Lamp-1@Gearbox"));
    EXPECT_EQ(top["components"][3]["components"][1]["components"][3]["path"],
              "Gearbox-1@gearbox/Fasteners-1@Gearbox/Right row-1@Fasteners/Bolt-4@Right row");
}

TEST(Tree, IsTheSameOnEveryRun)
{
    const std::string first = run({"tree", sample("gearbox.gltf")}).out;
    EXPECT_EQ(lines(first), 22 + 11);
    EXPECT_EQ(run({"tree", sample("gearbox.gltf")}).out, first);
}

TEST(Materials, OfTheGearboxSample)
{
    const Finished finished = run({"materials", sample("gearbox.gltf"), "--json"});
    EXPECT_EQ(finished.exitStatus, 0);
    EXPECT_EQ(finished.err, "");
    const json result = json::parse(finished.out);
    EXPECT_EQ(result["materials"].size(), 6u);
    long long faces = 0;
    for (const json& material : result["materials"])
        faces += material["uses"]["face"].get<long long>();
    EXPECT_EQ(faces, 22);
    ASSERT_EQ(result["textures"].size(), 1u);
    EXPECT_EQ(result["textures"][0]["status"], "embedded");
    EXPECT_THAT(result["textures"][0]["file"].get<std::string>(), testing::EndsWith("gearbox.gltf#image0"));
    EXPECT_EQ(run({"materials", sample("gearbox.gltf"), "--json"}).out, finished.out);
}

TEST(Export, WritesAFileAndSaysNothing)
{
    const Folder folder;
    const std::string out = folder / "g.glb";
    const Finished finished = run({"export", sample("gearbox.gltf"), out});
    EXPECT_EQ(finished.exitStatus, 0);
    EXPECT_EQ(finished.out, "");
    EXPECT_EQ(finished.err, "");
    EXPECT_THAT(folder.entries(), testing::ElementsAre("g.glb"));
    const json materials = json::parse(run({"materials", out, "--json"}).out);
    ASSERT_EQ(materials["textures"].size(), 1u);  // copied out of the sample and into the file
    EXPECT_EQ(materials["textures"][0]["status"], "embedded");
    json before = json::parse(run({"info", sample("gearbox.gltf"), "--json"}).out);
    json after = json::parse(run({"info", out, "--json"}).out);
    for (json* info : {&before, &after})
        for (const char* field : {"modelName", "loadSeconds", "lightCount", "vertexCount"})
            info->erase(field);
    EXPECT_EQ(before, after);
}

TEST(Export, ReplacesAnEarlierFile)
{
    const Folder folder;
    tool_test::writeFile(folder / "g.glb", "old");
    EXPECT_EQ(run({"export", sample("bracket.gltf"), folder / "g.glb"}).exitStatus, 0);
    EXPECT_THAT(tool_test::readFile(folder / "g.glb"), StartsWith("glTF"));
}

struct OutputCase {
    const char* name;
    const char* out;
    const char* message;
};
void PrintTo(const OutputCase& row, std::ostream* out)
{
    *out << row.name;
}
const OutputCase kBadOutputs[] = {
    {"a_missing_folder", "gone/o.glb", "there is no folder for it"},
    {"a_folder", ".", "it is a folder"},
    {"a_device", "/dev/null", "it is no regular file"},
    {"a_folder_that_takes_no_files", "/proc/o.glb", "cannot be written"},
};
class BadOutputs : public testing::TestWithParam<OutputCase> {};
TEST_P(BadOutputs, AreAFailureInOneLine)
{
    const Finished finished = run({"export", sample("bracket.gltf"), GetParam().out});
    EXPECT_EQ(finished.exitStatus, 1);
    EXPECT_EQ(finished.out, "");
    EXPECT_EQ(lines(finished.err), 1);
    EXPECT_THAT(finished.err, HasSubstr(GetParam().message));
}
INSTANTIATE_TEST_SUITE_P(Rows, BadOutputs, testing::ValuesIn(kBadOutputs),
                         [](const auto& row) { return row.param.name; });

TEST(Export, RefusesToReplaceTheDocument)
{
    const Folder folder;
    std::filesystem::copy_file(sample("bracket.gltf"), folder / "b.gltf");
    const std::string before = tool_test::readFile(folder / "b.gltf");
    const Finished finished =
        run({"export", folder / "b.gltf",
             folder / "../" + std::filesystem::path(folder.path()).filename().string() + "/b.gltf"});
    EXPECT_EQ(finished.exitStatus, 2);
    EXPECT_THAT(finished.err, HasSubstr("the document itself"));
    EXPECT_EQ(tool_test::readFile(folder / "b.gltf"), before);
}

TEST(Failures, AreOneLineOnStandardError)
{
    const Folder folder;
    tool_test::writeFile(folder / "text.txt", "no document");
    tool_test::writeFile(folder / "empty.glb", "");
    tool_test::writeFile(folder / "line\nend.txt", "x");
    for (const std::string& path : {folder / "missing.gltf", folder / "text.txt", folder / "empty.glb",
                                    folder / "line\nend.txt", folder.path()}) {
        const Finished finished = run({"info", path, "--json"});
        EXPECT_EQ(finished.exitStatus, 1) << path;
        const json info = json::parse(finished.out);
        EXPECT_EQ(info["outcome"], "none") << path;
        EXPECT_EQ(lines(finished.err), 1) << finished.err;
        EXPECT_THAT(finished.err, HasSubstr("none: "));
        EXPECT_THAT(finished.err, HasSubstr(info["reason"].get<std::string>()));
    }
}

TEST(Failures, TellWhyADocumentIsRejected)
{
    const Folder folder;
    const std::string whole = gridGlb(4);
    tool_test::writeFile(folder / "torn.glb", whole.substr(0, whole.size() / 2));
    const Finished finished = run({"info", folder / "torn.glb", "--json"});
    EXPECT_EQ(finished.exitStatus, 1);
    const json info = json::parse(finished.out);
    EXPECT_EQ(info["outcome"], "rejected");
    EXPECT_EQ(info["modelName"], "torn.glb");
    EXPECT_NE(info["reason"], "");
    EXPECT_EQ(lines(finished.err), 1);
    EXPECT_THAT(finished.err, HasSubstr("rejected: "));
    EXPECT_THAT(finished.err, HasSubstr(info["reason"].get<std::string>()));
}

TEST(Failures, OfStandardOutputAreAFailure)
{
    Program to = program({"info", sample("bracket.gltf")});
    to.outTo = "/dev/full";
    const Finished finished = tool_test::run(to);
    EXPECT_EQ(finished.exitStatus, 1);
    EXPECT_EQ(finished.err, "raylume-dl: the results cannot be written\n");
}

TEST(Usage, IsShownOnStandardError)
{
    const Finished finished = run({"frobnicate"});
    EXPECT_EQ(finished.exitStatus, 2);
    EXPECT_EQ(finished.out, "");
    EXPECT_THAT(finished.err, HasSubstr("Usage: raylume-dl"));
    EXPECT_EQ(run({}).exitStatus, 2);
    EXPECT_EQ(run({"--version"}).exitStatus, 0);
    EXPECT_THAT(run({"--version"}).out, StartsWith("raylume-dl "));
}

TEST(Program, WorksWithoutATemporaryFolderInTheEnvironment)
{
    Program bare = program({"info", sample("bracket.gltf"), "--json", "--configuration", "any"});
    for (const char* name : {"temp", "TEMP", "tmp", "TMP", "TMPDIR"})
        bare.environment[name] = "";
    EXPECT_EQ(tool_test::run(bare).exitStatus, 0);
}

TEST(Program, LeavesNoTemporaryFilesBehind)
{
    const Folder folder;
    Program configured = program({"info", sample("gearbox.gltf"), "--configuration", "any"});
    for (const char* name : {"temp", "TEMP", "tmp", "TMP"})
        configured.environment[name] = "";
    configured.environment["TMPDIR"] = folder.path();
    EXPECT_EQ(tool_test::run(configured).exitStatus, 0);
    EXPECT_THAT(folder.entries(), IsEmpty());
}

TEST(Progress, IsShownOnATerminalOnly)
{
    const Folder folder;
    tool_test::writeFile(folder / "grid.glb", gridGlb(200));
    Program onTerminal = program({"info", folder / "grid.glb", "--json"});
    EXPECT_EQ(tool_test::run(onTerminal).err, "");
    onTerminal.terminalForErr = true;
    const Finished finished = tool_test::run(onTerminal);
    EXPECT_EQ(finished.exitStatus, 0);
    EXPECT_THAT(finished.err, HasSubstr(" %"));
    EXPECT_EQ(finished.err.back(), '\r');
    EXPECT_EQ(json::parse(finished.out)["triangleCount"], 200 * 200 * 2);
}

TEST(Interruption, EndsTheLoadCleanly)
{
    const Folder documents;
    tool_test::writeFile(documents / "grid.glb", gridGlb(900));
    for (const int signal : {SIGINT, SIGTERM}) {
        const Folder folder;
        Program slow =
            program({"--configuration", "any", "export", documents / "grid.glb", folder / "o.glb"});
        slow.environment["temp"] = folder.path();
        slow.terminalForErr = true;
        bool sent = false;
        // The first thing on the terminal is the bar: the load has begun.
        slow.onErr = [&sent, signal](int process, const std::string&) {
            if (!sent)
                kill(process, signal);
            sent = true;
        };
        const Finished finished = tool_test::run(slow);
        EXPECT_TRUE(sent);
        EXPECT_EQ(finished.signal, 0);
        EXPECT_EQ(finished.exitStatus, 1);
        EXPECT_EQ(finished.out, "");
        EXPECT_THAT(finished.err, HasSubstr("raylume-dl: cancelled"));
        EXPECT_THAT(folder.entries(), IsEmpty());
    }
}

}  // namespace
