// Arrays of floats in a stream: one after another, without a number in front.
#pragma once

#include <cstddef>

#include "raylume/persist/RLByteStream.h"

namespace persist {

template <std::size_t count>
void writeFloats(RLByteStream& stream, const float (&values)[count])
{
    for (const float value : values)
        stream.write(value);
}

template <std::size_t count>
void readFloats(RLByteStream& stream, float (&values)[count])
{
    for (float& value : values)
        stream.read(value);
}

}  // namespace persist
