// Rows of a picture as a codec hands them over, into the pixels that the caller wants.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "raylume/platform/Images.h"

namespace platform {

/// For each pixel of a side of the result: the pixels of the source's side that make it, with weights
/// that add up to 65536, so that one colour stays that colour to the bit.
class SideFilter {
public:
    SideFilter(int from, int to);

    int first(int result) const { return first_[static_cast<std::size_t>(result)]; }
    int last(int result) const { return first(result) + count(result) - 1; }
    int count(int result) const
    {
        return static_cast<int>(starts_[static_cast<std::size_t>(result) + 1] -
                                starts_[static_cast<std::size_t>(result)]);
    }
    /// The weights of first() to last().
    const std::uint32_t* weights(int result) const
    {
        return weights_.data() + starts_[static_cast<std::size_t>(result)];
    }

private:
    void addAveraged(int result, int from, int to);
    void addInterpolated(int result, int from, int to);

    std::vector<int> first_;
    std::vector<std::size_t> starts_;
    std::vector<std::uint32_t> weights_;
};

/// Takes rows of the source's size, from the top down or from the bottom up, all of them once. Where
/// the sizes are equal a row goes straight to its place.
class RowScaler {
public:
    struct Result {
        ImageSize size;
        bool turnOver = false;
        unsigned char* pixels = nullptr;
    };

    RowScaler(ImageSize from, const Result& result, bool hasAlpha);

    ImageSize sourceSize() const { return from_; }
    /// Whether the rows are those of the result, so that they stay and can be filled in any order and in
    /// several passes.
    bool keepsRows() const { return from_ == result_.size; }
    /// Where to put the pixels of a row, counted from the top of the picture.
    unsigned char* row(int index);
    /// The row has been put there.
    void finishRow(int index);

private:
    using Sums = std::vector<std::uint64_t>;

    unsigned char* resultRow(int index) const;
    std::size_t laneCount() const;
    void filterAcross();
    void addTo(Sums& sums, std::uint32_t weight) const;
    void store(int index, Sums& sums) const;
    Sums& sumsOf(int index) { return open_[static_cast<std::size_t>(index) % open_.size()]; }

    ImageSize from_;
    Result result_;
    bool hasAlpha_;
    SideFilter across_;
    SideFilter down_;
    std::vector<int> firstResult_;  // by row of the source: the rows of the result that it is part of
    std::vector<int> lastResult_;
    std::vector<unsigned char> sourceRow_;
    std::vector<std::uint32_t> acrossRow_;  // four lanes a pixel, eight with alpha
    std::vector<Sums> open_;                // rows of the result that have begun
    bool hasBegun_ = false;
    bool isUpwards_ = false;
};

}  // namespace platform
