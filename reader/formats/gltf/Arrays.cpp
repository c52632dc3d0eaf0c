#include "reader/formats/gltf/Arrays.h"

#include <algorithm>

#include "raylume/platform/Memory.h"

namespace ovdl::gltf {
namespace {

constexpr std::size_t kSmallestBlock = std::size_t(64) << 10;
constexpr std::size_t kLargestBlock = std::size_t(32) << 20;
constexpr std::size_t kAlignment = 16;

}  // namespace

Arrays::Arrays(std::size_t expectedBytes) : expected_(expectedBytes)
{
}

// The last block is no longer than what is still to come, so that little of it is mapped for nothing.
std::size_t Arrays::nextBlockSize() const
{
    const std::size_t left = expected_ > taken_ ? expected_ - taken_ : taken_ / 16;
    return std::clamp(left, kSmallestBlock, kLargestBlock);
}

float* Arrays::floats(std::size_t count)
{
    return static_cast<float*>(bytes(count * sizeof(float)));
}

std::int32_t* Arrays::integers(std::size_t count)
{
    return static_cast<std::int32_t*>(bytes(count * sizeof(std::int32_t)));
}

unsigned char* Arrays::newBlock(std::size_t size)
{
    blocks_.emplace_back(new unsigned char[size]);
    platform::prepareForFilling(blocks_.back().get(), size);
    return blocks_.back().get();
}

void* Arrays::bytes(std::size_t size)
{
    size = (size + kAlignment - 1) / kAlignment * kAlignment;
    const std::size_t blockSize = nextBlockSize();
    taken_ += size;
    if (size > left_ && size > blockSize / 4)
        return newBlock(size);
    if (size > left_) {
        next_ = newBlock(blockSize);
        left_ = blockSize;
    }
    unsigned char* result = next_;
    next_ += size;
    left_ -= size;
    return result;
}

}  // namespace ovdl::gltf
