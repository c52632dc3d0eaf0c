// Structs of the schema that are arrays of numbers.
#pragma once

#include <ovdl_schema/document_generated.h>

#include <algorithm>
#include <type_traits>

#include "raylume/load/ReaderInterface.h"

namespace ovdl::decoding {

/// Copies the numbers of a struct; what is absent leaves the target as it is. The target may have two
/// dimensions.
template <class Struct, class Array>
void copyArray(const Struct* from, Array& to)
{
    using Number = std::remove_all_extents_t<Array>;
    static_assert(sizeof(Array) == sizeof(Struct), "the struct has as many numbers as the array");
    if (from)
        std::copy_n(from->v()->begin(), sizeof(Array) / sizeof(Number), reinterpret_cast<Number*>(&to));
}

inline color colourOf(const fb::Double3* from)
{
    color to;
    if (from) {
        to.r = from->v()->Get(0);
        to.g = from->v()->Get(1);
        to.b = from->v()->Get(2);
    }
    return to;
}

/// Absent: the identity.
inline mgXform_c xformOf(const fb::Xform* from)
{
    mgXform_c to;
    if (!from)
        return to;
    double* const elements[] = {&to.e0, &to.e1, &to.e2, &to.e3, &to.e4, &to.e5, &to.e6, &to.e7, &to.e8};
    for (flatbuffers::uoffset_t i = 0; i < 9; ++i)
        *elements[i] = from->matrix()->Get(i);
    to.translation.x = from->translation()->Get(0);
    to.translation.y = from->translation()->Get(1);
    to.translation.z = from->translation()->Get(2);
    to.scale = from->scale();
    return to;
}

}  // namespace ovdl::decoding
