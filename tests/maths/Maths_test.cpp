#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>

#include "raylume/load/ReaderMaths.h"

namespace {

using std::numbers::pi;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::array<double, 3> list(const mgVector_c& v)
{
    return {v.x, v.y, v.z};
}

std::array<double, 3> list(const mgPoint_c& p)
{
    return {p.x, p.y, p.z};
}

std::array<double, 9> list(const mgMatrix_c& m)
{
    return {m.e0, m.e1, m.e2, m.e3, m.e4, m.e5, m.e6, m.e7, m.e8};
}

std::array<double, 16> glData(const mgXform_c& xform)
{
    std::array<double, 16> elements;
    xform.getGLData(elements.data());
    return elements;
}

mgXform_c xformOf(const std::array<double, 9>& m, const mgVector_c& translation, double scale)
{
    mgMatrix_c matrix;
    matrix.e0 = m[0], matrix.e1 = m[1], matrix.e2 = m[2];
    matrix.e3 = m[3], matrix.e4 = m[4], matrix.e5 = m[5];
    matrix.e6 = m[6], matrix.e7 = m[7], matrix.e8 = m[8];
    return mg_RestoreXform(matrix, translation, scale);
}

constexpr std::array<double, 9> kQuarterTurnAboutZ{0, 1, 0, -1, 0, 0, 0, 0, 1};
constexpr std::array<double, 9> kIdentity{1, 0, 0, 0, 1, 0, 0, 0, 1};
constexpr std::array<double, 9> kMirroredInX{-1, 0, 0, 0, 1, 0, 0, 0, 1};

template <std::size_t N>
void expectNear(const std::array<double, N>& actual, const std::array<double, N>& expected)
{
    for (std::size_t i = 0; i < N; ++i) {
        EXPECT_NEAR(actual[i], expected[i], 1e-15) << i;
    }
}

template <std::size_t N>
void expectNoNegativeZero(const std::array<double, N>& values)
{
    for (std::size_t i = 0; i < N; ++i) {
        EXPECT_FALSE(values[i] == 0 && std::signbit(values[i])) << i;
    }
}

// Points and vectors.

TEST(Vectors, StartAtZero)
{
    EXPECT_EQ(list(mgPoint_c()), (std::array{0.0, 0.0, 0.0}));
    EXPECT_EQ(list(mgVector_c()), (std::array{0.0, 0.0, 0.0}));
}

TEST(Vectors, AreArraysOfThree)
{
    mgVector_c vector(1, 2, 3);
    double* components = vector;
    EXPECT_EQ(components[0], 1);
    EXPECT_EQ(components[1], 2);
    components[2] = 7;
    EXPECT_EQ(vector.z, 7);
    const mgVector_c& readOnly = vector;
    EXPECT_EQ(static_cast<const double*>(readOnly)[2], 7);
}

TEST(Vectors, DifferencesAreLeftMinusRight)
{
    EXPECT_EQ(list(mgPoint_c(5, 7, 9) - mgPoint_c(1, 2, 3)), (std::array{4.0, 5.0, 6.0}));
    EXPECT_EQ(list(mgVector_c(5, 7, 9) - mgVector_c(1, 2, 3)), (std::array{4.0, 5.0, 6.0}));
}

TEST(Vectors, PercentIsTheDotProduct)
{
    EXPECT_EQ(mgVector_c(1, 2, 3) % mgVector_c(4, 5, 6), 32);
}

TEST(Vectors, StarIsTheCrossProductLeftCrossRight)
{
    EXPECT_EQ(list(mgVector_c(1, 0, 0) * mgVector_c(0, 1, 0)), (std::array{0.0, 0.0, 1.0}));
    EXPECT_EQ(list(mgVector_c(1, 2, 3) * mgVector_c(4, 5, 6)), (std::array{-3.0, 6.0, -3.0}));
}

TEST(Vectors, SquaredLength)
{
    EXPECT_EQ(mgVector_c(1, 2, 3).sqlen(), 14);
}

TEST(Normalise, ScalesToUnitLength)
{
    mgVector_c vector(3, 0, -4);
    EXPECT_EQ(vector.normalise(), 1);
    EXPECT_EQ(list(vector), (std::array{0.6, 0.0, -0.8}));
}

TEST(Normalise, LeavesAZeroVector)
{
    mgVector_c vector(0.0, -0.0, 0.0);
    EXPECT_EQ(vector.normalise(), 0);
    EXPECT_EQ(vector.x, 0);
    EXPECT_TRUE(std::signbit(vector.y));
}

struct SizeCase {
    const char* name;
    double size;
};

class AnySize : public testing::TestWithParam<SizeCase> {};

TEST_P(AnySize, IsNormalised)
{
    mgVector_c vector(3 * GetParam().size, 0, -4 * GetParam().size);
    EXPECT_EQ(vector.normalise(), 1);
    expectNear(list(vector), {0.6, 0.0, -0.8});
}

TEST_P(AnySize, HasAngles)
{
    const double size = GetParam().size;
    EXPECT_EQ(mg_AngleBetween(mgVector_c(size, 0, 0), mgVector_c(0, 1, 0)), pi / 2);
    EXPECT_EQ(mg_AngleBetween(mgVector_c(size, 0, 0), mgVector_c(size, size, 0)), pi / 4);
    EXPECT_EQ(mg_AngleBetween(mgVector_c(size, 0, 0), mgVector_c(0, size, 0), mgVector_c(0, 0, -size)),
              -pi / 2);
}

INSTANTIATE_TEST_SUITE_P(Rows, AnySize,
                         testing::Values(SizeCase{"one", 1}, SizeCase{"square_overflows", 1e200},
                                         SizeCase{"square_vanishes", 1e-200},
                                         SizeCase{"largest", std::numeric_limits<double>::max() / 4},
                                         SizeCase{"subnormal", std::numeric_limits<double>::denorm_min()}),
                         [](const auto& row) { return row.param.name; });

TEST(Normalise, LeavesWhatHasNoDirection)
{
    for (const double component : {kInfinity, kNaN}) {
        mgVector_c vector(component, 1, 0);
        EXPECT_EQ(vector.normalise(), 0);
        EXPECT_EQ(vector.y, 1);
    }
}

TEST(UnitVectors, AreNormalisedOnConstruction)
{
    EXPECT_EQ(list(mgUnitVector_c()), (std::array{1.0, 0.0, 0.0}));
    EXPECT_EQ(list(mgUnitVector_c(0, 3, 4)), (std::array{0.0, 0.6, 0.8}));
    EXPECT_EQ(list(mgUnitVector_c(mgVector_c(0, 3, 4), 0)), (std::array{0.0, 0.6, 0.8}));
    EXPECT_EQ(list(mgUnitVector_c(mgVector_c(0, 3, 4), 1)), (std::array{0.0, 0.6, 0.8}));
    EXPECT_EQ(list(mgUnitVector_c(0, 0, 0)), (std::array{0.0, 0.0, 0.0}));
}

TEST(UnitVectors, Axes)
{
    EXPECT_EQ(list(mgUnitVector_c::xAxis()), (std::array{1.0, 0.0, 0.0}));
    EXPECT_EQ(list(mgUnitVector_c::yAxis()), (std::array{0.0, 1.0, 0.0}));
    EXPECT_EQ(list(mgUnitVector_c::zAxis()), (std::array{0.0, 0.0, 1.0}));
}

TEST(UnitVectors, OppositeKeepsTheBitsAndHasNoNegativeZero)
{
    const mgUnitVector_c vector(1, 2, 3);
    const mgUnitVector_c opposite = -vector;
    EXPECT_EQ(list(opposite), (std::array{-vector.x, -vector.y, -vector.z}));
    expectNoNegativeZero(list(-mgUnitVector_c::xAxis()));
}

// Angles.

struct AngleCase {
    const char* name;
    mgVector_c a, b;
    double angle;
};

class Angle : public testing::TestWithParam<AngleCase> {};

TEST_P(Angle, IsUnsigned)
{
    EXPECT_EQ(mg_AngleBetween(GetParam().a, GetParam().b), GetParam().angle);
    EXPECT_EQ(mg_AngleBetween(GetParam().b, GetParam().a), GetParam().angle);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Angle,
    testing::Values(AngleCase{"same_direction", {1, 0, 0}, {5, 0, 0}, 0},
                    AngleCase{"right_angle", {1, 0, 0}, {0, 2, 0}, pi / 2},
                    AngleCase{"opposite", {1, 0, 0}, {-3, 0, 0}, pi},
                    AngleCase{"three_quarters", {1, 0, 0}, {-1, 0, 1}, 3 * pi / 4},
                    AngleCase{"with_a_zero_vector", {1, 2, 3}, {0, 0, 0}, 0},
                    AngleCase{"with_a_zero_vector_and_negative_numbers", {-1, -2, -3}, {0, 0, 0}, 0},
                    AngleCase{"of_zero_vectors", {0, 0, 0}, {0, 0, 0}, 0},
                    AngleCase{
                        "very_small_where_the_arc_cosine_gives_zero", {1, 0, 0}, {1, 1e-10, 0}, 1e-10}),
    [](const auto& row) { return row.param.name; });

TEST(SignedAngle, IsNegativeOnlyAgainstTheReference)
{
    const mgVector_c x(1, 0, 0), y(0, 1, 0), up(0, 0, 1), down(0, 0, -1);
    EXPECT_EQ(mg_AngleBetween(x, y, up), pi / 2);
    EXPECT_EQ(mg_AngleBetween(y, x, up), -pi / 2);
    EXPECT_EQ(mg_AngleBetween(x, y, down), -pi / 2);
    EXPECT_EQ(mg_AngleBetween(x, y, mgVector_c(1, 0, 0)), pi / 2) << "across the reference";
    EXPECT_EQ(mg_AngleBetween(x, y, mgVector_c(0, 0, 0)), pi / 2) << "no reference";
    EXPECT_EQ(mg_AngleBetween(x, mgVector_c(-1, 0, 0), down), pi);
    EXPECT_FALSE(std::signbit(mg_AngleBetween(x, x, down)));
}

// Matrices.

TEST(Matrices, StartAsTheIdentity)
{
    EXPECT_EQ(list(mgMatrix_c()), kIdentity);
}

TEST(Matrices, StoreTheirAxesOneAfterAnother)
{
    const mgMatrix_c matrix(mgUnitVector_c::yAxis(), mgUnitVector_c::zAxis(), mgUnitVector_c::xAxis());
    EXPECT_EQ(list(matrix), (std::array<double, 9>{0, 1, 0, 0, 0, 1, 1, 0, 0}));
}

TEST(Matrices, ThirdAxisIsADirection)
{
    mgUnitVector_c axis;
    xformOf({1, 0, 0, 0, 1, 0, 0, 3, 4}, {}, 5).getZAxis(&axis);
    EXPECT_EQ(list(axis), (std::array{0.0, 0.6, 0.8}));
}

TEST(Rotation, TurnsRightHandedAboutTheAxis)
{
    expectNear(list(mg_RotationMatrix(pi / 2, mgVector_c(0, 0, 1))), kQuarterTurnAboutZ);
    expectNear(list(mg_RotationMatrix(pi / 2, mgVector_c(1, 0, 0))), {1, 0, 0, 0, 0, 1, 0, -1, 0});
    expectNear(list(mg_RotationMatrix(pi / 2, mgVector_c(0, 1, 0))), {0, 0, -1, 0, 1, 0, 1, 0, 0});
}

TEST(Rotation, GoesRoundAnAxisOfAnyLength)
{
    expectNear(list(mg_RotationMatrix(2 * pi / 3, mgVector_c(7, 7, 7))), {0, 1, 0, 0, 0, 1, 1, 0, 0});
}

TEST(Rotation, NegativeAngleIsTheTranspose)
{
    const auto there = list(mg_RotationMatrix(0.3, mgVector_c(1, -2, 3)));
    const auto back = list(mg_RotationMatrix(-0.3, mgVector_c(1, -2, 3)));
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(there[i], back[i % 3 * 3 + i / 3]) << i;
    }
}

TEST(Rotation, ZeroAxisOrAngleIsTheIdentity)
{
    EXPECT_EQ(list(mg_RotationMatrix(1.5, mgVector_c(0, 0, 0))), kIdentity);
    EXPECT_EQ(list(mg_RotationMatrix(0, mgVector_c(1, -2, 3))), kIdentity);
}

// Rounding puts these elements just beyond 1, where they would have no arc sine.
TEST(Rotation, StaysWithinOne)
{
    EXPECT_EQ(mg_RotationMatrix(3.1415926013194335, mgVector_c(1, 4.4050013225913416e-08, 1)).e6, 1.0);
    EXPECT_EQ(
        mg_RotationMatrix(1.5707963336455235, mgVector_c(-1.664041403237464e-08, 1, 8.7590662723516225e-09))
            .e2,
        -1.0);
    std::mt19937 random(3);
    std::uniform_real_distribution<double> angles(-2 * pi, 2 * pi);
    for (int round = 0; round < 20000; ++round) {
        const double tiny = round % 2 ? 1e-8 : 1.0;
        const mgVector_c axis(angles(random), tiny * angles(random), tiny * angles(random));
        for (const double element : list(mg_RotationMatrix(angles(random), axis))) {
            EXPECT_LE(std::abs(element), 1.0);
        }
    }
}

TEST(Rotation, HasNoNegativeZero)
{
    for (const double sign : {-1.0, 1.0}) {
        for (const mgVector_c& axis :
             {mgVector_c(sign, 0, 0), mgVector_c(0, sign, 0), mgVector_c(0, 0, sign)}) {
            expectNoNegativeZero(list(mg_RotationMatrix(-1.0, axis)));
            expectNoNegativeZero(list(mg_RotationMatrix(1.0, axis)));
        }
    }
}

// Transforms.

TEST(Transforms, StartAsTheIdentity)
{
    EXPECT_EQ(glData(mgXform_c()),
              (std::array<double, 16>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    EXPECT_EQ(mgXform_c().scale, 1);
}

TEST(Transforms, DataIsElementTimesScaleAndTheTranslationAsItIs)
{
    const mgXform_c xform = xformOf({1, 2, 3, 4, 5, 6, 7, 8, 9}, {10, 20, 30}, 2);
    EXPECT_EQ(glData(xform),
              (std::array<double, 16>{2, 4, 6, 0, 8, 10, 12, 0, 14, 16, 18, 0, 10, 20, 30, 1}));
}

TEST(Transforms, SinglePrecisionDataIsNarrowedAtTheEnd)
{
    const mgXform_c xform = xformOf({0.1, 0, 0, 0, 1, 0, 0, 0, 1}, {1e-3, 0.7, 1e300}, 3);
    std::array<float, 16> narrow;
    xform.getGLData(narrow.data());
    EXPECT_EQ(narrow[0], static_cast<float>(0.1 * 3));
    EXPECT_EQ(narrow[5], 3.0f);
    EXPECT_EQ(narrow[12], static_cast<float>(1e-3));
    EXPECT_EQ(narrow[13], static_cast<float>(0.7));
    EXPECT_EQ(narrow[15], 1.0f);
    for (const std::size_t i : {3u, 7u, 11u}) {
        EXPECT_EQ(narrow[i], 0.0f);
    }
}

TEST(Transforms, MapPoints)
{
    mgPoint_c point(1, 2, 3);
    mgPoint_c& result = point *= xformOf(kQuarterTurnAboutZ, {10, 20, 30}, 2);
    EXPECT_EQ(&result, &point);
    EXPECT_EQ(list(point), (std::array{6.0, 22.0, 36.0}));
}

TEST(Transforms, PointsGoWhereTheDataSays)
{
    const mgXform_c xform = xformOf({1, 2, 3, 4, 5, 6, 7, 8, 10}, {0.5, 0.25, 0.125}, 4);
    const auto m = glData(xform);
    mgPoint_c point(1, 10, 100);
    point *= xform;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(list(point)[axis], m[axis] * 1 + m[4 + axis] * 10 + m[8 + axis] * 100 + m[12 + axis]);
    }
}

TEST(Inverse, OfARotationIsItsTransposeWithoutNegativeZeros)
{
    const mgXform_c inverse = xformOf(kQuarterTurnAboutZ, {}, 1).inverse();
    EXPECT_EQ(list(inverse), (std::array<double, 9>{0, -1, 0, 1, 0, 0, 0, 0, 1}));
    expectNoNegativeZero(list(inverse));
    expectNoNegativeZero(list(inverse.translation));
    EXPECT_EQ(list(inverse.translation), (std::array{0.0, 0.0, 0.0}));
    EXPECT_EQ(inverse.scale, 1);
}

TEST(Inverse, OfAMirrorHasNoNegativeZeros)
{
    const mgXform_c inverse = xformOf(kMirroredInX, {}, 1).inverse();
    EXPECT_EQ(list(inverse), kMirroredInX);
    expectNoNegativeZero(glData(inverse));
}

TEST(Inverse, OfATranslationGoesBack)
{
    const mgXform_c inverse = xformOf(kIdentity, {1, -2, 0}, 1).inverse();
    EXPECT_EQ(list(inverse.translation), (std::array{-1.0, 2.0, 0.0}));
    EXPECT_FALSE(std::signbit(inverse.translation.z));
}

struct InverseCase {
    const char* name;
    std::array<double, 9> matrix;
    mgVector_c translation;
    double scale;
};

class Inverse : public testing::TestWithParam<InverseCase> {};

TEST_P(Inverse, BringsPointsBack)
{
    const mgXform_c xform = xformOf(GetParam().matrix, GetParam().translation, GetParam().scale);
    for (const mgPoint_c& start : {mgPoint_c(0, 0, 0), mgPoint_c(1, 2, -3), mgPoint_c(-0.5, 8, 4)}) {
        mgPoint_c point = start;
        point *= xform;
        point *= xform.inverse();
        for (std::size_t axis = 0; axis < 3; ++axis) {
            EXPECT_NEAR(list(point)[axis], list(start)[axis], 1e-12);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Inverse,
    testing::Values(InverseCase{"identity", kIdentity, {}, 1},
                    InverseCase{"scaled_and_moved", kQuarterTurnAboutZ, {1, 2, 3}, 0.25},
                    InverseCase{"mirrored", kMirroredInX, {1, 2, 3}, 1},
                    InverseCase{"negative_scale", kQuarterTurnAboutZ, {1, 2, 3}, -2},
                    InverseCase{"sheared", {1, 0, 0, 0.5, 1, 0, 0.25, -0.5, 1}, {3, 2, 1}, 2},
                    InverseCase{"stretched", {2, 0, 0, 0, 3, 0, 0, 0, 0.5}, {3, 2, 1}, 1},
                    InverseCase{"all_elements_unlike", {1, 2, 3, 4, -5, 6, 7, 8, 10}, {1, 1, 1}, 1},
                    InverseCase{"tiny_scale", kQuarterTurnAboutZ, {}, 1e-110}),
    [](const auto& row) { return row.param.name; });

class Singular : public testing::TestWithParam<InverseCase> {};

TEST_P(Singular, HasTheIdentityAsItsInverse)
{
    const mgXform_c inverse =
        xformOf(GetParam().matrix, GetParam().translation, GetParam().scale).inverse();
    EXPECT_EQ(glData(inverse), glData(mgXform_c()));
    EXPECT_EQ(inverse.scale, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Singular,
    testing::Values(InverseCase{"zero_scale", kIdentity, {1, 2, 3}, 0},
                    InverseCase{"zero_matrix", {}, {1, 2, 3}, 1},
                    InverseCase{"flat", {1, 0, 0, 0, 1, 0, 1, 1, 0}, {1, 2, 3}, 1},
                    InverseCase{"nan_in_the_matrix", {kNaN, 0, 0, 0, 1, 0, 0, 0, 1}, {}, 1},
                    InverseCase{"infinity_in_the_matrix", {kInfinity, 0, 0, 0, 1, 0, 0, 0, 1}, {}, 1},
                    InverseCase{"nan_scale", kIdentity, {}, kNaN},
                    InverseCase{"infinite_scale", kIdentity, {}, kInfinity},
                    InverseCase{"determinant_vanishes", {1e-200, 0, 0, 0, 1e-200, 0, 0, 0, 1e-200}, {}, 1}),
    [](const auto& row) { return row.param.name; });

TEST(Transforms, AreRestoredFromTheirParts)
{
    const mgXform_c xform =
        mg_RestoreXform(mg_RotationMatrix(0.5, mgVector_c(1, 2, 3)), mgVector_c(4, 5, 6), 7);
    EXPECT_EQ(list(xform), list(mg_RotationMatrix(0.5, mgVector_c(1, 2, 3))));
    EXPECT_EQ(list(xform.translation), (std::array{4.0, 5.0, 6.0}));
    EXPECT_EQ(xform.scale, 7);
}

}  // namespace
