#include <gtest/gtest.h>

#include <vector>

#include "raylume/scene/dlModel.h"

namespace {

dlPart* addPart(dlModel& model, std::uintptr_t key, int config, int useCount)
{
    auto* part = new dlPart;
    part->instanceUseCount = useCount;
    model.addDLPart(reinterpret_cast<void*>(key), part, config);
    return part;
}

struct UseCase {
    const char* name;
    std::vector<int> useCounts;
    int singletons;
};

class Singletons : public testing::TestWithParam<UseCase> {};

TEST_P(Singletons, ArePartsUsedLessThanTwice)
{
    dlModel model;
    std::uintptr_t key = 0;
    for (const int count : GetParam().useCounts) {
        addPart(model, ++key, 0, count);
    }
    model.updateSingletons();
    EXPECT_EQ(model.singletonCount, GetParam().singletons);
}

INSTANTIATE_TEST_SUITE_P(Rows, Singletons,
                         testing::Values(UseCase{"no_parts", {}, 0},
                                         UseCase{"once_once_and_three_times", {1, 1, 3}, 2},
                                         UseCase{"never_counted", {0}, 1}, UseCase{"negative", {-1}, 1},
                                         UseCase{"twice", {2}, 0}),
                         [](const auto& row) { return row.param.name; });

TEST(Singletons, AreCountedInEveryConfiguration)
{
    dlModel model;
    addPart(model, 1, -1, 1);
    addPart(model, 1, 0, 1);
    model.updateSingletons();
    EXPECT_EQ(model.singletonCount, 2);
}

TEST(Singletons, AreAddedToWhatIsThere)
{
    dlModel model;
    addPart(model, 1, 0, 1);
    addPart(model, 2, 0, 0);
    model.updateSingletons();
    model.updateSingletons();
    EXPECT_EQ(model.singletonCount, 4);
    model.singletonCount = 100;
    model.updateSingletons();
    EXPECT_EQ(model.singletonCount, 102);
}

TEST(Singletons, NullPartIsNone)
{
    dlModel model;
    model.addDLPart(nullptr, nullptr, 0);
    model.updateSingletons();
    EXPECT_EQ(model.singletonCount, 0);
}

TEST(FirstModelName, NamesThePartOfTheLowestKeys)
{
    dlModel model;
    dlPart* higherKey = addPart(model, 16, -5, 0);
    dlPart* higherConfig = addPart(model, 8, 0, 0);
    dlPart* first = addPart(model, 8, -1, 0);
    first->name = "<>";
    first->shortName = "kept";
    model.updateFirstModelName("document.glb");
    EXPECT_EQ(first->name, "document.glb");
    EXPECT_EQ(first->shortName, "kept");
    EXPECT_EQ(higherConfig->name, "");
    EXPECT_EQ(higherKey->name, "");
}

TEST(FirstModelName, SkipsKeysWithoutParts)
{
    dlModel model;
    model.parts[reinterpret_cast<void*>(8)];
    dlPart* part = addPart(model, 16, 0, 0);
    model.updateFirstModelName("name");
    EXPECT_EQ(part->name, "name");
}

TEST(FirstModelName, WithoutPartsNothingHappens)
{
    dlModel model;
    model.updateFirstModelName("name");
    EXPECT_TRUE(model.parts.empty());
    model.parts[nullptr];
    model.updateFirstModelName("name");
    EXPECT_EQ(model.parts.size(), 1u);
    EXPECT_EQ(model.modelName, "");
}

TEST(FirstModelName, NullPartIsLeftAlone)
{
    dlModel model;
    model.addDLPart(nullptr, nullptr, 0);
    model.updateFirstModelName("name");
    EXPECT_EQ(model.getDLPart(nullptr, 0), nullptr);
}

}  // namespace
