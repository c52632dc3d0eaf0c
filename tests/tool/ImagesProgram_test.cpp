// The built program on documents whose textures were moved away: each road of the search, and the notes
// of an export.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "Folder.h"
#include "Process.h"
#include "TexturedDocument.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using tool_test::Folder;
using tool_test::Program;

// 24 bits, 2 by 1.
const std::string kPicture(
    "BM\x3E\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x02\0\0\0\x01\0\0\0\x01\0\x18\0"
    "\0\0\0\0\x08\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\1\2\3\4\5\6\0\0",
    62);

/// A document in a folder of its own, in a machine of its own: settings, data folder, temporary files.
class Machine {
public:
    Machine()
    {
        for (const char* name : {"work", "work/docs", "host", "host/bin", "host/Data", "temp"})
            std::filesystem::create_directory(folder_ / name);
    }

    void put(const std::string& path, const std::string& content) const
    {
        std::filesystem::create_directories(std::filesystem::path(folder_ / path).parent_path());
        tool_test::writeFile(folder_ / path, content);
    }
    std::string path(const std::string& name) const { return folder_ / name; }

    void documentWith(const std::string& reference)
    {
        document_ = tool_test::writeTextured(folder_ / "work/docs/a", {reference},
                                             json::array({tool_test::textured(0)}));
    }

    tool_test::Finished run(const std::string& command, std::vector<std::string> more = {}) const
    {
        Program program;
        program.command = {RAYLUME_PROGRAM, command, document_};
        program.command.insert(program.command.end(), more.begin(), more.end());
        program.environment = {{"RAYLUME_HOST", path("host/bin/app")},
                               {"RAYLUME_REGISTRY", path("settings.reg")},
                               {"temp", path("temp")}};
        return tool_test::run(program);
    }

    json texture() const { return json::parse(run("materials", {"--json"}).out)["textures"][0]; }

private:
    Folder folder_;
    std::string document_;
};

void expectFound(const Machine& machine, const std::string& place, const std::string& step)
{
    const json texture = machine.texture();
    EXPECT_EQ(texture["status"], "found");
    EXPECT_EQ(texture["path"], machine.path(place));
    EXPECT_EQ(texture["readable"], true);
    EXPECT_EQ(texture["width"], 2);
    EXPECT_EQ(texture["height"], 1);
    ASSERT_FALSE(texture["probes"].empty());
    EXPECT_EQ(texture["probes"].back()["step"], step);
    EXPECT_EQ(texture["probes"].back()["found"], true);
    const tool_test::Finished exported = machine.run("export", {machine.path("o.glb")});
    EXPECT_EQ(exported.exitStatus, 0);
    EXPECT_EQ(exported.err, "");
    EXPECT_THAT(tool_test::readFile(machine.path("o.glb")), HasSubstr("\"baseColorTexture\""));
}

TEST(MovedTextures, that_did_not_move_are_found_where_they_are)
{
    Machine machine;
    machine.documentWith("maps/wood.bmp");
    machine.put("work/docs/maps/wood.bmp", kPicture);
    expectFound(machine, "work/docs/maps/wood.bmp", "storedPath");
}

TEST(MovedTextures, are_found_beside_the_document)
{
    Machine machine;
    machine.documentWith("maps/wood.bmp");
    machine.put("work/docs/wood.bmp", kPicture);
    expectFound(machine, "work/docs/wood.bmp", "searchFolder");
}

TEST(MovedTextures, are_found_without_regard_to_case)
{
    Machine machine;
    machine.documentWith("maps/WOOD.bmp");
    machine.put("work/docs/Wood.BMP", kPicture);
    expectFound(machine, "work/docs/Wood.BMP", "searchFolder");
}

TEST(MovedTextures, are_found_below_the_data_folder)
{
    Machine machine;
    machine.documentWith("Data/Images/Textures/Oak/wood.bmp");
    machine.put("host/Data/images/textures/oak/wood.bmp", kPicture);
    expectFound(machine, "host/Data/images/textures/oak/wood.bmp", "dataFolder");
}

TEST(MovedTextures, are_found_by_the_first_line_of_the_side_file)
{
    Machine machine;
    machine.documentWith("maps/wood.bmp");
    machine.put("elsewhere/wood.bmp", kPicture);
    machine.put("work/docs/__ImageLocations__.txt", "ANY_KEY\t" + machine.path("elsewhere") + "\r\n");
    expectFound(machine, "elsewhere/wood.bmp", "firstLocation");
}

TEST(MovedTextures, are_found_by_the_folders_of_the_side_file)
{
    Machine machine;
    machine.documentWith("maps/wood.bmp");
    machine.put("elsewhere/wood.bmp", kPicture);
    machine.put(
        "work/docs/__ImageLocations__.txt",
        "ANY_KEY\t/nowhere\r\nCUSTOM_APPEARANCE_FOLDERS\t/nowhere;" + machine.path("elsewhere") + "\r\n");
    expectFound(machine, "elsewhere/wood.bmp", "locations");
}

TEST(MovedTextures, are_found_in_the_parent_folder)
{
    Machine machine;
    machine.documentWith("maps/wood.bmp");
    machine.put("work/wood.bmp", kPicture);
    expectFound(machine, "work/wood.bmp", "parentFolder");
}

TEST(MovedTextures, are_found_in_the_folders_of_the_user)
{
    Machine machine;
    machine.documentWith("maps/wood.bmp");
    machine.put("mine/wood.bmp", kPicture);
    machine.put("settings.reg",
                "Windows Registry Editor Version 5.00\r\n\r\n"
                "[HKEY_CURRENT_USER\\Software\\Orvane\\Orvane 2013\\ExtReferences]\r\n"
                "\"Custom Apperance Folders\"=\"" +
                    machine.path("mine") + "\"\r\n");
    expectFound(machine, "mine/wood.bmp", "userFolders");
}

TEST(MovedTextures, that_are_nowhere_are_told_in_full)
{
    Machine machine;
    machine.documentWith("maps/wood.bmp");
    machine.put("work/docs/__ImageLocations__.txt", "ANY_KEY\t/nowhere\r\n");
    const json texture = machine.texture();
    EXPECT_EQ(texture["status"], "missing");
    EXPECT_EQ(texture["file"], machine.path("work/docs/maps/wood.bmp"));
    EXPECT_EQ(texture["probeCount"], 5);
    std::vector<std::string> steps;
    for (const json& probe : texture["probes"])
        steps.push_back(probe["step"]);
    EXPECT_THAT(steps, testing::ElementsAre("storedPath", "fileName", "searchFolder", "firstLocation",
                                            "parentFolder"));
    EXPECT_THAT(machine.run("materials").out, HasSubstr("wood.bmp: missing\n      tried the stored path,"));
    const tool_test::Finished exported = machine.run("export", {machine.path("o.glb")});
    EXPECT_EQ(exported.exitStatus, 0);
    EXPECT_THAT(exported.err, HasSubstr("1 image left out: not found"));
}

TEST(MovedTextures, in_a_file_that_is_no_image_are_told)
{
    Machine machine;
    machine.documentWith("wood.bmp");
    machine.put("work/docs/wood.bmp", kPicture.substr(0, 30));
    EXPECT_EQ(machine.texture()["readable"], false);
    EXPECT_THAT(machine.run("materials").out, HasSubstr("but it cannot be read as an image"));
    EXPECT_THAT(machine.run("export", {machine.path("o.glb")}).err, HasSubstr("1 image left out: files"));
}

TEST(MovedTextures, do_not_make_the_program_wait_for_a_pipe)
{
    Machine machine;
    machine.documentWith("wood.bmp");
    ASSERT_EQ(std::system(("mkfifo " + machine.path("work/docs/wood.bmp")).c_str()), 0);
    EXPECT_EQ(machine.texture()["readable"], false);
}

TEST(OutputPath, that_is_the_document_by_another_name_is_refused)
{
    Machine machine;
    machine.documentWith("wood.bmp");
    EXPECT_EQ(machine.run("export", {machine.path("work/docs/A.GLTF")}).exitStatus, 2);
    EXPECT_EQ(machine.run("export", {machine.path("work/docs") + "\\a.gltf"}).exitStatus, 2);
}

}  // namespace
