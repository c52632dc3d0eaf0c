#include "raylume/platform/images/BmpRuns.h"

#include <algorithm>

namespace platform {

namespace {

enum Escape : unsigned { kEndOfRow = 0, kEndOfPicture = 1, kMove = 2 };

}  // namespace

BmpRuns::BmpRuns(SourceReader& reader, BmpPacking packing, ImageSize size)
    : reader_(reader),
      packing_(packing),
      width_(static_cast<std::size_t>(size.width)),
      colourBytes_(packing == BmpPacking::kRunLength24 ? 3 : 1),
      row_(width_ * colourBytes_)
{
}

bool BmpRuns::nextRow()
{
    if (reader_.failed()) {
        return false;
    }
    std::fill(row_.begin(), row_.end(), 0);
    if (rowsToSkip_ > 0) {
        --rowsToSkip_;
    }
    while (!endsRow() && !reader_.failed()) {
        readCommand();
    }
    // A last row that is whole needs no mark behind it.
    return !reader_.failed() || column_ >= width_;
}

void BmpRuns::readCommand()
{
    const unsigned count = reader_.byte();
    if (count > 0) {
        putRun(count);
        return;
    }
    const unsigned code = reader_.byte();
    if (!reader_.failed()) {
        readEscape(code);
    }
}

void BmpRuns::readEscape(unsigned code)
{
    switch (code) {
    case kEndOfRow:
        column_ = 0;
        rowsToSkip_ = 1;
        break;
    case kEndOfPicture:
        isOver_ = true;
        break;
    case kMove:
        column_ += reader_.byte();
        rowsToSkip_ = reader_.byte();
        break;
    default:
        putLiterals(code);
    }
}

void BmpRuns::put(const unsigned char* colour)
{
    if (column_ < width_) {
        std::copy_n(colour, colourBytes_, row_.data() + column_ * colourBytes_);
    }
    ++column_;
}

// Two colours in turn where a pixel has four bits.
void BmpRuns::putRun(unsigned count)
{
    unsigned char colours[3];
    reader_.readAll(colours, colourBytes_);
    if (reader_.failed()) {
        return;
    }
    const unsigned char halves[2] = {static_cast<unsigned char>(colours[0] >> 4),
                                     static_cast<unsigned char>(colours[0] & 15)};
    for (unsigned index = 0; index < count; ++index) {
        put(packing_ == BmpPacking::kRunLength4 ? &halves[index % 2] : colours);
    }
}

// Padded to an even number of bytes.
void BmpRuns::putLiterals(unsigned count)
{
    unsigned char bytes[3 * 256];
    const bool isHalves = packing_ == BmpPacking::kRunLength4;
    const std::size_t used = isHalves ? (count + 1) / 2 : count * colourBytes_;
    const std::size_t read = reader_.read(bytes, used + used % 2);
    for (unsigned index = 0; index < count; ++index) {
        if (isHalves && index / 2 < read) {
            const auto half =
                static_cast<unsigned char>(index % 2 == 0 ? bytes[index / 2] >> 4 : bytes[index / 2] & 15);
            put(&half);
        } else if (!isHalves && (index + 1) * colourBytes_ <= read) {
            put(bytes + index * colourBytes_);
        }
    }
}

}  // namespace platform
