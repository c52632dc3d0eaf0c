#include <algorithm>
#include <cmath>
#include <type_traits>

#include "raylume/load/ReaderMaths.h"

namespace {

static_assert(std::is_standard_layout_v<mgVector_c> && sizeof(mgVector_c) == 3 * sizeof(double),
              "a vector is handed out as an array of three");

// A zero that came out of a product with a negative number counts as plain zero.
double withoutNegativeZero(double value)
{
    return value + 0.0;
}

// An element of a rotation. Rounding can put one just beyond 1, where it has no arc sine any more.
double withinOne(double element)
{
    return withoutNegativeZero(std::clamp(element, -1.0, 1.0));
}

double largestComponent(const mgVector_c& vector)
{
    return std::max({std::fabs(vector.x), std::fabs(vector.y), std::fabs(vector.z)});
}

// The same direction at a size whose square neither overflows nor vanishes. Vectors of a common size
// stay as they are; others are multiplied by a power of two, which is exact.
mgVector_c atCommonSize(const mgVector_c& vector)
{
    const double largest = largestComponent(vector);
    if ((largest > 1e-100 && largest < 1e+100) || largest == 0.0 || !std::isfinite(largest)) {
        return vector;
    }
    const int shift = -std::ilogb(largest);
    return {std::scalbn(vector.x, shift), std::scalbn(vector.y, shift), std::scalbn(vector.z, shift)};
}

double lengthOf(const mgVector_c& vector)
{
    return std::sqrt(vector.sqlen());
}

mgVector_c transposedProduct(const mgMatrix_c& m, const mgVector_c& v)
{
    return {m.e0 * v.x + m.e3 * v.y + m.e6 * v.z, m.e1 * v.x + m.e4 * v.y + m.e7 * v.z,
            m.e2 * v.x + m.e5 * v.y + m.e8 * v.z};
}

// What the determinant is expanded by and the inverse made of. Indices run in cycles, so that no sign
// enters.
mgMatrix_c cofactorsTransposed(const mgMatrix_c& m)
{
    mgMatrix_c c;
    c.e0 = m.e4 * m.e8 - m.e5 * m.e7;
    c.e1 = m.e7 * m.e2 - m.e8 * m.e1;
    c.e2 = m.e1 * m.e5 - m.e2 * m.e4;
    c.e3 = m.e5 * m.e6 - m.e3 * m.e8;
    c.e4 = m.e8 * m.e0 - m.e6 * m.e2;
    c.e5 = m.e2 * m.e3 - m.e0 * m.e5;
    c.e6 = m.e3 * m.e7 - m.e4 * m.e6;
    c.e7 = m.e6 * m.e1 - m.e7 * m.e0;
    c.e8 = m.e0 * m.e4 - m.e1 * m.e3;
    return c;
}

double determinant(const mgMatrix_c& m, const mgMatrix_c& cofactors)
{
    return m.e0 * cofactors.e0 + m.e3 * cofactors.e1 + m.e6 * cofactors.e2;
}

mgMatrix_c divided(const mgMatrix_c& m, double by)
{
    mgMatrix_c quotient;
    for (double mgMatrix_c::*element :
         {&mgMatrix_c::e0, &mgMatrix_c::e1, &mgMatrix_c::e2, &mgMatrix_c::e3, &mgMatrix_c::e4,
          &mgMatrix_c::e5, &mgMatrix_c::e6, &mgMatrix_c::e7, &mgMatrix_c::e8}) {
        quotient.*element = withoutNegativeZero(m.*element / by);
    }
    return quotient;
}

bool isUsableDivisor(double value)
{
    return value != 0.0 && std::isfinite(value) && std::isfinite(1.0 / value);
}

template <class Real>
void writeGLData(const mgXform_c& x, Real* out)
{
    const double elements[16] = {x.e0 * x.scale,  x.e1 * x.scale,  x.e2 * x.scale,  0.0,
                                 x.e3 * x.scale,  x.e4 * x.scale,  x.e5 * x.scale,  0.0,
                                 x.e6 * x.scale,  x.e7 * x.scale,  x.e8 * x.scale,  0.0,
                                 x.translation.x, x.translation.y, x.translation.z, 1.0};
    std::transform(elements, elements + 16, out, [](double value) { return static_cast<Real>(value); });
}

}  // namespace

mgPoint_c::mgPoint_c() : x(0), y(0), z(0)
{
}

mgPoint_c::mgPoint_c(double xValue, double yValue, double zValue) : x(xValue), y(yValue), z(zValue)
{
}

mgPoint_c& mgPoint_c::operator*=(const mgXform_c& transform)
{
    const mgVector_c turned = transposedProduct(transform, mgVector_c(x, y, z));
    x = transform.scale * turned.x + transform.translation.x;
    y = transform.scale * turned.y + transform.translation.y;
    z = transform.scale * turned.z + transform.translation.z;
    return *this;
}

mgVector_c::mgVector_c() : x(0), y(0), z(0)
{
}

mgVector_c::mgVector_c(double xValue, double yValue, double zValue) : x(xValue), y(yValue), z(zValue)
{
}

mgVector_c::operator double*()
{
    return reinterpret_cast<double*>(this);
}

mgVector_c::operator const double*() const
{
    return reinterpret_cast<const double*>(this);
}

double mgVector_c::sqlen() const
{
    return x * x + y * y + z * z;
}

int mgVector_c::normalise()
{
    const mgVector_c direction = atCommonSize(*this);
    const double length = lengthOf(direction);
    if (!(length > 0.0) || !std::isfinite(length)) {
        return 0;
    }
    x = direction.x / length;
    y = direction.y / length;
    z = direction.z / length;
    return 1;
}

mgUnitVector_c::mgUnitVector_c() : mgVector_c(1, 0, 0)
{
}

mgUnitVector_c::mgUnitVector_c(double xValue, double yValue, double zValue)
    : mgVector_c(xValue, yValue, zValue)
{
    normalise();
}

mgUnitVector_c::mgUnitVector_c(const mgVector_c& vector, int) : mgVector_c(vector)
{
    normalise();
}

mgUnitVector_c mgUnitVector_c::xAxis()
{
    return {1, 0, 0};
}

mgUnitVector_c mgUnitVector_c::yAxis()
{
    return {0, 1, 0};
}

mgUnitVector_c mgUnitVector_c::zAxis()
{
    return {0, 0, 1};
}

mgVector_c operator-(const mgPoint_c& left, const mgPoint_c& right)
{
    return {left.x - right.x, left.y - right.y, left.z - right.z};
}

mgVector_c operator-(const mgVector_c& left, const mgVector_c& right)
{
    return {left.x - right.x, left.y - right.y, left.z - right.z};
}

// Not normalised anew, which could move the last bit.
mgUnitVector_c operator-(const mgUnitVector_c& vector)
{
    mgUnitVector_c opposite;
    opposite.x = 0.0 - vector.x;
    opposite.y = 0.0 - vector.y;
    opposite.z = 0.0 - vector.z;
    return opposite;
}

double operator%(const mgVector_c& left, const mgVector_c& right)
{
    return left.x * right.x + left.y * right.y + left.z * right.z;
}

mgVector_c operator*(const mgVector_c& left, const mgVector_c& right)
{
    return {left.y * right.z - left.z * right.y, left.z * right.x - left.x * right.z,
            left.x * right.y - left.y * right.x};
}

// By the arc tangent, which keeps its precision near 0 and pi where the arc cosine loses it. A
// product of -0.0 would turn the angle with a zero vector into pi.
double mg_AngleBetween(const mgVector_c& a, const mgVector_c& b)
{
    const mgVector_c from = atCommonSize(a);
    const mgVector_c to = atCommonSize(b);
    return std::atan2(lengthOf(from * to), withoutNegativeZero(from % to));
}

double mg_AngleBetween(const mgVector_c& a, const mgVector_c& b, const mgVector_c& reference)
{
    const double angle = mg_AngleBetween(a, b);
    const double side = atCommonSize(reference) % (atCommonSize(a) * atCommonSize(b));
    return side < 0.0 ? -angle : angle;
}

mgMatrix_c::mgMatrix_c() : e0(1), e1(0), e2(0), e3(0), e4(1), e5(0), e6(0), e7(0), e8(1)
{
}

mgMatrix_c::mgMatrix_c(const mgUnitVector_c& x, const mgUnitVector_c& y, const mgUnitVector_c& z)
    : e0(x.x), e1(x.y), e2(x.z), e3(y.x), e4(y.y), e5(y.z), e6(z.x), e7(z.y), e8(z.z)
{
}

void mgMatrix_c::getZAxis(mgUnitVector_c* axis) const
{
    *axis = mgUnitVector_c(e6, e7, e8);
}

// Rodrigues' rotation formula, a column for each image of an axis.
mgMatrix_c mg_RotationMatrix(double angle, const mgVector_c& axis)
{
    mgVector_c u = axis;
    mgMatrix_c m;
    if (!u.normalise()) {
        return m;
    }
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double t = 1.0 - c;
    m.e0 = withinOne(t * u.x * u.x + c);
    m.e1 = withinOne(t * u.x * u.y + s * u.z);
    m.e2 = withinOne(t * u.x * u.z - s * u.y);
    m.e3 = withinOne(t * u.x * u.y - s * u.z);
    m.e4 = withinOne(t * u.y * u.y + c);
    m.e5 = withinOne(t * u.y * u.z + s * u.x);
    m.e6 = withinOne(t * u.x * u.z + s * u.y);
    m.e7 = withinOne(t * u.y * u.z - s * u.x);
    m.e8 = withinOne(t * u.z * u.z + c);
    return m;
}

mgXform_c::mgXform_c() : scale(1)
{
}

// q = s A p + t, so p = (1/s) A^-1 q - (1/s) A^-1 t.
mgXform_c mgXform_c::inverse() const
{
    const mgMatrix_c cofactors = cofactorsTransposed(*this);
    const double volume = determinant(*this, cofactors);
    if (!isUsableDivisor(volume) || !isUsableDivisor(scale)) {
        return {};
    }
    const mgMatrix_c matrix = divided(cofactors, volume);
    const mgVector_c back = transposedProduct(matrix, translation);
    return mg_RestoreXform(matrix, {0.0 - back.x / scale, 0.0 - back.y / scale, 0.0 - back.z / scale},
                           1.0 / scale);
}

void mgXform_c::getGLData(double* const elements) const
{
    writeGLData(*this, elements);
}

void mgXform_c::getGLData(float* const elements) const
{
    writeGLData(*this, elements);
}

mgXform_c mg_RestoreXform(const mgMatrix_c& matrix, const mgVector_c& translation, double scale)
{
    mgXform_c xform;
    static_cast<mgMatrix_c&>(xform) = matrix;
    xform.translation = translation;
    xform.scale = scale;
    return xform;
}
