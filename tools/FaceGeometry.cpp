#include "tools/FaceGeometry.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace tool {
namespace {

constexpr std::uint32_t kNone = 0xFFFFFFFFu;

struct Vertex {
    std::array<float, 8> numbers{};  // position, normal, texture coordinates

    bool sameBits(const Vertex& other) const
    {
        for (std::size_t i = 0; i < numbers.size(); ++i)
            if (std::bit_cast<std::uint32_t>(numbers[i]) != std::bit_cast<std::uint32_t>(other.numbers[i]))
                return false;
        return true;
    }
    std::size_t hash() const
    {
        std::uint64_t sum = 0xCBF29CE484222325u;
        for (const float number : numbers)
            sum = (sum ^ std::bit_cast<std::uint32_t>(number)) * 0x100000001B3u;
        return static_cast<std::size_t>(sum ^ (sum >> 29));
    }
};

/// Finds vertices by their bits: open addressing, at most half full.
class VertexTable {
public:
    explicit VertexTable(std::size_t expected) : slots_(std::bit_ceil(2 * expected + 2), kNone) {}

    std::uint32_t indexOf(const Vertex& vertex)
    {
        if (2 * vertices_.size() >= slots_.size())
            grow();
        std::uint32_t& slot = slotOf(vertex);
        if (slot == kNone) {
            slot = static_cast<std::uint32_t>(vertices_.size());
            vertices_.push_back(vertex);
        }
        return slot;
    }
    const std::vector<Vertex>& vertices() const { return vertices_; }

private:
    std::uint32_t& slotOf(const Vertex& vertex)
    {
        std::size_t place = vertex.hash() & (slots_.size() - 1);
        while (slots_[place] != kNone && !vertices_[slots_[place]].sameBits(vertex))
            place = (place + 1) & (slots_.size() - 1);
        return slots_[place];
    }
    void grow()
    {
        slots_.assign(2 * slots_.size(), kNone);
        for (std::size_t i = 0; i < vertices_.size(); ++i)
            slotOf(vertices_[i]) = static_cast<std::uint32_t>(i);
    }

    std::vector<std::uint32_t> slots_;
    std::vector<Vertex> vertices_;
};

bool allFinite(const float* values, int count)
{
    return std::all_of(values, values + count, [](float value) { return std::isfinite(value); });
}

bool isFlat(const float* normal)
{
    return !allFinite(normal, 3) || (normal[0] == 0 && normal[1] == 0 && normal[2] == 0);
}

double lengthOf(const double* v)
{
    return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

void storeUnit(const double* direction, float* out)
{
    const double length = lengthOf(direction);
    for (int i = 0; i < 3; ++i)
        out[i] = static_cast<float>(direction[i] / length);
}

void storeNormal(const float* normal, float* out)
{
    const double wide[3] = {normal[0], normal[1], normal[2]};
    if (std::abs(lengthOf(wide) - 1) <= 1e-5)
        std::copy_n(normal, 3, out);
    else
        storeUnit(wide, out);
}

// The triangle's own direction; z for one without an area.
void storeFlatNormal(const float* a, const float* b, const float* c, float* out)
{
    double u[3];
    double v[3];
    for (int i = 0; i < 3; ++i) {
        u[i] = double(b[i]) - a[i];
        v[i] = double(c[i]) - a[i];
    }
    const double across[3] = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                              u[0] * v[1] - u[1] * v[0]};
    const double upwards[3] = {0, 0, 1};
    storeUnit(lengthOf(across) > 0 ? across : upwards, out);
}

/// One face on its way from strips to triangles.
class Triangulation {
public:
    explicit Triangulation(const dlFace& face)
        : face_(face), known_(std::max(face.vertexCount, 0), kNone), table_(known_.size() / 2)
    {
    }

    FaceGeometry run()
    {
        if (face_.vertices && face_.stripStarts && face_.stripLengths)
            for (std::int32_t strip = 0; strip < face_.stripCount; ++strip)
                addStrip(face_.stripStarts[strip], face_.stripLengths[strip]);
        unpackVertices();
        return std::move(result_);
    }

private:
    const float* position(std::int64_t vertex) const { return face_.vertices + 6 * vertex; }
    const float* normal(std::int64_t vertex) const { return face_.vertices + 6 * vertex + 3; }

    void addStrip(std::int64_t start, std::int64_t length)
    {
        if (start < 0)
            return;
        const std::int64_t end = std::min<std::int64_t>(start + length, face_.vertexCount);
        for (std::int64_t i = start; i + 2 < end; ++i) {
            const bool turned = (i - start) % 2 != 0;
            addTriangle({turned ? i + 1 : i, turned ? i : i + 1, i + 2});
        }
    }

    void addTriangle(const std::array<std::int64_t, 3>& corners)
    {
        for (const auto corner : corners)
            if (!allFinite(position(corner), 3)) {
                ++result_.trianglesWithoutPlace;
                return;
            }
        std::array<std::uint32_t, 3> indices;
        for (int i = 0; i < 3; ++i)
            indices[i] = isFlat(normal(corners[i])) ? flatVertex(corners, i) : sharedVertex(corners[i]);
        if (indices[0] == indices[1] || indices[1] == indices[2] || indices[0] == indices[2])
            return;
        result_.indices.insert(result_.indices.end(), indices.begin(), indices.end());
    }

    Vertex vertexWithoutNormal(std::int64_t vertex) const
    {
        Vertex made;
        std::copy_n(position(vertex), 3, made.numbers.data());
        if (face_.uvs)
            for (int i = 0; i < 2; ++i) {
                const float value = face_.uvs[2 * vertex + i];
                made.numbers[6 + i] = std::isfinite(value) ? value : 0.0f;
            }
        return made;
    }

    std::uint32_t sharedVertex(std::int64_t vertex)
    {
        if (known_[vertex] == kNone) {
            Vertex made = vertexWithoutNormal(vertex);
            storeNormal(normal(vertex), made.numbers.data() + 3);
            known_[vertex] = table_.indexOf(made);
        }
        return known_[vertex];
    }

    std::uint32_t flatVertex(const std::array<std::int64_t, 3>& corners, int i)
    {
        Vertex made = vertexWithoutNormal(corners[i]);
        storeFlatNormal(position(corners[0]), position(corners[1]), position(corners[2]),
                        made.numbers.data() + 3);
        return table_.indexOf(made);
    }

    // A vertex whose every triangle went stays behind in the table; only those in use come out.
    void unpackVertices()
    {
        std::vector<std::uint32_t> places(table_.vertices().size(), kNone);
        for (std::uint32_t& index : result_.indices) {
            if (places[index] == kNone) {
                places[index] = static_cast<std::uint32_t>(result_.vertexCount());
                append(table_.vertices()[index]);
            }
            index = places[index];
        }
    }

    void append(const Vertex& vertex)
    {
        const float* numbers = vertex.numbers.data();
        result_.positions.insert(result_.positions.end(), numbers, numbers + 3);
        result_.normals.insert(result_.normals.end(), numbers + 3, numbers + 6);
        if (face_.uvs)
            result_.uvs.insert(result_.uvs.end(), numbers + 6, numbers + 8);
    }

    const dlFace& face_;
    std::vector<std::uint32_t> known_;  // by strip vertex; those with a normal of their own only
    VertexTable table_;
    FaceGeometry result_;
};

}  // namespace

FaceGeometry triangulate(const dlFace& face)
{
    return Triangulation(face).run();
}

}  // namespace tool
