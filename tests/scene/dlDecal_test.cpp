#include "raylume/scene/dlDecal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <list>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/scene/AppearanceFields.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::has_virtual_destructor_v<dlDecal>);
static_assert(sizeof(decalmaskType_e) == 4);

// Hosts are linked against these, so that const or a type that changes breaks them.
static_assert(std::is_same_v<decltype(&dlDecal::operator=), dlDecal& (dlDecal::*)(const dlDecal&)>);
static_assert(std::is_same_v<decltype(&dlDecal::isDecal), bool (dlDecal::*)() const>);
static_assert(std::is_same_v<decltype(&dlDecal::operator<), bool (dlDecal::*)(const dlMaterial&) const>);
static_assert(std::is_same_v<decltype(&dlDecal::operator==), bool (dlDecal::*)(const dlDecal&) const>);
static_assert(std::is_same_v<decltype(&dlDecal::getFaceId), int (dlDecal::*)() const>);
static_assert(std::is_same_v<decltype(&dlDecal::setFaceId), void (dlDecal::*)(int)>);
static_assert(std::is_same_v<decltype(&dlDecal::getUODecalId), int (dlDecal::*)() const>);
static_assert(std::is_same_v<decltype(&dlDecal::setUODecalId), void (dlDecal::*)(int)>);
static_assert(std::is_same_v<decltype(&dlDecal::getInstanceDecal), int (dlDecal::*)()>);
static_assert(std::is_same_v<decltype(&dlDecal::setInstanceDecal), void (dlDecal::*)(int)>);
static_assert(std::is_same_v<decltype(&dlDecal::getMaskInvert), int (dlDecal::*)()>);
static_assert(std::is_same_v<decltype(&dlDecal::setMaskInvert), void (dlDecal::*)(int)>);
static_assert(std::is_same_v<decltype(&dlDecal::getUseUnderlyingAppearance), int (dlDecal::*)()>);
static_assert(std::is_same_v<decltype(&dlDecal::setUseUnderlyingAppearance), void (dlDecal::*)(int)>);
static_assert(std::is_same_v<decltype(&dlDecal::getMaskType), decalmaskType_e (dlDecal::*)()>);
static_assert(std::is_same_v<decltype(&dlDecal::setMaskType), void (dlDecal::*)(decalmaskType_e)>);
static_assert(std::is_same_v<decltype(&dlDecal::getTextureTransU), float (dlDecal::*)() const>);
static_assert(std::is_same_v<decltype(&dlDecal::setTextureTransU), void (dlDecal::*)(float)>);
static_assert(std::is_same_v<decltype(&dlDecal::getTextureTransV), float (dlDecal::*)() const>);
static_assert(std::is_same_v<decltype(&dlDecal::setTextureTransV), void (dlDecal::*)(float)>);
static_assert(std::is_same_v<decltype(&dlDecal::getTextureAngleUV), float (dlDecal::*)() const>);
static_assert(std::is_same_v<decltype(&dlDecal::setTextureAngleUV), void (dlDecal::*)(float)>);
static_assert(std::is_same_v<decltype(&dlDecal::getMaskFilename), std::wstring (dlDecal::*)()>);
static_assert(std::is_same_v<decltype(&dlDecal::setMaskFilename), void (dlDecal::*)(std::wstring)>);
static_assert(std::is_same_v<decltype(&dlDecal::getPickDecalTag), std::string (dlDecal::*)() const>);
static_assert(std::is_same_v<decltype(&dlDecal::setPickDecalTag), void (dlDecal::*)(std::string)>);
static_assert(std::is_same_v<decltype(&dlDecal::getColorMask), std::list<unsigned long> (dlDecal::*)()>);
static_assert(
    std::is_same_v<decltype(&dlDecal::setColorMask), void (dlDecal::*)(std::list<unsigned long>)>);

TEST(Decal, Defaults)
{
    dlDecal decal;
    EXPECT_TRUE(decal.isDecal());
    EXPECT_EQ(decal.decalReservedA, 0);
    EXPECT_EQ(decal.decalReservedB, 0);
    EXPECT_EQ(decal.decalReservedC, 0);
    EXPECT_EQ(decal.maskType, 0u);
    EXPECT_EQ(decal.maskFilename, L"");
    EXPECT_EQ(decal.maskInvert, 0);
    EXPECT_THAT(decal.colorMask, IsEmpty());
    EXPECT_EQ(decal.decalReservedD, 0);
    EXPECT_EQ(decal.textureTransU, 0);
    EXPECT_EQ(decal.textureTransV, 0);
    EXPECT_EQ(decal.textureAngleUV, 0);
    EXPECT_EQ(decal.faceId, -1);
    EXPECT_EQ(decal.uoDecalId, 0);
    EXPECT_EQ(decal.useUnderlyingAppearance, 1);
    EXPECT_EQ(decal.pickDecalTag, "");
    EXPECT_EQ(decal.instanceDecal, 0);
    EXPECT_EQ(decal.ambient, 0.5f);
}

void setAll(dlDecal& decal)
{
    decal.setFaceId(1);
    decal.setUODecalId(2);
    decal.setInstanceDecal(3);
    decal.setMaskInvert(4);
    decal.setUseUnderlyingAppearance(5);
    decal.setMaskType(static_cast<decalmaskType_e>(6));
    decal.setTextureTransU(7.5f);
    decal.setTextureTransV(8.5f);
    decal.setTextureAngleUV(9.5f);
    decal.setMaskFilename(L"mask");
    decal.setPickDecalTag("tag");
    decal.setColorMask({10, 11});
}

TEST(Decal, WritersWriteTheirFields)
{
    dlDecal decal;
    setAll(decal);
    EXPECT_EQ(decal.faceId, 1);
    EXPECT_EQ(decal.uoDecalId, 2);
    EXPECT_EQ(decal.instanceDecal, 3);
    EXPECT_EQ(decal.maskInvert, 4);
    EXPECT_EQ(decal.useUnderlyingAppearance, 5);
    EXPECT_EQ(decal.maskType, 6u);
    EXPECT_EQ(decal.textureTransU, 7.5f);
    EXPECT_EQ(decal.textureTransV, 8.5f);
    EXPECT_EQ(decal.textureAngleUV, 9.5f);
    EXPECT_EQ(decal.maskFilename, L"mask");
    EXPECT_EQ(decal.pickDecalTag, "tag");
    EXPECT_THAT(decal.colorMask, ElementsAre(10u, 11u));
}

TEST(Decal, ReadersReadTheirFields)
{
    dlDecal decal;
    setAll(decal);
    const dlDecal& readOnly = decal;
    EXPECT_EQ(readOnly.getFaceId(), 1);
    EXPECT_EQ(readOnly.getUODecalId(), 2);
    EXPECT_EQ(decal.getInstanceDecal(), 3);
    EXPECT_EQ(decal.getMaskInvert(), 4);
    EXPECT_EQ(decal.getUseUnderlyingAppearance(), 5);
    EXPECT_EQ(decal.getMaskType(), 6u);
    EXPECT_EQ(readOnly.getTextureTransU(), 7.5f);
    EXPECT_EQ(readOnly.getTextureTransV(), 8.5f);
    EXPECT_EQ(readOnly.getTextureAngleUV(), 9.5f);
    EXPECT_EQ(decal.getMaskFilename(), L"mask");
    EXPECT_EQ(readOnly.getPickDecalTag(), "tag");
    EXPECT_THAT(decal.getColorMask(), ElementsAre(10ul, 11ul));
}

TEST(Decal, ColoursAre32Bit)
{
    dlDecal decal;
    decal.setColorMask({0xFFFFFFFFul});
    EXPECT_THAT(decal.getColorMask(), ElementsAre(0xFFFFFFFFul));
    decal.setColorMask({0x1'00000002ul});
    EXPECT_THAT(decal.getColorMask(), ElementsAre(2ul));
}

void fill(dlDecal& decal)
{
    setAll(decal);
    decal.decalReservedA = 21;
    decal.decalReservedB = 22;
    decal.decalReservedC = 23;
    decal.decalReservedD = 24;
    decal.ambient = 25;
    decal.idName = "id";
    decal.userName = "user";
    decal.appearanceName = "appearance";
    decal.shaderName = "shader";
    decal.visualName = "visual";
    decal.texture.filename = L"image";
    decal.texture.center[0] = 26;
    decal.reservedNameA = "source A";
    decal.reservedNameB = "source B";
}

// By == for all that it looks at, and the rest by hand.
void expectCopied(const dlDecal& copy, const dlDecal& source)
{
    EXPECT_TRUE(copy == source);
    EXPECT_EQ(copy.faceId, 1);
    EXPECT_EQ(copy.decalReservedD, 24);
    EXPECT_EQ(copy.pickDecalTag, "tag");
    EXPECT_EQ(copy.idName, "id");
    EXPECT_EQ(copy.userName, "user");
    EXPECT_EQ(copy.appearanceName, "appearance");
    EXPECT_EQ(copy.shaderName, "shader");
    EXPECT_EQ(copy.visualName, "visual");
    EXPECT_EQ(copy.texture.filename, L"image");
    EXPECT_EQ(copy.texture.center[0], 26);
    EXPECT_EQ(copy.ambient, 25);
    EXPECT_NE(&copy.colorMask, &source.colorMask);
}

TEST(Decal, CopyConstructorCopiesEveryField)
{
    dlDecal source;
    fill(source);
    const dlDecal copy(source);
    expectCopied(copy, source);
    EXPECT_EQ(copy.reservedNameA, "source A");
    EXPECT_EQ(copy.reservedNameB, "source B");
}

TEST(Decal, AssignmentKeepsTheTwoReservedNames)
{
    dlDecal source, target;
    fill(source);
    target.reservedNameA = "target A";
    target.reservedNameB = "target B";
    target = source;
    expectCopied(target, source);
    EXPECT_EQ(target.reservedNameA, "target A");
    EXPECT_EQ(target.reservedNameB, "target B");
}

TEST(Decal, SelfAssignmentKeepsEverything)
{
    dlDecal decal, expected;
    fill(decal);
    fill(expected);
    const dlDecal& alias = decal;
    decal = alias;
    expectCopied(decal, expected);
    EXPECT_EQ(decal.reservedNameA, "source A");
    EXPECT_EQ(decal.reservedNameB, "source B");
}

template <auto Field, class Value>
std::function<void(dlDecal&)> set(Value value)
{
    return [value](dlDecal& decal) { decal.*Field = value; };
}

const CompareCase<dlDecal> kChanges[] = {
    {"nothing", [](dlDecal&) {}, false, false, true},
    {"faceId", set<&dlDecal::faceId>(5), false, false, true},
    {"instanceDecal_up_comes_first", set<&dlDecal::instanceDecal>(1), true, false, false},
    {"instanceDecal_down_comes_last", set<&dlDecal::instanceDecal>(-1), false, true, false},
    {"shaderName", set<&dlDecal::shaderName>("a"), false, true, true},
    {"texture", [](dlDecal& d) { d.texture.filename = L"a"; }, false, true, true},
    {"texture_down", [](dlDecal& d) { d.texture.scaleU = -1; }, true, false, true},
    {"colorRef_up_is_unsigned", set<&dlDecal::colorRef>(0xFFFFFFFFu), false, true, false},
    {"colorRef_down", set<&dlDecal::colorRef>(0u), true, false, false},
    {"rvIndex_down_is_signed", set<&dlDecal::rvIndex>(-2), true, false, false},
    {"rvIndex_up", set<&dlDecal::rvIndex>(2), false, true, false},
    {"rvDecalValue_up", set<&dlDecal::rvDecalValue>(1), false, true, false},
    {"rvDecalValue_down", set<&dlDecal::rvDecalValue>(-1), true, false, false},
    {"secondColorRef_up_is_unsigned", set<&dlDecal::secondColorRef>(0xFFFFFFFFu), false, true, false},
    {"secondColorRef_down", set<&dlDecal::secondColorRef>(0u), true, false, false},
    {"rvFlagA", set<&dlDecal::rvFlagA>(true), false, true, false},
    {"rvFlagB", set<&dlDecal::rvFlagB>(true), false, true, false},
    {"rvFlagC", set<&dlDecal::rvFlagC>(true), false, true, false},
    {"rvFlagD_is_not_ordered", set<&dlDecal::rvFlagD>(true), false, false, false},
    {"lfpAppearance_is_not_ordered", set<&dlDecal::lfpAppearance>(true), false, false, false},
    {"reservedFlag_is_not_ordered", set<&dlDecal::reservedFlag>(true), false, false, false},
    {"visualFlag_is_not_ordered", set<&dlDecal::visualFlag>(true), false, false, false},
    {"surfaceFinish_up", set<&dlDecal::surfaceFinish>(1), false, true, false},
    {"surfaceFinish_down", set<&dlDecal::surfaceFinish>(-1), true, false, false},
    {"bumpFilename", set<&dlDecal::bumpFilename>("a"), false, true, false},
    {"lfpFilename", set<&dlDecal::lfpFilename>("a"), false, true, false},
    {"reservedNameC", set<&dlDecal::reservedNameC>("a"), false, true, false},
    {"idName", set<&dlDecal::idName>("a"), false, false, true},
    {"userName", set<&dlDecal::userName>("a"), false, false, true},
    {"appearanceName", set<&dlDecal::appearanceName>("a"), false, false, true},
    {"visualName", set<&dlDecal::visualName>("a"), false, false, true},
    {"reservedNameA", set<&dlDecal::reservedNameA>("a"), false, false, true},
    {"reservedNameB", set<&dlDecal::reservedNameB>("a"), false, false, true},
    {"decalReservedA_up", set<&dlDecal::decalReservedA>(1), false, true, false},
    {"decalReservedA_down", set<&dlDecal::decalReservedA>(-1), true, false, false},
    {"decalReservedB_up", set<&dlDecal::decalReservedB>(1), false, true, false},
    {"decalReservedB_down", set<&dlDecal::decalReservedB>(-1), true, false, false},
    {"decalReservedC_up", set<&dlDecal::decalReservedC>(1), false, true, false},
    {"decalReservedC_down", set<&dlDecal::decalReservedC>(-1), true, false, false},
    {"decalReservedD_up", set<&dlDecal::decalReservedD>(1), false, true, false},
    {"decalReservedD_down", set<&dlDecal::decalReservedD>(-1), true, false, false},
    {"maskType_up", set<&dlDecal::maskType>(static_cast<decalmaskType_e>(1)), false, true, false},
    {"maskType_is_signed", set<&dlDecal::maskType>(static_cast<decalmaskType_e>(0xFFFFFFFFu)), true, false,
     false},
    {"maskFilename", set<&dlDecal::maskFilename>(L"a"), false, true, false},
    {"maskInvert_up", set<&dlDecal::maskInvert>(1), false, true, false},
    {"maskInvert_down", set<&dlDecal::maskInvert>(-1), true, false, false},
    {"uoDecalId_up", set<&dlDecal::uoDecalId>(1), false, true, false},
    {"uoDecalId_down", set<&dlDecal::uoDecalId>(-1), true, false, false},
    {"useUnderlyingAppearance_up", set<&dlDecal::useUnderlyingAppearance>(2), false, true, false},
    {"useUnderlyingAppearance_down", set<&dlDecal::useUnderlyingAppearance>(0), true, false, false},
    {"pickDecalTag", set<&dlDecal::pickDecalTag>("a"), false, true, false},
    {"colorMask", [](dlDecal& d) { d.colorMask = {0}; }, false, true, false},
    {"decals", [](dlDecal& d) { d.addDecals(new dlDecal); }, false, true, false},
};

class DecalChange : public testing::TestWithParam<CompareCase<dlDecal>> {};

TEST_P(DecalChange, ComparesAsTold)
{
    dlDecal changed, unchanged;
    GetParam().change(changed);
    EXPECT_EQ(changed < unchanged, GetParam().changedFirst);
    EXPECT_EQ(unchanged < changed, GetParam().unchangedFirst);
    EXPECT_EQ(changed == unchanged, GetParam().same);
    EXPECT_EQ(unchanged == changed, GetParam().same);
}

INSTANTIATE_TEST_SUITE_P(Rows, DecalChange, testing::ValuesIn(kChanges),
                         [](const auto& row) { return row.param.name; });

template <auto Field>
OrderStep<dlDecal> raise(const char* name)
{
    return {name, [](dlDecal& low, dlDecal& high) {
                using Value = std::decay_t<decltype(high.*Field)>;
                low.*Field = {};
                if constexpr (std::is_same_v<Value, std::string>) {
                    high.*Field = "a";
                } else if constexpr (std::is_same_v<Value, std::wstring>) {
                    high.*Field = L"a";
                } else {
                    high.*Field = static_cast<Value>(1);
                }
            }};
}

std::vector<FloatField<dlDecal>> decalFloats()
{
    std::vector<FloatField<dlDecal>> fields;
    for (const auto& field : materialFloats()) {
        fields.push_back({field.name, [at = field.at](dlDecal& d) -> float& { return at(d); }});
    }
    fields.push_back({"textureTransU", [](dlDecal& d) -> float& { return d.textureTransU; }});
    fields.push_back({"textureTransV", [](dlDecal& d) -> float& { return d.textureTransV; }});
    fields.push_back({"textureAngleUV", [](dlDecal& d) -> float& { return d.textureAngleUV; }});
    return fields;
}

void addSurfaceSteps(std::vector<OrderStep<dlDecal>>& steps)
{
    steps.push_back({"instanceDecal", [](dlDecal& low, dlDecal&) { low.instanceDecal = 1; }});
    steps.push_back(raise<&dlDecal::shaderName>("shaderName"));
    for (const auto& field : frontFloats()) {
        steps.push_back(floatStep<dlDecal>(field));
    }
    steps.push_back({"texture", [](dlDecal& low, dlDecal& high) {
                         low.texture.filename = L"a";
                         high.texture.filename = L"b";
                     }});
    steps.push_back(floatStep<dlDecal>(decalFloats(), "emission"));
    steps.push_back(raise<&dlDecal::colorRef>("colorRef"));
    steps.push_back({"decals", [](dlDecal&, dlDecal& high) { high.addDecals(new dlDecal); }});
}

void addRenderSteps(std::vector<OrderStep<dlDecal>>& steps)
{
    steps.push_back(raise<&dlDecal::rvIndex>("rvIndex"));
    steps.push_back(floatStep<dlDecal>(decalFloats(), "rvWeight"));
    steps.push_back(raise<&dlDecal::rvDecalValue>("rvDecalValue"));
    steps.push_back(raise<&dlDecal::secondColorRef>("secondColorRef"));
    steps.push_back(raise<&dlDecal::rvFlagA>("rvFlagA"));
    steps.push_back(raise<&dlDecal::rvFlagC>("rvFlagC"));
    steps.push_back(raise<&dlDecal::rvFlagB>("rvFlagB"));
    for (const char* name : {"rvLuminous", "rvLevelA", "rvLevelB", "rvUnitLevel", "rvLevelD", "rvLevelC"}) {
        steps.push_back(floatStep<dlDecal>(decalFloats(), name));
    }
    steps.push_back(raise<&dlDecal::surfaceFinish>("surfaceFinish"));
    steps.push_back(raise<&dlDecal::bumpFilename>("bumpFilename"));
    steps.push_back(raise<&dlDecal::lfpFilename>("lfpFilename"));
    steps.push_back(raise<&dlDecal::reservedNameC>("reservedNameC"));
}

void addOwnSteps(std::vector<OrderStep<dlDecal>>& steps)
{
    steps.push_back(raise<&dlDecal::decalReservedA>("decalReservedA"));
    steps.push_back(raise<&dlDecal::decalReservedB>("decalReservedB"));
    steps.push_back(raise<&dlDecal::decalReservedC>("decalReservedC"));
    steps.push_back(raise<&dlDecal::maskType>("maskType"));
    steps.push_back(raise<&dlDecal::maskFilename>("maskFilename"));
    steps.push_back(raise<&dlDecal::maskInvert>("maskInvert"));
    steps.push_back(raise<&dlDecal::decalReservedD>("decalReservedD"));
    for (const char* name : {"textureTransU", "textureTransV", "textureAngleUV"}) {
        steps.push_back(floatStep<dlDecal>(decalFloats(), name));
    }
    steps.push_back(raise<&dlDecal::uoDecalId>("uoDecalId"));
    steps.push_back(raise<&dlDecal::useUnderlyingAppearance>("useUnderlyingAppearance"));
    steps.push_back(raise<&dlDecal::pickDecalTag>("pickDecalTag"));
    steps.push_back({"colorMask", [](dlDecal&, dlDecal& high) { high.colorMask = {0}; }});
}

std::vector<OrderStep<dlDecal>> orderSteps()
{
    std::vector<OrderStep<dlDecal>> steps;
    addSurfaceSteps(steps);
    addRenderSteps(steps);
    addOwnSteps(steps);
    return steps;
}

TEST(DecalOrder, StepsDecideInOrder)
{
    expectStepsDecideInOrder(orderSteps());
}

class DecalFloat : public testing::TestWithParam<FloatField<dlDecal>> {};

TEST_P(DecalFloat, IsComparedWithTheTolerance)
{
    dlDecal decal, near, far;
    GetParam().at(decal) = 0;
    GetParam().at(near) = kJustSame;
    GetParam().at(far) = kJustDifferent;
    EXPECT_TRUE(decal == near);
    EXPECT_FALSE(decal < near);
    EXPECT_FALSE(near < decal);
    EXPECT_FALSE(decal == far);
    EXPECT_TRUE(decal < far);
    EXPECT_FALSE(far < decal);
}

TEST_P(DecalFloat, NaNIsUnlikeEverythingAndHidesTheRest)
{
    dlDecal broken;
    const dlDecal plain;
    GetParam().at(broken) = kNaN;
    EXPECT_FALSE(broken == broken);
    EXPECT_FALSE(plain == broken);
    expectNaNHidesLaterSteps(GetParam(), orderSteps());
}

INSTANTIATE_TEST_SUITE_P(Fields, DecalFloat, testing::ValuesIn(decalFloats()),
                         [](const auto& row) { return row.param.name; });

TEST(DecalOrder, NoDecalComesBeforeAPlainMaterial)
{
    dlDecal decal;
    dlMaterial material;
    decal.shaderName = "a";
    decal.instanceDecal = 1;
    material.shaderName = "z";
    EXPECT_FALSE(decal < material);
    EXPECT_TRUE(material < decal);
}

struct ColoursCase {
    const char* name;
    std::list<std::uint32_t> a, b;
    bool aFirst, bFirst;
};

class DecalColours : public testing::TestWithParam<ColoursCase> {};

TEST_P(DecalColours, CompareInOrderAndUnsigned)
{
    dlDecal a, b;
    a.colorMask = GetParam().a;
    b.colorMask = GetParam().b;
    EXPECT_EQ(a < b, GetParam().aFirst);
    EXPECT_EQ(b < a, GetParam().bFirst);
    EXPECT_EQ(a == b, GetParam().a == GetParam().b);
}

INSTANTIATE_TEST_SUITE_P(Rows, DecalColours,
                         testing::Values(ColoursCase{"same", {1, 2}, {1, 2}, false, false},
                                         ColoursCase{"order_counts", {1, 2}, {2, 1}, true, false},
                                         ColoursCase{"unsigned_values", {1}, {0xFFFFFFFFu}, true, false},
                                         ColoursCase{"a_prefix_comes_first", {1}, {1, 0}, true, false},
                                         ColoursCase{"value_before_length", {2}, {1, 0}, false, true}),
                         [](const auto& row) { return row.param.name; });

struct PointersCase {
    const char* name;
    std::vector<int> a, b;
    bool aFirst, bFirst;
};

class DecalsOfDecals : public testing::TestWithParam<PointersCase> {};

TEST_P(DecalsOfDecals, CompareByAddress)
{
    dlDecal held[3];
    dlDecal a, b;
    for (const int i : GetParam().a) {
        a.decals.push_back(&held[i]);
    }
    for (const int i : GetParam().b) {
        b.decals.push_back(&held[i]);
    }
    EXPECT_EQ(a < b, GetParam().aFirst);
    EXPECT_EQ(b < a, GetParam().bFirst);
    EXPECT_EQ(a == b, GetParam().a == GetParam().b);
    a.decals.clear();
    b.decals.clear();
}

INSTANTIATE_TEST_SUITE_P(Rows, DecalsOfDecals,
                         testing::Values(PointersCase{"same", {0, 1}, {0, 1}, false, false},
                                         PointersCase{"lower_address_first", {0}, {1}, true, false},
                                         PointersCase{"a_prefix_comes_first", {0}, {0, 1}, true, false},
                                         PointersCase{"address_before_length", {1}, {0, 2}, false, true}),
                         [](const auto& row) { return row.param.name; });

TEST(DecalOrder, MaskFilenameComparesWide)
{
    dlDecal a, b;
    a.maskFilename = L"z";
    b.maskFilename = L"\u00E9";
    EXPECT_TRUE(a < b);
    EXPECT_FALSE(b < a);
    EXPECT_FALSE(a == b);
}

}  // namespace
