// Reading side files out of memory, by the way that a file takes.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "raylume/animation/AnimationDocument.h"
#include "raylume/animation/TableDocument.h"
#include "tests/animation/Tag.h"

class BytesInMemory final : public platform::InputFile {
public:
    explicit BytesInMemory(std::string bytes) : bytes_(std::move(bytes)) {}

    std::size_t read(void* buffer, std::size_t size) override
    {
        const std::size_t count = std::min(size, bytes_.size() - at_);
        std::memcpy(buffer, bytes_.data() + at_, count);
        at_ += count;
        return count;
    }

private:
    const std::string bytes_;
    std::size_t at_ = 0;
};

inline bool readSideFile(const std::string& xml, AnimationTracks& tracks)
{
    TableXmlService service([&] { return std::make_unique<BytesInMemory>(xml); });
    return readAnimation(L"any.glb", tracks, service);
}

/// What a side file gives that is read without an error.
inline AnimationTracks tracksOf(const Tag& root)
{
    AnimationTracks tracks;
    EXPECT_TRUE(readSideFile(root.text(), tracks));
    return tracks;
}

/// What a side file leaves that is read with one.
inline AnimationTracks tracksUntilError(const Tag& root)
{
    AnimationTracks tracks;
    EXPECT_FALSE(readSideFile(root.text(), tracks));
    return tracks;
}

template <class Map>
std::vector<typename Map::key_type> keysOf(const Map& map)
{
    std::vector<typename Map::key_type> keys;
    for (const auto& entry : map) {
        keys.push_back(entry.first);
    }
    return keys;
}

using Names = std::vector<std::wstring>;
using Times = std::vector<double>;
