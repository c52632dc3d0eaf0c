// Picture files in memory, made for tests.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace picture_files {

/// Blue, green, red, alpha.
using Pixel = std::array<unsigned char, 4>;

struct Image {
    int width = 0;
    int height = 0;
    std::vector<Pixel> pixels;

    const Pixel& at(int column, int row) const
    {
        return pixels[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(column)];
    }
    bool operator==(const Image&) const = default;
};

Image makeImage(int width, int height, const std::function<Pixel(int column, int row)>& colour);
/// Every pixel differs from its neighbours, in all of its channels; alpha runs from 0 to 255.
Image scattered(int width, int height);
/// The same with every alpha 255.
Image opaque(Image image);
Image turnedOver(const Image& image);

/// Little-endian bytes.
std::string bytes16(std::uint32_t value);
std::string bytes32(std::uint32_t value);

// ------------------------------------------------------------------------------------- bitmaps

struct BmpParts {
    std::uint32_t headerBytes = 40;  ///< 12, 16 to 64 (OS/2, but 40, 52 and 56), 108 or 124.
    int width = 0;
    int height = 0;  ///< Below 0: rows from the top.
    int bits = 24;
    std::uint32_t compression = 0;
    std::vector<std::uint32_t>
        masks;  ///< Red, green, blue, alpha: in the header, or behind one of 40 bytes.
    std::string palette;
    std::uint32_t coloursUsed = 0;
    std::string pixels;  ///< As they stand in the file.
};

std::string bmp(const BmpParts& parts);
/// Rows as a file has them: padded to four bytes, from the bottom unless `isTopDown`.
std::string bmpRows(int width, int height, int bits, bool isTopDown,
                    const std::function<std::uint32_t(int column, int row)>& value);
/// Entries of four bytes.
std::string bmpPalette(const std::vector<Pixel>& colours, bool isCore = false);

/// Without a file header, the height doubled, the mask of cut-out pixels behind.
std::string iconBitmap(BmpParts parts, const std::string& mask);
struct IconEntry {
    int width = 0;
    int height = 0;
    int bits = 0;
    std::string content;
};
std::string icon(const std::vector<IconEntry>& entries);

// ------------------------------------------------------------------------------------- by codecs

struct PngKind {
    int colourType = 6;  ///< 0 grey, 2 colour, 3 palette, 4 grey and alpha, 6 colour and alpha.
    int depth = 8;
    bool isInterlaced = false;
    bool hasTransparency = false;  ///< A tRNS chunk: palette entry 0, or the sample 0 of each channel.
};
/// `sample(column, row, channel)` within the depth; for a palette, the index (entries are {i, 2 i, 255 -
/// i}).
std::string png(int width, int height, const PngKind& kind,
                const std::function<unsigned(int column, int row, int channel)>& sample);
std::string pngOf(const Image& image, bool isInterlaced = false);
/// One pixel, and texts of so many times "x" in front of it, compressed or not.
std::string pngWithTexts(int count, std::size_t length, bool areCompressed);
/// Of one bit a pixel, all 0; made fast.
std::string blackPng(int width, int height);

struct JpegKind {
    int components = 3;  ///< 1 grey, 3 colour, 4 inks.
    bool isProgressive = false;
    bool hasAdobeMarker = true;  ///< For inks: the bytes are what is left of the light.
    bool storesInksAsYcck = false;
    int quality = 100;
    bool isArithmetic = false;
};
/// `sample` as the codec takes it: grey; red, green, blue; the four inks' bytes.
std::string jpeg(int width, int height, const JpegKind& kind,
                 const std::function<unsigned(int column, int row, int channel)>& sample);
/// What the codec itself makes of a file at one `denominator`th of its size.
Image jpegReduced(const std::string& file, unsigned denominator);
/// A progressive grey picture of one colour with that many scans.
std::string jpegOfScans(int width, int height, int scans);

struct TiffKind {
    int photometric = 2;  ///< 0, 1 grey, 2 colour, 3 palette, 5 inks, 6 YCbCr, 8 CIELab.
    int samples = 3;
    int bits = 8;
    int compression = 1;
    int rowsPerStrip = 0;   ///< 0: one strip.
    int tile = 0;           ///< Side of the tiles; 0: strips.
    int extraSamples = -1;  ///< The tag's value for the last sample; -1: no tag.
    int orientation = 0;
    bool isPlanar = false;
    bool isBig = false;
    int sampleFormat = 0;  ///< 1 without sign, 3 floating point; 0: no tag.
};
std::string tiff(int width, int height, const TiffKind& kind,
                 const std::function<unsigned(int column, int row, int sample)>& sample);

/// Of one bit a pixel, all 0, in strips of 16 rows without compression; made fast.
std::string blackTiff(int width, int height);
/// A little-endian file with the one value of a tag in its first page put to another.
std::string withTiffTag(std::string file, unsigned tag, std::uint32_t value);

struct GifParts {
    int screenWidth = 0;
    int screenHeight = 0;
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool isInterlaced = false;
    bool hasOwnPalette = false;
    int transparent = -1;
    int frames = 1;
};
/// Colours as for a palette of png(). Frames behind the first show other indices.
std::string gif(const GifParts& parts, const std::function<unsigned(int column, int row)>& index);

}  // namespace picture_files
