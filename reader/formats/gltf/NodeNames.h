// Names of nodes as component paths have them.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "reader/ComponentNames.h"
#include "reader/formats/gltf/Records.h"

namespace ovdl::gltf {

/// Gives every node the name under which it goes, cleaned: its own, else its mesh's, else
/// "node<index>". Owns the texts that had to be made.
class NodeNames {
public:
    explicit NodeNames(Records& records);

private:
    std::string_view cleaned(std::string_view name);

    std::deque<std::string> made_;
};

/// Numbers siblings of one name from 1, in their order. Keeps its table from one list of siblings to
/// the next.
class SiblingNumbers {
public:
    explicit SiblingNumbers(const Records& records);

    /// Writes the number of each of `nodes` into numbers()[node].
    void assign(const std::uint32_t* nodes, std::size_t count);
    std::uint32_t operator[](std::uint32_t node) const { return numbers_[node]; }

private:
    struct Slot {
        std::string_view name;
        std::uint32_t round = 0;  ///< The list that the slot belongs to.
        std::uint32_t count = 0;
    };

    std::uint64_t hash(std::string_view name) const;
    Slot& slotOf(std::string_view name);

    const Records& records_;
    std::vector<std::uint32_t> numbers_;
    std::vector<Slot> slots_;
    std::size_t mask_ = 0;
    std::uint32_t round_ = 0;
    std::uint64_t seed_;
};

}  // namespace ovdl::gltf
