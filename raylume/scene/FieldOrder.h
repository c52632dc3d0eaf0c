// Comparison of records field by field, as the appearance records need it.
#pragma once

#include <cmath>
#include <string>

#include "raylume/scene/dlTexture.h"

namespace scene {

// A double on purpose: the float of this value lies just below it, so that a float constant would
// count 1e-5f as different from 0.
constexpr double kAppearanceTolerance = 1e-05;

// False with a NaN, and for two equal infinities, whose difference is one.
inline bool sameWithinTolerance(float a, float b)
{
    const float difference = a - b;
    return static_cast<double>(std::fabs(difference)) < kAppearanceTolerance;
}

inline bool sameWithinTolerance(const float (&a)[3], const float (&b)[3])
{
    return sameWithinTolerance(a[0], b[0]) && sameWithinTolerance(a[1], b[1]) &&
           sameWithinTolerance(a[2], b[2]);
}

/// Walks over the fields of two records, a and b; the first that differs decides, and nothing behind
/// it is looked at.
class FieldOrder {
public:
    /// Floats differ outside the tolerance. A NaN decides too: for "not before", both ways round.
    FieldOrder& real(float a, float b)
    {
        return step([&] { return !sameWithinTolerance(a, b); }, [&] { return b > a; });
    }
    FieldOrder& reals(const float (&a)[3], const float (&b)[3])
    {
        return real(a[0], b[0]).real(a[1], b[1]).real(a[2], b[2]);
    }
    /// Integers, flags and texts. Narrow texts compare as unsigned bytes.
    template <class T>
    FieldOrder& value(const T& a, const T& b)
    {
        return step([&] { return a != b; }, [&] { return a < b; });
    }
    FieldOrder& texture(const dlTexture& a, const dlTexture& b) { return value(a, b); }
    /// Any other rule: whether the field differs, and if so whether a comes before b.
    template <class Differs, class Before>
    FieldOrder& step(Differs differs, Before before)
    {
        if (!decided_ && differs()) {
            decided_ = true;
            aBeforeB_ = before();
        }
        return *this;
    }
    /// Whether a comes before b, as far as decided.
    bool aBeforeB() const { return aBeforeB_; }

private:
    bool decided_ = false;
    bool aBeforeB_ = false;
};

}  // namespace scene
