// The maths classes of the reader interface: double precision, three dimensions.
//
// A transform maps a point p to scale * (x * X + y * Y + z * Z) + translation, X, Y and Z being the
// axes that its matrix stores one after another. Everything is a plain value.
#pragma once

#include "raylume/platform/Export.h"

class mgVector_c;
class mgXform_c;

/// A point. Zero when default-constructed.
class OVDL_API mgPoint_c {
public:
    mgPoint_c();
    mgPoint_c(double x, double y, double z);
    /// Replaces the point by the point transformed.
    mgPoint_c& operator*=(const mgXform_c& transform);

    double x, y, z;
};

/// A vector. Zero when default-constructed.
class OVDL_API mgVector_c {
public:
    mgVector_c();
    mgVector_c(double x, double y, double z);

    /// The three components as an array that lives as long as the vector.
    operator double*();
    operator const double*() const;
    /// The squared length.
    double sqlen() const;
    /// Scales to unit length in place and gives 1; leaves a zero vector as it is and gives 0.
    int normalise();

    double x, y, z;
};

/// A vector of unit length: what it is made from is normalised (a zero vector stays zero).
class OVDL_API mgUnitVector_c : public mgVector_c {
public:
    /// The x axis.
    mgUnitVector_c();
    mgUnitVector_c(double x, double y, double z);
    /// The second argument has no meaning here; other implementations take a hint in it.
    mgUnitVector_c(const mgVector_c& vector, int hint);

    static mgUnitVector_c xAxis();
    static mgUnitVector_c yAxis();
    static mgUnitVector_c zAxis();
};

OVDL_API mgVector_c operator-(const mgPoint_c& left, const mgPoint_c& right);
OVDL_API mgVector_c operator-(const mgVector_c& left, const mgVector_c& right);
/// The opposite unit vector.
OVDL_API mgUnitVector_c operator-(const mgUnitVector_c& vector);
/// The scalar (dot) product.
OVDL_API double operator%(const mgVector_c& left, const mgVector_c& right);
/// The vector (cross) product, left cross right.
OVDL_API mgVector_c operator*(const mgVector_c& left, const mgVector_c& right);

/// The unsigned angle between two vectors in radians, 0 to pi; 0 with a zero vector.
OVDL_API double mg_AngleBetween(const mgVector_c& a, const mgVector_c& b);
/// The angle from a to b in radians: negative exactly if reference . (a x b) is.
OVDL_API double mg_AngleBetween(const mgVector_c& a, const mgVector_c& b, const mgVector_c& reference);

/// A 3 by 3 matrix, the identity when default-constructed. e0..e2 is the image of x, e3..e5 of y,
/// e6..e8 of z.
class OVDL_API mgMatrix_c {
public:
    mgMatrix_c();
    /// The matrix with these three axes, stored as they are.
    mgMatrix_c(const mgUnitVector_c& x, const mgUnitVector_c& y, const mgUnitVector_c& z);
    /// The direction of the third axis.
    void getZAxis(mgUnitVector_c* axis) const;

    double e0, e1, e2, e3, e4, e5, e6, e7, e8;
};

/// Rotation by `angle` radians about `axis`, which need not be of unit length; the identity for a
/// zero axis.
OVDL_API mgMatrix_c mg_RotationMatrix(double angle, const mgVector_c& axis);

/// A transform of matrix, translation and scale; the identity when default-constructed. The matrix
/// may be any 3 by 3, not only a rotation.
class OVDL_API mgXform_c : public mgMatrix_c {
public:
    mgXform_c();

    /// The inverse; of a singular transform the identity.
    mgXform_c inverse() const;
    /// Writes the sixteen elements of the 4 by 4 matrix in column-major order: matrix element times
    /// scale, the translation in 12, 13 and 14, 0 in 3, 7 and 11, 1 in 15.
    void getGLData(double* const elements) const;
    /// The same, each element narrowed at the end.
    void getGLData(float* const elements) const;

    mgVector_c translation;
    double scale;
};

/// The transform made of these three parts.
OVDL_API mgXform_c mg_RestoreXform(const mgMatrix_c& matrix, const mgVector_c& translation, double scale);
