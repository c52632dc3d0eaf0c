// glTF documents for the benchmarks, written on demand into a folder for temporary files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// What a generated file holds, for the peers that are timed beside the load.
struct GeneratedGltf {
    std::string path;
    std::string json;  ///< The JSON chunk.
    /// The index list of one part; every part has the same.
    std::vector<std::uint32_t> indices;
    std::size_t verticesOfPart = 0;
    std::size_t parts = 0;
};

/// `parts` regular grids of `trianglesOfPart` triangles each: indexed triangle lists, 32-bit indices,
/// shared vertices with position, normal and texture coordinates; one node a part.
GeneratedGltf makeGrids(std::size_t parts, std::size_t trianglesOfPart);

/// 100 parts of 200 triangles, and 100,000 nodes that place them in a tree of five levels with a
/// fan-out of 10.
GeneratedGltf makeTree();

}  // namespace bench
