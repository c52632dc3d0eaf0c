#include "raylume/scene/dlMaterial.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <list>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/scene/AppearanceFields.h"
#include "tests/scene/CountingDecal.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::is_polymorphic_v<dlMaterial> && !std::has_virtual_destructor_v<dlMaterial>);
template <class T>
concept HasOwnInequality = requires
{
    &T::operator!=;
};
static_assert(!HasOwnInequality<dlMaterial>);
static_assert(
    std::is_same_v<decltype(&dlMaterial::operator=), dlMaterial& (dlMaterial::*)(const dlMaterial&)>);
static_assert(std::is_same_v<decltype(&dlMaterial::isDecal), bool (dlMaterial::*)() const>);
static_assert(
    std::is_same_v<decltype(&dlMaterial::operator<), bool (dlMaterial::*)(const dlMaterial&) const>);
static_assert(
    std::is_same_v<decltype(&dlMaterial::operator==), bool (dlMaterial::*)(const dlMaterial&) const>);
static_assert(std::is_same_v<decltype(&dlMaterial::addDecals), void (dlMaterial::*)(dlDecal*)>);
static_assert(std::is_same_v<decltype(&dlMaterial::getDecals), std::list<dlDecal*>& (dlMaterial::*)()>);

// A pointer to a virtual operation starts with the place of that operation in the table.
template <class Operation>
std::ptrdiff_t placeInTable(Operation operation)
{
    std::ptrdiff_t place = 0;
    std::memcpy(&place, &operation, sizeof place);
    return place;
}

TEST(Material, IsDecalComesBeforeLessInTheTable)
{
    EXPECT_LT(placeInTable(&dlMaterial::isDecal), placeInTable(&dlMaterial::operator<));
}

TEST(Material, DefaultLook)
{
    const dlMaterial m;
    EXPECT_THAT(m.color, ElementsAre(1.0f, 0.0f, 0.0f));
    EXPECT_EQ(m.ambient, 0.5f);
    EXPECT_EQ(m.diffuse, 1.0f);
    EXPECT_EQ(m.specular, 0);
    EXPECT_EQ(m.shininess, 0);
    EXPECT_EQ(m.transparency, 0);
    EXPECT_EQ(m.emission, 0);
    EXPECT_EQ(m.texture.mappingType, 1u);
    EXPECT_EQ(m.colorRef, 0x00FFFFFFu);
    EXPECT_EQ(m.surfaceFinish, 0);
    EXPECT_THAT(m.decals, IsEmpty());
    EXPECT_FALSE(m.isDecal());
}

TEST(Material, DefaultRenderAppearance)
{
    const dlMaterial m;
    EXPECT_EQ(m.rvIndex, -1);
    EXPECT_EQ(m.rvWeight, 0);
    EXPECT_EQ(m.rvDecalValue, 0);
    EXPECT_EQ(m.secondColorRef, 0x00FFFFFFu);
    EXPECT_EQ(m.rvLuminous, 0);
    EXPECT_EQ(m.rvLevelA, 0);
    EXPECT_EQ(m.rvLevelB, 0);
    EXPECT_EQ(m.rvUnitLevel, 1.0f);
    EXPECT_EQ(m.rvLevelC, 0);
    EXPECT_EQ(m.rvLevelD, 0);
    for (const bool flag :
         {m.rvFlagA, m.rvFlagB, m.rvFlagC, m.rvFlagD, m.lfpAppearance, m.reservedFlag, m.visualFlag}) {
        EXPECT_FALSE(flag);
    }
}

using TextField = std::string dlMaterial::*;
constexpr TextField kNames[] = {&dlMaterial::idName,         &dlMaterial::userName,
                                &dlMaterial::appearanceName, &dlMaterial::shaderName,
                                &dlMaterial::visualName,     &dlMaterial::bumpFilename,
                                &dlMaterial::lfpFilename,    &dlMaterial::reservedNameC};
constexpr TextField kKeptNames[] = {&dlMaterial::reservedNameA, &dlMaterial::reservedNameB};
constexpr bool dlMaterial::*kFlags[] = {
    &dlMaterial::rvFlagA,       &dlMaterial::rvFlagB,      &dlMaterial::rvFlagC,   &dlMaterial::rvFlagD,
    &dlMaterial::lfpAppearance, &dlMaterial::reservedFlag, &dlMaterial::visualFlag};

TEST(Material, DefaultNamesAreEmpty)
{
    const dlMaterial m;
    for (const TextField name : kNames) {
        EXPECT_EQ(m.*name, "");
    }
    for (const TextField name : kKeptNames) {
        EXPECT_EQ(m.*name, "");
    }
}

void fill(dlMaterial& m)
{
    float value = 2;
    for (const auto& field : materialFloats()) {
        field.at(m) = value++;
    }
    for (const auto& field : textureFloats()) {
        field.at(m.texture) = value++;
    }
    m.texture.center[1] = 99;
    m.texture.mappingType = 5;
    m.texture.filename = L"image";
    m.colorRef = 3;
    m.rvIndex = 4;
    m.rvDecalValue = 5;
    m.secondColorRef = 6;
    m.surfaceFinish = 7;
    for (const auto flag : kFlags) {
        m.*flag = true;
    }
    int number = 0;
    for (const TextField name : kNames) {
        m.*name = "name " + std::to_string(number++);
    }
    m.reservedNameA = "source A";
    m.reservedNameB = "source B";
    m.addDecals(new dlDecal);
}

// All but the decals and the two names that an assignment leaves out.
void expectSameFields(dlMaterial& copy, dlMaterial& source)
{
    for (const auto& field : materialFloats()) {
        EXPECT_EQ(field.at(copy), field.at(source)) << field.name;
    }
    EXPECT_FALSE(copy.texture != source.texture);
    EXPECT_EQ(copy.texture.center[1], 99.0f);
    EXPECT_EQ(copy.texture.mappingType, 5u);
    EXPECT_EQ(copy.texture.filename, L"image");
    EXPECT_EQ(copy.colorRef, 3u);
    EXPECT_EQ(copy.rvIndex, 4);
    EXPECT_EQ(copy.rvDecalValue, 5);
    EXPECT_EQ(copy.secondColorRef, 6u);
    EXPECT_EQ(copy.surfaceFinish, 7);
    for (const auto flag : kFlags) {
        EXPECT_TRUE(copy.*flag);
    }
    for (const TextField name : kNames) {
        EXPECT_EQ(copy.*name, source.*name);
    }
}

void expectCopied(dlMaterial& copy, dlMaterial& source)
{
    expectSameFields(copy, source);
    EXPECT_EQ(copy.decals, source.decals);
}

TEST(Material, CopyConstructorCopiesEveryField)
{
    dlMaterial source;
    fill(source);
    dlMaterial copy(source);
    expectCopied(copy, source);
    EXPECT_EQ(copy.reservedNameA, "source A");
    EXPECT_EQ(copy.reservedNameB, "source B");
    copy.decals.clear();
}

TEST(Material, AssignmentKeepsTheTwoReservedNames)
{
    dlMaterial source, target;
    fill(source);
    target.reservedNameA = "target A";
    target.reservedNameB = "target B";
    target = source;
    expectCopied(target, source);
    EXPECT_EQ(target.reservedNameA, "target A");
    EXPECT_EQ(target.reservedNameB, "target B");
    target.decals.clear();
}

void expectOnlyFlag(const dlMaterial& copy, bool dlMaterial::*set)
{
    for (const auto flag : kFlags) {
        EXPECT_EQ(copy.*flag, flag == set);
    }
}

// Flags that are swapped show only when they are not all alike, and one that is left out only when
// the target has the opposite.
TEST(Material, CopiesCarryEachFlagToItsOwnPlace)
{
    for (const auto set : kFlags) {
        dlMaterial source, target;
        for (const auto flag : kFlags) {
            source.*flag = flag == set;
            target.*flag = flag != set;
        }
        SCOPED_TRACE(std::find(std::begin(kFlags), std::end(kFlags), set) - kFlags);
        expectOnlyFlag(dlMaterial(source), set);
        target = source;
        expectOnlyFlag(target, set);
    }
}

TEST(Material, AssignmentLeavesReplacedDecalsAlive)
{
    std::vector<std::string> gone;
    CountingDecal orphan(gone, "orphan");
    dlMaterial source, target;
    target.addDecals(&orphan);
    target = source;
    EXPECT_THAT(target.decals, IsEmpty());
    EXPECT_THAT(gone, IsEmpty());
}

template <std::size_t Count>
void expectNames(const dlMaterial& material, const TextField (&names)[Count],
                 const char* const (&expected)[Count])
{
    for (std::size_t i = 0; i < Count; ++i) {
        EXPECT_EQ(material.*names[i], expected[i]);
    }
}

TEST(Material, SelfAssignmentKeepsEverything)
{
    dlMaterial material, expected;
    fill(material);
    fill(expected);
    dlDecal* const decal = material.decals.front();
    const dlMaterial& alias = material;
    material = alias;
    expectSameFields(material, expected);
    EXPECT_THAT(material.decals, ElementsAre(decal));
    expectNames(material, kNames,
                {"name 0", "name 1", "name 2", "name 3", "name 4", "name 5", "name 6", "name 7"});
    expectNames(material, kKeptNames, {"source A", "source B"});
}

TEST(Material, AddDecalsIgnoresNull)
{
    dlMaterial material;
    material.addDecals(nullptr);
    EXPECT_THAT(material.decals, IsEmpty());
}

TEST(Material, GetDecalsIsTheLiveList)
{
    dlMaterial material;
    auto* decal = new dlDecal;
    material.getDecals().push_back(decal);
    EXPECT_EQ(&material.getDecals(), &material.decals);
    EXPECT_THAT(material.decals, ElementsAre(decal));
}

TEST(Material, DestructorDeletesDecalsThatAreNotNull)
{
    std::vector<std::string> gone;
    {
        dlMaterial material;
        material.addDecals(new CountingDecal(gone, "first"));
        material.decals.push_back(nullptr);
        material.addDecals(new CountingDecal(gone, "second"));
    }
    EXPECT_THAT(gone, ElementsAre("first", "second"));
}

// Equality and order, a change at a time.

template <auto Field, class Value>
std::function<void(dlMaterial&)> set(Value value)
{
    return [value](dlMaterial& m) { m.*Field = value; };
}

const CompareCase<dlMaterial> kChanges[] = {
    {"nothing", [](dlMaterial&) {}, false, false, true},
    {"mappingType", [](dlMaterial& m) { m.texture.mappingType = 2; }, false, true, true},
    {"texture_filename", [](dlMaterial& m) { m.texture.filename = L"a"; }, false, true, true},
    {"texture_scale_down", [](dlMaterial& m) { m.texture.scaleU = -1; }, true, false, true},
    {"texture_scale_infinite", [](dlMaterial& m) { m.texture.scaleU = kInfinity; }, false, true, true},
    {"colorRef_up", set<&dlMaterial::colorRef>(0xFFFFFFFFu), false, true, false},
    {"colorRef_down", set<&dlMaterial::colorRef>(0u), true, false, false},
    {"rvIndex_up", set<&dlMaterial::rvIndex>(0), false, true, false},
    {"rvIndex_down_is_signed", set<&dlMaterial::rvIndex>(-2), true, false, false},
    {"rvDecalValue_up", set<&dlMaterial::rvDecalValue>(1), false, true, false},
    {"rvDecalValue_down_is_signed", set<&dlMaterial::rvDecalValue>(-1), true, false, false},
    {"secondColorRef_up", set<&dlMaterial::secondColorRef>(0xFFFFFFFFu), false, true, false},
    {"secondColorRef_down", set<&dlMaterial::secondColorRef>(0u), true, false, false},
    {"rvFlagA", set<&dlMaterial::rvFlagA>(true), false, true, false},
    {"rvFlagB", set<&dlMaterial::rvFlagB>(true), false, true, false},
    {"rvFlagC", set<&dlMaterial::rvFlagC>(true), false, true, false},
    {"rvFlagD", set<&dlMaterial::rvFlagD>(true), false, true, false},
    {"lfpAppearance", set<&dlMaterial::lfpAppearance>(true), false, true, false},
    {"reservedFlag", set<&dlMaterial::reservedFlag>(true), false, true, false},
    {"visualFlag", set<&dlMaterial::visualFlag>(true), false, true, false},
    {"surfaceFinish_up", set<&dlMaterial::surfaceFinish>(1), false, true, false},
    {"surfaceFinish_down_is_signed", set<&dlMaterial::surfaceFinish>(-1), true, false, false},
    {"shaderName", set<&dlMaterial::shaderName>("a"), false, true, true},
    {"bumpFilename", set<&dlMaterial::bumpFilename>("a"), false, true, false},
    {"lfpFilename", set<&dlMaterial::lfpFilename>("a"), false, false, false},
    {"reservedNameC", set<&dlMaterial::reservedNameC>("a"), false, true, false},
    {"idName", set<&dlMaterial::idName>("a"), false, false, true},
    {"userName", set<&dlMaterial::userName>("a"), false, false, true},
    {"appearanceName", set<&dlMaterial::appearanceName>("a"), false, false, true},
    {"visualName", set<&dlMaterial::visualName>("a"), false, false, true},
    {"reservedNameA", set<&dlMaterial::reservedNameA>("a"), false, false, true},
    {"reservedNameB", set<&dlMaterial::reservedNameB>("a"), false, false, true},
    {"a_surface_decal_first", [](dlMaterial& m) { m.addDecals(new dlDecal); }, true, false, false},
    {"an_instance_decal_last",
     [](dlMaterial& m) {
         m.addDecals(new dlDecal);
         m.decals.back()->setInstanceDecal(1);
     },
     false, true, false},
    {"an_instance_decal_of_2_last",
     [](dlMaterial& m) {
         m.addDecals(new dlDecal);
         m.decals.back()->setInstanceDecal(2);
     },
     false, true, false},
    {"a_negative_instance_decal_last",
     [](dlMaterial& m) {
         m.addDecals(new dlDecal);
         m.decals.back()->setInstanceDecal(-1);
     },
     false, true, false},
};

class MaterialChange : public testing::TestWithParam<CompareCase<dlMaterial>> {};

TEST_P(MaterialChange, ComparesAsTold)
{
    dlMaterial changed, unchanged;
    GetParam().change(changed);
    EXPECT_EQ(changed < unchanged, GetParam().changedFirst);
    EXPECT_EQ(unchanged < changed, GetParam().unchangedFirst);
    EXPECT_EQ(changed == unchanged, GetParam().same);
    EXPECT_EQ(unchanged == changed, GetParam().same);
}

INSTANTIATE_TEST_SUITE_P(Rows, MaterialChange, testing::ValuesIn(kChanges),
                         [](const auto& row) { return row.param.name; });

dlDecal& addDecal(dlMaterial& material, int instanceDecal = 1)
{
    auto* decal = new dlDecal;
    decal->setInstanceDecal(instanceDecal);
    material.decals.push_front(decal);
    return *decal;
}

// One field that `low` has at 0 or empty and `high` above it.
template <auto Field>
OrderStep<dlMaterial> raise(const char* name)
{
    return {name, [](dlMaterial& low, dlMaterial& high) {
                low.*Field = {};
                if constexpr (std::is_same_v<std::decay_t<decltype(high.*Field)>, std::string>) {
                    high.*Field = "a";
                } else {
                    high.*Field = 1;
                }
            }};
}

std::vector<OrderStep<dlMaterial>> decalSteps()
{
    return {{"surface_decal", [](dlMaterial& low, dlMaterial&) { addDecal(low, 0); }},
            {"number_of_decals", [](dlMaterial&, dlMaterial& high) { addDecal(high); }},
            {"content_of_decals", [](dlMaterial& low, dlMaterial& high) {
                 addDecal(low).colorRef = 9;  // In reverse: the material of the greater decal is less.
                 addDecal(high).colorRef = 8;
             }}};
}

std::vector<OrderStep<dlMaterial>> orderSteps()
{
    std::vector<OrderStep<dlMaterial>> steps{raise<&dlMaterial::shaderName>("shaderName")};
    for (const auto& field : frontFloats()) {
        steps.push_back(floatStep<dlMaterial>(field));
    }
    const auto real = [&](const char* name) {
        steps.push_back(floatStep<dlMaterial>(materialFloats(), name));
    };
    steps.push_back({"texture", [](dlMaterial& low, dlMaterial& high) {
                         low.texture.filename = L"a";
                         high.texture.filename = L"b";
                     }});
    real("emission");
    steps.push_back(raise<&dlMaterial::colorRef>("colorRef"));
    for (const auto& step : decalSteps()) {
        steps.push_back(step);
    }
    steps.push_back(raise<&dlMaterial::rvIndex>("rvIndex"));
    real("rvWeight");
    steps.push_back(raise<&dlMaterial::secondColorRef>("secondColorRef"));
    steps.push_back(raise<&dlMaterial::rvFlagA>("rvFlagA"));
    steps.push_back(raise<&dlMaterial::rvFlagC>("rvFlagC"));
    steps.push_back(raise<&dlMaterial::rvFlagD>("rvFlagD"));
    steps.push_back(raise<&dlMaterial::rvFlagB>("rvFlagB"));
    for (const char* name : {"rvLuminous", "rvLevelA", "rvLevelB", "rvUnitLevel", "rvLevelC", "rvLevelD"}) {
        real(name);
    }
    steps.push_back(raise<&dlMaterial::lfpAppearance>("lfpAppearance"));
    steps.push_back(raise<&dlMaterial::reservedFlag>("reservedFlag"));
    steps.push_back(raise<&dlMaterial::visualFlag>("visualFlag"));
    steps.push_back(raise<&dlMaterial::surfaceFinish>("surfaceFinish"));
    steps.push_back(raise<&dlMaterial::bumpFilename>("bumpFilename"));
    steps.push_back(raise<&dlMaterial::reservedNameC>("reservedNameC"));
    steps.push_back(raise<&dlMaterial::rvDecalValue>("rvDecalValue"));
    return steps;
}

TEST(MaterialOrder, StepsDecideInOrder)
{
    expectStepsDecideInOrder(orderSteps());
}

class MaterialFloat : public testing::TestWithParam<FloatField<dlMaterial>> {};

TEST_P(MaterialFloat, IsComparedWithTheTolerance)
{
    dlMaterial material, near, far;
    GetParam().at(material) = 0;
    GetParam().at(near) = kJustSame;
    GetParam().at(far) = kJustDifferent;
    EXPECT_TRUE(material == near);
    EXPECT_FALSE(material < near);
    EXPECT_FALSE(near < material);
    EXPECT_FALSE(material == far);
    EXPECT_TRUE(material < far);
    EXPECT_FALSE(far < material);
}

TEST_P(MaterialFloat, NaNIsUnlikeEverythingAndHidesTheRest)
{
    dlMaterial broken;
    const dlMaterial plain;
    GetParam().at(broken) = kNaN;
    EXPECT_FALSE(broken == broken);
    EXPECT_FALSE(broken == plain);
    EXPECT_FALSE(plain == broken);
    expectNaNHidesLaterSteps(GetParam(), orderSteps());
}

TEST_P(MaterialFloat, InfinityIsUnlikeItself)
{
    dlMaterial a, b;
    GetParam().at(a) = GetParam().at(b) = kInfinity;
    b.rvDecalValue = 1;
    EXPECT_FALSE(a == a);
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(b < a);
}

INSTANTIATE_TEST_SUITE_P(Fields, MaterialFloat, testing::ValuesIn(materialFloats()),
                         [](const auto& row) { return row.param.name; });

TEST(MaterialOrder, InfiniteTextureScaleHidesTheFieldsBehind)
{
    dlMaterial a, b;
    a.texture.scaleU = b.texture.scaleU = kInfinity;
    b.colorRef = 0;
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(b < a);
    EXPECT_FALSE(a == b);
}

TEST(MaterialEquality, IsNotTransitive)
{
    dlMaterial a, b, c;
    a.specular = 0;
    b.specular = 6e-6f;
    c.specular = 12e-6f;
    EXPECT_TRUE(a == b);
    EXPECT_TRUE(b == c);
    EXPECT_FALSE(a == c);
}

TEST(MaterialEquality, DecalsGoByPointerAndOrder)
{
    dlDecal decals[2];
    dlMaterial a, b;
    a.decals = {&decals[0], &decals[1]};
    b.decals = {&decals[0], &decals[1]};
    EXPECT_TRUE(a == b);
    b.decals = {&decals[1], &decals[0]};
    EXPECT_FALSE(a == b);
    b.decals = {&decals[0]};
    EXPECT_FALSE(a == b);
    a.decals.clear();
    b.decals.clear();
}

TEST(MaterialOrder, EveryPlainMaterialComesBeforeEveryDecal)
{
    dlMaterial material;
    dlDecal decal;
    material.shaderName = "z";
    material.color[0] = kNaN;
    decal.shaderName = "a";
    const dlMaterial& asMaterial = decal;
    EXPECT_TRUE(material < decal);
    EXPECT_FALSE(asMaterial < material);
}

TEST(MaterialOrder, NamesCompareAsUnsignedBytes)
{
    dlMaterial ascii, accented;
    ascii.shaderName = "z";
    accented.shaderName = "\xE9";
    EXPECT_TRUE(ascii < accented);
    EXPECT_FALSE(accented < ascii);
}

// A surface decal anywhere in the list counts, before the sizes do.
TEST(MaterialOrder, SurfaceDecalComesBeforeTheSizes)
{
    dlMaterial one, two;
    addDecal(one, 1);
    addDecal(two, 1);
    addDecal(two, 0);
    addDecal(two, 1);
    EXPECT_TRUE(two < one);
    EXPECT_FALSE(one < two);
}

TEST(MaterialOrder, DecalsThatAreTheSameArePassedOver)
{
    dlMaterial a, b;
    addDecal(a).colorRef = 1;
    addDecal(b).colorRef = 2;
    addDecal(a).shaderName = "differs, but not by ==";
    addDecal(b).faceId = 7;
    EXPECT_TRUE(b < a) << "the second pair decides, in reverse";
    EXPECT_FALSE(a < b);
}

TEST(MaterialOrder, DecalsOfEqualContentAreTheSameHere)
{
    dlMaterial a, b;
    addDecal(a);
    addDecal(b);
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(b < a);
    EXPECT_FALSE(a == b);
}

// Unlike by ==, and neither less: the order of decals does not look at rvFlagD.
TEST(MaterialOrder, FirstUnlikePairDecidesEvenIfNeitherIsLess)
{
    dlMaterial a, b;
    addDecal(a).colorRef = 1;
    addDecal(b).colorRef = 2;
    addDecal(a).rvFlagD = true;
    addDecal(b);
    b.rvIndex = 5;
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(b < a);
}

// Tells whether its own < was called.
class AskedDecal : public dlDecal {
public:
    bool operator<(const dlMaterial&) const override
    {
        asked = true;
        return true;
    }
    mutable bool asked = false;
};

TEST(MaterialOrder, DecalOfTheArgumentIsAskedByTheVirtualCall)
{
    dlMaterial a, b;
    auto* ofA = new AskedDecal;
    auto* ofB = new AskedDecal;
    ofA->colorRef = 1;
    a.addDecals(ofA);
    b.addDecals(ofB);
    EXPECT_TRUE(a < b);
    EXPECT_FALSE(ofA->asked);
    EXPECT_TRUE(ofB->asked);
}

TEST(MaterialOrder, NullDecalsInTheListAreNoCrash)
{
    dlMaterial a, b;
    a.decals = {nullptr};
    b.decals = {nullptr};
    EXPECT_FALSE(a < b);
    addDecal(b);
    a.decals.push_front(nullptr);
    EXPECT_NE(a < b, b < a);
}

}  // namespace
