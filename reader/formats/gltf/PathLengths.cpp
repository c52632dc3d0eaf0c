#include "reader/formats/gltf/PathLengths.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "reader/formats/gltf/Refusal.h"

namespace ovdl::gltf {
namespace {

// Siblings that are being added up, below a path.
struct Level {
    const std::uint32_t* next;
    const std::uint32_t* end;
    std::uint64_t pathLength;
    std::uint64_t nameLength;
};

// Bytes that are no second or later one of a character.
std::uint64_t characters(std::string_view text)
{
    return static_cast<std::uint64_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

class Totals {
public:
    explicit Totals(const Budget& budget) : budget_(budget) {}

    void add(const NodeRecord& node, std::uint64_t pathLength)
    {
        if (node.mesh != kNone)
            components_ += pathLength;
        if (node.childCount != 0)
            tree_ += pathLength;
        if (components_ > budget_.pathLimit())
            refuse("the component paths are out of proportion to the file");
        if (tree_ > budget_.treePathLimit())
            refuse("the nodes are nested too deep for the paths of all of them");
    }

private:
    const Budget& budget_;
    std::uint64_t components_ = 0;
    std::uint64_t tree_ = 0;
};

}  // namespace

void checkPathLengths(const Records& records, const NodeTree& tree, std::size_t stemLength,
                      const Budget& budget)
{
    // "-", a digit and "@"
    constexpr std::uint64_t kMarks = 3;
    Totals totals(budget);
    const std::vector<std::uint32_t>& top = tree.top();
    std::vector<Level> levels = {{top.data(), top.data() + top.size(), 0, stemLength}};
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next == level.end) {
            levels.pop_back();
            continue;
        }
        const std::uint32_t index = *level.next++;
        if (!tree.leadsToMesh(index))
            continue;
        const NodeRecord& node = records.nodes[index];
        const std::uint64_t name = characters(node.name());
        const std::uint64_t separator = level.pathLength == 0 ? 0 : 1;
        const std::uint64_t path = level.pathLength + separator + name + kMarks + level.nameLength;
        totals.add(node, path);
        const std::uint32_t* first = records.children.data() + node.firstChild;
        if (node.childCount != 0)
            levels.push_back({first, first + node.childCount, path, name});
    }
}

}  // namespace ovdl::gltf
