// Two kinds of input.
//
// Several streams: for each a number, a piece and a size, 16 bits little-endian each, then so many bytes of
// it, or as many as are left. The first one is the document; its number is 0.
//
// Numbers for a sound document, since most changes of bytes end at the verifier: two bytes of ones, then
// for each change the stream, the word within it (16 bits) and its new value (32 bits).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "tests/ovdl/DocumentBuffers.h"

namespace ovdl_fuzz {

inline constexpr std::size_t kHead = 6;

inline ovdl_tests::Buffers unbundle(const std::uint8_t* data, std::size_t size)
{
    const auto get = [](const std::uint8_t* at) { return static_cast<std::uint32_t>(at[0] | at[1] << 8); };
    ovdl_tests::Buffers buffers;
    bool isFirst = true;
    while (size >= kHead) {
        const std::size_t length = std::min<std::size_t>(get(data + 4), size - kHead);
        ovdl_tests::Buffer bytes(data + kHead, data + kHead + length);
        if (isFirst)
            buffers.document = std::move(bytes);
        else
            buffers.tessellations[{get(data), get(data + 2)}] = std::move(bytes);
        isFirst = false;
        data += kHead + length;
        size -= kHead + length;
    }
    return buffers;
}

inline bool isPatch(const std::uint8_t* data, std::size_t size)
{
    return size >= 2 && data[0] == 0xFF && data[1] == 0xFF;
}

inline void patch(ovdl_tests::Buffers& buffers, const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kChange = 7;
    for (; size >= kChange; data += kChange, size -= kChange) {
        ovdl_tests::Buffer* stream = &buffers.document;
        for (auto& [key, bytes] : buffers.tessellations)
            if (key.first + key.second + 1 == data[0] % 4u)
                stream = &bytes;
        const std::size_t word = static_cast<std::size_t>(data[1] | data[2] << 8) % (stream->size() / 4);
        std::copy_n(data + 3, 4, stream->begin() + static_cast<std::ptrdiff_t>(4 * word));
    }
}

inline std::string bundle(const ovdl_tests::Buffers& buffers)
{
    std::string text;
    const auto add = [&text](std::uint32_t number, std::uint32_t piece, const ovdl_tests::Buffer& bytes) {
        for (const std::size_t value : {std::size_t{number}, std::size_t{piece}, bytes.size()}) {
            text += static_cast<char>(value);
            text += static_cast<char>(value >> 8);
        }
        text.append(bytes.begin(), bytes.end());
    };
    add(0, 0, buffers.document);
    for (const auto& [key, bytes] : buffers.tessellations)
        add(key.first, key.second, bytes);
    return text;
}

}  // namespace ovdl_fuzz
