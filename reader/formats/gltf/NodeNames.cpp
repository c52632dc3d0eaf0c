#include "reader/formats/gltf/NodeNames.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <random>

namespace ovdl::gltf {
namespace {

bool cuts(char character)
{
    return character == '/' || character == '@';
}

}  // namespace

NodeNames::NodeNames(Records& records)
{
    for (MeshRecord& mesh : records.meshes)
        mesh.name = cleaned(mesh.name);
    for (std::size_t i = 0; i < records.nodes.size(); ++i) {
        NodeRecord& node = records.nodes[i];
        if (node.nameLength != 0)
            node.setName(cleaned(node.name()));
        else if (node.mesh != kNone && !records.meshes[static_cast<std::size_t>(node.mesh)].name.empty())
            node.setName(records.meshes[static_cast<std::size_t>(node.mesh)].name);
        else
            node.setName(made_.emplace_back("node" + std::to_string(i)));
    }
}

std::string_view NodeNames::cleaned(std::string_view name)
{
    if (std::none_of(name.begin(), name.end(), cuts))
        return name;
    std::string& result = made_.emplace_back(name);
    std::replace_if(result.begin(), result.end(), cuts, '_');
    return result;
}

// The seed is another in each process, so that nobody can write a document whose names all collide.
SiblingNumbers::SiblingNumbers(const Records& records)
    : records_(records), numbers_(records.nodes.size()), seed_(std::random_device{}() | 1u)
{
}

std::uint64_t SiblingNumbers::hash(std::string_view name) const
{
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;
    std::uint64_t state = seed_ * kFactor + name.size();
    for (std::size_t i = 0; i < name.size(); i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, name.data() + i, std::min<std::size_t>(8, name.size() - i));
        state = (std::rotl(state, 27) ^ word) * kFactor;
        state ^= state >> 29;
    }
    return state ^ state >> 32;
}

SiblingNumbers::Slot& SiblingNumbers::slotOf(std::string_view name)
{
    for (std::size_t i = hash(name) & mask_;; i = (i + 1) & mask_) {
        Slot& slot = slots_[i];
        if (slot.round != round_ || slot.name == name)
            return slot;
    }
}

void SiblingNumbers::assign(const std::uint32_t* nodes, std::size_t count)
{
    if (2 * count > slots_.size()) {
        slots_.assign(std::bit_ceil(2 * count), Slot{});
        mask_ = slots_.size() - 1;
        round_ = 0;
    }
    ++round_;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string_view name = records_.nodes[nodes[i]].name();
        Slot& slot = slotOf(name);
        if (slot.round != round_)
            slot = {name, round_, 0};
        numbers_[nodes[i]] = ++slot.count;
    }
}

}  // namespace ovdl::gltf
