// Small image files, made in memory.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/ImageContent.h"

namespace tool_test {

/// Each pixel: blue, green, red, alpha.
inline std::vector<unsigned char> pixels(int width, int height)
{
    std::vector<unsigned char> made;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            made.insert(made.end(), {static_cast<unsigned char>(40 * x), static_cast<unsigned char>(30 * y),
                                     200, static_cast<unsigned char>(255 - x)});
    return made;
}

inline std::string pngFile(int width, int height)
{
    const auto bytes = tool::encodePng(pixels(width, height).data(), width, height);
    return {bytes.begin(), bytes.end()};
}

inline void append(std::string& bytes, std::uint32_t value, int count)
{
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> (8 * i));
}

/// 24 bits, every pixel of one colour.
inline std::string bmpFile(int width, int height, unsigned char blue = 0, unsigned char green = 0,
                           unsigned char red = 255)
{
    const std::uint32_t row = (3u * static_cast<std::uint32_t>(width) + 3) / 4 * 4;
    const std::uint32_t data = row * static_cast<std::uint32_t>(height);
    std::string bytes = "BM";
    for (const std::uint32_t value : {54 + data, 0u, 54u, 40u})
        append(bytes, value, 4);
    append(bytes, static_cast<std::uint32_t>(width), 4);
    append(bytes, static_cast<std::uint32_t>(height), 4);
    append(bytes, 1, 2);
    append(bytes, 24, 2);
    for (const std::uint32_t value : {0u, data, 0u, 0u, 0u, 0u})
        append(bytes, value, 4);
    for (int y = 0; y < height; ++y) {
        std::string line;
        for (int x = 0; x < width; ++x)
            line += {static_cast<char>(blue), static_cast<char>(green), static_cast<char>(red)};
        line.resize(row);
        bytes += line;
    }
    return bytes;
}

}  // namespace tool_test
