#include "tools/Placement.h"

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

/// Three columns.
using Matrix3 = std::array<Vector3, 3>;

// Axes are at right angles when the cosine between them is below what rounding to single precision
// makes of a rotation.
constexpr double kRightAngle = 3e-7;

double dot(const Vector3& a, const Vector3& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

double length(const Vector3& a)
{
    return std::sqrt(dot(a, a));
}

Vector3 cross(const Vector3& a, const Vector3& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vector3 scaled(const Vector3& a, double factor)
{
    return {a[0] * factor, a[1] * factor, a[2] * factor};
}

double determinant(const Matrix3& m)
{
    return dot(cross(m[0], m[1]), m[2]);
}

Matrix3 identity()
{
    return {Vector3{1, 0, 0}, Vector3{0, 1, 0}, Vector3{0, 0, 1}};
}

Matrix3 axesOf(const dlXform& placement)
{
    Matrix3 axes;
    for (int column = 0; column < 3; ++column)
        for (int row = 0; row < 3; ++row)
            axes[column][row] = placement.m[4 * column + row];
    return axes;
}

void turnColumns(Matrix3& m, int p, int q, double cosine, double sine)
{
    for (int row = 0; row < 3; ++row) {
        const double a = m[p][row];
        const double b = m[q][row];
        m[p][row] = cosine * a - sine * b;
        m[q][row] = sine * a + cosine * b;
    }
}

// One step of the one-sided Jacobi method: turns two columns so that they stand at right angles.
// False when they already do.
bool makeOrthogonal(Matrix3& columns, Matrix3& turned, int p, int q, double tolerance)
{
    const double a = dot(columns[p], columns[p]);
    const double b = dot(columns[q], columns[q]);
    const double c = dot(columns[p], columns[q]);
    if (std::abs(c) <= tolerance * std::sqrt(a) * std::sqrt(b))
        return false;
    const double zeta = (b - a) / (2 * c);
    const double tangent = std::copysign(1.0, zeta) / (std::abs(zeta) + std::hypot(1.0, zeta));
    const double cosine = 1 / std::hypot(1.0, tangent);
    turnColumns(columns, p, q, cosine, cosine * tangent);
    turnColumns(turned, p, q, cosine, cosine * tangent);
    return true;
}

bool hasRightAngles(const Matrix3& m)
{
    Matrix3 columns = m;
    Matrix3 unused = identity();
    return !makeOrthogonal(columns, unused, 0, 1, kRightAngle) &&
           !makeOrthogonal(columns, unused, 0, 2, kRightAngle) &&
           !makeOrthogonal(columns, unused, 1, 2, kRightAngle);
}

// Afterwards `columns` has orthogonal columns and equals the given one times `turned`, which is a
// rotation. Converges in a handful of sweeps; the bound is for matrices of rounding noise.
void makeAllOrthogonal(Matrix3& columns, Matrix3& turned)
{
    for (int sweep = 0; sweep < 60; ++sweep) {
        const bool first = makeOrthogonal(columns, turned, 0, 1, 1e-15);
        const bool second = makeOrthogonal(columns, turned, 0, 2, 1e-15);
        const bool third = makeOrthogonal(columns, turned, 1, 2, 1e-15);
        if (!first && !second && !third)
            return;
    }
}

Vector3 unitPerpendicularTo(const Vector3& a)
{
    const Vector3 other = std::abs(a[0]) < 0.8 ? Vector3{1, 0, 0} : Vector3{0, 1, 0};
    const Vector3 result = cross(a, other);
    return scaled(result, 1 / length(result));
}

// Directions for columns of no length, so that all three make a basis.
void fillZeroColumns(Matrix3& unit, std::array<bool, 3>& known)
{
    const auto knownCount = std::count(known.begin(), known.end(), true);
    if (knownCount == 0) {
        unit = identity();
        return;
    }
    for (int i = 0; i < 3; ++i) {
        const int next = (i + 1) % 3;
        const int last = (i + 2) % 3;
        if (known[i] && !known[next] && !known[last]) {
            unit[next] = unitPerpendicularTo(unit[i]);
            known[next] = true;
        }
        if (known[next] && known[last] && !known[i]) {
            unit[i] = cross(unit[next], unit[last]);
            known[i] = true;
        }
    }
    if (std::count(known.begin(), known.end(), false) > 0)
        fillZeroColumns(unit, known);
}

// From the matrix of a rotation; the largest of the four components is taken first, so that nothing
// is divided by almost zero.
Quaternion quaternionOf(const Matrix3& r)
{
    const double x = r[0][0];
    const double y = r[1][1];
    const double z = r[2][2];
    Quaternion q;
    if (x + y + z > 0)
        q = {r[1][2] - r[2][1], r[2][0] - r[0][2], r[0][1] - r[1][0], 1 + x + y + z};
    else if (x >= y && x >= z)
        q = {1 + x - y - z, r[0][1] + r[1][0], r[2][0] + r[0][2], r[1][2] - r[2][1]};
    else if (y >= z)
        q = {r[0][1] + r[1][0], 1 + y - x - z, r[1][2] + r[2][1], r[2][0] - r[0][2]};
    else
        q = {r[2][0] + r[0][2], r[1][2] + r[2][1], 1 + z - x - y, r[0][1] - r[1][0]};
    const double norm = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    for (double& component : q)
        component /= norm;
    return q;
}

// Columns at right angles as a rotation and the lengths along its axes.
void splitColumns(const Matrix3& columns, Trs& trs)
{
    Matrix3 unit;
    std::array<bool, 3> known;
    for (int i = 0; i < 3; ++i) {
        trs.scale[i] = length(columns[i]);
        known[i] = trs.scale[i] > 0;
        unit[i] = known[i] ? scaled(columns[i], 1 / trs.scale[i]) : Vector3{0, 0, 0};
    }
    fillZeroColumns(unit, known);
    if (determinant(unit) < 0) {
        unit[0] = scaled(unit[0], -1);
        trs.scale[0] = -trs.scale[0];
    }
    trs.rotation = quaternionOf(unit);
}

// The inverse of a rotation is its mirrored vector part.
Quaternion inverseOf(const Quaternion& q)
{
    return {-q[0], -q[1], -q[2], q[3]};
}

}  // namespace

bool isFinite(const dlXform& placement)
{
    for (int column = 0; column < 4; ++column)
        for (int row = 0; row < 3; ++row)
            if (!std::isfinite(placement.m[4 * column + row]))
                return false;
    return true;
}

bool isIdentity(const dlXform& placement)
{
    const dlXform identityXform;
    for (int column = 0; column < 4; ++column)
        for (int row = 0; row < 3; ++row)
            if (placement.m[4 * column + row] != identityXform.m[4 * column + row])
                return false;
    return true;
}

PlacementParts takeApart(const dlXform& placement)
{
    PlacementParts parts;
    Matrix3 columns = axesOf(placement);
    Matrix3 turned = identity();
    const bool needsInner = !hasRightAngles(columns);
    if (needsInner)
        makeAllOrthogonal(columns, turned);
    splitColumns(columns, parts.outer);
    parts.outer.translation = {placement.m[12], placement.m[13], placement.m[14]};
    if (needsInner)
        parts.inner = inverseOf(quaternionOf(turned));
    return parts;
}

}  // namespace tool
