#include "reader/formats/ovdl/BufferBuilder.h"

#include <algorithm>

#include "reader/formats/ovdl/Refusal.h"

namespace ovdl {

// Defaults are written: a -0.0 equals the default and would not come back otherwise.
BufferBuilder::BufferBuilder(std::uint64_t expected, std::uint64_t limit)
    : builder_(static_cast<std::size_t>(std::clamp<std::uint64_t>(expected, 1024, limit))),
      limit_(std::min(limit, kLargestBuffer))
{
    builder_.ForceDefaults(true);
}

flatbuffers::FlatBufferBuilder& BufferBuilder::room(std::uint64_t bytes)
{
    if (bytes >= limit_ || builder_.GetSize() >= limit_ - bytes)
        refuse("the document is too large: one of its buffers would need more than " +
               std::to_string(limit_ - 1) + " bytes");
    return builder_;
}

}  // namespace ovdl
