#include "tools/GltfExport.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "tools/ComponentOrder.h"
#include "tools/FaceGeometry.h"
#include "tools/GltfMaterial.h"
#include "tools/Placement.h"
#include "tools/Values.h"

namespace tool {
namespace {

// The values that glTF has from the graphics interface.
constexpr int kFloat = 5126;
constexpr int kUnsignedInt = 5125;
constexpr int kLines = 1;
constexpr int kArrayBuffer = 34962;
constexpr int kElementArrayBuffer = 34963;

// In this order in the buffer and in the list of its views.
enum View { kPositions, kNormals, kUvs, kIndices };

/// A JSON array that is kept as text: the objects of a large model would take many times its room.
class JsonList {
public:
    int add(const Json& element)
    {
        text_ += count_ ? "," : "";
        text_ += element.dump();
        return count_++;
    }
    int count() const { return count_; }
    std::string text() const { return "[" + text_ + "]"; }

private:
    std::string text_;
    int count_ = 0;
};

/// One face of a part, as the accessors that hold it.
struct Primitive {
    Json attributes;
    int indices = 0;
    const dlMaterial* material = nullptr;  ///< Null: none at any level of the part.
};

struct PartMesh {
    std::vector<Primitive> primitives;
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

Json doubles(const double* values, std::size_t count)
{
    Json result = Json::array();
    for (std::size_t i = 0; i < count; ++i)
        result.push_back(values[i]);
    return result;
}

void addTrs(const Trs& trs, Json& node)
{
    const Trs none;
    if (trs.translation != none.translation)
        node["translation"] = doubles(trs.translation.data(), 3);
    if (trs.rotation != none.rotation)
        node["rotation"] = doubles(trs.rotation.data(), 4);
    if (trs.scale != none.scale)
        node["scale"] = doubles(trs.scale.data(), 3);
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

class Exporter {
public:
    Exporter(const dlModel& model, const std::function<bool()>& cancelled)
        : model_(model), cancelled_(cancelled), order_(model)
    {
    }

    GltfDocument run()
    {
        if (model_.assemblyRoot)
            addTree(*model_.assemblyRoot);
        document_.json = wholeJson();
        return std::move(document_);
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
        return nodes_.add(node);
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
            ++document_.notes.instancesWithoutPlace;
        Json extras = Json::object();
        if (instance.visible == 0)
            extras["visible"] = 0;
        if (!placed)
            extras["placement"] = "not finite";
        if (!extras.empty())
            node["extras"] = extras;
        return placed ? addPlaced(instance.xform, mesh, node) : nodes_.add(node);
    }

    int addPlaced(const dlXform& placement, std::optional<int> mesh, Json& node)
    {
        const PlacementParts parts = takeApart(placement);
        if (parts.inner && mesh)
            node["children"] = {addInner(*parts.inner, *mesh, node)};
        else if (mesh)
            node["mesh"] = *mesh;
        if (isIdentity(placement))
            return nodes_.add(node);
        if (isFitForMatrix(parts))
            node["matrix"] = matrixOf(placement);
        else
            addTrs(parts.outer, node);
        return nodes_.add(node);
    }

    int addInner(const Quaternion& rotation, int mesh, const Json& outer)
    {
        Json node;
        if (outer.contains("name"))
            node["name"] = outer["name"];
        node["mesh"] = mesh;
        node["rotation"] = doubles(rotation.data(), 4);
        return nodes_.add(node);
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
        const int override = instance.material ? materialIndex(*instance.material) : -1;
        const auto [place, isNew] = meshes_.try_emplace({instance.part, override});
        if (isNew)
            place->second = addMesh(*instance.part, override, instance);
        return place->second;
    }

    int addMesh(const dlPart& part, int override, const dlInstance& instance)
    {
        const PartMesh& geometry = geometryOf(part);
        Json mesh;
        addName(part.shortName.empty() ? instanceName(instance) : part.shortName, mesh);
        Json& primitives = mesh["primitives"] = Json::array();
        for (const Primitive& primitive : geometry.primitives)
            primitives.push_back(primitiveJson(primitive, override));
        if (primitives.empty())
            primitives.push_back(nothingToSee());
        return meshList_.add(mesh);
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

    Json primitiveJson(const Primitive& primitive, int override)
    {
        Json json{{"attributes", primitive.attributes}, {"indices", primitive.indices}};
        if (override >= 0)
            json["material"] = override;
        else if (primitive.material)
            json["material"] = materialIndex(*primitive.material);
        return json;
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
        document_.notes.trianglesWithoutPlace += geometry.trianglesWithoutPlace;
        if (geometry.indices.empty())
            return;
        Primitive primitive;
        primitive.attributes["POSITION"] = addPositions(geometry);
        primitive.attributes["NORMAL"] =
            addAccessor(kNormals, "VEC3", geometry.vertexCount(), geometry.normals, document_.normals);
        if (!geometry.uvs.empty())
            primitive.attributes["TEXCOORD_0"] =
                addAccessor(kUvs, "VEC2", geometry.vertexCount(), geometry.uvs, document_.uvs);
        primitive.indices =
            addAccessor(kIndices, "SCALAR", geometry.indices.size(), geometry.indices, document_.indices);
        primitive.material = materialOf(part, body, face);
        mesh.primitives.push_back(std::move(primitive));
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
        const Json bounds{{"min", doubles(least, 3)}, {"max", doubles(most, 3)}};
        return addAccessor(kPositions, "VEC3", geometry.vertexCount(), geometry.positions,
                           document_.positions, bounds);
    }

    template <class Number>
    int addAccessor(View view, const char* type, std::size_t count, const std::vector<Number>& values,
                    std::vector<Number>& buffer, const Json& bounds = Json::object())
    {
        Json accessor{{"bufferView", viewIndex(view)},
                      {"byteOffset", buffer.size() * sizeof(Number)},
                      {"componentType", view == kIndices ? kUnsignedInt : kFloat},
                      {"count", count},
                      {"type", type}};
        accessor.update(bounds);
        buffer.insert(buffer.end(), values.begin(), values.end());
        return accessors_.add(accessor);
    }

    // Views are numbered as they are first used: one without bytes must not be written.
    int viewIndex(View view)
    {
        const auto found = std::find(views_.begin(), views_.end(), view);
        if (found != views_.end())
            return static_cast<int>(found - views_.begin());
        views_.push_back(view);
        return static_cast<int>(views_.size()) - 1;
    }

    int materialIndex(const dlMaterial& material)
    {
        const Json json = gltfMaterial(material);
        const auto [place, isNew] = materials_.try_emplace(json.dump(), materialList_.count());
        if (isNew)
            materialList_.add(json);
        return place->second;
    }

    std::uint64_t byteCount(View view) const
    {
        switch (view) {
        case kPositions:
            return document_.positions.size() * sizeof(float);
        case kNormals:
            return document_.normals.size() * sizeof(float);
        case kUvs:
            return document_.uvs.size() * sizeof(float);
        default:
            return document_.indices.size() * sizeof(std::uint32_t);
        }
    }

    std::uint64_t byteOffset(View view) const
    {
        std::uint64_t offset = 0;
        for (int before = 0; before < view; ++before)
            offset += byteCount(static_cast<View>(before));
        return offset;
    }

    std::string viewsText() const
    {
        JsonList list;
        for (const View view : views_) {
            Json json{{"buffer", 0}, {"byteOffset", byteOffset(view)}, {"byteLength", byteCount(view)}};
            if (view != kIndices)
                json["byteStride"] = view == kUvs ? 8 : 12;
            json["target"] = view == kIndices ? kElementArrayBuffer : kArrayBuffer;
            list.add(json);
        }
        return list.text();
    }

    std::string sceneText() const
    {
        Json scene = Json::object();
        addName(withoutExtension(model_.modelName), scene);
        if (!sceneNodes_.empty())
            scene["nodes"] = sceneNodes_;
        return scene.dump();
    }

    std::string wholeJson() const
    {
        std::string text = R"({"asset":{"version":"2.0","generator":"raylume-dl )" RAYLUME_VERSION R"("})";
        text += R"(,"scene":0,"scenes":[)" + sceneText() + "]";
        addList("nodes", nodes_, text);
        addList("meshes", meshList_, text);
        addList("materials", materialList_, text);
        addList("accessors", accessors_, text);
        if (!views_.empty()) {
            text += R"(,"bufferViews":)" + viewsText();
            text += R"(,"buffers":[{"byteLength":)" +
                    std::to_string(byteOffset(kIndices) + byteCount(kIndices)) + "}]";
        }
        return text + "}";
    }

    // A list of the file must not be empty.
    static void addList(const char* name, const JsonList& list, std::string& text)
    {
        if (list.count() > 0)
            text += std::string(",\"") + name + "\":" + list.text();
    }

    const dlModel& model_;
    const std::function<bool()>& cancelled_;
    const ComponentOrder order_;
    GltfDocument document_;
    JsonList nodes_;
    JsonList meshList_;
    JsonList materialList_;
    JsonList accessors_;
    std::vector<View> views_;
    std::vector<int> sceneNodes_;
    std::optional<int> lineWithoutLength_;
    std::map<const dlPart*, PartMesh> parts_;
    std::map<std::pair<const dlPart*, int>, int> meshes_;  // by part and override
    std::map<std::string, int> materials_;                 // by their text
};

std::uint64_t binarySize(const GltfDocument& document)
{
    return 4 * (std::uint64_t(document.positions.size()) + document.normals.size() + document.uvs.size() +
                document.indices.size());
}

std::uint64_t paddedTo4(std::uint64_t size)
{
    return (size + 3) / 4 * 4;
}

void write32(std::uint64_t value, std::ostream& out)
{
    const char bytes[4] = {static_cast<char>(value), static_cast<char>(value >> 8),
                           static_cast<char>(value >> 16), static_cast<char>(value >> 24)};
    out.write(bytes, 4);
}

template <class Number>
void writeNumbers(const std::vector<Number>& numbers, std::ostream& out)
{
    static_assert(std::endian::native == std::endian::little, "the file's numbers are little-endian");
    out.write(reinterpret_cast<const char*>(numbers.data()),
              static_cast<std::streamsize>(numbers.size() * sizeof(Number)));
}

}  // namespace

GltfDocument exportModel(const dlModel& model, const std::function<bool()>& cancelled)
{
    return Exporter(model, cancelled).run();
}

std::uint64_t glbSize(const GltfDocument& document)
{
    const std::uint64_t binary = binarySize(document);
    return 12 + 8 + paddedTo4(document.json.size()) + (binary ? 8 + binary : 0);
}

void writeGlb(const GltfDocument& document, std::ostream& out)
{
    const std::uint64_t jsonSize = paddedTo4(document.json.size());
    out.write("glTF", 4);
    write32(2, out);
    write32(glbSize(document), out);
    write32(jsonSize, out);
    out.write("JSON", 4);
    out << document.json << std::string(jsonSize - document.json.size(), ' ');
    if (const std::uint64_t binary = binarySize(document)) {
        write32(binary, out);
        out.write("BIN\0", 4);
        writeNumbers(document.positions, out);
        writeNumbers(document.normals, out);
        writeNumbers(document.uvs, out);
        writeNumbers(document.indices, out);
    }
}

}  // namespace tool
