// Arrays of the reader interface as something to walk over.
#pragma once

#include <span>
#include <string>

#include "raylume/load/ReaderInterface.h"
#include "reader/formats/ovdl/Refusal.h"

namespace ovdl {

/// Errors: raises Refusal for a negative count, and for elements without data.
template <class Array>
void checkArray(const Array& array, const std::string& what)
{
    if (array.count < 0)
        refuse(what + ": a negative count");
    if (array.count > 0 && !array.data)
        refuse(what + ": elements without data");
}

template <class T>
std::span<T* const> elementsOf(const ovPointerArray<T>& array)
{
    return {array.data, array.data ? static_cast<std::size_t>(array.count) : 0};
}

template <class T>
std::span<const T> elementsOf(const ovArrayView<T>& array)
{
    return {array.data, array.data ? static_cast<std::size_t>(array.count) : 0};
}

}  // namespace ovdl
