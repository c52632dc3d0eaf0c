// What the JSON of a document says, as plain records: indices as they stand in the file (kNone where
// the file is silent), nothing resolved. Texts lie in the JsonDocument that the records came from.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "reader/formats/gltf/Affine.h"

namespace ovdl::gltf {

inline constexpr std::int32_t kNone = -1;

struct BufferRecord {
    std::string_view uri;
    bool hasUri = false;
    std::uint64_t length = 0;
};

struct ViewRecord {
    std::int32_t buffer = kNone;
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    std::uint64_t stride = 0;  ///< 0: the elements lie one behind the other.
};

enum ComponentType : std::int32_t {
    kInt8 = 5120,
    kUint8 = 5121,
    kInt16 = 5122,
    kUint16 = 5123,
    kUint32 = 5125,
    kFloat32 = 5126,
};

enum class ElementType : std::uint8_t { kNoType, kScalar, kVec2, kVec3, kVec4, kMat2, kMat3, kMat4 };

/// Elements that differ from what the accessor's view (or nothing: zeros) says.
struct SparseRecord {
    std::uint64_t count = 0;
    std::int32_t indexView = kNone;
    std::uint64_t indexOffset = 0;
    std::int32_t indexType = 0;
    std::int32_t valueView = kNone;
    std::uint64_t valueOffset = 0;
};

struct AccessorRecord {
    std::int32_t view = kNone;
    std::uint64_t offset = 0;
    std::uint64_t count = 0;
    std::int32_t componentType = 0;
    ElementType type = ElementType::kNoType;
    bool normalized = false;
    bool isSparse = false;
    SparseRecord sparse;
};

enum PrimitiveMode : std::int32_t { kTriangles = 4, kTriangleStrip = 5, kTriangleFan = 6 };

/// Sets of texture coordinates that a primitive may have; further ones are passed over.
inline constexpr int kTexCoordSets = 8;

struct PrimitiveRecord {
    std::int32_t position = kNone;
    std::int32_t normal = kNone;
    std::array<std::int32_t, kTexCoordSets> texCoords = {kNone, kNone, kNone, kNone,
                                                         kNone, kNone, kNone, kNone};
    std::int32_t indices = kNone;
    std::int32_t material = kNone;
    std::int32_t mode = kTriangles;
};

struct MeshRecord {
    std::string_view name;
    std::uint32_t firstPrimitive = 0;
    std::uint32_t primitiveCount = 0;
};

/// How a node is placed below its parent. Most are only moved, if at all.
enum class Placing : std::uint8_t { kUnplaced, kTranslation, kAffine };

/// Kept small: a big assembly is mostly nodes.
struct NodeRecord {
    std::string_view name() const { return {nameText, nameLength}; }
    void setName(std::string_view name)
    {
        nameText = name.data();
        nameLength = static_cast<std::uint32_t>(name.size());
    }

    const char* nameText = nullptr;
    std::uint32_t nameLength = 0;
    std::int32_t mesh = kNone;
    std::int32_t camera = kNone;
    std::int32_t light = kNone;
    std::uint32_t firstChild = 0;  ///< Into Records::children.
    std::uint32_t childCount = 0;
    std::uint32_t placingIndex = 0;  ///< Into Records::translations or Records::affines.
    Placing placing = Placing::kUnplaced;
};

struct SceneRecord {
    std::uint32_t firstNode = 0;  ///< Into Records::sceneNodes.
    std::uint32_t nodeCount = 0;
};

/// A texture as a material uses it.
struct TextureUse {
    std::int32_t texture = kNone;
    std::int32_t texCoord = 0;
    std::array<double, 2> offset = {0, 0};
    double rotation = 0;  ///< Radians.
    std::array<double, 2> scale = {1, 1};
};

enum class AlphaMode : std::uint8_t { kOpaque, kMask, kBlend };

struct MaterialRecord {
    std::string_view name;
    std::array<double, 4> baseColour = {1, 1, 1, 1};
    TextureUse baseTexture;
    double metallic = 1;
    double roughness = 1;
    std::array<double, 3> emission = {0, 0, 0};
    double emissionStrength = 1;
    double transmission = 0;
    AlphaMode alphaMode = AlphaMode::kOpaque;
    double alphaCutoff = 0.5;
    bool unlit = false;
    /// The older workflow, which takes the place of the metallic one where a document has both.
    bool isSpecularGlossy = false;
    std::array<double, 4> diffuseColour = {1, 1, 1, 1};
    TextureUse diffuseTexture;
    std::array<double, 3> specularColour = {1, 1, 1};
    double glossiness = 1;
};

struct ImageRecord {
    std::string_view uri;
    bool hasUri = false;
    std::int32_t view = kNone;
};

enum class LightKind : std::uint8_t { kUnknown, kDirectional, kPoint, kSpot };

struct LightRecord {
    LightKind kind = LightKind::kUnknown;
    std::array<double, 3> colour = {1, 1, 1};
    double intensity = 1;
    double range = 0;  ///< 0: without end.
    double innerCone = 0;
    double outerCone = 0.78539816339744828;
};

struct Records {
    std::int32_t scene = kNone;
    std::vector<SceneRecord> scenes;
    std::vector<std::uint32_t> sceneNodes;
    std::vector<NodeRecord> nodes;
    std::vector<std::uint32_t> children;
    std::vector<std::array<double, 3>> translations;
    std::vector<Affine> affines;
    std::vector<MeshRecord> meshes;
    std::vector<PrimitiveRecord> primitives;
    std::vector<AccessorRecord> accessors;
    std::vector<ViewRecord> views;
    std::vector<BufferRecord> buffers;
    std::vector<MaterialRecord> materials;
    std::vector<std::int32_t> textures;  ///< The image of each.
    std::vector<ImageRecord> images;
    std::vector<LightRecord> lights;
    std::size_t cameraCount = 0;
};

}  // namespace ovdl::gltf
