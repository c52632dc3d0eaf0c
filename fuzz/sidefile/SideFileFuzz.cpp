// Any bytes as a side file, through all that reads one; ends the process where a promise of the
// reader is broken.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "raylume/animation/AnimationDocument.h"
#include "raylume/animation/TableDocument.h"
#include "raylume/platform/Errors.h"

namespace {

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

class Bytes final : public platform::InputFile {
public:
    Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    std::size_t read(void* buffer, std::size_t size) override
    {
        const std::size_t count = std::min(size, size_ - at_);
        if (count > 0) {
            std::memcpy(buffer, data_ + at_, count);
        }
        at_ += count;
        return count;
    }

private:
    const std::uint8_t* const data_;
    const std::size_t size_;
    std::size_t at_ = 0;
};

template <class Key>
void checkOrder(const std::map<double, Key>& track)
{
    for (const auto& [time, key] : track) {
        require(std::isfinite(time));
    }
}

void checkMatrix(const dlTransformKey& key)
{
    for (const double element : key.matrix) {
        require(std::isfinite(element));
    }
}

void check(const dlAnimTrackSet& set)
{
    checkOrder(set.visualTransforms);
    checkOrder(set.transforms);
    checkOrder(set.viewKeys);
    checkOrder(set.visualStates);
    for (const auto& [time, key] : set.transforms) {
        checkMatrix(key);
    }
    for (const auto& [id, track] : set.lightTracks) {
        checkOrder(track);
        for (const auto& [time, key] : track) {
            require(key.lightId == id && std::isfinite(key.sunTime));
        }
    }
}

std::size_t keyCount(const AnimationTracks& tracks)
{
    std::size_t count = 0;
    for (const auto& [name, set] : tracks) {
        count += set.visualTransforms.size() + set.transforms.size() + set.viewKeys.size() +
                 set.visualStates.size();
        for (const auto& light : set.lightTracks) {
            count += light.second.size();
        }
    }
    return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    TableXmlService service([=] { return std::make_unique<Bytes>(data, size); });
    AnimationTracks tracks;
    bool isWhole = true;
    try {
        readAnimationDocument(L"", tracks, service);
    } catch (const platform::ComError& error) {
        isWhole = false;
        require(error.code() == platform::kErrorTypeMismatch || error.code() == platform::kErrorOverflow ||
                error.code() == platform::kErrorOutOfMemory);
    }
    for (const auto& entry : tracks) {
        check(entry.second);
    }
    require(keyCount(tracks) <= SideFileReading::kFree + size / 8);
    // Reading again gives the same answer, and adds nothing new.
    const AnimationTracks before = tracks;
    require(readAnimation(L"", tracks, service) == isWhole);
    require(tracks.size() == before.size() && keyCount(tracks) == keyCount(before));
    return 0;
}
