// The float and integer arrays that a document hands out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace ovdl::gltf {

/// Hands out uninitialised arrays that live as long as it does. They come from large blocks, whose
/// pages the system maps all at once: taking a fault for each costs more than the copying.
class Arrays {
public:
    /// `expectedBytes`: what will be asked for in all, roughly. More may be asked for.
    explicit Arrays(std::size_t expectedBytes);

    float* floats(std::size_t count);
    std::int32_t* integers(std::size_t count);

private:
    void* bytes(std::size_t size);
    unsigned char* newBlock(std::size_t size);

    std::size_t nextBlockSize() const;

    std::size_t expected_;
    std::size_t taken_ = 0;
    std::vector<std::unique_ptr<unsigned char[]>> blocks_;
    unsigned char* next_ = nullptr;
    std::size_t left_ = 0;
};

}  // namespace ovdl::gltf
