#include "raylume/scene/dlXform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <type_traits>

namespace {

static_assert(std::is_copy_constructible_v<dlXform> && std::is_move_constructible_v<dlXform>);
static_assert(std::is_copy_assignable_v<dlXform> && std::is_move_assignable_v<dlXform>);
static_assert(sizeof(dlXform) == 19 * sizeof(float));

TEST(Xform, NewTransformIsTheIdentity)
{
    const dlXform xform;
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(xform.m[i], i % 5 == 0 ? 1.0f : 0.0f) << i;
    }
    EXPECT_TRUE(std::all_of(xform.extra, xform.extra + 3, [](float value) { return value == 0; }));
}

TEST(Xform, CopiesCarryAllNineteenFloats)
{
    dlXform xform;
    std::iota(xform.m, xform.m + 16, 100.0f);
    std::iota(xform.extra, xform.extra + 3, 200.0f);
    dlXform assigned;
    assigned = xform;
    dlXform moved;
    moved = dlXform(xform);
    for (const dlXform& copy : {dlXform(xform), assigned, moved}) {
        EXPECT_TRUE(std::equal(copy.m, copy.m + 16, xform.m));
        EXPECT_TRUE(std::equal(copy.extra, copy.extra + 3, xform.extra));
    }
}

}  // namespace
