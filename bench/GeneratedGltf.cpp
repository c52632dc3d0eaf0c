#include "bench/GeneratedGltf.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace bench {
namespace {

struct Grid {
    std::size_t columns;
    std::size_t rows;
    std::size_t vertices() const { return (columns + 1) * (rows + 1); }
};

Grid gridOf(std::size_t triangles)
{
    const auto columns = static_cast<std::size_t>(std::sqrt(static_cast<double>(triangles) / 2));
    return {columns, triangles / 2 / columns};
}

void writeIndices(const Grid& grid, std::vector<std::uint32_t>& indices)
{
    const auto width = static_cast<std::uint32_t>(grid.columns + 1);
    for (std::uint32_t row = 0; row < grid.rows; ++row)
        for (std::uint32_t column = 0; column < grid.columns; ++column) {
            const std::uint32_t a = row * width + column;
            for (std::uint32_t index : {a, a + 1, a + width, a + width, a + 1, a + width + 1})
                indices.push_back(index);
        }
}

struct Vertex {
    float position[3];
    float normal[3];
    float uv[2];
};

// Each part is a wave of its own, so that no two have the same bytes.
std::vector<Vertex> makeVertices(const Grid& grid, std::size_t part)
{
    std::vector<Vertex> vertices;
    for (std::size_t row = 0; row <= grid.rows; ++row)
        for (std::size_t column = 0; column <= grid.columns; ++column) {
            const auto x = static_cast<float>(column) * 0.01f;
            const auto y = static_cast<float>(row) * 0.01f;
            const float z = std::sin(x + static_cast<float>(part)) * std::cos(y);
            vertices.push_back({{x, y, z}, {0, 0, 1}, {x, y}});
        }
    return vertices;
}

std::string number(std::size_t value)
{
    return std::to_string(value);
}

std::string temporaryPath(const std::string& name)
{
    return (std::filesystem::temp_directory_path() / ("raylume-bench-" + name)).string();
}

void appendWord(std::string& bytes, std::uint32_t word)
{
    char raw[4];
    std::memcpy(raw, &word, 4);
    bytes.append(raw, 4);
}

void writeGlb(const std::string& path, std::string json, const std::string& binary)
{
    json.resize((json.size() + 3) / 4 * 4, ' ');
    std::string head("glTF");
    appendWord(head, 2);
    appendWord(head, static_cast<std::uint32_t>(12 + 8 + json.size() + 8 + binary.size()));
    appendWord(head, static_cast<std::uint32_t>(json.size()));
    head += "JSON";
    std::ofstream out(path, std::ios::binary);
    out << head << json;
    std::string chunk;
    appendWord(chunk, static_cast<std::uint32_t>(binary.size()));
    out << chunk << std::string("BIN\0", 4) << binary;
    if (!out.flush())
        std::abort();
}

template <class T>
void appendBytes(std::string& bytes, const std::vector<T>& values)
{
    bytes.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T));
}

struct Document {
    std::string views, accessors, meshes, nodes, roots, binary;
};

std::string comma(const std::string& list)
{
    return list.empty() ? "" : ",";
}

void addView(Document& document, std::size_t offset, std::size_t length, const std::string& more)
{
    document.views += comma(document.views) + "{\"buffer\":0,\"byteOffset\":" + number(offset) +
                      ",\"byteLength\":" + number(length) + more + "}";
}

void addAccessor(Document& document, std::size_t view, std::size_t offset, std::size_t count, int component,
                 const std::string& type)
{
    document.accessors += comma(document.accessors) + "{\"bufferView\":" + number(view) +
                          ",\"byteOffset\":" + number(offset) +
                          ",\"componentType\":" + std::to_string(component) +
                          ",\"count\":" + number(count) + ",\"type\":\"" + type + "\"}";
}

void addMesh(Document& document, const Grid& grid, const std::vector<std::uint32_t>& indices,
             std::size_t part)
{
    const std::vector<Vertex> vertices = makeVertices(grid, part);
    const std::size_t at = document.binary.size();
    appendBytes(document.binary, vertices);
    addView(document, at, vertices.size() * sizeof(Vertex), ",\"byteStride\":32");
    addView(document, document.binary.size(), indices.size() * 4, "");
    appendBytes(document.binary, indices);
    const std::size_t first = part * 4;
    addAccessor(document, part * 2, 0, vertices.size(), 5126, "VEC3");
    addAccessor(document, part * 2, 12, vertices.size(), 5126, "VEC3");
    addAccessor(document, part * 2, 24, vertices.size(), 5126, "VEC2");
    addAccessor(document, part * 2 + 1, 0, indices.size(), 5125, "SCALAR");
    document.meshes += comma(document.meshes) + "{\"name\":\"Part " + number(part) +
                       "\",\"primitives\":[{\"attributes\":{\"POSITION\":" + number(first) +
                       ",\"NORMAL\":" + number(first + 1) + ",\"TEXCOORD_0\":" + number(first + 2) +
                       "},\"indices\":" + number(first + 3) + "}]}";
}

GeneratedGltf finish(const std::string& name, Document& document, const Grid& grid,
                     std::vector<std::uint32_t> indices, std::size_t parts)
{
    GeneratedGltf result;
    result.path = temporaryPath(name);
    result.json = "{\"asset\":{\"version\":\"2.0\"},\"scene\":0,\"scenes\":[{\"nodes\":[" + document.roots +
                  "]}],\"nodes\":[" + document.nodes + "],\"meshes\":[" + document.meshes +
                  "],\"accessors\":[" + document.accessors + "],\"bufferViews\":[" + document.views +
                  "],\"buffers\":[{\"byteLength\":" + number(document.binary.size()) + "}]}";
    writeGlb(result.path, result.json, document.binary);
    result.indices = std::move(indices);
    result.verticesOfPart = grid.vertices();
    result.parts = parts;
    return result;
}

constexpr const char* kLevelNames[] = {"", "Cell", "Station", "Frame", "Joint"};

// Nodes in the order of a depth-first walk; a node's children follow it, so their numbers are known.
void addSubtree(Document& document, std::size_t level, std::size_t& next, std::size_t& leaf)
{
    constexpr std::size_t kFanOut = 10;
    constexpr std::size_t kLevels = 5;
    std::size_t subtree = 0;  // Nodes below a child, itself included.
    for (std::size_t below = level + 1; below <= kLevels; ++below)
        subtree = subtree * kFanOut + 1;
    ++next;
    if (level == kLevels) {
        const double turn = static_cast<double>(leaf % 360) * 0.0087;
        document.nodes += comma(document.nodes) + "{\"name\":\"Bolt " + number(leaf % 100) +
                          "\",\"mesh\":" + number(leaf % 100) + ",\"rotation\":[0,0," +
                          std::to_string(std::sin(turn)) + "," + std::to_string(std::cos(turn)) +
                          "],\"translation\":[" + std::to_string(static_cast<double>(leaf % 317) * 0.013) +
                          "," + std::to_string(static_cast<double>(leaf % 71) * 0.017) + ",0.25]}";
        ++leaf;
        return;
    }
    std::string children;
    for (std::size_t child = 0; child < kFanOut; ++child)
        children += comma(children) + number(next + child * subtree);
    document.nodes += comma(document.nodes) + "{\"name\":\"Subassembly " + number(level) +
                      "\",\"children\":[" + children + "],\"translation\":[0.5,0.25,0.125]}";
    for (std::size_t child = 0; child < kFanOut; ++child)
        addSubtree(document, level + 1, next, leaf);
}

}  // namespace

GeneratedGltf makeGrids(std::size_t parts, std::size_t trianglesOfPart)
{
    const Grid grid = gridOf(trianglesOfPart);
    std::vector<std::uint32_t> indices;
    writeIndices(grid, indices);
    Document document;
    for (std::size_t part = 0; part < parts; ++part) {
        addMesh(document, grid, indices, part);
        document.nodes += comma(document.nodes) + "{\"name\":\"Part " + number(part) +
                          "\",\"mesh\":" + number(part) + ",\"translation\":[" + number(part) + ",0,0]}";
        document.roots += comma(document.roots) + number(part);
    }
    return finish("grids-" + number(parts) + ".glb", document, grid, std::move(indices), parts);
}

GeneratedGltf makeTree()
{
    constexpr std::size_t kParts = 100;
    const Grid grid = gridOf(200);
    std::vector<std::uint32_t> indices;
    writeIndices(grid, indices);
    Document document;
    for (std::size_t part = 0; part < kParts; ++part)
        addMesh(document, grid, indices, part);
    std::size_t next = 0;
    std::size_t leaf = 0;
    constexpr std::size_t kSubtree = 11111;
    for (std::size_t root = 0; root < 10; ++root) {
        document.roots += comma(document.roots) + number(root * kSubtree);
        addSubtree(document, 1, next, leaf);
    }
    return finish("tree.glb", document, grid, std::move(indices), kParts);
}

}  // namespace bench
