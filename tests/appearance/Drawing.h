// Small pictures that a test writes out colour by colour, and the bitmap files of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Rows from the top; colours with red in the low byte.
struct Drawing {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> colours;

    std::uint32_t at(int x, int y) const { return colours.at(static_cast<std::size_t>(y * width + x)); }
};

inline void appendNumber(std::string& bytes, std::uint32_t value, int count)
{
    for (int byte = 0; byte < count; ++byte)
        bytes.push_back(static_cast<char>(value >> (8 * byte)));
}

/// A bitmap file of 24 bits a pixel.
inline std::string bitmapOf(const Drawing& drawing)
{
    const int gap = (4 - 3 * drawing.width % 4) % 4;
    const auto size = static_cast<std::uint32_t>((3 * drawing.width + gap) * drawing.height);
    std::string bytes = "BM";
    for (const std::uint32_t value : {54 + size, 0u, 54u, 40u, static_cast<std::uint32_t>(drawing.width),
                                      static_cast<std::uint32_t>(drawing.height)})
        appendNumber(bytes, value, 4);
    appendNumber(bytes, 1, 2);
    appendNumber(bytes, 24, 2);
    for (const std::uint32_t value : {0u, size, 0u, 0u, 0u, 0u})
        appendNumber(bytes, value, 4);
    for (int y = drawing.height - 1; y >= 0; --y) {
        for (int x = 0; x < drawing.width; ++x)
            for (const int shift : {16, 8, 0})
                appendNumber(bytes, drawing.at(x, y) >> shift & 0xFF, 1);
        appendNumber(bytes, 0, gap);
    }
    return bytes;
}
