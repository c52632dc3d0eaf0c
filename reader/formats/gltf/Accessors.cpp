#include "reader/formats/gltf/Accessors.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

#include "reader/formats/gltf/Refusal.h"

namespace ovdl::gltf {
namespace {

// Elements of accessors without bytes; as long as the longest element.
alignas(8) constexpr unsigned char kZeros[64] = {};

std::size_t componentSize(std::int32_t type)
{
    switch (type) {
    case kInt8:
    case kUint8:
        return 1;
    case kInt16:
    case kUint16:
        return 2;
    case kUint32:
    case kFloat32:
        return 4;
    default:
        return 0;
    }
}

// Columns of matrices begin at multiples of four bytes.
std::size_t matrixSize(std::size_t rows, std::size_t component)
{
    return rows * ((rows * component + 3) / 4 * 4);
}

std::size_t elementSize(const AccessorRecord& record)
{
    const std::size_t component = componentSize(record.componentType);
    switch (record.type) {
    case ElementType::kScalar:
        return component;
    case ElementType::kVec2:
        return 2 * component;
    case ElementType::kVec3:
        return 3 * component;
    case ElementType::kVec4:
        return 4 * component;
    case ElementType::kMat2:
        return matrixSize(2, component);
    case ElementType::kMat3:
        return matrixSize(3, component);
    case ElementType::kMat4:
        return matrixSize(4, component);
    default:
        return 0;
    }
}

template <class T>
T loaded(const unsigned char* bytes)
{
    T value;
    std::memcpy(&value, bytes, sizeof(T));
    return value;
}

template <class T>
float toFloat(T value, bool normalized)
{
    if constexpr (std::is_same_v<T, float>)
        return value;
    if (!normalized)
        return static_cast<float>(value);
    const float scaled = static_cast<float>(value) / static_cast<float>(std::numeric_limits<T>::max());
    return std::max(scaled, -1.0f);
}

template <class T>
void gatherAs(const Elements& elements, int components, const std::uint32_t* order, std::size_t count,
              float* target)
{
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned char* source = elements.data + order[i] * elements.stride;
        for (int c = 0; c < components; ++c)
            *target++ = toFloat(loaded<T>(source + c * sizeof(T)), elements.normalized);
    }
}

// Most documents hold floats, and those are moved as they are.
template <int components>
void gatherFloats(const Elements& elements, const std::uint32_t* order, std::size_t count, float* target)
{
    for (std::size_t i = 0; i < count; ++i) {
        std::memcpy(target, elements.data + order[i] * elements.stride, components * sizeof(float));
        target += components;
    }
}

template <class T>
void copyAs(const Elements& elements, std::size_t first, std::size_t count, std::uint32_t* target)
{
    for (std::size_t i = 0; i < count; ++i)
        target[i] = loaded<T>(elements.data + (first + i) * elements.stride);
}

}  // namespace

void gather(const Elements& elements, int components, const std::uint32_t* order, std::size_t count,
            float* target)
{
    switch (elements.componentType) {
    case kInt8:
        return gatherAs<std::int8_t>(elements, components, order, count, target);
    case kUint8:
        return gatherAs<std::uint8_t>(elements, components, order, count, target);
    case kInt16:
        return gatherAs<std::int16_t>(elements, components, order, count, target);
    case kUint16:
        return gatherAs<std::uint16_t>(elements, components, order, count, target);
    case kUint32:
        return gatherAs<std::uint32_t>(elements, components, order, count, target);
    default:
        break;
    }
    if (components == 3)
        gatherFloats<3>(elements, order, count, target);
    else
        gatherFloats<2>(elements, order, count, target);
}

void copyIndices(const Elements& elements, std::size_t first, std::size_t count, std::uint32_t* target)
{
    if (elements.componentType == kUint8)
        copyAs<std::uint8_t>(elements, first, count, target);
    else if (elements.componentType == kUint16)
        copyAs<std::uint16_t>(elements, first, count, target);
    else
        copyAs<std::uint32_t>(elements, first, count, target);
}

Accessors::Accessors(const Records& records, const Buffers& buffers, Budget& budget)
    : records_(records), buffers_(buffers), budget_(budget), made_(records.accessors.size())
{
    for (std::size_t i = 0; i < records.views.size(); ++i)
        buffers.view(static_cast<std::int32_t>(i));
    for (std::size_t i = 0; i < records.accessors.size(); ++i)
        check(i);
}

void Accessors::check(std::size_t index) const
{
    const AccessorRecord& record = records_.accessors[index];
    const std::size_t size = elementSize(record);
    if (size == 0)
        refuse(numbered("accessors", index) + " has no known type");
    if (record.count > budget_.limit() / size)
        refuse(numbered("accessors", index) + " claims more elements than the document justifies");
    if (record.view != kNone)
        span(index, record.view, record.offset, record.count, strideOf(record), size);
    if (record.isSparse)
        checkSparse(index);
}

void Accessors::checkSparse(std::size_t index) const
{
    const AccessorRecord& record = records_.accessors[index];
    const SparseRecord& sparse = record.sparse;
    const std::size_t indexSize = componentSize(sparse.indexType);
    const bool isUnsigned =
        sparse.indexType == kUint8 || sparse.indexType == kUint16 || sparse.indexType == kUint32;
    if (!isUnsigned || sparse.indexView == kNone || sparse.valueView == kNone)
        refuse(numbered("accessors", index) + ".sparse is not complete");
    if (sparse.count > record.count)
        refuse(numbered("accessors", index) + ".sparse has more elements than the accessor");
    const std::size_t size = elementSize(record);
    span(index, sparse.indexView, sparse.indexOffset, sparse.count, indexSize, indexSize);
    span(index, sparse.valueView, sparse.valueOffset, sparse.count, size, size);
}

std::size_t Accessors::strideOf(const AccessorRecord& record) const
{
    const std::uint64_t stride = records_.views[static_cast<std::size_t>(record.view)].stride;
    return stride != 0 ? stride : elementSize(record);
}

// The bytes from the first element to the end of the last.
Bytes Accessors::span(std::size_t index, std::int32_t view, std::uint64_t offset, std::uint64_t count,
                      std::uint64_t stride, std::uint64_t size) const
{
    const Bytes bytes = buffers_.view(view);
    const bool startsInside = offset <= bytes.size();
    const std::uint64_t left = startsInside ? bytes.size() - offset : 0;
    const bool fits =
        startsInside && (count == 0 || (size <= left && (count - 1) <= (left - size) / stride));
    if (!fits)
        refuse(numbered("accessors", index) + " reaches out of its buffer view");
    return bytes.subspan(offset);
}

Elements Accessors::plain(std::size_t index) const
{
    const AccessorRecord& record = records_.accessors[index];
    Elements result;
    result.count = record.count;
    result.componentType = record.componentType;
    result.normalized = record.normalized;
    result.data = kZeros;
    if (record.view != kNone) {
        result.stride = strideOf(record);
        result.data =
            span(index, record.view, record.offset, record.count, result.stride, elementSize(record))
                .data();
    }
    return result;
}

Elements Accessors::sparse(std::size_t index)
{
    const AccessorRecord& record = records_.accessors[index];
    const std::size_t size = elementSize(record);
    Elements result = plain(index);
    if (!made_[index]) {
        budget_.charge(record.count, size);
        std::unique_ptr<unsigned char[]> whole(new unsigned char[record.count * size]);
        for (std::size_t i = 0; i < record.count; ++i)
            std::memcpy(&whole[i * size], result.data + i * result.stride, size);
        const SparseRecord& sparse = record.sparse;
        const std::size_t indexSize = componentSize(sparse.indexType);
        Elements places;
        places.data =
            span(index, sparse.indexView, sparse.indexOffset, sparse.count, indexSize, indexSize).data();
        places.stride = indexSize;
        places.componentType = sparse.indexType;
        const unsigned char* values =
            span(index, sparse.valueView, sparse.valueOffset, sparse.count, size, size).data();
        for (std::size_t i = 0; i < sparse.count; ++i) {
            std::uint32_t place = 0;
            copyIndices(places, i, 1, &place);
            if (place >= record.count)
                refuse(numbered("accessors", index) + ".sparse names element " + std::to_string(place) +
                       " of " + std::to_string(record.count));
            std::memcpy(&whole[place * size], values + i * size, size);
        }
        made_[index] = std::move(whole);
    }
    result.data = made_[index].get();
    result.stride = size;
    return result;
}

Elements Accessors::elements(std::int32_t index, ElementType type)
{
    const auto position = static_cast<std::size_t>(index);
    const AccessorRecord& record = records_.accessors[position];
    if (record.type != type)
        refuse(numbered("accessors", position) + " is not of the type that its use asks for");
    return record.isSparse ? sparse(position) : plain(position);
}

Elements Accessors::indices(std::int32_t index)
{
    const Elements result = elements(index, ElementType::kScalar);
    const bool isUnsigned = result.componentType == kUint8 || result.componentType == kUint16 ||
                            result.componentType == kUint32;
    if (!isUnsigned)
        refuse(numbered("accessors", static_cast<std::size_t>(index)) + " is no list of indices");
    return result;
}

}  // namespace ovdl::gltf
