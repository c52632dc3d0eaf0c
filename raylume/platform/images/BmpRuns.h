// Run lengths of bitmap files, a row at a time.
#pragma once

#include <cstdint>
#include <vector>

#include "raylume/platform/images/BmpHeader.h"
#include "raylume/platform/images/ImageSource.h"

namespace platform {

/// Rows in the order of the file. What the runs pass over is colour 0 (black for 24 bits).
class BmpRuns {
public:
    BmpRuns(SourceReader& reader, BmpPacking packing, ImageSize size);

    /// Makes the next row. False when the file ended before the picture did.
    bool nextRow();
    /// The row: an index, or three bytes, for each pixel.
    const unsigned char* colours() const { return row_.data(); }

private:
    void readCommand();
    void readEscape(unsigned code);
    void putRun(unsigned count);
    void putLiterals(unsigned count);
    void put(const unsigned char* colour);
    bool endsRow() const { return isOver_ || rowsToSkip_ > 0; }

    SourceReader& reader_;
    BmpPacking packing_;
    std::size_t width_;
    std::size_t colourBytes_;
    std::vector<unsigned char> row_;
    std::size_t column_ = 0;
    unsigned rowsToSkip_ = 0;  // how many rows further the runs go on
    bool isOver_ = false;      // the end was marked
};

}  // namespace platform
