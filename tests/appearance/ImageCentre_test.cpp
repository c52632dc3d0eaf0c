#include "raylume/appearance/ImageCentre.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <random>
#include <string>

#include "raylume/load/ReaderInterface.h"
#include "raylume/scene/dlTexture.h"
#include "tests/appearance/AppearanceSource.h"

namespace {

constexpr std::uint32_t kTurn = 0x40C90FDB;  // 360 degrees in radians, single precision

struct Placement {
    float u[3] = {1, 0, 0};
    float v[3] = {0, 1, 0};
    float origin[3] = {0, 0, 0};
    double scale[2] = {2, 4};
    std::uint32_t angle = 0;  // of texture.angle
    double trans[2] = {0, 0};
};

dlTexture placed(const Placement& placement)
{
    dlTexture texture;
    std::copy_n(placement.u, 3, texture.uDirection);
    std::copy_n(placement.v, 3, texture.vDirection);
    std::copy_n(placement.origin, 3, texture.origin);
    texture.angle = floatOf(placement.angle);
    uoMaterialTextureProperties image;
    std::copy_n(placement.scale, 2, image.scale);
    placeImageCentre(texture, image, placement.trans[0], placement.trans[1]);
    return texture;
}

struct CentreCase {
    const char* name;
    Placement placement;
    std::uint32_t centre[3];  // bits
};

// The expected bits come from a calculation of its own, in which every single-precision step is a
// double-precision one rounded afterwards.
const CentreCase kCentres[] = {
    {"without_a_turn_it_is_half_the_reciprocal_sizes", {}, {0x3E800000, 0x3E000000, 0}},
    {"a_whole_turn_is_not_exactly_no_turn", {.scale = {1, 1}, .angle = kTurn}, {0x3EFFFFFD, 0x3F000001, 0}},
    {"a_whole_turn_back", {.angle = 0xC0C90FDB}, {0x3E800001, 0x3DFFFFFA, 0}},
    {"a_whole_turn_shows_when_the_first_size_is_far_greater",
     {.scale = {1000, 0.001}, .angle = kTurn},
     {0x39D84F2E, 0x43F9FFFF, 0}},
    {"a_whole_turn_shows_when_the_second_size_is_far_greater",
     {.scale = {0.001, 1000}, .angle = kTurn},
     {0x43F9FFFF, 0x3A19FD47, 0}},
    {"three_quarters_of_a_turn", {.angle = 0x4096CBE4}, {0x3E000000, 0xBE800000, 0}},
    {"half_a_turn", {.angle = 0x40490FDB}, {0xBE7FFFFF, 0xBE000001, 0}},
    {"a_turn_by_330_degrees_rounds_each_product",
     {.scale = {0.3, 0.7}, .angle = 0x40B84E88},
     {0x3FE67764, 0xBE5BE5E0, 0}},
    {"sizes_are_narrowed_before_they_are_divided", {.scale = {0.3, 7}}, {0x3FD55555, 0x3D924925, 0}},
    {"the_translation_is_taken_off", {.trans = {0.1, -0.2}}, {0x3E19999A, 0x3EA66666, 0}},
    {"the_translation_is_narrowed_first", {.trans = {0.3, 0.1}}, {0xBD4CCCD0, 0x3CCCCCCC, 0}},
    {"the_translation_is_taken_off_in_single_precision",
     {.origin = {100000000, 0, 0}, .scale = {1, 1}, .trans = {100000001, 0}},
     {0, 0x3F000000, 0}},
    {"everything_in_the_plane_at_once",
     {.scale = {0.773, 0.224}, .angle = 0x4021F770, .trans = {0.3, 0.45}},
     {0xC0070CD0, 0xBFF42792, 0}},
    {"the_origin_is_added", {.origin = {10, -20, 30.5f}}, {0x41240000, 0xC19F0000, 0x41F40000}},
    {"a_skewed_second_direction_is_straightened", {.v = {1, 1, 0}}, {0x3E800000, 0x3E000000, 0}},
    {"a_reversed_second_direction_turns_the_frame_over", {.v = {0, -1, 0}}, {0x3E800000, 0xBE000000, 0}},
    {"a_left_handed_pair_keeps_its_directions",
     {.u = {0, 1, 0}, .v = {1, 0, 0}},
     {0x3E000000, 0x3E800000, 0}},
    {"directions_of_any_length_out_of_the_plane",
     {.u = {0, 3, 0}, .v = {0, 0, 0.5f}, .origin = {1, 2, 3}, .trans = {0.01, 0.02}},
     {0x3F800000, 0x400F5C29, 0x4046B852}},
    {"oblique_directions",
     {.u = {1, 2, 3},
      .v = {-2, 1, 0.5f},
      .origin = {0.1f, 0.2f, 0.3f},
      .scale = {0.3, 0.7},
      .angle = 0x40B84E88,
      .trans = {0.01, 0.02}},
     {0x3F4C3C66, 0x3F89A3E6, 0x3FDBC78C}},
    {"oblique_skewed_directions_turned_past_a_whole_turn",
     {.u = {1, 2, 3},
      .v = {1, 1, 1},
      .origin = {0.1f, 0.2f, 0.3f},
      .scale = {0.3, 0.7},
      .angle = 0x40E231D6,
      .trans = {0.01, 0.02}},
     {0x3FDD5D44, 0x3F6AEAD1, 0x3DD8D8CA}},
    {"oblique_skewed_directions",
     {.u = {0.6f, -0.2f, 1.1f},
      .v = {1, 0.9f, 0.1f},
      .origin = {0.1f, 0.2f, 0.3f},
      .scale = {0.773, 0.224},
      .angle = 0x40A091FF,
      .trans = {0.3, -0.7}},
     {0x3FC3AB24, 0x3EE5E6FF, 0x3FF33155}},
    {"half_the_second_size_is_one_division", {.scale = {1, 2e-39}}, {0x3F000000, 0x7F3C143D, 0}},
    {"negative_sizes_are_taken_as_they_are", {.scale = {-2, -4}}, {0xBE800000, 0xBE000000, 0}},
};

class ImageCentre : public testing::TestWithParam<CentreCase> {};

TEST_P(ImageCentre, LiesWhereTheMiddleOfTheImageIs)
{
    const dlTexture texture = placed(GetParam().placement);
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_EQ(bitsOf(texture.center[axis]), GetParam().centre[axis])
            << axis << ": " << texture.center[axis];
}

TEST_P(ImageCentre, LeavesTheOtherFieldsAlone)
{
    const Placement& placement = GetParam().placement;
    const dlTexture texture = placed(placement);
    EXPECT_EQ(bitsOf(texture.angle), placement.angle);
    EXPECT_TRUE(std::equal(placement.origin, placement.origin + 3, texture.origin));
    EXPECT_TRUE(std::equal(placement.u, placement.u + 3, texture.uDirection));
    EXPECT_TRUE(std::equal(placement.v, placement.v + 3, texture.vDirection));
    EXPECT_EQ(texture.scaleU, 0.0f);
    EXPECT_EQ(texture.scaleV, 0.0f);
    EXPECT_EQ(texture.transU, 0.0f);
    EXPECT_EQ(texture.transV, 0.0f);
}

INSTANTIATE_TEST_SUITE_P(Rows, ImageCentre, testing::ValuesIn(kCentres),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ImageCentreRule, half_the_first_size_is_a_reciprocal_that_overflows_first)
{
    const dlTexture texture = placed({.scale = {2e-39, 1}});
    EXPECT_FALSE(std::isfinite(texture.center[0]));
}

TEST(ImageCentreRule, an_image_of_no_size_has_no_finite_centre)
{
    const dlTexture texture = placed({.scale = {0, 0}, .angle = kTurn});
    EXPECT_FALSE(std::isfinite(texture.center[0]));
    EXPECT_FALSE(std::isfinite(texture.center[1]));
}

TEST(ImageCentreRule, the_scalar_of_the_mapping_plays_no_part)
{
    dlTexture texture;
    texture.uDirection[0] = 1;
    texture.vDirection[1] = 1;
    texture.mappingScalar = 7;
    uoMaterialTextureProperties image;
    placeImageCentre(texture, image, 0.0, 0.0);
    EXPECT_EQ(texture.center[0], 0.5f);
    EXPECT_EQ(texture.center[1], 0.5f);
    EXPECT_EQ(texture.center[2], 0.0f);
}

TEST(ImageCentreRule, the_translation_is_the_callers_and_not_the_images)
{
    dlTexture texture;
    texture.uDirection[0] = 1;
    texture.vDirection[1] = 1;
    texture.transU = 50;
    texture.transV = 60;
    uoMaterialTextureProperties image;
    image.transX = 70;
    image.transY = 80;
    placeImageCentre(texture, image, 0.25, 0.125);
    EXPECT_EQ(texture.center[0], 0.25f);
    EXPECT_EQ(texture.center[1], 0.375f);
}

TEST(ImageCentreRule, without_directions_it_lies_on_the_origin)
{
    const dlTexture texture = placed({.u = {0, 0, 0}, .v = {0, 0, 0}, .origin = {1, 2, 3}});
    EXPECT_EQ(texture.center[0], 1.0f);
    EXPECT_EQ(texture.center[1], 2.0f);
    EXPECT_EQ(texture.center[2], 3.0f);
}

// The same rule by complex numbers and by Gram-Schmidt, in double precision throughout.
void expectedCentre(const Placement& p, double (&centre)[3])
{
    const std::complex<double> half(0.5 / p.scale[0], 0.5 / p.scale[1]);
    const std::complex<double> at = half * std::polar(1.0, static_cast<double>(floatOf(p.angle))) -
                                    std::complex<double>(p.trans[0], p.trans[1]);
    const double lengthU = std::hypot(p.u[0], p.u[1], p.u[2]);
    double along = 0;
    for (int i = 0; i < 3; ++i)
        along += p.u[i] / lengthU * p.v[i];
    double across[3];
    for (int i = 0; i < 3; ++i)
        across[i] = p.v[i] - along * p.u[i] / lengthU;
    const double lengthV = std::hypot(across[0], across[1], across[2]);
    for (int i = 0; i < 3; ++i)
        centre[i] = at.real() * p.u[i] / lengthU + at.imag() * across[i] / lengthV + p.origin[i];
}

Placement randomPlacement(std::mt19937& random)
{
    std::uniform_real_distribution<float> coordinate(-1, 1);
    std::uniform_real_distribution<double> size(0.1, 10);
    Placement p;
    for (int i = 0; i < 3; ++i) {
        p.u[i] = coordinate(random);
        p.v[i] = coordinate(random);
        p.origin[i] = coordinate(random);
    }
    p.angle = bitsOf(7 * coordinate(random));
    for (int i = 0; i < 2; ++i) {
        p.scale[i] = size(random);
        p.trans[i] = coordinate(random);
    }
    return p;
}

TEST(ImageCentreRule, any_placement_agrees_with_a_second_formulation)
{
    std::mt19937 random(20130917);
    for (int round = 0; round < 5000; ++round) {
        const Placement placement = randomPlacement(random);
        double expected[3];
        expectedCentre(placement, expected);
        const dlTexture texture = placed(placement);
        for (int axis = 0; axis < 3; ++axis)
            ASSERT_NEAR(texture.center[axis], expected[axis], 1e-5)
                << "round " << round << " axis " << axis;
    }
}

}  // namespace
