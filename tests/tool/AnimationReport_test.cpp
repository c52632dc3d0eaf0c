#include "tools/AnimationReport.h"

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Models.h"

namespace {

using nlohmann::json;
using tool_test::ModelBuilder;
using tool_test::triangle;

std::unique_ptr<dlModel> animated()
{
    ModelBuilder builder;
    dlPart& part = builder.part({triangle()});
    auto model = ModelBuilder::withTree(builder.instance("door-1@t", &part)
                                            .instance("lamp-1@t", &part)
                                            .instance("wall-1@t", &part)
                                            .build());
    auto& tracks = model->animationTracks;
    tracks[L"door-1@t"].transforms[0.5].matrix[12] = 0.1;
    tracks[L"door-1@t"].transforms[2].interpolateMode = 3;
    tracks[L"lamp-1@t"].visualTransforms[1].nullVizprop = true;
    tracks[L"lamp-1@t"].visualStates[0].componentVisibility = 1;
    tracks[L"ghost-1@t"].visualTransforms[7].red = 0.25;
    tracks[L"@CAMERA"].viewKeys[0].focalLength = 35;
    tracks[L"@VIEWPORT"].viewKeys[1].position[2] = 9;
    tracks[L"@VIEWPORT"].viewKeys[4];
    tracks[L"@LIGHTS"].lightTracks[-5][3].sunTime = 0.1f;
    return model;
}

const tool::KeysInFile kInFile = {{L"lamp-1@t", 5}, {L"ghost-1@t", 1}, {L"elsewhere", 9}};

std::string textOf(const dlModel& model)
{
    std::ostringstream out;
    tool::writeAnimationText(model, kInFile, out);
    return out.str();
}

json jsonOf(const dlModel& model)
{
    std::ostringstream out;
    tool::writeAnimationJson(model, kInFile, out);
    return json::parse(out.str());
}

TEST(AnimationText, says_that_there_is_none)
{
    EXPECT_EQ(textOf(dlModel()), "no animation\n");
}

TEST(AnimationText, shows_tracks_and_what_does_not_match)
{
    EXPECT_EQ(textOf(*animated()),
              "door-1@t\n"
              "    placement 2 keys, 0.5 to 2\n"
              "ghost-1@t  (no such instance)\n"
              "    appearance 1 key at 7\n"
              "lamp-1@t\n"
              "    visibility 1 key at 0  appearance 1 key at 1 (4 more thinned out)\n"
              "camera\n"
              "    view 1 key at 0\n"
              "viewport\n"
              "    view 2 keys, 1 to 4\n"
              "light -5\n"
              "    light 1 key at 3\n"
              "tracks that match no instance: 1\n"
              "  ghost-1@t\n"
              "instances without a track: 1\n"
              "  wall-1@t\n");
}

TEST(AnimationJson, has_every_key_of_components)
{
    const json report = jsonOf(*animated());
    ASSERT_EQ(report["components"].size(), 3u);
    const json& door = report["components"][0];
    EXPECT_EQ(door["name"], "door-1@t");
    EXPECT_EQ(door["isInstance"], true);
    EXPECT_EQ(door["placement"]["keyCount"], 2);
    EXPECT_EQ(door["placement"]["from"], 0.5);
    EXPECT_EQ(door["placement"]["to"], 2.0);
    EXPECT_EQ(door["placement"]["keys"][0]["matrix"][12], 0.1);
    EXPECT_EQ(door["placement"]["keys"][1]["interpolateMode"], 3);
    EXPECT_EQ(door["appearance"]["keyCount"], 0);
    EXPECT_TRUE(door["appearance"]["from"].is_null());
    const json& ghost = report["components"][1];
    EXPECT_EQ(ghost["isInstance"], false);
    EXPECT_EQ(ghost["appearanceKeysThinned"], 0);
    EXPECT_EQ(ghost["appearance"]["keys"][0]["red"], 0.25);
    const json& lamp = report["components"][2];
    EXPECT_EQ(lamp["appearanceKeysThinned"], 4);
    EXPECT_EQ(lamp["visibility"]["keys"][0]["componentVisibility"], 1);
}

TEST(AnimationJson, has_every_key_of_views_and_lights)
{
    const json report = jsonOf(*animated());
    EXPECT_EQ(report["camera"]["keys"][0]["focalLength"], 35.0);
    EXPECT_EQ(report["viewport"]["keys"][0]["position"], json({0.0, 0.0, 9.0}));
    EXPECT_EQ(report["lights"][0]["id"], -5);
    EXPECT_EQ(report["lights"][0]["keys"][0]["sunTime"], 0.1);
    EXPECT_EQ(report["tracksWithoutInstance"], json({"ghost-1@t"}));
    EXPECT_EQ(report["instancesWithoutTrack"], json({"wall-1@t"}));
}

TEST(AnimationJson, of_no_animation_lists_every_instance_as_still)
{
    auto model = animated();
    model->animationTracks.clear();
    const json report = jsonOf(*model);
    EXPECT_TRUE(report["components"].empty());
    EXPECT_TRUE(report["camera"].is_null());
    EXPECT_EQ(report["instancesWithoutTrack"].size(), 3u);
}

TEST(AnimationJson, writes_what_is_not_finite_as_text)
{
    auto model = animated();
    model->animationTracks[L"@CAMERA"].viewKeys[0].focalLength = std::numeric_limits<double>::infinity();
    EXPECT_EQ(jsonOf(*model)["camera"]["keys"][0]["focalLength"], "Infinity");
}

}  // namespace
