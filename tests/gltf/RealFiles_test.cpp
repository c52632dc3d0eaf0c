// Documents that nobody here wrote: what comes of each, beside what a plain walk over the JSON finds.
#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <optional>

#include "tests/gltf/GltfBuilder.h"
#include "tests/gltf/GltfReading.h"

namespace gltf_tests {
namespace {

using Point = std::array<double, 3>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Box {
    Point low = {kInfinity, kInfinity, kInfinity};
    Point high = {-kInfinity, -kInfinity, -kInfinity};

    void add(const Point& point)
    {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], point[axis]);
            high[axis] = std::max(high[axis], point[axis]);
        }
    }
};

struct Summary {
    long instances = 0;
    long parts = 0;
    long faces = 0;
    long triangles = 0;
    Box box;
};

// ------------------------------------------------------------------------------ an independent reader

using Matrix = std::array<double, 16>;

Matrix product(const Matrix& a, const Matrix& b)
{
    Matrix result{};
    for (std::size_t column = 0; column < 4; ++column)
        for (std::size_t row = 0; row < 4; ++row)
            for (std::size_t k = 0; k < 4; ++k)
                result[4 * column + row] += a[4 * k + row] * b[4 * column + k];
    return result;
}

Point transformed(const Matrix& m, const Point& p)
{
    Point result{};
    for (std::size_t row = 0; row < 3; ++row)
        result[row] = m[row] * p[0] + m[4 + row] * p[1] + m[8 + row] * p[2] + m[12 + row];
    return result;
}

Matrix matrixOf(const Json& node)
{
    if (node.contains("matrix"))
        return node["matrix"].get<Matrix>();
    const auto t = node.value("translation", std::vector<double>{0, 0, 0});
    const auto q = node.value("rotation", std::vector<double>{0, 0, 0, 1});
    const auto s = node.value("scale", std::vector<double>{1, 1, 1});
    const double n = 2 / (q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    const double x = q[0];
    const double y = q[1];
    const double z = q[2];
    const double w = q[3];
    return {s[0] * (1 - n * (y * y + z * z)),
            s[0] * n * (x * y + z * w),
            s[0] * n * (x * z - y * w),
            0,
            s[1] * n * (x * y - z * w),
            s[1] * (1 - n * (x * x + z * z)),
            s[1] * n * (y * z + x * w),
            0,
            s[2] * n * (x * z + y * w),
            s[2] * n * (y * z - x * w),
            s[2] * (1 - n * (x * x + y * y)),
            0,
            t[0],
            t[1],
            t[2],
            1};
}

std::string contentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("missing " + path.string());
    return {std::istreambuf_iterator<char>(file), {}};
}

class PlainReader {
public:
    explicit PlainReader(const std::filesystem::path& path)
    {
        const std::string content = contentOf(path);
        std::string text = content;
        std::string binary;
        if (content.substr(0, 4) == "glTF") {
            const std::size_t length = word(content, 12);
            text = content.substr(20, length);
            if (content.size() > 28 + length)
                binary = content.substr(28 + length);
        }
        json_ = Json::parse(text);
        for (const Json& buffer : json_.value("buffers", Json::array()))
            buffers_.push_back(bytesOf(buffer, path.parent_path(), binary));
    }

    Summary summary()
    {
        Matrix identity{};
        identity[0] = identity[5] = identity[10] = identity[15] = 1;
        for (const std::size_t root : roots())
            visit(root, identity);
        result_.parts = static_cast<long>(meshes_.size());
        for (const auto& mesh : meshes_)
            count(mesh.first);
        return result_;
    }

private:
    static std::size_t word(const std::string& bytes, std::size_t at)
    {
        std::uint32_t value = 0;
        std::memcpy(&value, &bytes.at(at), 4);
        return value;
    }

    static std::string bytesOf(const Json& buffer, const std::filesystem::path& folder,
                               const std::string& binary)
    {
        if (!buffer.contains("uri"))
            return binary;
        const std::string uri = buffer["uri"];
        if (uri.substr(0, 5) != "data:")
            return contentOf(folder / uri);
        std::string result;
        unsigned bits = 0;
        int held = 0;
        const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        for (std::size_t i = uri.find(',') + 1; i < uri.size() && uri[i] != '='; ++i) {
            bits = bits << 6 | static_cast<unsigned>(digits.find(uri[i]));
            held += 6;
            if (held >= 8)
                result += static_cast<char>(bits >> (held -= 8));
        }
        return result;
    }

    std::vector<std::size_t> roots() const
    {
        if (json_.contains("scene"))
            return json_["scenes"]
                .at(json_["scene"].get<std::size_t>())
                .value("nodes", std::vector<std::size_t>());
        std::set<std::size_t> below;
        for (const Json& node : json_["nodes"])
            for (const std::size_t child : node.value("children", std::vector<std::size_t>()))
                below.insert(child);
        std::vector<std::size_t> result;
        for (std::size_t i = 0; i < json_["nodes"].size(); ++i)
            if (below.count(i) == 0)
                result.push_back(i);
        return result;
    }

    void visit(std::size_t index, const Matrix& above)
    {
        const Json& node = json_["nodes"].at(index);
        const Matrix world = product(above, matrixOf(node));
        if (node.contains("mesh")) {
            ++result_.instances;
            for (const Point& point : pointsOf(node["mesh"]))
                result_.box.add(transformed(world, point));
        }
        for (const std::size_t child : node.value("children", std::vector<std::size_t>()))
            visit(child, world);
    }

    std::string element(const Json& accessor, std::size_t size, std::size_t index) const
    {
        const Json& view = json_["bufferViews"].at(accessor.at("bufferView").get<std::size_t>());
        const std::size_t stride = view.value("byteStride", size);
        const std::size_t at = view.value("byteOffset", std::size_t(0)) +
                               accessor.value("byteOffset", std::size_t(0)) + index * stride;
        return buffers_.at(view["buffer"]).substr(at, size);
    }

    std::vector<std::size_t> indicesOf(const Json& primitive) const
    {
        std::vector<std::size_t> result;
        if (!primitive.contains("indices")) {
            const Json& positions =
                json_["accessors"].at(primitive["attributes"]["POSITION"].get<std::size_t>());
            for (std::size_t i = 0; i < positions["count"]; ++i)
                result.push_back(i);
            return result;
        }
        const Json& accessor = json_["accessors"].at(primitive["indices"].get<std::size_t>());
        const int type = accessor["componentType"];
        const std::size_t size = type == kUint32 ? 4 : type == kUint16 ? 2 : 1;
        for (std::size_t i = 0; i < accessor["count"]; ++i) {
            std::uint32_t value = 0;
            std::memcpy(&value, element(accessor, size, i).data(), size);
            result.push_back(value);
        }
        return result;
    }

    static std::vector<std::array<std::size_t, 3>> trianglesOf(int mode, const std::vector<std::size_t>& i)
    {
        std::vector<std::array<std::size_t, 3>> result;
        for (std::size_t k = 0; k + 2 < i.size(); ++k) {
            std::array<std::size_t, 3> t = {i[k], i[k + 1], i[k + 2]};
            if (mode == 6)
                t[0] = i[0];
            if ((mode != 4 || k % 3 == 0) && t[0] != t[1] && t[1] != t[2] && t[0] != t[2])
                result.push_back(t);
        }
        return result;
    }

    // The points of a mesh's triangles.
    const std::vector<Point>& pointsOf(std::size_t mesh)
    {
        const auto found = meshes_.find(mesh);
        if (found != meshes_.end())
            return found->second;
        std::vector<Point>& points = meshes_[mesh];
        for (const Json& primitive : json_["meshes"].at(mesh)["primitives"]) {
            const int mode = primitive.value("mode", 4);
            if (mode < 4)
                continue;
            const Json& positions =
                json_["accessors"].at(primitive["attributes"]["POSITION"].get<std::size_t>());
            for (const auto& triangle : trianglesOf(mode, indicesOf(primitive)))
                for (const std::size_t corner : triangle) {
                    float xyz[3];
                    std::memcpy(xyz, element(positions, 12, corner).data(), 12);
                    points.push_back({xyz[0], xyz[1], xyz[2]});
                }
        }
        return points;
    }

    void count(std::size_t mesh)
    {
        for (const Json& primitive : json_["meshes"].at(mesh)["primitives"]) {
            const int mode = primitive.value("mode", 4);
            if (mode < 4)
                continue;
            ++result_.faces;
            result_.triangles += static_cast<long>(trianglesOf(mode, indicesOf(primitive)).size());
        }
    }

    Json json_;
    std::vector<std::string> buffers_;
    std::map<std::size_t, std::vector<Point>> meshes_;
    Summary result_;
};

// ------------------------------------------------------------------------------------ what was read

void addInstance(uoTempPartTessData_c& part, const mgXform_c& xform, Summary& summary)
{
    Matrix world;
    xform.getGLData(world.data());
    ++summary.instances;
    const auto& faces = part.bodies.at(0)->faces;
    for (long long f = 0; f < faces.count; ++f)
        for (long long v = 0; v < faces.at(f)->points.count; v += 3) {
            const float* p = faces.at(f)->points.data + v;
            summary.box.add(transformed(world, {p[0], p[1], p[2]}));
        }
}

Summary summaryOf(ovdl::ReadDocument& document)
{
    Summary result;
    std::set<uoTempPartTessData_c*> parts;
    if (document.part()) {
        parts.insert(document.part()->tessData);
        addInstance(*document.part()->tessData, mgXform_c(), result);
    }
    for (long long i = 0; document.assembly() && i < document.assembly()->components.count; ++i) {
        const uoTempAssemblySHDData_c& component = *document.assembly()->components.at(i);
        parts.insert(component.tessData);
        addInstance(*component.tessData, component.xform, result);
    }
    result.parts = static_cast<long>(parts.size());
    for (uoTempPartTessData_c* part : parts) {
        const auto& faces = part->bodies.at(0)->faces;
        result.faces += static_cast<long>(faces.count);
        for (long long f = 0; f < faces.count; ++f)
            result.triangles += triangleCount(*faces.at(f));
    }
    return result;
}

// -------------------------------------------------------------------------------------------- the table

struct FileCase {
    const char* file;
    bool isPart;
    long instances;
    long parts;
    long faces;
    long triangles;
    Point low;
    Point high;
};
const double kI = kInfinity;
const FileCase kOpened[] = {
    {"2CylinderEngine-glTF-Binary/2CylinderEngine.glb",
     false,
     67,
     29,
     34,
     65317,
     {-371.6923, -180.9716, -140},
     {371.6922, 92.04156, 128}},
    {"BoxBadNormals-glTF-Binary/BoxBadNormals.glb",
     false,
     1,
     1,
     1,
     12,
     {-0.5, -0.5, -0.5},
     {0.5, 0.5, 0.5}},
    {"BoxTexcoords-glTF/boxTexcoords.gltf", true, 1, 1, 1, 12, {-1, -1, -1}, {1, 1, 1}},
    {"BoxTextured-glTF-Binary/BoxTextured.glb", false, 1, 1, 1, 12, {-0.5, -0.5, -0.5}, {0.5, 0.5, 0.5}},
    {"BoxTextured-glTF-Embedded/BoxTextured.gltf", false, 1, 1, 1, 12, {-0.5, -0.5, -0.5}, {0.5, 0.5, 0.5}},
    {"BoxTextured-glTF-pbrSpecularGlossiness/BoxTextured.gltf",
     false,
     1,
     1,
     1,
     12,
     {-0.5, -0.5, -0.5},
     {0.5, 0.5, 0.5}},
    {"BoxTextured-glTF/BoxTextured.gltf", false, 1, 1, 1, 12, {-0.5, -0.5, -0.5}, {0.5, 0.5, 0.5}},
    {"BoxWithInfinites-glTF-Binary/BoxWithInfinites.glb",
     false,
     1,
     1,
     1,
     12,
     {-kI, kI, kI},
     {kI, -kI, -kI}},
    {"ClearCoat-glTF/ClearCoatTest.gltf",
     false,
     27,
     27,
     27,
     37116,
     {-7.357803, -6.25, -0.06000001},
     {3.1, 6.854517, 1.05}},
    {"TestNoRootNode/SceneWithoutNodes.gltf", false, 0, 0, 0, 0, {kI, kI, kI}, {-kI, -kI, -kI}},
    {"cameras/Cameras.gltf", false, 1, 1, 1, 2, {0, 0, -0.7075903}, {1, 0.7066229, 0}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_00.gltf",
     true,
     1,
     1,
     0,
     0,
     {kI, kI, kI},
     {-kI, -kI, -kI}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_01.gltf",
     true,
     1,
     1,
     0,
     0,
     {kI, kI, kI},
     {-kI, -kI, -kI}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_02.gltf",
     true,
     1,
     1,
     0,
     0,
     {kI, kI, kI},
     {-kI, -kI, -kI}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_03.gltf",
     true,
     1,
     1,
     0,
     0,
     {kI, kI, kI},
     {-kI, -kI, -kI}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_04.gltf",
     true,
     1,
     1,
     1,
     2,
     {-0.5, -0.5, 0},
     {0.5, 0.5, 0}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_05.gltf",
     true,
     1,
     1,
     1,
     2,
     {-0.5, -0.5, 0},
     {0.5, 0.5, 0}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_06.gltf",
     true,
     1,
     1,
     1,
     2,
     {-0.5, -0.5, 0},
     {0.5, 0.5, 0}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_07.gltf",
     true,
     1,
     1,
     0,
     0,
     {kI, kI, kI},
     {-kI, -kI, -kI}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_08.gltf",
     true,
     1,
     1,
     0,
     0,
     {kI, kI, kI},
     {-kI, -kI, -kI}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_09.gltf",
     true,
     1,
     1,
     0,
     0,
     {kI, kI, kI},
     {-kI, -kI, -kI}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_10.gltf",
     true,
     1,
     1,
     0,
     0,
     {kI, kI, kI},
     {-kI, -kI, -kI}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_11.gltf",
     true,
     1,
     1,
     1,
     2,
     {-0.5, -0.5, 0},
     {0.5, 0.5, 0}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_12.gltf",
     true,
     1,
     1,
     1,
     2,
     {-0.5, -0.5, 0},
     {0.5, 0.5, 0}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_13.gltf",
     true,
     1,
     1,
     1,
     2,
     {-0.5, -0.5, 0},
     {0.5, 0.5, 0}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_14.gltf",
     true,
     1,
     1,
     1,
     2,
     {-0.5, -0.5, 0},
     {0.5, 0.5, 0}},
    {"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_15.gltf",
     true,
     1,
     1,
     1,
     2,
     {-0.5, -0.5, 0},
     {0.5, 0.5, 0}},
    {"glTF-Sample-Models/AnimatedMorphCube-glTF/AnimatedMorphCube.gltf",
     false,
     1,
     1,
     1,
     12,
     {-1, -1, -1},
     {1, 1, 1}},
    {"issue_3269/texcoord_crash.gltf",
     false,
     5,
     5,
     5,
     10,
     {-1.2, -1.2, -0.05259115},
     {1.2, 1.2, 5.255118e-07}},
    {"simple_skin/simple_skin.gltf", true, 1, 1, 1, 8, {0, 0, 0}, {1, 2, 0}},
    {"textureTransform/TextureTransformTest.gltf",
     false,
     12,
     9,
     9,
     18,
     {-1.6, -1.141267, 0},
     {1.6, 1.05, 0.01}},
    {"wrongTypes/badNumber.gltf", false, 1, 1, 1, 12, {-0.5, -0.5, -0.5}, {0.5, 0.5, 0.5}},
    {"wrongTypes/badString.gltf", false, 1, 1, 1, 12, {-0.5, -0.5, -0.5}, {0.5, 0.5, 0.5}},
};

struct RejectedCase {
    const char* file;
    const char* reason;
};
const RejectedCase kRejected[] = {
    {"BoxTextured-glTF-techniqueWebGL/BoxTextured.gltf", "KHR_technique_webgl"},
    {"IncorrectVertexArrays/Cube.gltf", "bufferViews[2] reaches out of its buffer"},
    {"IndexOutOfRange/AllIndicesOutOfRange.gltf", "index 65535 names none of 24 vertices"},
    {"IndexOutOfRange/IndexOutOfRange.gltf", "index 255 names none of 24 vertices"},
    {"MissingBin/BoxTextured.gltf", "buffers[0] cannot be opened: BoxTextured0.bin"},
    {"RecursiveNodes/RecursiveNodes.gltf", "cycle"},
    {"SchemaFailures/sceneWrongType.gltf", "scene"},
    {"TestNoRootNode/NoScene.gltf", "scene 0 of 0"},
    {"draco/2CylinderEngine.gltf", "KHR_draco_mesh_compression"},
    {"wrongTypes/badArray.gltf", "meshes[0].primitives"},
    {"wrongTypes/badExtension.gltf", "KHR_texture_transform"},
    {"wrongTypes/badObject.gltf", "pbrMetallicRoughness"},
    {"wrongTypes/badUint.gltf", "no whole number"},
};

const std::filesystem::path kModels = "/usr/share/assimp/models/glTF2";

// Equal but for what single precision loses on the way.
void expectNear(const Point& actual, const Point& expected, double scale)
{
    for (std::size_t axis = 0; axis < 3; ++axis)
        if (std::isinf(expected[axis]))
            EXPECT_EQ(actual[axis], expected[axis]);
        else
            EXPECT_NEAR(actual[axis], expected[axis], 1e-6 * scale);
}

void expectSummary(const Summary& summary, const FileCase& row)
{
    EXPECT_EQ(summary.instances, row.instances);
    EXPECT_EQ(summary.parts, row.parts);
    EXPECT_EQ(summary.faces, row.faces);
    EXPECT_EQ(summary.triangles, row.triangles);
    double scale = 1;
    for (std::size_t axis = 0; axis < 3; ++axis)
        if (std::isfinite(row.low[axis]) && std::isfinite(row.high[axis]))
            scale = std::max({scale, std::abs(row.low[axis]), std::abs(row.high[axis])});
    expectNear(summary.box.low, row.low, scale);
    expectNear(summary.box.high, row.high, scale);
}

std::string nameOf(const char* file)
{
    std::string name = file;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

class OpenedFiles : public testing::TestWithParam<FileCase> {};

TEST_P(OpenedFiles, AgreeWithTheTable)
{
    const std::filesystem::path path = kModels / GetParam().file;
    ASSERT_TRUE(std::filesystem::exists(path)) << "install the package assimp-testmodels";
    std::string reason;
    ASSERT_TRUE(ovdl::makeGltfFormat()->recognises(platform::fromUtf8(path.string()), reason));
    const auto outcome = read(platform::fromUtf8(path.string()));
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    EXPECT_EQ(outcome.document->part() != nullptr, GetParam().isPart);
    expectSummary(summaryOf(*outcome.document), GetParam());
}

TEST_P(OpenedFiles, AgreeWithAPlainReader)
{
    const std::filesystem::path path = kModels / GetParam().file;
    ASSERT_TRUE(std::filesystem::exists(path)) << "install the package assimp-testmodels";
    expectSummary(PlainReader(path).summary(), GetParam());
}
INSTANTIATE_TEST_SUITE_P(Rows, OpenedFiles, testing::ValuesIn(kOpened),
                         [](const auto& row) { return nameOf(row.param.file); });

class RejectedFiles : public testing::TestWithParam<RejectedCase> {};

TEST_P(RejectedFiles, HaveTheirReason)
{
    const std::filesystem::path path = kModels / GetParam().file;
    ASSERT_TRUE(std::filesystem::exists(path)) << "install the package assimp-testmodels";
    std::string reason;
    EXPECT_TRUE(ovdl::makeGltfFormat()->recognises(platform::fromUtf8(path.string()), reason));
    const auto outcome = read(platform::fromUtf8(path.string()));
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_THAT(outcome.reason, testing::HasSubstr(GetParam().reason));
}
INSTANTIATE_TEST_SUITE_P(Rows, RejectedFiles, testing::ValuesIn(kRejected),
                         [](const auto& row) { return nameOf(row.param.file); });

TEST(RealFiles, AreAllInOneOfTheTables)
{
    std::set<std::string> listed;
    for (const FileCase& row : kOpened)
        listed.insert(row.file);
    for (const RejectedCase& row : kRejected)
        listed.insert(row.file);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kModels)) {
        const std::string ending = entry.path().extension();
        if (ending == ".gltf" || ending == ".glb") {
            EXPECT_EQ(listed.count(std::filesystem::relative(entry.path(), kModels).string()), 1u)
                << entry.path();
        }
    }
}

}  // namespace
}  // namespace gltf_tests
