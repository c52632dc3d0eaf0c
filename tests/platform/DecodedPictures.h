// Pictures as the library decodes them, and what the builders' pictures have to look like.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "raylume/platform/Images.h"
#include "tests/platform/PictureFiles.h"
#include "tests/platform/TemporaryFolder.h"

namespace picture_files {

void PrintTo(const Image& image, std::ostream* out);

/// For files that need a name, for as long as the process lives.
const TemporaryFolder& folder();

/// By a file in memory: thousands of them are written. The next call reuses it.
std::unique_ptr<platform::ImageFile> opened(const std::string& bytes);
std::optional<Image> decodedTo(const std::string& bytes, platform::ImageSize wanted, bool turnOver = false);
/// In its own size.
std::optional<Image> decoded(const std::string& bytes);

Pixel grey(unsigned value);
/// Of the palettes of the builders.
Pixel entryOf(unsigned index, unsigned alpha = 255);
/// Of any channel; 999 for pictures of other sizes.
int largestDifference(const Image& a, const Image& b);

/// A palette for bitmaps.
std::vector<Pixel> someColours(int count);
/// A bitmap of run lengths over that palette; of 24 bits that of OS/2.
BmpParts runs(int width, int height, int bits, const std::string& commands);
/// Samples without sharp edges.
unsigned ramp(int column, int row, int channel);
/// The samples of tiffOf(): of 16 bits ones that scaling and cutting bring to other bytes.
unsigned tiffSample(const TiffKind& kind, int column, int row, int sample);
std::string tiffOf(int width, int height, const TiffKind& kind);
unsigned gifIndex(int column, int row);

}  // namespace picture_files
