#include "raylume/scene/dlTexture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <type_traits>

#include "tests/scene/AppearanceFields.h"

namespace {

template <class T>
concept HasOwnEquality = requires(const T& a)
{
    a == a;
};
static_assert(!HasOwnEquality<dlTexture>);
static_assert(!std::is_polymorphic_v<dlTexture>);
static_assert(std::is_same_v<decltype(&dlTexture::operator=), dlTexture& (dlTexture::*)(const dlTexture&)>);
static_assert(
    std::is_same_v<decltype(&dlTexture::operator!=), bool (dlTexture::*)(const dlTexture&) const>);
static_assert(std::is_same_v<decltype(&dlTexture::operator<), bool (dlTexture::*)(const dlTexture&) const>);

TEST(Texture, Defaults)
{
    const dlTexture texture;
    EXPECT_EQ(texture.mappingType, 1u);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(texture.uDirection[i], 0);
        EXPECT_EQ(texture.vDirection[i], 0);
        EXPECT_EQ(texture.origin[i], 0);
        EXPECT_EQ(texture.center[i], 0);
    }
    EXPECT_EQ(texture.angle, 0);
    EXPECT_EQ(texture.scaleU, 0);
    EXPECT_EQ(texture.scaleV, 0);
    EXPECT_EQ(texture.transU, 0);
    EXPECT_EQ(texture.transV, 0);
    EXPECT_EQ(texture.mappingScalar, 0);
    EXPECT_EQ(texture.filename, L"");
}

void fill(dlTexture& texture)
{
    float value = 1;
    for (const auto& field : textureFloats()) {
        field.at(texture) = value++;
    }
    for (float& coordinate : texture.center) {
        coordinate = value++;
    }
    texture.mappingType = 7;
    texture.filename = L"image";
}

void expectCopied(dlTexture copy)
{
    dlTexture source;
    fill(source);
    for (const auto& field : textureFloats()) {
        EXPECT_EQ(field.at(copy), field.at(source)) << field.name;
    }
    EXPECT_TRUE(std::equal(copy.center, copy.center + 3, source.center));
    EXPECT_EQ(copy.mappingType, 7u);
    EXPECT_EQ(copy.filename, L"image");
}

TEST(Texture, CopiesCarryEveryField)
{
    dlTexture source;
    fill(source);
    expectCopied(dlTexture(source));
    dlTexture assigned;
    assigned = source;
    expectCopied(assigned);
    const dlTexture& alias = assigned;
    assigned = alias;
    expectCopied(assigned);
}

std::vector<OrderStep<dlTexture>> orderSteps()
{
    std::vector<OrderStep<dlTexture>> steps{
        {"mappingType", [](dlTexture& low, dlTexture& high) { high.mappingType = low.mappingType + 1; }}};
    for (const auto& field : textureFloats()) {
        steps.push_back(floatStep<dlTexture>(field));
    }
    steps.push_back({"filename", [](dlTexture&, dlTexture& high) { high.filename = L"a"; }});
    return steps;
}

TEST(TextureOrder, StepsDecideInOrder)
{
    expectStepsDecideInOrder(orderSteps());
}

class TextureFloat : public testing::TestWithParam<FloatField<dlTexture>> {};

TEST_P(TextureFloat, IsComparedWithTheTolerance)
{
    dlTexture texture, near, far;
    GetParam().at(near) = kJustSame;
    GetParam().at(far) = kJustDifferent;
    EXPECT_FALSE(texture != near);
    EXPECT_FALSE(texture < near);
    EXPECT_TRUE(texture != far);
    EXPECT_TRUE(far != texture);
    EXPECT_TRUE(texture < far);
    EXPECT_FALSE(far < texture);
}

TEST_P(TextureFloat, InfinityIsUnlikeItselfAndHidesTheRest)
{
    dlTexture a, b;
    GetParam().at(a) = GetParam().at(b) = kInfinity;
    b.filename = L"b";
    EXPECT_TRUE(a != a);
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(b < a);
}

TEST_P(TextureFloat, NaNHidesTheRest)
{
    expectNaNHidesLaterSteps(GetParam(), orderSteps());
    dlTexture texture;
    GetParam().at(texture) = kNaN;
    EXPECT_TRUE(texture != texture);
}

INSTANTIATE_TEST_SUITE_P(Fields, TextureFloat, testing::ValuesIn(textureFloats()),
                         [](const auto& row) { return row.param.name; });

TEST(TextureOrder, MappingTypeIsUnsigned)
{
    dlTexture one, huge;
    huge.mappingType = 0xFFFFFFFFu;
    EXPECT_TRUE(one < huge);
    EXPECT_FALSE(huge < one);
    EXPECT_TRUE(one != huge);
}

TEST(TextureOrder, CentreIsComparedNowhere)
{
    dlTexture a, b;
    b.center[0] = b.center[1] = b.center[2] = 5;
    EXPECT_FALSE(a != b);
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(b < a);
}

struct NameCase {
    const char* name;
    const wchar_t* a;
    const wchar_t* b;
    bool aFirst, bFirst;
};

class TextureFilename : public testing::TestWithParam<NameCase> {};

TEST_P(TextureFilename, ComparesByCodeUnit)
{
    dlTexture a, b;
    a.filename = GetParam().a;
    b.filename = GetParam().b;
    EXPECT_EQ(a < b, GetParam().aFirst);
    EXPECT_EQ(b < a, GetParam().bFirst);
    EXPECT_EQ(a != b, GetParam().aFirst || GetParam().bFirst);
}

INSTANTIATE_TEST_SUITE_P(Rows, TextureFilename,
                         testing::Values(NameCase{"same", L"a.png", L"a.png", false, false},
                                         NameCase{"case_counts", L"A.png", L"a.png", true, false},
                                         NameCase{"a_prefix_comes_first", L"a", L"ab", true, false},
                                         NameCase{"by_the_first_difference", L"b", L"ab", false, true},
                                         NameCase{"beyond_ascii", L"z", L"\u00E9", true, false}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
