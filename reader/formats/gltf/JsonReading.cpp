// The text is walked once, front to back: a big assembly is mostly its node list, and that is read at
// the speed at which it can be tokenised. What nothing here asks for is passed over, well-formed or not.
#include "reader/formats/gltf/JsonReading.h"

#include <simdjson.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "raylume/platform/Memory.h"
#include "reader/formats/gltf/Budget.h"
#include "reader/formats/gltf/NumberText.h"
#include "reader/formats/gltf/Refusal.h"

namespace ovdl::gltf {
namespace {

namespace od = simdjson::ondemand;

// Required extensions that this reader honours, or that change nothing in what it takes over.
constexpr std::string_view kSupportedExtensions[] = {
    "KHR_lights_punctual",        "KHR_materials_emissive_strength",
    "KHR_materials_unlit",        "KHR_materials_pbrSpecularGlossiness",
    "KHR_materials_transmission", "KHR_mesh_quantization",
    "KHR_texture_transform",
};

// A comparison with a text of known length, which takes no call.
template <std::size_t size>
bool is(std::string_view key, const char (&name)[size])
{
    return key.size() == size - 1 && std::memcmp(key.data(), name, size - 1) == 0;
}

// Where the reading stands, for reasons.
struct Place {
    const char* section = "";
    std::size_t index = 0;
    bool inElement = false;
    std::string_view key;

    std::string text() const
    {
        std::string result = inElement ? numbered(section, index) : section;
        if (!key.empty() && key != section)
            result.append(result.empty() ? "" : ".").append(key);
        return result;
    }
};

class Reading {
public:
    Reading(Records& records, std::string_view text)
        : records_(records),
          textEnd_(text.data() + text.size()),
          recordLimit_(Budget::limitFor(text.size()))
    {
    }

    void readRoot(od::object root);
    const Place& place() const { return place_; }

private:
    [[noreturn]] void fail(const char* what) const { refuse(place_.text() + " " + what); }

    // Keys are compared as they stand, but for the rare one with an escape in it.
    static std::string_view keyOf(od::field& field)
    {
        const char* raw = field.key().raw();
        const char* end = raw;
        while (*end != '"' && *end != '\\')
            ++end;
        if (*end == '"')
            return {raw, static_cast<std::size_t>(end - raw)};
        return field.unescaped_key();
    }

    template <class Visit>
    void eachField(od::object object, Visit visit)
    {
        for (auto result : object) {
            od::field field;
            if (const auto error = std::move(result).get(field))
                throw simdjson::simdjson_error(error);
            const std::string_view key = keyOf(field);
            place_.key = key;
            visit(key, field.value());
        }
    }
    template <class Visit>
    void eachField(od::value value, Visit visit)
    {
        eachField(value.get_object().value(), visit);
    }
    template <class Visit>
    void eachElement(od::value value, Visit visit)
    {
        // By name, since a loop keeps alive no more than the last of its temporaries.
        od::array elements = value.get_array().value();
        for (auto element : elements)
            visit(std::move(element).value());
    }
    // The elements of one of the document's lists; `read` is a member that fills one record.
    template <class Record>
    void readList(const char* section, od::value value, std::vector<Record>& list,
                  void (Reading::*read)(od::value, Record&))
    {
        list.clear();
        place_.section = section;
        place_.index = 0;
        place_.inElement = true;
        place_.key = {};
        const char* begin = nullptr;
        eachElement(value, [&](od::value element) {
            if (list.size() == list.capacity()) {
                makeRoom(list, begin, element.raw_json_token().data());
                if constexpr (std::is_same_v<Record, NodeRecord>)
                    makeRoomBeside(list.size(), list.capacity());
            }
            chargeRecord(sizeof(Record));
            (this->*read)(element, list.emplace_back());
            ++place_.index;
            place_.key = {};
        });
        place_.inElement = false;
        place_.section = "";
    }

    // A record is a hundred times as long as the "{}," that it may be made of.
    void chargeRecord(std::size_t size)
    {
        recordBytes_ += size;
        if (recordBytes_ > recordLimit_)
            refuse(place_.text() + " is one record too many for a text of this size");
    }
    // Room for as many records as the text still holds, going by the length of those that it held so
    // far, but for no more than sixteen times them: a list of many is then moved once or twice.
    template <class Record>
    void makeRoom(std::vector<Record>& list, const char*& begin, const char* here)
    {
        if (list.empty()) {
            begin = here;
            list.reserve(64);
            return;
        }
        const std::size_t each = static_cast<std::size_t>(here - begin) / list.size() + 1;
        const std::size_t left = static_cast<std::size_t>(textEnd_ - here) / each;
        reserveFilled(list, list.size() + std::clamp(left + left / 16, list.size() / 2, 15 * list.size()));
    }
    template <class Record>
    static void reserveFilled(std::vector<Record>& list, std::size_t count)
    {
        if (count <= list.capacity())
            return;
        list.reserve(count);
        const std::size_t used = list.size();
        platform::prepareForFilling(list.data() + used, (list.capacity() - used) * sizeof(Record));
    }

    // The same for what goes with the nodes, at the rate so far.
    void makeRoomBeside(std::size_t nodes, std::size_t expected)
    {
        if (nodes == 0)
            return;
        reserveFilled(records_.children, records_.children.size() * expected / nodes);
        reserveFilled(records_.translations, records_.translations.size() * expected / nodes);
        reserveFilled(records_.affines, records_.affines.size() * expected / nodes);
    }

    std::uint64_t whole(od::value value);
    std::int32_t index(od::value value);
    std::uint32_t index32(od::value value) { return static_cast<std::uint32_t>(index(value)); }
    double real(od::value value);
    std::string_view text(od::value value) { return value.get_string(); }
    template <class Visit>
    void eachNumber(od::value value, Visit visit);
    template <std::size_t size>
    void reals(od::value value, std::array<double, size>& target);
    void list(od::value value, std::vector<std::uint32_t>& pool, std::uint32_t& first,
              std::uint32_t& count);

    void readAsset(od::value value);
    bool isNewer(std::string_view version, const char* what);
    void readRequired(od::value value);
    void readRootExtensions(od::value value);

    void readScene(od::value value, SceneRecord& scene);
    void readNode(od::value value, NodeRecord& node);
    void readNodeExtensions(od::value value, NodeRecord& node);
    void readMesh(od::value value, MeshRecord& mesh);
    void readPrimitive(od::value value, PrimitiveRecord& primitive);
    void readAttributes(od::value value, PrimitiveRecord& primitive);
    void readAccessor(od::value value, AccessorRecord& accessor);
    void readSparse(od::value value, SparseRecord& sparse);
    void readView(od::value value, ViewRecord& view);
    void readBuffer(od::value value, BufferRecord& buffer);
    void readMaterial(od::value value, MaterialRecord& material);
    void readMetallic(od::value value, MaterialRecord& material);
    void readMaterialExtensions(od::value value, MaterialRecord& material);
    void readGlossy(od::value value, MaterialRecord& material);
    void readTextureUse(od::value value, TextureUse& use);
    void readTextureTransform(od::value value, TextureUse& use);
    void readTexture(od::value value, std::int32_t& image);
    void readImage(od::value value, ImageRecord& image);
    void readLight(od::value value, LightRecord& light);
    void readSpot(od::value value, LightRecord& light);
    void readCamera(od::value value, char& camera);

    Records& records_;
    const char* textEnd_;
    std::uint64_t recordLimit_;
    std::uint64_t recordBytes_ = 0;
    Place place_;
    bool hasVersion_ = false;
};

std::uint64_t Reading::whole(od::value value)
{
    std::uint64_t result = 0;
    if (value.get_uint64().get(result) == simdjson::SUCCESS)
        return result;
    // "12.0" is a whole number too, and some writers say it so.
    const double real = value.get_double();
    if (!(real >= 0 && real <= 9007199254740992.0 && real == std::floor(real)))
        fail("is no whole number from 0 up");
    return static_cast<std::uint64_t>(real);
}

// The library reads 0.1000000000000000055511151231257827 as 4e-16: with more digits than fit a word, it
// takes the leading zero for one of them (3.0.1, and only where it reads on demand). It still says
// whether the number is well written.
double Reading::real(od::value value)
{
    constexpr std::size_t kSafeLength = 18;
    const std::string_view token = value.raw_json_token();
    double result = value.get_double();
    if (token.size() > kSafeLength)
        std::from_chars(token.data(), token.data() + token.size(), result);
    return result;
}

std::int32_t Reading::index(od::value value)
{
    const std::uint64_t result = whole(value);
    if (result > static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max()))
        fail("is out of range");
    return static_cast<std::int32_t>(result);
}

// Lists of numbers are read from their text: element by element, the library takes twice as long.
template <class Visit>
void Reading::eachNumber(od::value value, Visit visit)
{
    od::array array = value.get_array();
    NumberList numbers(array.raw_json());
    for (double number; numbers.next(number);)
        visit(number);
    if (numbers.isBroken())
        fail("is no list of numbers");
}

template <std::size_t size>
void Reading::reals(od::value value, std::array<double, size>& target)
{
    std::size_t count = 0;
    eachNumber(value, [&](double number) {
        if (count == size)
            fail("has too many numbers");
        target[count++] = number;
    });
    if (count != size)
        fail("has too few numbers");
}

void Reading::list(od::value value, std::vector<std::uint32_t>& pool, std::uint32_t& first,
                   std::uint32_t& count)
{
    constexpr double kHighest = std::numeric_limits<std::int32_t>::max();
    first = static_cast<std::uint32_t>(pool.size());
    eachNumber(value, [&](double number) {
        if (!(number >= 0 && number <= kHighest && number == std::floor(number)))
            fail("has an entry that is no index");
        pool.push_back(static_cast<std::uint32_t>(number));
    });
    count = static_cast<std::uint32_t>(pool.size()) - first;
}

void Reading::readRoot(od::object root)
{
    eachField(root, [&](std::string_view key, od::value value) {
        if (is(key, "asset"))
            readAsset(value);
        else if (is(key, "extensionsRequired"))
            readRequired(value);
        else if (is(key, "extensions"))
            readRootExtensions(value);
        else if (is(key, "scene"))
            records_.scene = index(value);
        else if (is(key, "scenes"))
            readList("scenes", value, records_.scenes, &Reading::readScene);
        else if (is(key, "nodes"))
            readList("nodes", value, records_.nodes, &Reading::readNode);
        else if (is(key, "meshes"))
            readList("meshes", value, records_.meshes, &Reading::readMesh);
        else if (is(key, "accessors"))
            readList("accessors", value, records_.accessors, &Reading::readAccessor);
        else if (is(key, "bufferViews"))
            readList("bufferViews", value, records_.views, &Reading::readView);
        else if (is(key, "buffers"))
            readList("buffers", value, records_.buffers, &Reading::readBuffer);
        else if (is(key, "materials"))
            readList("materials", value, records_.materials, &Reading::readMaterial);
        else if (is(key, "textures"))
            readList("textures", value, records_.textures, &Reading::readTexture);
        else if (is(key, "images"))
            readList("images", value, records_.images, &Reading::readImage);
        else if (is(key, "cameras")) {
            std::vector<char> cameras;
            readList("cameras", value, cameras, &Reading::readCamera);
            records_.cameraCount = cameras.size();
        }
    });
    if (!hasVersion_)
        refuse("asset.version is missing");
}

// True when a version "major.minor" is beyond 2.0.
bool Reading::isNewer(std::string_view version, const char* what)
{
    unsigned major = 0;
    unsigned minor = 0;
    const char* end = version.data() + version.size();
    const auto first = std::from_chars(version.data(), end, major);
    if (first.ec != std::errc() || first.ptr == end || *first.ptr != '.')
        fail("is no version");
    const auto second = std::from_chars(first.ptr + 1, end, minor);
    if (second.ec != std::errc() || second.ptr != end)
        fail("is no version");
    if (major < 2)
        refuse(std::string(what) + " is " + std::string(version) + "; only glTF 2 is read");
    return major > 2 || minor > 0;
}

void Reading::readAsset(od::value value)
{
    place_.section = "asset";
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "version")) {
            const std::string_view version = text(field);
            // A later 2.x says with minVersion whether a reader of 2.0 is enough.
            if (isNewer(version, "asset.version") && version.substr(0, 2) != "2.")
                refuse("asset.version is " + std::string(version) + "; only glTF 2 is read");
            hasVersion_ = true;
        } else if (is(key, "minVersion")) {
            const std::string_view version = text(field);
            if (isNewer(version, "asset.minVersion"))
                refuse("asset.minVersion is " + std::string(version) + "; only glTF 2.0 is read");
        }
    });
    place_.section = "";
}

void Reading::readRequired(od::value value)
{
    eachElement(value, [&](od::value element) {
        const std::string_view name = text(element);
        for (const std::string_view supported : kSupportedExtensions)
            if (name == supported)
                return;
        refuse("the required extension " + std::string(name) + " is not supported");
    });
}

void Reading::readRootExtensions(od::value value)
{
    eachField(value, [&](std::string_view key, od::value extension) {
        if (!is(key, "KHR_lights_punctual"))
            return;
        eachField(extension, [&](std::string_view inner, od::value lights) {
            if (is(inner, "lights"))
                readList("lights", lights, records_.lights, &Reading::readLight);
        });
    });
}

void Reading::readScene(od::value value, SceneRecord& scene)
{
    if (place_.index == 0)
        records_.sceneNodes.clear();
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "nodes"))
            list(field, records_.sceneNodes, scene.firstNode, scene.nodeCount);
    });
}

// Where a node is, in either of the two ways to say it; the matrix wins over the parts.
struct NodePlace {
    bool hasMatrix = false;
    bool hasTurn = false;  ///< A rotation or a scale.
    bool hasTranslation = false;
    std::array<double, 16> matrix = {};
    std::array<double, 3> translation = {0, 0, 0};
    std::array<double, 4> rotation = {0, 0, 0, 1};
    std::array<double, 3> scale = {1, 1, 1};

    Affine affine() const
    {
        return hasMatrix ? fromMatrix(matrix) : fromParts(translation, rotation, scale);
    }
    bool isAffine() const
    {
        // Writers that invert matrices in single precision leave noise in the last row.
        const double tolerance = 1e-5;
        return std::abs(matrix[3]) <= tolerance && std::abs(matrix[7]) <= tolerance &&
               std::abs(matrix[11]) <= tolerance && std::abs(matrix[15] - 1) <= tolerance;
    }
};

void Reading::readNode(od::value value, NodeRecord& node)
{
    if (place_.index == 0) {
        records_.children.clear();
        records_.translations.clear();
        records_.affines.clear();
    }
    NodePlace placing;
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "name"))
            node.setName(text(field));
        else if (is(key, "mesh"))
            node.mesh = index(field);
        else if (is(key, "children"))
            list(field, records_.children, node.firstChild, node.childCount);
        else if (is(key, "translation"))
            reals(field, placing.translation), placing.hasTranslation = true;
        else if (is(key, "rotation"))
            reals(field, placing.rotation), placing.hasTurn = true;
        else if (is(key, "scale"))
            reals(field, placing.scale), placing.hasTurn = true;
        else if (is(key, "matrix"))
            reals(field, placing.matrix), placing.hasMatrix = true;
        else if (is(key, "camera"))
            node.camera = index(field);
        else if (is(key, "extensions"))
            readNodeExtensions(field, node);
    });
    if (placing.hasMatrix && !placing.isAffine())
        refuse(numbered("nodes", place_.index) + ".matrix is not affine");
    if (placing.hasMatrix || placing.hasTurn) {
        node.placing = Placing::kAffine;
        node.placingIndex = static_cast<std::uint32_t>(records_.affines.size());
        records_.affines.push_back(placing.affine());
    } else if (placing.hasTranslation) {
        node.placing = Placing::kTranslation;
        node.placingIndex = static_cast<std::uint32_t>(records_.translations.size());
        records_.translations.push_back(placing.translation);
    }
}

void Reading::readNodeExtensions(od::value value, NodeRecord& node)
{
    eachField(value, [&](std::string_view key, od::value extension) {
        if (!is(key, "KHR_lights_punctual"))
            return;
        eachField(extension, [&](std::string_view inner, od::value light) {
            if (is(inner, "light"))
                node.light = index(light);
        });
    });
}

void Reading::readMesh(od::value value, MeshRecord& mesh)
{
    if (place_.index == 0)
        records_.primitives.clear();
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "name"))
            mesh.name = text(field);
        else if (is(key, "primitives")) {
            mesh.firstPrimitive = static_cast<std::uint32_t>(records_.primitives.size());
            eachElement(field, [&](od::value element) {
                readPrimitive(element, records_.primitives.emplace_back());
            });
            mesh.primitiveCount =
                static_cast<std::uint32_t>(records_.primitives.size()) - mesh.firstPrimitive;
        }
    });
}

void Reading::readPrimitive(od::value value, PrimitiveRecord& primitive)
{
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "attributes"))
            readAttributes(field, primitive);
        else if (is(key, "indices"))
            primitive.indices = index(field);
        else if (is(key, "material"))
            primitive.material = index(field);
        else if (is(key, "mode"))
            primitive.mode = index(field);
    });
    if (primitive.mode > kTriangleFan)
        refuse(numbered("meshes", place_.index) + " has a primitive of mode " +
               std::to_string(primitive.mode));
}

void Reading::readAttributes(od::value value, PrimitiveRecord& primitive)
{
    constexpr std::string_view kTexCoord = "TEXCOORD_";
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "POSITION"))
            primitive.position = index(field);
        else if (is(key, "NORMAL"))
            primitive.normal = index(field);
        else if (key.size() == kTexCoord.size() + 1 && key.substr(0, kTexCoord.size()) == kTexCoord) {
            const int set = key.back() - '0';
            if (set >= 0 && set < kTexCoordSets)
                primitive.texCoords[set] = index(field);
        }
    });
}

ElementType elementType(std::string_view name)
{
    constexpr std::string_view kNames[] = {"SCALAR", "VEC2", "VEC3", "VEC4", "MAT2", "MAT3", "MAT4"};
    for (std::size_t i = 0; i < std::size(kNames); ++i)
        if (name == kNames[i])
            return static_cast<ElementType>(i + 1);
    return ElementType::kNoType;
}

void Reading::readAccessor(od::value value, AccessorRecord& accessor)
{
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "bufferView"))
            accessor.view = index(field);
        else if (is(key, "byteOffset"))
            accessor.offset = whole(field);
        else if (is(key, "count"))
            accessor.count = whole(field);
        else if (is(key, "componentType"))
            accessor.componentType = index(field);
        else if (is(key, "type"))
            accessor.type = elementType(text(field));
        else if (is(key, "normalized"))
            accessor.normalized = field.get_bool();
        else if (is(key, "sparse")) {
            accessor.isSparse = true;
            readSparse(field, accessor.sparse);
        }
    });
}

void Reading::readSparse(od::value value, SparseRecord& sparse)
{
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "count"))
            sparse.count = whole(field);
        else if (is(key, "indices"))
            eachField(field, [&](std::string_view inner, od::value detail) {
                if (is(inner, "bufferView"))
                    sparse.indexView = index(detail);
                else if (is(inner, "byteOffset"))
                    sparse.indexOffset = whole(detail);
                else if (is(inner, "componentType"))
                    sparse.indexType = index(detail);
            });
        else if (is(key, "values"))
            eachField(field, [&](std::string_view inner, od::value detail) {
                if (is(inner, "bufferView"))
                    sparse.valueView = index(detail);
                else if (is(inner, "byteOffset"))
                    sparse.valueOffset = whole(detail);
            });
    });
}

void Reading::readView(od::value value, ViewRecord& view)
{
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "buffer"))
            view.buffer = index(field);
        else if (is(key, "byteOffset"))
            view.offset = whole(field);
        else if (is(key, "byteLength"))
            view.length = whole(field);
        else if (is(key, "byteStride"))
            view.stride = whole(field);
    });
}

void Reading::readBuffer(od::value value, BufferRecord& buffer)
{
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "uri")) {
            buffer.uri = text(field);
            buffer.hasUri = true;
        } else if (is(key, "byteLength"))
            buffer.length = whole(field);
    });
}

void Reading::readMaterial(od::value value, MaterialRecord& material)
{
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "name"))
            material.name = text(field);
        else if (is(key, "pbrMetallicRoughness"))
            readMetallic(field, material);
        else if (is(key, "emissiveFactor"))
            reals(field, material.emission);
        else if (is(key, "alphaCutoff"))
            material.alphaCutoff = real(field);
        else if (is(key, "extensions"))
            readMaterialExtensions(field, material);
        else if (is(key, "alphaMode")) {
            const std::string_view mode = text(field);
            material.alphaMode = mode == "BLEND"  ? AlphaMode::kBlend
                                 : mode == "MASK" ? AlphaMode::kMask
                                                  : AlphaMode::kOpaque;
        }
    });
}

void Reading::readMetallic(od::value value, MaterialRecord& material)
{
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "baseColorFactor"))
            reals(field, material.baseColour);
        else if (is(key, "baseColorTexture"))
            readTextureUse(field, material.baseTexture);
        else if (is(key, "metallicFactor"))
            material.metallic = real(field);
        else if (is(key, "roughnessFactor"))
            material.roughness = real(field);
    });
}

void Reading::readMaterialExtensions(od::value value, MaterialRecord& material)
{
    eachField(value, [&](std::string_view key, od::value extension) {
        if (is(key, "KHR_materials_unlit"))
            material.unlit = true;
        else if (is(key, "KHR_materials_pbrSpecularGlossiness"))
            readGlossy(extension, material);
        else if (is(key, "KHR_materials_emissive_strength"))
            eachField(extension, [&](std::string_view inner, od::value field) {
                if (is(inner, "emissiveStrength"))
                    material.emissionStrength = real(field);
            });
        else if (is(key, "KHR_materials_transmission"))
            eachField(extension, [&](std::string_view inner, od::value field) {
                if (is(inner, "transmissionFactor"))
                    material.transmission = real(field);
            });
    });
}

void Reading::readGlossy(od::value value, MaterialRecord& material)
{
    material.isSpecularGlossy = true;
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "diffuseFactor"))
            reals(field, material.diffuseColour);
        else if (is(key, "diffuseTexture"))
            readTextureUse(field, material.diffuseTexture);
        else if (is(key, "specularFactor"))
            reals(field, material.specularColour);
        else if (is(key, "glossinessFactor"))
            material.glossiness = real(field);
    });
}

void Reading::readTextureUse(od::value value, TextureUse& use)
{
    std::int32_t transformed = kNone;
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "index"))
            use.texture = index(field);
        else if (is(key, "texCoord"))
            use.texCoord = index(field);
        else if (is(key, "extensions"))
            eachField(field, [&](std::string_view inner, od::value extension) {
                if (!is(inner, "KHR_texture_transform"))
                    return;
                TextureUse transform;
                transform.texCoord = kNone;
                readTextureTransform(extension, transform);
                use.offset = transform.offset;
                use.rotation = transform.rotation;
                use.scale = transform.scale;
                transformed = transform.texCoord;
            });
    });
    if (transformed != kNone)
        use.texCoord = transformed;
}

void Reading::readTextureTransform(od::value value, TextureUse& use)
{
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "offset"))
            reals(field, use.offset);
        else if (is(key, "rotation"))
            use.rotation = real(field);
        else if (is(key, "scale"))
            reals(field, use.scale);
        else if (is(key, "texCoord"))
            use.texCoord = index(field);
    });
}

void Reading::readTexture(od::value value, std::int32_t& image)
{
    image = kNone;
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "source"))
            image = index(field);
    });
}

void Reading::readImage(od::value value, ImageRecord& image)
{
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "uri")) {
            image.uri = text(field);
            image.hasUri = true;
        } else if (is(key, "bufferView"))
            image.view = index(field);
    });
}

void Reading::readLight(od::value value, LightRecord& light)
{
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "type")) {
            const std::string_view kind = text(field);
            light.kind = kind == "directional" ? LightKind::kDirectional
                         : kind == "point"     ? LightKind::kPoint
                         : kind == "spot"      ? LightKind::kSpot
                                               : LightKind::kUnknown;
        } else if (is(key, "color"))
            reals(field, light.colour);
        else if (is(key, "intensity"))
            light.intensity = real(field);
        else if (is(key, "range"))
            light.range = real(field);
        else if (is(key, "spot"))
            readSpot(field, light);
    });
}

void Reading::readSpot(od::value value, LightRecord& light)
{
    eachField(value, [&](std::string_view key, od::value field) {
        if (is(key, "innerConeAngle"))
            light.innerCone = real(field);
        else if (is(key, "outerConeAngle"))
            light.outerCone = real(field);
    });
}

// Only that it is there: where it looks from is the business of its node.
void Reading::readCamera(od::value value, char& camera)
{
    camera = 0;
    eachField(value, [](std::string_view, od::value) {});
}

// Some writers fill chunks up with zeros instead of blanks, and some files begin with a byte-order mark.
Bytes trimmed(Bytes json)
{
    constexpr unsigned char kMark[] = {0xEF, 0xBB, 0xBF};
    if (json.size() >= 3 && std::memcmp(json.data(), kMark, 3) == 0)
        json = json.subspan(3);
    while (!json.empty() && json.back() == 0)
        json = json.first(json.size() - 1);
    return json;
}

}  // namespace

struct JsonDocument::Parser {
    od::parser parser;
    std::unique_ptr<char[]> copy;

    // The tokeniser reads a little behind the end of its text.
    simdjson::padded_string_view padded(Bytes json, Bytes file)
    {
        const auto behind =
            static_cast<std::size_t>(file.data() + file.size() - (json.data() + json.size()));
        const auto* text = reinterpret_cast<const char*>(json.data());
        if (behind < simdjson::SIMDJSON_PADDING) {
            copy.reset(new char[json.size() + simdjson::SIMDJSON_PADDING]);
            std::memcpy(copy.get(), text, json.size());
            std::memset(copy.get() + json.size(), 0, simdjson::SIMDJSON_PADDING);
            text = copy.get();
        }
        return simdjson::padded_string_view(text, json.size(), json.size() + simdjson::SIMDJSON_PADDING);
    }
};

JsonDocument::JsonDocument(Bytes json, Bytes file) : parser_(std::make_unique<Parser>())
{
    const simdjson::padded_string_view text = parser_->padded(trimmed(json), file);
    Reading reading(records_, text);
    try {
        od::document document = parser_->parser.iterate(text);
        reading.readRoot(document.get_object());
        if (document.current_location().error() != simdjson::OUT_OF_BOUNDS)
            refuse("the JSON goes on behind its end");
    } catch (const simdjson::simdjson_error& error) {
        if (error.error() == simdjson::MEMALLOC)
            throw std::bad_alloc();
        std::string reason = "the JSON";
        if (const std::string place = reading.place().text(); !place.empty())
            reason.append(" at ").append(place);
        refuse(reason.append(": ").append(error.what()));
    }
}

JsonDocument::~JsonDocument() = default;

}  // namespace ovdl::gltf
