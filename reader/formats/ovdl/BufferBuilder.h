// A FlatBuffer in the making that refuses to grow too large. The library itself only asserts.
#pragma once

#include <flatbuffers/flatbuffers.h>

#include <cstdint>
#include <string>

#include "reader/formats/ovdl/DocumentStreams.h"

namespace ovdl {

class BufferBuilder {
public:
    /// `expected` bytes are set aside. The buffer stays below `limit` bytes.
    BufferBuilder(std::uint64_t expected, std::uint64_t limit);

    /// To be called before each table, vector and text, with at least as many bytes as it takes. Errors:
    /// raises Refusal when there is no room for them.
    flatbuffers::FlatBufferBuilder& room(std::uint64_t bytes);

    /// A vector of scalars or structs; no vector where there are no elements.
    template <class T, class Elements>
    flatbuffers::Offset<flatbuffers::Vector<T>> vector(const Elements& elements)
    {
        return elements.empty() ? 0 : room(vectorBytes(elements.size(), sizeof(T))).CreateVector(elements);
    }
    template <class T, class Elements>
    flatbuffers::Offset<flatbuffers::Vector<const T*>> structs(const Elements& elements)
    {
        if (elements.empty())
            return 0;
        return room(vectorBytes(elements.size(), sizeof(T)))
            .CreateVectorOfStructs(elements.data(), elements.size());
    }

    /// What is made of the root table; borrowed from this object.
    template <class Root>
    Bytes finish(flatbuffers::Offset<Root> root, const char* identifier)
    {
        room(kLargestTable).Finish(root, identifier);
        return {builder_.GetBufferPointer(), builder_.GetSize()};
    }

    static constexpr std::uint64_t vectorBytes(std::uint64_t count, std::uint64_t size)
    {
        return count * size + kPadding;
    }

    /// More than any table of the schema takes, its vtable included.
    static constexpr std::uint64_t kLargestTable = 512;

private:
    static constexpr std::uint64_t kPadding = 32;

    flatbuffers::FlatBufferBuilder builder_;
    std::uint64_t limit_;
};

}  // namespace ovdl
