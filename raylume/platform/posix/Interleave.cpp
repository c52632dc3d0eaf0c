#include "raylume/platform/Interleave.h"

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace platform {
namespace {

// One vertex at a time, whatever the processor.
void interleavePlainly(const float* positions, const float* normals, std::size_t count, float* records,
                       Extremes& extremes)
{
    Extremes walked = extremes;  // In locals, so that the compiler need not store after every test.
    for (std::size_t vertex = 0; vertex < count; ++vertex) {
        std::memcpy(records + 6 * vertex, positions + 3 * vertex, 3 * sizeof(float));
        std::memcpy(records + 6 * vertex + 3, normals + 3 * vertex, 3 * sizeof(float));
        for (int axis = 0; axis < 3; ++axis) {
            const float value = positions[3 * vertex + static_cast<std::size_t>(axis)];
            walked.min[axis] = value < walked.min[axis] ? value : walked.min[axis];
            walked.max[axis] = value > walked.max[axis] ? value : walked.max[axis];
        }
    }
    extremes = walked;
}

#if defined(__SSE2__)

// Above this size the records will not be read again from a cache, and writing past it saves
// reading every line of the target first.
constexpr std::size_t kStreamedBytes = std::size_t{1} << 20;

struct PlainStore {
    static void put(float* target, __m128 value) { _mm_storeu_ps(target, value); }
    static void finish() {}
};

struct StreamingStore {
    static void put(float* target, __m128 value) { _mm_stream_ps(target, value); }
    static void finish() { _mm_sfence(); }
};

// The extremes of x, y and z in the lower three lanes. minps and maxps give their second operand
// when the two are unordered or both zero, which is just what the plain tests do; one chain over
// all vertices keeps the order of the walk, on which the sign of a zero depends.
class LaneExtremes {
public:
    explicit LaneExtremes(const Extremes& start)
        : min_(_mm_setr_ps(start.min[0], start.min[1], start.min[2], 0.0f)),
          max_(_mm_setr_ps(start.max[0], start.max[1], start.max[2], 0.0f))
    {
    }

    void add(__m128 position)
    {
        min_ = _mm_min_ps(position, min_);
        max_ = _mm_max_ps(position, max_);
    }

    void writeTo(Extremes& extremes) const
    {
        float lanes[4];
        _mm_storeu_ps(lanes, min_);
        std::memcpy(extremes.min, lanes, sizeof extremes.min);
        _mm_storeu_ps(lanes, max_);
        std::memcpy(extremes.max, lanes, sizeof extremes.max);
    }

private:
    __m128 min_;
    __m128 max_;
};

// Two records (12 floats) from two positions and normals; the fourth lane of each holds whatever
// follows.
template <class Store>
void putPair(float* records, __m128 p0, __m128 n0, __m128 p1, __m128 n1)
{
    const __m128 z0nx0 = _mm_shuffle_ps(p0, n0, _MM_SHUFFLE(0, 0, 2, 2));
    const __m128 z1nx1 = _mm_shuffle_ps(p1, n1, _MM_SHUFFLE(0, 0, 2, 2));
    Store::put(records, _mm_shuffle_ps(p0, z0nx0, _MM_SHUFFLE(2, 0, 1, 0)));
    Store::put(records + 4, _mm_shuffle_ps(n0, p1, _MM_SHUFFLE(1, 0, 2, 1)));
    Store::put(records + 8, _mm_shuffle_ps(z1nx1, n1, _MM_SHUFFLE(2, 1, 2, 0)));
}

// Leaves the last one or two vertices to the plain loop: a load takes four floats of three.
template <class Store>
std::size_t interleavePairs(const float* positions, const float* normals, std::size_t count, float* records,
                            Extremes& extremes)
{
    LaneExtremes lanes(extremes);
    std::size_t vertex = 0;
    for (; vertex + 2 < count; vertex += 2) {
        const float* position = positions + 3 * vertex;
        const float* normal = normals + 3 * vertex;
        const __m128 p0 = _mm_loadu_ps(position);
        const __m128 p1 = _mm_loadu_ps(position + 3);
        lanes.add(p0);
        lanes.add(p1);
        putPair<Store>(records + 6 * vertex, p0, _mm_loadu_ps(normal), p1, _mm_loadu_ps(normal + 3));
    }
    lanes.writeTo(extremes);
    Store::finish();
    return vertex;
}

bool shouldStream(const float* records, std::size_t count)
{
    return count >= kStreamedBytes / (6 * sizeof(float)) &&
           reinterpret_cast<std::uintptr_t>(records) % sizeof(__m128) == 0;
}

std::size_t interleaveFast(const float* positions, const float* normals, std::size_t count, float* records,
                           Extremes& extremes)
{
    const auto pairs =
        shouldStream(records, count) ? interleavePairs<StreamingStore> : interleavePairs<PlainStore>;
    return pairs(positions, normals, count, records, extremes);
}

#else

std::size_t interleaveFast(const float*, const float*, std::size_t, float*, Extremes&)
{
    return 0;
}

#endif

}  // namespace

void interleave(const float* positions, const float* normals, std::size_t count, float* records,
                Extremes& extremes)
{
    const std::size_t done = interleaveFast(positions, normals, count, records, extremes);
    interleavePlainly(positions + 3 * done, normals + 3 * done, count - done, records + 6 * done, extremes);
}

}  // namespace platform
