#include "reader/formats/ovdl/TessellationBuffer.h"

#include <ovdl_schema/document_generated.h>

#include <cstring>
#include <span>
#include <vector>

#include "reader/formats/ovdl/ReaderArrays.h"

namespace ovdl {
namespace {

using flatbuffers::Offset;
using flatbuffers::Vector;
using Faces = std::span<const uoTempFaceTessData_c* const>;
using Integers = Offset<Vector<std::int32_t>>;

// Key and number of the object, pair by pair.
template <class T>
std::vector<std::int32_t> numberPairs(const std::map<int, T*>& objects, const ObjectNumbers<T>& numbers)
{
    std::vector<std::int32_t> pairs;
    for (const auto& [key, object] : objects)
        pairs.insert(pairs.end(), {key, numbers.of(object)});
    return pairs;
}

template <class T>
std::vector<std::int32_t> numbersOf(const ovPointerArray<T>& array, const ObjectNumbers<T>& numbers)
{
    std::vector<std::int32_t> list;
    for (const T* object : elementsOf(array))
        list.push_back(numbers.of(object));
    return list;
}

// What the first piece has: everything but the faces.
struct Records {
    Integers bodies;
    Integers modelVizProps;
    Integers decalsByConfig;
    Offset<Vector<Offset<fb::Body>>> bodyRecords;
    Offset<Vector<const fb::BodyPropInfo*>> propInfos;
};

class RecordBuilder {
public:
    RecordBuilder(const TessellationLayout& layout, const Inventory& inventory, BufferBuilder& builder)
        : layout_(layout), inventory_(inventory), builder_(builder)
    {
    }

    Records build(const uoTempPartTessData_c& tessData)
    {
        Records records;
        records.bodies = builder_.vector<std::int32_t>(numbersOf(tessData.bodies, layout_.bodies));
        records.modelVizProps =
            builder_.vector<std::int32_t>(numberPairs(tessData.modelVizProps, inventory_.visuals));
        records.decalsByConfig = builder_.vector<std::int32_t>(decalRuns(tessData));
        records.bodyRecords = bodies();
        records.propInfos = propInfos();
        return records;
    }

private:
    // Configuration, count, so many numbers.
    std::vector<std::int32_t> decalRuns(const uoTempPartTessData_c& tessData) const
    {
        std::vector<std::int32_t> runs;
        for (const auto& [config, decals] : tessData.decalsByConfig) {
            runs.insert(runs.end(), {config, static_cast<std::int32_t>(decals.size())});
            for (const uoDecalProperties* decal : decals)
                runs.push_back(inventory_.decals.of(decal));
        }
        return runs;
    }

    Offset<Vector<Offset<fb::Body>>> bodies()
    {
        std::vector<Offset<fb::Body>> made;
        for (const uoTempBodyTessData_c* record : layout_.bodies.objects())
            made.push_back(body(*record));
        return builder_.vector<Offset<fb::Body>>(made);
    }

    Offset<fb::Body> body(const uoTempBodyTessData_c& record)
    {
        const Integers faces = builder_.vector<std::int32_t>(numbersOf(record.faces, layout_.faces));
        const Integers vizProps =
            builder_.vector<std::int32_t>(numberPairs(record.bodyVizProps, inventory_.visuals));
        const Integers infos =
            builder_.vector<std::int32_t>(numberPairs(record.bodyPropInfos, layout_.propInfos));
        fb::BodyBuilder table(builder_.room(BufferBuilder::kLargestTable));
        table.add_faces(faces);
        table.add_flag(record.flag);
        table.add_level(record.level);
        table.add_bodyVizProps(vizProps);
        table.add_bodyPropInfos(infos);
        return table.Finish();
    }

    Offset<Vector<const fb::BodyPropInfo*>> propInfos()
    {
        std::vector<fb::BodyPropInfo> made;
        for (const uoBodyPropInfo_c* info : layout_.propInfos.objects())
            made.emplace_back(info->shown);
        return builder_.structs<fb::BodyPropInfo>(made);
    }

    const TessellationLayout& layout_;
    const Inventory& inventory_;
    BufferBuilder& builder_;
};

// Runs of one vector, one behind the other.
class Runs {
public:
    fb::Range next(std::size_t count)
    {
        const std::uint32_t first = end_;
        end_ += static_cast<std::uint32_t>(count);
        return {first, static_cast<std::uint32_t>(count)};
    }

private:
    std::uint32_t end_ = 0;
};

std::vector<fb::Face> faceRecords(Faces faces)
{
    Runs stripLengths, points, normals, uvs, vizProps, modes;
    std::vector<fb::Face> records;
    for (const uoTempFaceTessData_c* face : faces)
        records.emplace_back(
            face->stripCount, face->hasUVs, face->faceId, face->faceKey,
            stripLengths.next(elementsOf(face->stripLengths).size()),
            points.next(elementsOf(face->points).size()), normals.next(elementsOf(face->normals).size()),
            uvs.next(elementsOf(face->uvs).size()), vizProps.next(face->faceVizProps.size()),
            modes.next(face->vizPropModes.size()));
    return records;
}

template <class T>
using ArrayMember = ovArrayView<T> uoTempFaceTessData_c::*;

template <class T>
std::size_t countOf(Faces faces, ArrayMember<T> member)
{
    std::size_t count = 0;
    for (const uoTempFaceTessData_c* face : faces)
        count += elementsOf(face->*member).size();
    return count;
}

// The arrays of all faces, one behind the other, copied once.
template <class T>
Offset<Vector<T>> concatenated(Faces faces, ArrayMember<T> member, BufferBuilder& builder)
{
    const std::size_t count = countOf(faces, member);
    if (count == 0)
        return 0;
    T* to = nullptr;
    const Offset<Vector<T>> vector =
        builder.room(BufferBuilder::vectorBytes(count, sizeof(T))).CreateUninitializedVector<T>(count, &to);
    for (const uoTempFaceTessData_c* face : faces) {
        const std::span<const T> values = elementsOf(face->*member);
        if (!values.empty())
            std::memcpy(to, values.data(), values.size_bytes());
        to += values.size();
    }
    return vector;
}

std::vector<fb::ConfigValue> vizPropsOf(Faces faces, const Inventory& inventory)
{
    std::vector<fb::ConfigValue> values;
    for (const uoTempFaceTessData_c* face : faces)
        for (const auto& [config, visual] : face->faceVizProps)
            values.emplace_back(config, inventory.visuals.of(visual));
    return values;
}

std::vector<fb::ConfigValue> modesOf(Faces faces)
{
    std::vector<fb::ConfigValue> values;
    for (const uoTempFaceTessData_c* face : faces)
        for (const auto& [config, mode] : face->vizPropModes)
            values.emplace_back(config, static_cast<std::int32_t>(mode));
    return values;
}

}  // namespace

Bytes buildPiece(const uoTempPartTessData_c& tessData, const TessellationLayout& layout, std::size_t number,
                 const Inventory& inventory, BufferBuilder& builder)
{
    const TessellationLayout::Piece& piece = layout.pieces[number];
    const Faces faces =
        Faces(layout.faces.objects()).subspan(piece.firstFace, piece.endFace - piece.firstFace);
    const Records records =
        number == 0 ? RecordBuilder(layout, inventory, builder).build(tessData) : Records();
    const auto faceVector = builder.structs<fb::Face>(faceRecords(faces));
    const auto stripLengths = concatenated(faces, &uoTempFaceTessData_c::stripLengths, builder);
    const auto points = concatenated(faces, &uoTempFaceTessData_c::points, builder);
    const auto normals = concatenated(faces, &uoTempFaceTessData_c::normals, builder);
    const auto uvs = concatenated(faces, &uoTempFaceTessData_c::uvs, builder);
    const auto vizProps = builder.structs<fb::ConfigValue>(vizPropsOf(faces, inventory));
    const auto modes = builder.structs<fb::ConfigValue>(modesOf(faces));
    fb::TessellationBuilder table(builder.room(BufferBuilder::kLargestTable));
    table.add_bodies(records.bodies);
    table.add_modelVizProps(records.modelVizProps);
    table.add_decalsByConfig(records.decalsByConfig);
    table.add_bodyRecords(records.bodyRecords);
    table.add_propInfos(records.propInfos);
    table.add_faces(faceVector);
    table.add_stripLengths(stripLengths);
    table.add_points(points);
    table.add_normals(normals);
    table.add_uvs(uvs);
    table.add_faceVizProps(vizProps);
    table.add_vizPropModes(modes);
    return builder.finish(table.Finish(), kTessellationIdentifier);
}

}  // namespace ovdl
