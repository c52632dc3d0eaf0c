// The first look at a buffer: nothing reads it before it went through here.
#pragma once

#include <flatbuffers/flatbuffers.h>

#include <cstdint>
#include <string>

#include "reader/formats/ovdl/DocumentStreams.h"
#include "reader/formats/ovdl/Refusal.h"

namespace ovdl::decoding {

// Numbers are used where they lie.
static_assert(FLATBUFFERS_LITTLEENDIAN == 1);

inline constexpr std::size_t kAlignment = 8;

inline bool isAligned(Bytes bytes)
{
    return reinterpret_cast<std::uintptr_t>(bytes.data()) % kAlignment == 0;
}

/// The root table of a buffer that begins at a multiple of 8. Raises Refusal, with `what` in the reason,
/// for anything that is not a whole buffer of that kind. Takes time in proportion to the size of the
/// buffer: a table takes 8 bytes at least, so that a buffer with more of them names some more than once.
template <class Root>
const Root& verifiedRoot(Bytes bytes, const char* identifier, const std::string& what)
{
    if (bytes.size() >= kLargestBuffer)
        refuse(what + " is too large");
    constexpr flatbuffers::uoffset_t kDeepest = 2;  // The root, and the records in its vectors.
    const auto mostTables = static_cast<flatbuffers::uoffset_t>(bytes.size() / 8);
    flatbuffers::Verifier verifier(bytes.data(), bytes.size(), kDeepest, mostTables);
    if (!verifier.VerifyBuffer<Root>(identifier))
        refuse(what + " is damaged");
    return *flatbuffers::GetRoot<Root>(bytes.data());
}

}  // namespace ovdl::decoding
