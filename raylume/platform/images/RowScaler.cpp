#include "raylume/platform/images/RowScaler.h"

#include <algorithm>

namespace platform {

namespace {

constexpr std::uint32_t kOne = 1u << 16;
constexpr int kUnusedResult = -1;

unsigned char rounded(std::uint64_t sum)
{
    return static_cast<unsigned char>((sum + (std::uint64_t{1} << 31)) >> 32);
}

// Weighed by alpha, so that what is cut out lends no colour to what is not. Where all is cut out, the plain
// mean: masks compare the colours of such pixels too.
void storeWithAlpha(const std::uint64_t* sums, unsigned char* pixel)
{
    const std::uint64_t alpha = sums[3];
    const bool isUniform = alpha == 0 || alpha == std::uint64_t{255} << 32;
    for (int channel = 0; channel < 3; ++channel) {
        pixel[channel] = isUniform ? rounded(sums[channel])
                                   : static_cast<unsigned char>((sums[4 + channel] + alpha / 2) / alpha);
    }
    pixel[3] = rounded(alpha);
}

void addPlain(const unsigned char* pixel, std::uint32_t weight, std::uint32_t* lanes)
{
    for (int channel = 0; channel < 4; ++channel) {
        lanes[channel] += weight * pixel[channel];
    }
}

// 255 * 255 * 65536 just fits 32 bits.
void addWeighedByAlpha(const unsigned char* pixel, std::uint32_t weight, std::uint32_t* lanes)
{
    addPlain(pixel, weight, lanes);
    const std::uint32_t alpha = weight * pixel[3];
    for (int channel = 0; channel < 3; ++channel) {
        lanes[4 + channel] += alpha * pixel[channel];
    }
}

template <class Add>
void filterRow(const SideFilter& filter, const unsigned char* row, std::vector<std::uint32_t>& sums,
               std::size_t lanesOfPixel, Add add)
{
    std::fill(sums.begin(), sums.end(), 0);
    std::uint32_t* lanes = sums.data();
    const auto count = static_cast<int>(sums.size() / lanesOfPixel);
    for (int result = 0; result < count; ++result, lanes += lanesOfPixel) {
        const unsigned char* pixel = row + 4 * static_cast<std::size_t>(filter.first(result));
        const std::uint32_t* weight = filter.weights(result);
        const std::uint32_t* const end = weight + filter.count(result);
        for (; weight != end; ++weight, pixel += 4) {
            add(pixel, *weight, lanes);
        }
    }
}

}  // namespace

SideFilter::SideFilter(int from, int to)
{
    first_.reserve(static_cast<std::size_t>(to));
    starts_.reserve(static_cast<std::size_t>(to) + 1);
    starts_.push_back(0);
    for (int result = 0; result < to; ++result) {
        if (to <= from) {
            addAveraged(result, from, to);
        } else {
            addInterpolated(result, from, to);
        }
        starts_.push_back(weights_.size());
    }
}

// In units of which a pixel of the source has `to` and one of the result `from`. Each weight is the
// difference of two rounded places, so that their sum is exact.
void SideFilter::addAveraged(int result, int from, int to)
{
    const std::int64_t begin = std::int64_t{result} * from;
    const auto first = static_cast<int>(begin / to);
    const auto last = static_cast<int>((begin + from - 1) / to);
    const auto place = [&](std::int64_t source) {
        const std::int64_t inside = std::clamp<std::int64_t>(source * to - begin, 0, from);
        return static_cast<std::uint32_t>((inside * kOne + from / 2) / from);
    };
    first_.push_back(first);
    for (int source = first; source <= last; ++source) {
        weights_.push_back(place(source + 1) - place(source));
    }
}

// Between the centres of the two nearest pixels; the outermost half pixel is that of the edge.
void SideFilter::addInterpolated(int result, int from, int to)
{
    const std::int64_t unit = 2 * std::int64_t{to};
    const std::int64_t centre = (2 * std::int64_t{result} + 1) * from - to;
    const std::int64_t place = std::clamp<std::int64_t>(centre, 0, (from - 1) * unit);
    const auto second = static_cast<std::uint32_t>((place % unit * kOne + unit / 2) / unit);
    first_.push_back(static_cast<int>(place / unit));
    weights_.push_back(kOne - second);
    if (second > 0) {
        weights_.push_back(second);
    }
}

RowScaler::RowScaler(ImageSize from, const Result& result, bool hasAlpha)
    : from_(from),
      result_(result),
      hasAlpha_(hasAlpha),
      across_(keepsRows() ? 0 : from.width, keepsRows() ? 0 : result.size.width),
      down_(keepsRows() ? 0 : from.height, keepsRows() ? 0 : result.size.height)
{
    if (keepsRows()) {
        return;
    }
    firstResult_.assign(static_cast<std::size_t>(from.height), kUnusedResult);
    lastResult_.assign(static_cast<std::size_t>(from.height), kUnusedResult);
    for (int index = 0; index < result.size.height; ++index) {
        for (int source = down_.first(index); source <= down_.last(index); ++source) {
            const auto at = static_cast<std::size_t>(source);
            firstResult_[at] = firstResult_[at] == kUnusedResult ? index : firstResult_[at];
            lastResult_[at] = index;
        }
    }
    std::size_t mostOpen = 1;
    for (std::size_t source = 0; source < firstResult_.size(); ++source) {
        mostOpen =
            std::max(mostOpen, static_cast<std::size_t>(lastResult_[source] - firstResult_[source] + 1));
    }
    sourceRow_.resize(4 * static_cast<std::size_t>(from.width));
    acrossRow_.resize(laneCount());
    open_.assign(mostOpen, Sums(laneCount()));
}

std::size_t RowScaler::laneCount() const
{
    return static_cast<std::size_t>(result_.size.width) * (hasAlpha_ ? 8 : 4);
}

unsigned char* RowScaler::resultRow(int index) const
{
    const int place = result_.turnOver ? result_.size.height - 1 - index : index;
    return result_.pixels +
           4 * static_cast<std::size_t>(result_.size.width) * static_cast<std::size_t>(place);
}

unsigned char* RowScaler::row(int index)
{
    return keepsRows() ? resultRow(index) : sourceRow_.data();
}

void RowScaler::finishRow(int index)
{
    if (keepsRows()) {
        return;
    }
    if (!hasBegun_) {
        hasBegun_ = true;
        isUpwards_ = index > 0;
    }
    const auto at = static_cast<std::size_t>(index);
    if (firstResult_[at] == kUnusedResult) {
        return;
    }
    filterAcross();
    for (int result = firstResult_[at]; result <= lastResult_[at]; ++result) {
        addTo(sumsOf(result), down_.weights(result)[index - down_.first(result)]);
        if (index == (isUpwards_ ? down_.first(result) : down_.last(result))) {
            store(result, sumsOf(result));
        }
    }
}

void RowScaler::filterAcross()
{
    const auto plain = [](auto... arguments) { addPlain(arguments...); };
    const auto weighed = [](auto... arguments) { addWeighedByAlpha(arguments...); };
    if (hasAlpha_) {
        filterRow(across_, sourceRow_.data(), acrossRow_, 8, weighed);
    } else {
        filterRow(across_, sourceRow_.data(), acrossRow_, 4, plain);
    }
}

void RowScaler::addTo(Sums& sums, std::uint32_t weight) const
{
    const std::uint32_t* const lanes = acrossRow_.data();
    std::uint64_t* const to = sums.data();
    const std::size_t count = sums.size();
    for (std::size_t lane = 0; lane < count; ++lane) {
        to[lane] += std::uint64_t{weight} * lanes[lane];
    }
}

void RowScaler::store(int index, Sums& sums) const
{
    unsigned char* pixel = resultRow(index);
    const std::size_t lanesOfPixel = hasAlpha_ ? 8 : 4;
    for (std::size_t lane = 0; lane < sums.size(); lane += lanesOfPixel, pixel += 4) {
        if (hasAlpha_) {
            storeWithAlpha(&sums[lane], pixel);
        } else {
            for (std::size_t channel = 0; channel < 4; ++channel) {
                pixel[channel] = rounded(sums[lane + channel]);
            }
        }
    }
    std::fill(sums.begin(), sums.end(), 0);
}

}  // namespace platform
