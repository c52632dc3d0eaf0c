#include "tools/DecalGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace tool {
namespace {

constexpr std::uint32_t kNoMapping = 1;
constexpr std::uint32_t kNone = 0xFFFFFFFFu;

struct Vector {
    double x = 0, y = 0, z = 0;
};

Vector vectorOf(const double* v)
{
    return {v[0], v[1], v[2]};
}

Vector cross(const Vector& a, const Vector& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double dot(const Vector& a, const Vector& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

// None for a zero vector and for one that is not finite.
std::optional<Vector> unit(const Vector& v)
{
    const double length = std::sqrt(dot(v, v));
    if (!(length > 0) || !std::isfinite(length))
        return std::nullopt;
    return Vector{v.x / length, v.y / length, v.z / length};
}

bool isPlaced(const dlTexture& texture)
{
    const float numbers[] = {texture.angle,  texture.scaleU,    texture.scaleV,    texture.transU,
                             texture.transV, texture.origin[0], texture.origin[1], texture.origin[2]};
    return texture.mappingType != kNoMapping && texture.scaleU != 0 && texture.scaleV != 0 &&
           std::all_of(std::begin(numbers), std::end(numbers), [](float n) { return std::isfinite(n); });
}

bool isZero(const float* v)
{
    return v[0] == 0 && v[1] == 0 && v[2] == 0;
}

Vector at(const std::vector<float>& numbers, std::uint32_t vertex)
{
    const float* p = numbers.data() + 3 * static_cast<std::size_t>(vertex);
    return {p[0], p[1], p[2]};
}

// By the normals of the vertices, since documents do not wind all triangles alike, but weighted by area:
// where a face is curved it has more vertices.
Vector meanNormal(const FaceGeometry& face)
{
    Vector sum;
    for (std::size_t i = 0; i + 2 < face.indices.size(); i += 3) {
        const std::uint32_t* corners = face.indices.data() + i;
        const Vector a = at(face.positions, corners[0]);
        const Vector b = at(face.positions, corners[1]);
        const Vector c = at(face.positions, corners[2]);
        const Vector across = cross({b.x - a.x, b.y - a.y, b.z - a.z}, {c.x - a.x, c.y - a.y, c.z - a.z});
        const double area = std::sqrt(dot(across, across));
        for (int corner = 0; corner < 3; ++corner) {
            const Vector normal = at(face.normals, corners[corner]);
            sum = {sum.x + area * normal.x, sum.y + area * normal.y, sum.z + area * normal.z};
        }
    }
    return sum;
}

struct Axes {
    double u[3];
    double v[3];
};

// The frames of the box projection; on a tie the earlier one.
const Axes& axesFor(const Vector& normal)
{
    static constexpr Axes kFrames[6] = {{{0, 1, 0}, {0, 0, 1}}, {{-1, 0, 0}, {0, 0, 1}},
                                        {{1, 0, 0}, {0, 1, 0}}, {{0, -1, 0}, {0, 0, 1}},
                                        {{1, 0, 0}, {0, 0, 1}}, {{1, 0, 0}, {0, -1, 0}}};
    const double along[6] = {normal.x, normal.y, normal.z, -normal.x, -normal.y, -normal.z};
    return kFrames[std::max_element(along, along + 6) - along];
}

/// A vertex on its way through the four sides of the image.
struct Corner {
    std::array<double, 8> numbers{};  // position, normal, texture coordinates
    std::uint32_t source = kNone;     // of the face; kNone for one that a cut made
};

using Polygon = std::vector<Corner>;

Corner between(const Corner& a, const Corner& b, double share)
{
    Corner made;
    for (std::size_t i = 0; i < made.numbers.size(); ++i)
        made.numbers[i] = a.numbers[i] + share * (b.numbers[i] - a.numbers[i]);
    return made;
}

struct Side {
    std::size_t coordinate;
    double sign;
    double bound;

    /// Not negative within.
    double inside(const Corner& corner) const { return sign * (corner.numbers[coordinate] - bound); }
};
constexpr Side kSides[] = {{6, 1, 0}, {6, -1, 1}, {7, 1, 0}, {7, -1, 1}};

// One side of the cut of a convex polygon by a convex one (Sutherland and Hodgman, 1974).
Polygon cutAt(const Side& side, const Polygon& polygon)
{
    Polygon result;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Corner& from = polygon[i];
        const Corner& to = polygon[(i + 1) % polygon.size()];
        const double a = side.inside(from);
        const double b = side.inside(to);
        if (a >= 0)
            result.push_back(from);
        if ((a > 0 && b < 0) || (a < 0 && b > 0)) {
            result.push_back(between(from, to, a / (a - b)));
            result.back().numbers[side.coordinate] = side.bound;
        }
    }
    return result;
}

class Cutting {
public:
    Cutting(const FaceGeometry& face, const DecalProjection& projection, float lift)
        : face_(face), projection_(projection), lift_(lift), places_(face.vertexCount(), kNone)
    {
    }

    FaceGeometry run()
    {
        for (std::size_t i = 0; i + 2 < face_.indices.size(); i += 3)
            addTriangle(face_.indices.data() + i);
        return std::move(result_);
    }

private:
    Corner cornerOf(std::uint32_t vertex) const
    {
        Corner corner;
        corner.source = vertex;
        const std::size_t at = 3 * static_cast<std::size_t>(vertex);
        std::copy_n(face_.positions.data() + at, 3, corner.numbers.data());
        std::copy_n(face_.normals.data() + at, 3, corner.numbers.data() + 3);
        projection_.textureCoordinates(face_.positions.data() + at, corner.numbers.data() + 6);
        return corner;
    }

    void addTriangle(const std::uint32_t* vertices)
    {
        Polygon polygon;
        for (int i = 0; i < 3; ++i)
            polygon.push_back(cornerOf(vertices[i]));
        for (const Side& side : kSides)
            polygon = cutAt(side, polygon);
        if (polygon.size() < 3)
            return;
        std::vector<std::uint32_t> indices;
        for (const Corner& corner : polygon)
            indices.push_back(placeOf(corner));
        for (std::size_t i = 2; i < indices.size(); ++i)
            result_.indices.insert(result_.indices.end(), {indices[0], indices[i - 1], indices[i]});
    }

    std::uint32_t placeOf(const Corner& corner)
    {
        if (corner.source == kNone)
            return append(corner);
        std::uint32_t& place = places_[corner.source];
        if (place == kNone)
            place = append(corner);
        return place;
    }

    std::uint32_t append(const Corner& corner)
    {
        const double* n = corner.numbers.data();
        const auto normal = unit(vectorOf(n + 3)).value_or(Vector{0, 0, 1});
        const double direction[3] = {normal.x, normal.y, normal.z};
        for (int i = 0; i < 3; ++i) {
            result_.positions.push_back(finite(n[i] + double(lift_) * direction[i]));
            result_.normals.push_back(static_cast<float>(direction[i]));
        }
        for (int i = 6; i < 8; ++i)
            result_.uvs.push_back(static_cast<float>(n[i]));
        return static_cast<std::uint32_t>(result_.vertexCount()) - 1;
    }

    static float finite(double value)
    {
        constexpr double kMost = std::numeric_limits<float>::max();
        return static_cast<float>(std::clamp(value, -kMost, kMost));
    }

    const FaceGeometry& face_;
    const DecalProjection& projection_;
    const float lift_;
    std::vector<std::uint32_t> places_;  // by vertex of the face
    FaceGeometry result_;
};

}  // namespace

std::optional<DecalProjection> DecalProjection::in(const dlTexture& texture, const double* u,
                                                   const double* v)
{
    const auto a = unit(vectorOf(u));
    const auto n = a ? unit(cross(*a, vectorOf(v))) : std::nullopt;
    const auto b = n ? unit(cross(*n, *a)) : std::nullopt;
    if (!b)
        return std::nullopt;
    const double c = std::cos(double(texture.angle));
    const double s = std::sin(double(texture.angle));
    const double turns[2][2] = {{c, s}, {-s, c}};
    const double scales[2] = {texture.scaleU, texture.scaleV};
    const Vector origin{texture.origin[0], texture.origin[1], texture.origin[2]};
    DecalProjection result;
    for (int i = 0; i < 2; ++i) {
        const double x = scales[i] * turns[i][0];
        const double y = scales[i] * turns[i][1];
        const Vector row{x * a->x + y * b->x, x * a->y + y * b->y, x * a->z + y * b->z};
        const double numbers[3] = {row.x, row.y, row.z};
        std::copy_n(numbers, 3, result.rows_[i]);
        result.offsets_[i] =
            x * texture.transU + y * texture.transV - dot(row, origin) + (scales[i] < 0 ? 1 : 0);
    }
    return result;
}

std::optional<DecalProjection> DecalProjection::of(const dlTexture& texture)
{
    if (!isPlaced(texture))
        return std::nullopt;
    const double u[3] = {texture.uDirection[0], texture.uDirection[1], texture.uDirection[2]};
    const double v[3] = {texture.vDirection[0], texture.vDirection[1], texture.vDirection[2]};
    return in(texture, u, v);
}

std::optional<DecalProjection> DecalProjection::of(const dlTexture& texture, const FaceGeometry& face)
{
    if (!isZero(texture.uDirection) || !isZero(texture.vDirection))
        return of(texture);
    const Axes& axes = axesFor(meanNormal(face));
    return isPlaced(texture) ? in(texture, axes.u, axes.v) : std::nullopt;
}

void DecalProjection::textureCoordinates(const float* point, double* uv) const
{
    for (int i = 0; i < 2; ++i)
        uv[i] = rows_[i][0] * point[0] + rows_[i][1] * point[1] + rows_[i][2] * point[2] + offsets_[i];
    uv[1] = 1 - uv[1];
}

FaceGeometry decalGeometry(const FaceGeometry& face, const DecalProjection& projection, float lift)
{
    return Cutting(face, projection, lift).run();
}

float decalLift(const FaceGeometry& face, int layer)
{
    if (face.positions.empty())
        return 0;
    double diagonal = 0;
    double farthest = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        double low = face.positions[axis];
        double high = low;
        for (std::size_t i = axis; i < face.positions.size(); i += 3) {
            low = std::min<double>(low, face.positions[i]);
            high = std::max<double>(high, face.positions[i]);
        }
        diagonal += (high - low) * (high - low);
        farthest = std::max({farthest, std::abs(low), std::abs(high)});
    }
    constexpr double kShare = 1e-4;
    constexpr double kRounding = 4 * std::numeric_limits<float>::epsilon();
    const double lift = (layer + 1) * std::max(kShare * std::sqrt(diagonal), kRounding * farthest);
    return static_cast<float>(std::min<double>(lift, std::numeric_limits<float>::max()));
}

}  // namespace tool
