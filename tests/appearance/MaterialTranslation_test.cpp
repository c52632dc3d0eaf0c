#include "raylume/appearance/MaterialTranslation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>

#include "raylume/load/ReaderInterface.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlMaterial.h"
#include "raylume/services/HostPaths.h"
#include "tests/appearance/AppearanceSource.h"
#include "tests/recording_reader/RecordingReader.h"

namespace {

constexpr std::uint32_t kLfpBit = 1u << 11;

// Every test has a source, a fresh material and a known data folder.
class Material : public testing::Test {
protected:
    void SetUp() override { g_dataDir = L"D:\\Data"; }
    void TearDown() override
    {
        g_dataDir.clear();
        platform::setAnsiCodePage(codePage_);
    }

    dlMaterial& apply()
    {
        applyVisualProperties(material_, source_.visual);
        return material_;
    }

    AppearanceSource source_;
    dlMaterial material_;

private:
    const int codePage_ = platform::ansiCodePage();
};

template <class Row>
class MaterialRow : public Material, public testing::WithParamInterface<Row> {
};

const auto kRowName = [](const auto& row) { return std::string(row.param.name); };

void expectSame3(const float (&actual)[3], const float (&expected)[3])
{
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(bitsOf(actual[i]), bitsOf(expected[i])) << i;
}

class MaterialLighting : public Material {
protected:
    void SetUp() override
    {
        Material::SetUp();
        source_.material.ambient = 0.1;
        source_.material.diffuse = 0.2;
        source_.material.specular = 0.3;
        source_.material.shininess = 0.9;
        source_.material.transparency = 0.7;
        source_.material.emission = 0.4;
    }
};

TEST_F(MaterialLighting, is_the_materials_narrowed)
{
    apply();
    EXPECT_EQ(bitsOf(material_.ambient), bitsOf(0.1f));
    EXPECT_EQ(bitsOf(material_.diffuse), bitsOf(0.2f));
    EXPECT_EQ(bitsOf(material_.specular), bitsOf(0.3f));
    EXPECT_EQ(bitsOf(material_.transparency), bitsOf(0.7f));
    EXPECT_EQ(bitsOf(material_.emission), bitsOf(0.4f));
}

TEST_F(MaterialLighting, stays_the_materials_with_a_render_appearance)
{
    source_.withAppearance();
    source_.appearance.decalAmbient = 0.5f;
    source_.appearance.decalDiffuse = 0.6f;
    source_.appearance.decalSpecular = 0.8f;
    apply();
    EXPECT_EQ(bitsOf(material_.ambient), bitsOf(0.1f));
    EXPECT_EQ(bitsOf(material_.diffuse), bitsOf(0.2f));
    EXPECT_EQ(bitsOf(material_.specular), bitsOf(0.3f));
    EXPECT_EQ(bitsOf(material_.transparency), bitsOf(0.7f));
}

TEST_F(MaterialLighting, shininess_is_never_the_materials)
{
    EXPECT_EQ(apply().shininess, 0.0f);
}

TEST_F(MaterialLighting, shininess_is_the_render_appearances)
{
    source_.withAppearance().appearance.shininess = 0.25f;
    EXPECT_EQ(apply().shininess, 0.25f);
}

TEST_F(MaterialLighting, luminous_replaces_emission_even_when_it_is_zero)
{
    source_.withAppearance().appearance.luminous = 0.0f;
    apply();
    EXPECT_EQ(bitsOf(material_.emission), bitsOf(0.0f));
    EXPECT_EQ(bitsOf(material_.rvLuminous), bitsOf(0.0f));
}

TEST_F(MaterialLighting, luminous_is_stored_twice)
{
    source_.withAppearance().appearance.luminous = 0.125f;
    apply();
    EXPECT_EQ(material_.emission, 0.125f);
    EXPECT_EQ(material_.rvLuminous, 0.125f);
}

TEST_F(MaterialLighting, values_beyond_single_precision_become_infinite)
{
    source_.material.ambient = 1e300;
    source_.material.diffuse = std::numeric_limits<double>::quiet_NaN();
    apply();
    EXPECT_TRUE(std::isinf(material_.ambient));
    EXPECT_TRUE(std::isnan(material_.diffuse));
}

struct FlagValueCase {
    const char* name;
    std::int32_t value;
    bool expected;
};

const FlagValueCase kFlagValues[] = {
    {"zero_is_false", 0, false},
    {"one_is_true", 1, true},
    {"two_is_true", 2, true},
    {"minus_one_is_true", -1, true},
    {"a_high_bit_is_true", 0x100, true},
};

using VisualFlag = MaterialRow<FlagValueCase>;

TEST_P(VisualFlag, TellsZeroFromTheRest)
{
    source_.visual.visualFlag = GetParam().value;
    EXPECT_EQ(apply().visualFlag, GetParam().expected);
}

TEST_P(VisualFlag, IsWrittenOverWhatWasThere)
{
    source_.visual.visualFlag = GetParam().value;
    material_.visualFlag = !GetParam().expected;
    EXPECT_EQ(apply().visualFlag, GetParam().expected);
}

TEST_P(VisualFlag, IsNeitherTheActiveNorTheInheritFlag)
{
    source_.visual.activeFlag = GetParam().value;
    source_.visual.inheritFlag = GetParam().value;
    EXPECT_FALSE(apply().visualFlag);
}

INSTANTIATE_TEST_SUITE_P(Rows, VisualFlag, testing::ValuesIn(kFlagValues), kRowName);

TEST_F(Material, has_the_names_of_the_document)
{
    source_.material.idName = L"id";
    source_.material.userName = L"user";
    source_.visual.visualName = L"visual";
    source_.visual.materialFileName = L"file";
    apply();
    EXPECT_EQ(material_.idName, "id");
    EXPECT_EQ(material_.userName, "user");
    EXPECT_EQ(material_.visualName, "visual");
    EXPECT_EQ(material_.appearanceName, "file");
    EXPECT_EQ(material_.reservedNameA, "");
    EXPECT_EQ(material_.reservedNameB, "");
    EXPECT_EQ(material_.reservedNameC, "");
}

void fillTexts(AppearanceSource& source, const std::wstring& text)
{
    source.withAppearance().withImage();
    source.material.idName = source.material.userName = text;
    source.visual.visualName = source.visual.materialFileName = text;
    source.appearance.shaderName = source.appearance.lfpFilename = text;
    source.appearance.bumpTextureFilename = source.image.filename = text;
    source.appearance.surfaceFinish = 2;
}

void expectTexts(const dlMaterial& material, const std::string& text)
{
    EXPECT_EQ(material.idName, text);
    EXPECT_EQ(material.userName, text);
    EXPECT_EQ(material.visualName, text);
    EXPECT_EQ(material.appearanceName, text);
    EXPECT_EQ(material.shaderName, text);
    EXPECT_EQ(material.lfpFilename, text);
    EXPECT_EQ(material.bumpFilename, text);
}

TEST_F(Material, texts_go_through_the_ansi_code_page)
{
    ASSERT_TRUE(platform::setAnsiCodePage(65001));
    fillTexts(source_, L"Gr\u00f6\u00dfe");
    apply();
    expectTexts(material_,
                "Gr\xC3\xB6\xC3\x9F"
                "e");
    EXPECT_EQ(material_.texture.filename, L"Gr\u00f6\u00dfe");
}

TEST_F(Material, texts_that_the_code_page_lacks_become_question_marks_but_the_image_name_stays_wide)
{
    ASSERT_TRUE(platform::setAnsiCodePage(1252));
    fillTexts(source_, L"\u8868\u00e9");
    apply();
    expectTexts(material_, "?\xE9");
    EXPECT_EQ(material_.texture.filename, L"\u8868\u00e9");
}

TEST_F(Material, a_character_whose_second_byte_is_a_backslash_separates_no_folders)
{
    ASSERT_TRUE(platform::setAnsiCodePage(932));
    source_.withAppearance().appearance.filename = L"c:\\a\\\u8868b.p2m";
    EXPECT_EQ(apply().appearanceName,
              "\x95\x5C"
              "b");
}

TEST_F(Material, texts_are_appended_to_what_is_there)
{
    fillTexts(source_, L"-new");
    material_.idName = material_.userName = material_.visualName = material_.appearanceName = "old";
    material_.shaderName = material_.lfpFilename = material_.bumpFilename = "old";
    material_.texture.filename = L"old";
    apply();
    expectTexts(material_, "old-new");
    EXPECT_EQ(material_.texture.filename, L"old-new");
}

TEST_F(Material, a_second_fill_doubles_every_text)
{
    fillTexts(source_, L"word.");
    source_.appearance.filename = L"base.x";
    apply();
    apply();
    EXPECT_EQ(material_.idName, "word.word.");
    EXPECT_EQ(material_.userName, "word.word.");
    EXPECT_EQ(material_.visualName, "word.word.");
    EXPECT_EQ(material_.appearanceName, "word.baseword.base");
    EXPECT_EQ(material_.shaderName, "word.word.");
    EXPECT_EQ(material_.lfpFilename, "word.word.");
    EXPECT_EQ(material_.bumpFilename, "word.word.");
    EXPECT_EQ(material_.texture.filename, L"word.word.");
}

struct AppearanceNameCase {
    const char* name;
    const wchar_t* file;
    std::uint32_t flags;
    const char* expected;  // with the material file name "mat"
};

const AppearanceNameCase kAppearanceNames[] = {
    {"lfp_with_its_bit_is_kept_whole", L"c:\\a\\b.lfp", kLfpBit, "c:\\a\\b.lfp"},
    {"lfp_anywhere_in_the_name_counts", L"c:\\a.lfp.bak", kLfpBit, "c:\\a.lfp.bak"},
    {"lfp_in_a_folder_counts", L"c:\\a.lfp\\b.txt", kLfpBit, "c:\\a.lfp\\b.txt"},
    {"lfp_in_capitals_does_not_count", L"c:\\a\\b.LFP", kLfpBit, "mat"},
    {"lfp_without_its_dot_does_not_count", L"c:\\a\\lfp", kLfpBit, "mat"},
    {"the_bit_without_lfp_adds_no_base_name", L"c:\\a\\b.p2m", kLfpBit, "mat"},
    {"the_bit_without_a_file_adds_nothing", L"", kLfpBit, "mat"},
    {"lfp_without_its_bit_adds_the_base_name", L"c:\\a\\b.lfp", 0, "matb"},
    {"lfp_with_all_other_bits_adds_the_base_name", L"c:\\a\\b.lfp", ~kLfpBit, "matb"},
    {"lfp_with_all_bits_is_kept_whole", L"c:\\a\\b.lfp", ~0u, "c:\\a\\b.lfp"},
    {"the_base_name_follows_without_a_separator", L"c:\\a\\steel.p2m", 0, "matsteel"},
    {"only_the_last_extension_goes", L"c:\\a\\steel.v2.p2m", 0, "matsteel.v2"},
    {"a_name_without_a_dot_has_no_base_name", L"c:\\a\\steel", 0, "mat"},
    {"a_dot_in_a_folder_does_not_count", L"c:\\a.b\\steel", 0, "mat"},
    {"a_name_without_folder_or_dot_has_no_base_name", L"steel", 0, "mat"},
    {"a_name_without_folder_has_one", L"steel.p2m", 0, "matsteel"},
    {"two_dots_and_no_folder", L"steel.v2.p2m", 0, "matsteel.v2"},
    {"a_slash_separates_no_folders", L"c:/a/steel.p2m", 0, "matc:/a/steel"},
    {"only_the_last_backslash_counts", L"c:\\a/b\\c/steel.p2m", 0, "matc/steel"},
    {"a_leading_dot_leaves_nothing", L"c:\\a\\.p2m", 0, "mat"},
    {"a_trailing_dot_goes", L"c:\\a\\steel.", 0, "matsteel"},
    {"a_trailing_backslash_leaves_nothing", L"c:\\a.b\\", 0, "mat"},
    {"no_file_adds_nothing", L"", 0, "mat"},
};

using AppearanceName = MaterialRow<AppearanceNameCase>;

TEST_P(AppearanceName, ComesFromTheFileOrTheVisualProperties)
{
    source_.withAppearance();
    source_.visual.materialFileName = L"mat";
    source_.appearance.filename = GetParam().file;
    source_.appearance.flags = GetParam().flags;
    EXPECT_EQ(apply().appearanceName, GetParam().expected);
}

TEST_P(AppearanceName, IsTheVisualPropertiesWithoutARenderAppearance)
{
    source_.visual.materialFileName = L"mat";
    source_.appearance.filename = GetParam().file;
    source_.appearance.flags = GetParam().flags;
    EXPECT_EQ(apply().appearanceName, "mat");
}

INSTANTIATE_TEST_SUITE_P(Rows, AppearanceName, testing::ValuesIn(kAppearanceNames), kRowName);

TEST_F(Material, without_a_material_file_the_appearance_name_is_the_base_name)
{
    source_.withAppearance().appearance.filename = L"c:\\a\\steel.p2m";
    EXPECT_EQ(apply().appearanceName, "steel");
}

struct ShaderNameCase {
    const char* name;
    const char* before;
    const wchar_t* shader;
    const char* expected;
};

const ShaderNameCase kShaderNames[] = {
    {"the_exact_word_is_rewritten", "", L"texture", "custom_texture"},
    {"a_capital_keeps_the_word", "", L"Texture", "Texture"},
    {"a_longer_word_stays", "", L"texture2", "texture2"},
    {"a_phrase_that_begins_with_it_stays", "", L"texture mapped", "texture mapped"},
    {"a_phrase_that_ends_with_it_stays", "", L"custom_texture", "custom_texture"},
    {"a_blank_behind_it_stays", "", L"texture ", "texture "},
    {"no_shader_stays_empty", "", L"", ""},
    {"another_shader_stays", "", L"glass", "glass"},
    {"the_test_is_on_the_whole_text", "tex", L"ture", "custom_texture"},
    {"what_was_there_counts", "texture", L"", "custom_texture"},
    {"the_word_behind_another_stays", "custom_texture", L"texture", "custom_texturetexture"},
};

using ShaderName = MaterialRow<ShaderNameCase>;

TEST_P(ShaderName, IsRewrittenOnlyForTheExactWord)
{
    source_.withAppearance().appearance.shaderName = GetParam().shader;
    material_.shaderName = GetParam().before;
    EXPECT_EQ(apply().shaderName, GetParam().expected);
}

TEST_P(ShaderName, IsLeftAloneWithoutARenderAppearance)
{
    source_.appearance.shaderName = GetParam().shader;
    material_.shaderName = GetParam().before;
    EXPECT_EQ(apply().shaderName, GetParam().before);
}

INSTANTIATE_TEST_SUITE_P(Rows, ShaderName, testing::ValuesIn(kShaderNames), kRowName);

TEST_F(Material, a_second_fill_appends_the_shader_to_the_rewritten_one)
{
    source_.withAppearance().appearance.shaderName = L"texture";
    apply();
    EXPECT_EQ(apply().shaderName, "custom_texturetexture");
}

void fillDistinct(uoRVAppearanceProperties& appearance)
{
    for (int i = 0; i < 3; ++i) {
        appearance.uDirection[i] = 1.5f + i;
        appearance.vDirection[i] = 11.5f + i;
        appearance.origin[i] = 21.5f + i;
    }
    appearance.surfaceFinish = 1;
    appearance.decalValue = 31;
    appearance.colorRef = 0xAB332211;
    appearance.index = 32;
    appearance.mappingType = 5;
    appearance.flags = 1u << 10;
    appearance.secondColorRef = 0xCD665544;
    appearance.decalAmbient = 33.5f;
    appearance.decalDiffuse = 34.5f;
    appearance.decalSpecular = 35.5f;
    appearance.shininess = 36.5f;
    appearance.unitLevel = 37.5f;
    appearance.levelA = 38.5f;
    appearance.levelB = 39.5f;
    appearance.luminous = 40.5f;
    appearance.levelC = 41.5f;
    appearance.levelD = 42.5f;
    appearance.mappingScalar = 43.5f;
    appearance.weight = 44.5f;
    appearance.lfpFilename = L"preset.lfp";
}

class RenderAppearance : public Material {
protected:
    void SetUp() override
    {
        Material::SetUp();
        fillDistinct(source_.withAppearance().appearance);
    }
};

TEST_F(RenderAppearance, gives_the_mapping)
{
    source_.withImage();
    apply();
    EXPECT_EQ(material_.texture.mappingType, 5u);
    expectSame3(material_.texture.uDirection, source_.appearance.uDirection);
    expectSame3(material_.texture.vDirection, source_.appearance.vDirection);
    expectSame3(material_.texture.origin, source_.appearance.origin);
    EXPECT_EQ(material_.texture.mappingScalar, 43.5f);
}

TEST_F(RenderAppearance, gives_the_scalars)
{
    apply();
    EXPECT_EQ(material_.rvIndex, 32);
    EXPECT_EQ(material_.rvWeight, 44.5f);
    EXPECT_EQ(material_.rvLuminous, 40.5f);
    EXPECT_EQ(material_.emission, 40.5f);
    EXPECT_EQ(material_.rvLevelA, 38.5f);
    EXPECT_EQ(material_.rvLevelB, 39.5f);
    EXPECT_EQ(material_.rvUnitLevel, 37.5f);
    EXPECT_EQ(material_.rvLevelC, 41.5f);
    EXPECT_EQ(material_.rvLevelD, 42.5f);
    EXPECT_EQ(material_.shininess, 36.5f);
    EXPECT_EQ(material_.surfaceFinish, 1);
    EXPECT_EQ(material_.lfpFilename, "preset.lfp");
}

TEST_F(RenderAppearance, gives_both_packed_colours_with_their_top_bytes)
{
    source_.visual.colorRef = 0x00FF8040;
    apply();
    EXPECT_EQ(material_.colorRef, 0xAB332211u);
    EXPECT_EQ(material_.secondColorRef, 0xCD665544u);
}

TEST_F(RenderAppearance, does_not_give_the_decal_value_or_the_reserved_flag)
{
    source_.appearance.flags = ~0u;
    apply();
    EXPECT_EQ(material_.rvDecalValue, 0);
    EXPECT_FALSE(material_.reservedFlag);
    EXPECT_FALSE(material_.visualFlag);
}

TEST_F(RenderAppearance, overwrites_the_unit_level_even_with_zero)
{
    source_.appearance.unitLevel = 0.0f;
    EXPECT_EQ(bitsOf(apply().rvUnitLevel), bitsOf(0.0f));
}

TEST_F(RenderAppearance, keeps_what_the_levels_held_when_their_bits_say_so)
{
    source_.appearance.flags = 1u << 9;
    material_.rvLevelA = 1.25f;
    material_.rvLevelB = 2.25f;
    apply();
    EXPECT_EQ(material_.rvLevelA, 1.25f);
    EXPECT_EQ(material_.rvLevelB, 2.25f);
}

TEST_F(RenderAppearance, passes_negative_and_extreme_integers_through)
{
    source_.appearance.index = std::numeric_limits<std::int32_t>::min();
    source_.appearance.surfaceFinish = -7;
    apply();
    EXPECT_EQ(material_.rvIndex, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(material_.surfaceFinish, -7);
}

TEST_F(RenderAppearance, copies_floats_bit_for_bit)
{
    source_.appearance.weight = -0.0f;
    source_.appearance.levelC = std::numeric_limits<float>::infinity();
    source_.appearance.origin[1] = floatOf(0x7FC12345);
    source_.appearance.levelD = floatOf(1);
    apply();
    EXPECT_EQ(bitsOf(material_.rvWeight), 0x80000000u);
    EXPECT_EQ(bitsOf(material_.rvLevelC), 0x7F800000u);
    EXPECT_EQ(bitsOf(material_.texture.origin[1]), 0x7FC12345u);
    EXPECT_EQ(bitsOf(material_.rvLevelD), 1u);
}

TEST_F(Material, without_a_render_appearance_its_fields_keep_their_defaults)
{
    fillDistinct(source_.appearance);
    source_.appearance.surfaceFinish = 3;
    source_.appearance.shaderName = L"glass";
    source_.appearance.flags = ~0u;
    source_.withImage();
    source_.image.scale[0] = 3;
    source_.image.angle = 30;
    source_.image.transX = 4;
    source_.image.filename = L"image.png";
    source_.visual.colorRef = 0x12345678;
    apply();
    EXPECT_EQ(material_.texture.mappingType, 1u);
    EXPECT_EQ(material_.texture.scaleU, 0.0f);
    EXPECT_EQ(material_.texture.scaleV, 0.0f);
    EXPECT_EQ(material_.texture.angle, 0.0f);
    EXPECT_EQ(material_.texture.transU, 0.0f);
    EXPECT_EQ(material_.texture.transV, 0.0f);
    EXPECT_EQ(material_.texture.mappingScalar, 0.0f);
    EXPECT_EQ(material_.texture.filename, L"");
    expectSame3(material_.texture.center, {0, 0, 0});
    expectSame3(material_.texture.uDirection, {0, 0, 0});
    EXPECT_EQ(material_.shaderName, "");
    EXPECT_EQ(material_.lfpFilename, "");
    EXPECT_EQ(material_.bumpFilename, "");
    EXPECT_EQ(material_.surfaceFinish, 0);
    EXPECT_EQ(material_.rvIndex, -1);
    EXPECT_EQ(material_.rvUnitLevel, 1.0f);
    EXPECT_EQ(material_.rvLevelA, 0.0f);
    EXPECT_EQ(material_.rvLevelB, 0.0f);
    EXPECT_EQ(material_.colorRef, 0x12345678u);
    EXPECT_EQ(material_.secondColorRef, 0x00FFFFFFu);
    EXPECT_FALSE(material_.rvFlagA || material_.rvFlagB || material_.rvFlagC || material_.rvFlagD);
    EXPECT_FALSE(material_.lfpAppearance);
}

// What one value of the flag word makes of a material whose two levels are on offer.
struct FlagEffect {
    bool a = false, b = false, c = false, d = false, lfp = false;
    bool takesLevelA = true, takesLevelB = false;

    bool operator==(const FlagEffect&) const = default;
    friend void PrintTo(const FlagEffect& e, std::ostream* out)
    {
        *out << "a" << e.a << " b" << e.b << " c" << e.c << " d" << e.d << " lfp" << e.lfp << " levelA"
             << e.takesLevelA << " levelB" << e.takesLevelB;
    }
};

FlagEffect effectOf(std::uint32_t flags)
{
    AppearanceSource source;
    source.withAppearance().appearance.flags = flags;
    source.appearance.levelA = 3.5f;
    source.appearance.levelB = 4.5f;
    dlMaterial material;
    applyVisualProperties(material, source.visual);
    EXPECT_EQ(material.rvLevelA, material.rvLevelA == 0.0f ? 0.0f : 3.5f);
    EXPECT_EQ(material.rvLevelB, material.rvLevelB == 0.0f ? 0.0f : 4.5f);
    return {material.rvFlagA,       material.rvFlagB,          material.rvFlagC,         material.rvFlagD,
            material.lfpAppearance, material.rvLevelA == 3.5f, material.rvLevelB == 4.5f};
}

FlagEffect expectedEffect(int bit)
{
    switch (bit) {
    case 5:
        return {.a = true};
    case 6:
        return {.b = true};
    case 9:
        return {.takesLevelA = false};
    case 10:
        return {.takesLevelB = true};
    case 11:
        return {.lfp = true};
    case 12:
        return {.c = true};
    case 14:
        return {.d = true};
    default:
        return {};
    }
}

class FlagBit : public testing::TestWithParam<int> {};

TEST_P(FlagBit, HasItsOwnEffectAlone)
{
    EXPECT_EQ(effectOf(1u << GetParam()), expectedEffect(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(AllBits, FlagBit, testing::Range(0, 32),
                         [](const auto& row) { return "bit_" + std::to_string(row.param); });

TEST(FlagWord, without_any_bit_has_no_effect)
{
    EXPECT_EQ(effectOf(0), FlagEffect());
}

TEST(FlagWord, with_all_bits_sets_all_flags)
{
    EXPECT_EQ(effectOf(~0u), (FlagEffect{true, true, true, true, true, false, true}));
}

TEST(FlagWord, with_only_the_bits_of_no_meaning_has_no_effect)
{
    EXPECT_EQ(effectOf(~(1u << 5 | 1u << 6 | 1u << 9 | 1u << 10 | 1u << 11 | 1u << 12 | 1u << 14)),
              FlagEffect());
}

class Placement : public Material {
protected:
    void SetUp() override
    {
        Material::SetUp();
        source_.withAppearance().withImage();
        source_.appearance.mappingType = 2;
        source_.appearance.uDirection[0] = 1;
        source_.appearance.vDirection[1] = 1;
        source_.image.angle = 360;
        source_.image.scale[0] = 2;
        source_.image.scale[1] = 4;
    }
};

TEST_F(Placement, takes_translation_and_file_name_from_the_image)
{
    source_.image.transX = 0.1;
    source_.image.transY = -0.2;
    source_.image.filename = L"c:\\images\\oak.png";
    apply();
    EXPECT_EQ(bitsOf(material_.texture.transU), bitsOf(0.1f));
    EXPECT_EQ(bitsOf(material_.texture.transV), bitsOf(-0.2f));
    EXPECT_EQ(material_.texture.filename, L"c:\\images\\oak.png");
    EXPECT_EQ(bitsOf(material_.texture.center[0]), 0x3E19999Au);
    EXPECT_EQ(bitsOf(material_.texture.center[1]), 0x3EA66666u);
    EXPECT_EQ(bitsOf(material_.texture.center[2]), 0u);
}

TEST_F(Placement, scale_is_the_reciprocal_in_double_and_the_centre_the_one_in_single)
{
    source_.image.scale[0] = 0.773;
    source_.image.scale[1] = 0.224;
    apply();
    EXPECT_EQ(bitsOf(material_.texture.scaleU), 0x3FA596B0u);
    EXPECT_EQ(bitsOf(material_.texture.scaleV), 0x408EDB6Eu);
    EXPECT_EQ(bitsOf(material_.texture.center[0]), 0x3F2596AFu);
    EXPECT_EQ(bitsOf(material_.texture.center[1]), 0x400EDB6Du);
}

TEST_F(Placement, a_scale_of_zero_gives_infinity)
{
    source_.image.scale[0] = 0.0;
    source_.image.scale[1] = -0.0;
    apply();
    EXPECT_EQ(material_.texture.scaleU, std::numeric_limits<float>::infinity());
    EXPECT_EQ(material_.texture.scaleV, -std::numeric_limits<float>::infinity());
    EXPECT_FALSE(std::isfinite(material_.texture.center[0]));
    EXPECT_FALSE(std::isfinite(material_.texture.center[1]));
}

TEST_F(Placement, the_centre_uses_the_stored_angle)
{
    source_.image.scale[0] = 1000;
    source_.image.scale[1] = 0.001;
    source_.image.angle = 0;
    apply();
    EXPECT_EQ(bitsOf(material_.texture.angle), 0x40C90FDBu);
    EXPECT_EQ(bitsOf(material_.texture.center[0]), 0x39D84F2Eu);
    EXPECT_EQ(bitsOf(material_.texture.center[1]), 0x43F9FFFFu);
}

TEST_F(Placement, the_centre_uses_the_appearances_frame)
{
    source_.appearance.mappingScalar = 7;
    source_.appearance.vDirection[1] = -1;
    source_.appearance.origin[0] = 10;
    source_.appearance.origin[1] = -20;
    source_.appearance.origin[2] = 30.5f;
    expectSame3(apply().texture.center, {10.25f, -20.125f, 30.5f});
}

TEST_F(Placement, the_decals_numbers_play_no_part)
{
    source_.image.hasRanges = true;
    source_.image.ranges[0][1] = 9;
    source_.image.hasDirections = true;
    source_.image.directions[0][2] = 1;
    source_.image.directions[1][0] = 1;
    apply();
    expectSame3(material_.texture.uDirection, {1, 0, 0});
    expectSame3(material_.texture.vDirection, {0, 1, 0});
    expectSame3(material_.texture.center, {0.25f, 0.125f, 0});
}

struct AngleCase {
    const char* name;
    double degrees;
    std::uint32_t bits;
};

const AngleCase kAngles[] = {
    {"degrees_0_are_a_whole_turn", 0, 0x40C90FDB},
    {"degrees_360_are_none", 360, 0x00000000},
    {"degrees_720_are_a_whole_turn_back", 720, 0xC0C90FDB},
    {"degrees_90", 90, 0x4096CBE4},
    {"degrees_180", 180, 0x40490FDB},
    {"degrees_270", 270, 0x3FC90FDB},
    {"degrees_45_take_pi_in_double", 45, 0x40AFEDDF},
    {"degrees_30_narrow_at_the_end", 30, 0x40B84E88},
    {"degrees_minus_30_go_past_a_turn", -30, 0x40D9D12D},
    {"degrees_1", 1, 0x40C880E0},
    {"degrees_359", 359, 0x3C8EFA35},
    {"a_tenth_of_a_degree", 0.1, 0x40C9018E},
    {"a_million_degrees_are_not_reduced", 1e6, 0xC6884E05},
    {"the_product_comes_before_the_quotient", 58.87544198603186, 0x40A82DFF},
    {"the_product_comes_before_the_quotient_again", 209.7187969377403, 0x4027DD9F},
};

class PlacementAngle : public Placement, public testing::WithParamInterface<AngleCase> {};

TEST_P(PlacementAngle, IsTheRestOfATurnInRadians)
{
    source_.image.angle = GetParam().degrees;
    EXPECT_EQ(bitsOf(apply().texture.angle), GetParam().bits) << material_.texture.angle;
}

INSTANTIATE_TEST_SUITE_P(Rows, PlacementAngle, testing::ValuesIn(kAngles), kRowName);

class PlacementType : public Placement, public testing::WithParamInterface<int> {};

TEST_P(PlacementType, AllBut1AreKeptAndPlaced)
{
    source_.appearance.mappingType = static_cast<std::uint8_t>(GetParam());
    source_.image.filename = L"oak.png";
    source_.image.angle = 180;
    source_.image.transX = 3;
    source_.image.transY = 4;
    apply();
    const bool isPlaced = GetParam() != 1;
    EXPECT_EQ(material_.texture.mappingType, static_cast<std::uint32_t>(GetParam()));
    EXPECT_EQ(material_.texture.scaleU, isPlaced ? 0.5f : 0.0f);
    EXPECT_EQ(material_.texture.scaleV, isPlaced ? 0.25f : 0.0f);
    EXPECT_EQ(bitsOf(material_.texture.angle), isPlaced ? 0x40490FDBu : 0u);
    EXPECT_EQ(material_.texture.transU, isPlaced ? 3.0f : 0.0f);
    EXPECT_EQ(material_.texture.transV, isPlaced ? 4.0f : 0.0f);
    EXPECT_EQ(material_.texture.filename, isPlaced ? L"oak.png" : L"");
    EXPECT_EQ(material_.texture.center[0] != 0.0f, isPlaced);
}

INSTANTIATE_TEST_SUITE_P(Bytes, PlacementType, testing::Values(0, 1, 2, 3, 4, 5, 6, 7, 127, 128, 200, 255),
                         [](const auto& row) { return "byte_" + std::to_string(row.param); });

TEST_F(Placement, without_an_image_the_mapping_is_copied_and_then_switched_off)
{
    source_.material.textureProperties = nullptr;
    source_.appearance.mappingType = 3;
    source_.appearance.surfaceFinish = 3;
    source_.appearance.mappingScalar = 7;
    source_.appearance.origin[2] = 5;
    apply();
    EXPECT_EQ(material_.texture.mappingType, 1u);
    expectSame3(material_.texture.uDirection, {1, 0, 0});
    expectSame3(material_.texture.vDirection, {0, 1, 0});
    expectSame3(material_.texture.origin, {0, 0, 5});
    EXPECT_EQ(material_.texture.mappingScalar, 7.0f);
    EXPECT_EQ(material_.texture.scaleU, 0.0f);
    EXPECT_EQ(material_.texture.angle, 0.0f);
    expectSame3(material_.texture.center, {0, 0, 0});
    EXPECT_EQ(material_.surfaceFinish, 3);
    EXPECT_EQ(material_.bumpFilename, "");
}

TEST_F(Material, without_an_image_an_older_mapping_is_switched_off_too)
{
    material_.texture.mappingType = 4;
    EXPECT_EQ(apply().texture.mappingType, 1u);
}

// The mapping that decides is the material's, which a render appearance need not have set.
TEST_F(Material, without_a_render_appearance_an_older_mapping_is_placed)
{
    source_.withImage();
    source_.image.scale[0] = 2;
    source_.image.filename = L"oak.png";
    material_.texture.mappingType = 4;
    material_.surfaceFinish = 3;
    apply();
    EXPECT_EQ(material_.texture.mappingType, 4u);
    EXPECT_EQ(material_.texture.scaleU, 0.5f);
    EXPECT_EQ(material_.texture.filename, L"oak.png");
    EXPECT_EQ(material_.bumpFilename, "");
}

TEST_F(Placement, the_bump_image_follows_the_finish)
{
    source_.appearance.surfaceFinish = 3;
    EXPECT_EQ(apply().bumpFilename, "D:\\Data\\images\\textures\\surfacefinishes\\ovbrushed_bump.jpg");
}

TEST_F(Placement, the_bump_image_is_there_even_when_no_image_is_mapped)
{
    source_.appearance.mappingType = 1;
    source_.appearance.surfaceFinish = 9;
    EXPECT_EQ(apply().bumpFilename, "D:\\Data\\images\\textures\\surfacefinishes\\treadplate_bump.png");
}

TEST_F(Placement, the_bump_image_of_finish_0_follows_the_document_shader_name)
{
    source_.appearance.shaderName = L"knurl";
    source_.appearance.knurlFileNumber = 3;
    EXPECT_EQ(apply().bumpFilename, "D:\\Data\\images\\textures\\surfacefinishes\\ovknurled3_bump.png");
}

TEST_F(Placement, the_bump_image_has_the_finish_just_read)
{
    material_.surfaceFinish = 5;
    source_.appearance.surfaceFinish = 1;
    EXPECT_EQ(apply().bumpFilename, "");
}

TEST_F(Material, the_bump_image_needs_a_render_appearance)
{
    source_.withImage();
    material_.surfaceFinish = 3;
    apply();
    EXPECT_EQ(material_.bumpFilename, "");
    EXPECT_EQ(material_.surfaceFinish, 3);
}

TEST_F(Placement, asks_the_image_for_its_placement_and_again_for_its_centre)
{
    recording::Recorder::get().reset();
    recording::Recorder::get().name(&source_.image, "image");
    apply();
    EXPECT_THAT(recording::Recorder::get().linesBeginning({"image."}),
                testing::UnorderedElementsAre("image.getTextureScale(0)", "image.getTextureScale(1)",
                                              "image.getTextureAngle()", "image.getTextureTransX()",
                                              "image.getTextureTransY()", "image.getTextureFilename()",
                                              "image.getTextureScale(0)", "image.getTextureScale(1)",
                                              "image.getTextureTransX()", "image.getTextureTransY()"));
}

TEST_F(Placement, asks_an_image_that_is_not_mapped_nothing)
{
    recording::Recorder::get().reset();
    recording::Recorder::get().name(&source_.image, "image");
    source_.appearance.mappingType = 1;
    apply();
    EXPECT_THAT(recording::Recorder::get().linesBeginning({"image."}), testing::IsEmpty());
}

TEST(ColourBytes, every_value_of_every_channel_is_divided_by_255)
{
    for (std::uint32_t value = 0; value < 256; ++value) {
        for (int channel = 0; channel < 3; ++channel) {
            AppearanceSource source;
            source.visual.colorRef = value << (8 * channel);
            dlMaterial material;
            applyVisualProperties(material, source.visual);
            float expected[3] = {0, 0, 0};
            expected[channel] = static_cast<float>(value) / 255.0f;
            SCOPED_TRACE(value);
            expectSame3(material.color, expected);
        }
    }
}

struct ColourCase {
    const char* name;
    std::uint32_t packed;
    std::uint32_t bits[3];
};

const ColourCase kColours[] = {
    {"black", 0x00000000, {0, 0, 0}},
    {"white", 0x00FFFFFF, {0x3F800000, 0x3F800000, 0x3F800000}},
    {"the_low_byte_is_red", 0x000000FF, {0x3F800000, 0, 0}},
    {"the_middle_byte_is_green", 0x0000FF00, {0, 0x3F800000, 0}},
    {"the_high_byte_is_blue", 0x00FF0000, {0, 0, 0x3F800000}},
    {"the_top_byte_is_not_seen", 0xFF000000, {0, 0, 0}},
    {"three_six_and_seven_tell_division_from_a_product", 0x80070603, {0x3C40C0C1, 0x3CC0C0C1, 0x3CE0E0E1}},
    {"the_middle", 0x00FE807F, {0x3EFEFEFF, 0x3F008081, 0x3F7EFEFF}},
};

using Colour = MaterialRow<ColourCase>;

TEST_P(Colour, IsUnpackedFromTheVisualProperties)
{
    source_.visual.colorRef = GetParam().packed;
    apply();
    for (int channel = 0; channel < 3; ++channel)
        EXPECT_EQ(bitsOf(material_.color[channel]), GetParam().bits[channel]) << channel;
    EXPECT_EQ(material_.colorRef, GetParam().packed);
}

TEST_P(Colour, IsTheVisualPropertiesAlsoWithARenderAppearance)
{
    source_.withAppearance().appearance.colorRef = 0x11223344;
    source_.visual.colorRef = GetParam().packed;
    apply();
    for (int channel = 0; channel < 3; ++channel)
        EXPECT_EQ(bitsOf(material_.color[channel]), GetParam().bits[channel]) << channel;
    EXPECT_EQ(material_.colorRef, 0x11223344u);
}

INSTANTIATE_TEST_SUITE_P(Rows, Colour, testing::ValuesIn(kColours), kRowName);

}  // namespace
