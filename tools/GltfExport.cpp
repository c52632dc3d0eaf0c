#include "tools/GltfExport.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "raylume/platform/Text.h"
#include "raylume/scene/dlDecal.h"
#include "tools/ComponentOrder.h"
#include "tools/DecalGeometry.h"
#include "tools/FaceGeometry.h"
#include "tools/GltfAnimation.h"
#include "tools/GltfLights.h"
#include "tools/GltfMaterial.h"
#include "tools/GltfTextures.h"
#include "tools/Placement.h"
#include "tools/Values.h"

namespace tool {
namespace {

// The value that glTF has from the graphics interface.
constexpr int kLines = 1;

/// One face of a part, as the accessors that hold it.
struct Primitive {
    Json attributes;
    int indices = 0;
    const dlMaterial* material = nullptr;  ///< Null: none at any level of the part.
};

struct PartMesh {
    std::vector<Primitive> primitives;
    std::vector<Json> decals;  ///< Primitives over those, by the decals of the faces.
};

const dlMaterial* materialOf(const dlPart& part, const dlBody& body, const dlFace& face)
{
    if (face.material)
        return face.material;
    if (body.material)
        return body.material;
    return isUnset(part.material) ? nullptr : &part.material;
}

std::string withoutExtension(const std::string& name)
{
    const auto dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

void addTrs(const Trs& trs, Json& node)
{
    const Trs none;
    if (trs.translation != none.translation)
        node["translation"] = jsonNumbers(trs.translation.data(), 3);
    if (trs.rotation != none.rotation)
        node["rotation"] = jsonNumbers(trs.rotation.data(), 4);
    if (trs.scale != none.scale)
        node["scale"] = jsonNumbers(trs.scale.data(), 3);
}

// The matrix itself keeps every bit of the placement. Those who check files take it apart in single
// precision and compare with an absolute tolerance, so very large and very small scales must not be
// written as matrices.
bool isFitForMatrix(const PlacementParts& parts)
{
    if (parts.inner)
        return false;
    return std::all_of(parts.outer.scale.begin(), parts.outer.scale.end(),
                       [](double scale) { return std::abs(scale) >= 1e-3 && std::abs(scale) <= 10; });
}

Json matrixOf(const dlXform& placement)
{
    Json matrix = Json::array();
    for (int i = 0; i < 16; ++i)
        // The bottom row of a placement has no meaning; a file's must be 0, 0, 0, 1.
        matrix.push_back(i % 4 == 3 ? (i == 15 ? 1.0 : 0.0) : double(placement.m[i]));
    return matrix;
}

// What two appearances must share to look the same, images included.
std::string lookOf(const dlMaterial& material)
{
    const dlTexture& texture = material.texture;
    const Json image{platform::toUtf8(texture.filename), texture.mappingType,
                     floatValues(texture.uDirection, 3), floatValues(texture.vDirection, 3),
                     floatValues(texture.origin, 3),     floatValue(texture.angle),
                     floatValue(texture.scaleU),         floatValue(texture.scaleV),
                     floatValue(texture.transU),         floatValue(texture.transV)};
    return gltfMaterial(material).dump() + image.dump();
}

// What two instances of one part must share to have the same mesh.
std::string overlayOf(const dlInstance& instance)
{
    std::string text = instance.material ? lookOf(*instance.material) : std::string();
    for (const dlDecal* decal : instance.decals)
        text += "|" + std::to_string(decal->faceId) + lookOf(*decal);
    return text;
}

const dlFace* faceOf(const dlPart& part, std::int32_t faceId)
{
    for (std::int32_t b = 0; part.bodies && b < part.bodyCount; ++b)
        for (std::int32_t f = 0; part.bodies[b].faces && f < part.bodies[b].faceCount; ++f)
            if (part.bodies[b].faces[f].faceId == faceId)
                return &part.bodies[b].faces[f];
    return nullptr;
}

class Exporter {
public:
    Exporter(const dlModel& model, ImageSearch& images, const std::function<bool()>& cancelled)
        : model_(model),
          cancelled_(cancelled),
          order_(model),
          animation_(model, file_),
          textures_(file_, images)
    {
    }

    GltfDocument run()
    {
        if (model_.assemblyRoot)
            addTree(*model_.assemblyRoot);
        addLights(model_, file_, sceneNodes_);
        animation_.finish();
        return file_.finish(sceneJson());
    }

private:
    /// A node of the tree whose children are being written.
    struct Level {
        std::string name;
        std::vector<Component> components;
        std::size_t next = 0;
        std::vector<int> written;
    };

    // With a list of its own in place of recursion: a tree can be deeper than the stack.
    void addTree(const dlAssemblyNode& root)
    {
        std::vector<Level> levels;
        levels.push_back({"", order_.below(root), 0, {}});
        while (true) {
            Level& level = levels.back();
            if (level.next == level.components.size()) {
                if (levels.size() == 1)
                    break;
                const int group = addGroup(level);
                levels.pop_back();
                levels.back().written.push_back(group);
                continue;
            }
            const Component component = level.components[level.next++];
            if (component.instance)
                level.written.push_back(addInstance(*component.instance));
            else
                levels.push_back({tokenBase(*component.token), order_.below(*component.node), 0, {}});
        }
        sceneNodes_ = std::move(levels.back().written);
    }

    int addGroup(const Level& level)
    {
        Json node;
        addName(level.name, node);
        if (!level.written.empty())
            node["children"] = level.written;
        return file_.nodes.add(node);
    }

    int addInstance(const dlInstance& instance)
    {
        Json node;
        addName(instanceName(instance), node);
        const bool placed = isFinite(instance.xform);
        std::optional<int> mesh;
        if (placed)
            mesh = meshOf(instance);
        else
            leaveWithoutPlace(instance);
        Json extras = Json::object();
        if (instance.visible == 0)
            extras["visible"] = 0;
        if (!placed)
            extras["placement"] = "not finite";
        if (!extras.empty())
            node["extras"] = extras;
        return placed ? addPlaced(instance, mesh, node) : file_.nodes.add(node);
    }

    void leaveWithoutPlace(const dlInstance& instance)
    {
        ++file_.notes.instancesWithoutPlace;
        animation_.leaveOut(instance);
    }

    // What is animated must not have a matrix.
    int addPlaced(const dlInstance& instance, std::optional<int> mesh, Json& node)
    {
        const PlacementParts parts = takeApart(instance.xform);
        const PlacementTrack* const track = animation_.trackOf(instance);
        if (parts.inner)
            animation_.leaveOut(instance);
        if (!track || parts.inner)
            return addStill(instance.xform, parts, mesh, node);
        if (mesh)
            node["mesh"] = *mesh;
        addTrs(parts.outer, node);
        const int index = file_.nodes.add(node);
        animation_.move(index, *track);
        return index;
    }

    int addStill(const dlXform& placement, const PlacementParts& parts, std::optional<int> mesh, Json& node)
    {
        if (parts.inner && mesh)
            node["children"] = {addInner(*parts.inner, *mesh, node)};
        else if (mesh)
            node["mesh"] = *mesh;
        if (isIdentity(placement))
            return file_.nodes.add(node);
        if (isFitForMatrix(parts))
            node["matrix"] = matrixOf(placement);
        else
            addTrs(parts.outer, node);
        return file_.nodes.add(node);
    }

    int addInner(const Quaternion& rotation, int mesh, const Json& outer)
    {
        Json node;
        if (outer.contains("name"))
            node["name"] = outer["name"];
        node["mesh"] = mesh;
        node["rotation"] = jsonNumbers(rotation.data(), 4);
        return file_.nodes.add(node);
    }

    std::string instanceName(const dlInstance& instance) const
    {
        // The one instance of a part document is called "root", which says nothing.
        if (model_.isPartDocument)
            return withoutExtension(model_.modelName);
        return tokenBase(instance.leafName);
    }

    static void addName(const std::string& name, Json& object)
    {
        if (!name.empty())
            object["name"] = utf8(name);
    }

    std::optional<int> meshOf(const dlInstance& instance)
    {
        if (!instance.part)
            return std::nullopt;
        const auto [place, isNew] = meshes_.try_emplace({instance.part, overlayOf(instance)});
        if (isNew)
            place->second = addMesh(*instance.part, instance);
        return place->second;
    }

    int addMesh(const dlPart& part, const dlInstance& instance)
    {
        const PartMesh& geometry = geometryOf(part);
        Json mesh;
        addName(part.shortName.empty() ? instanceName(instance) : part.shortName, mesh);
        Json& primitives = mesh["primitives"] = Json::array();
        for (const Primitive& primitive : geometry.primitives)
            primitives.push_back(primitiveJson(primitive, instance.material));
        for (const Json& decal : geometry.decals)
            primitives.push_back(decal);
        addInstanceDecals(part, instance, primitives);
        if (primitives.empty())
            primitives.push_back(nothingToSee());
        return file_.meshes.add(mesh);
    }

    // A mesh must have a primitive, and a node without a mesh would be no instance any more. A line
    // without length is drawn by nobody and counts as no face.
    Json nothingToSee()
    {
        if (!lineWithoutLength_) {
            FaceGeometry line;
            line.positions.assign(6, 0.0f);
            lineWithoutLength_ = addPositions(line);
        }
        return {{"attributes", {{"POSITION", *lineWithoutLength_}}}, {"mode", kLines}};
    }

    Json primitiveJson(const Primitive& primitive, const dlMaterial* override)
    {
        Json json{{"attributes", primitive.attributes}, {"indices", primitive.indices}};
        const dlMaterial* material = override ? override : primitive.material;
        if (material)
            json["material"] = materialIndex(*material, primitive.attributes.contains("TEXCOORD_0"));
        return json;
    }

    // Those of the faces lie below.
    void addInstanceDecals(const dlPart& part, const dlInstance& instance, Json& primitives)
    {
        std::map<const dlFace*, int> layers;
        for (const dlDecal* decal : instance.decals) {
            const dlFace* face = faceOf(part, decal->faceId);
            if (!face)
                continue;
            const int above =
                layers.try_emplace(face, static_cast<int>(face->decals.size())).first->second++;
            if (auto json = decalJson(*decal, triangulate(*face), above))
                primitives.push_back(*json);
        }
    }

    std::optional<Json> decalJson(const dlDecal& decal, const FaceGeometry& face, int layer)
    {
        if (cancelled_())
            throw ExportCancelled();
        const auto projection = DecalProjection::of(decal.texture, face);
        if (!projection) {
            ++file_.notes.decalsWithoutPlace;
            return std::nullopt;
        }
        const FaceGeometry covered = decalGeometry(face, *projection, decalLift(face, layer));
        if (covered.indices.empty()) {
            ++file_.notes.decalsBesideFaces;
            return std::nullopt;
        }
        const Json texture = textures_.ofDecal(decal);
        if (texture.is_null())
            return std::nullopt;
        Json material = gltfDecalMaterial(decal);
        material["pbrMetallicRoughness"]["baseColorTexture"] = texture;
        return Json{{"attributes", attributesOf(covered)},
                    {"indices", file_.addIndices(covered.indices)},
                    {"material", addMaterial(material)}};
    }

    const PartMesh& geometryOf(const dlPart& part)
    {
        const auto [place, isNew] = parts_.try_emplace(&part);
        if (isNew)
            fillPart(part, place->second);
        return place->second;
    }

    void fillPart(const dlPart& part, PartMesh& mesh)
    {
        if (cancelled_())
            throw ExportCancelled();
        for (std::int32_t b = 0; part.bodies && b < part.bodyCount; ++b) {
            const dlBody& body = part.bodies[b];
            for (std::int32_t f = 0; body.faces && f < body.faceCount; ++f)
                addFace(part, body, body.faces[f], mesh);
        }
    }

    void addFace(const dlPart& part, const dlBody& body, const dlFace& face, PartMesh& mesh)
    {
        const FaceGeometry geometry = triangulate(face);
        file_.notes.trianglesWithoutPlace += geometry.trianglesWithoutPlace;
        if (geometry.indices.empty())
            return;
        Primitive primitive;
        primitive.attributes = attributesOf(geometry);
        primitive.indices = file_.addIndices(geometry.indices);
        primitive.material = materialOf(part, body, face);
        mesh.primitives.push_back(std::move(primitive));
        int layer = 0;
        for (const dlDecal* decal : face.decals)
            if (auto json = decalJson(*decal, geometry, layer++))
                mesh.decals.push_back(*json);
    }

    Json attributesOf(const FaceGeometry& geometry)
    {
        Json attributes;
        attributes["POSITION"] = addPositions(geometry);
        attributes["NORMAL"] = file_.addFloats(GltfFile::kNormals, "VEC3", geometry.normals);
        if (!geometry.uvs.empty())
            attributes["TEXCOORD_0"] = file_.addFloats(GltfFile::kUvs, "VEC2", geometry.uvs);
        return attributes;
    }

    int addPositions(const FaceGeometry& geometry)
    {
        double least[3];
        double most[3];
        for (int axis = 0; axis < 3; ++axis) {
            float low = geometry.positions[axis];
            float high = low;
            for (std::size_t i = axis; i < geometry.positions.size(); i += 3) {
                low = std::min(low, geometry.positions[i]);
                high = std::max(high, geometry.positions[i]);
            }
            least[axis] = low;
            most[axis] = high;
        }
        const Json bounds{{"min", jsonNumbers(least, 3)}, {"max", jsonNumbers(most, 3)}};
        return file_.addFloats(GltfFile::kPositions, "VEC3", geometry.positions, bounds);
    }

    int materialIndex(const dlMaterial& material, bool hasTextureCoordinates)
    {
        Json json = gltfMaterial(material);
        if (GltfTextures::isTextured(material.texture)) {
            const Json texture = hasTextureCoordinates ? textures_.ofAppearance(material.texture) : Json();
            if (!texture.is_null())
                json["pbrMetallicRoughness"]["baseColorTexture"] = texture;
            file_.notes.texturesWithoutPlace += hasTextureCoordinates ? 0 : 1;
        }
        return addMaterial(json);
    }

    int addMaterial(const Json& json)
    {
        const auto [place, isNew] = materials_.try_emplace(json.dump(), file_.materials.count());
        if (isNew)
            file_.materials.add(json);
        return place->second;
    }

    Json sceneJson() const
    {
        Json scene = Json::object();
        addName(withoutExtension(model_.modelName), scene);
        if (!sceneNodes_.empty())
            scene["nodes"] = sceneNodes_;
        return scene;
    }

    const dlModel& model_;
    const std::function<bool()>& cancelled_;
    const ComponentOrder order_;
    GltfFile file_;
    std::vector<int> sceneNodes_;
    PlacementAnimation animation_;
    GltfTextures textures_;
    std::optional<int> lineWithoutLength_;
    std::map<const dlPart*, PartMesh> parts_;
    std::map<std::pair<const dlPart*, std::string>, int> meshes_;  // by part and what lies over it
    std::map<std::string, int> materials_;                         // by their text
};

}  // namespace

GltfDocument exportModel(const dlModel& model, ImageSearch& images, const std::function<bool()>& cancelled)
{
    return Exporter(model, images, cancelled).run();
}

GltfDocument exportModel(const dlModel& model, const std::function<bool()>& cancelled)
{
    ImageSearch images;
    return exportModel(model, images, cancelled);
}

}  // namespace tool
