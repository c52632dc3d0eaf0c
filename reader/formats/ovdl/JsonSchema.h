// What the schema tells about itself, in the form in which JSON is written and read by it: no field is
// listed by hand.
#pragma once

#include <flatbuffers/reflection_generated.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ovdl::json {

using Base = reflection::BaseType;

struct Object;

struct Field {
    std::string name;
    Base type = reflection::None;
    Base element = reflection::None;  ///< Of the elements of a vector or an array.
    const Object* object = nullptr;   ///< Of the field or its elements, where they are no scalars.
    std::uint16_t offset = 0;         ///< In a struct of the bytes, in a table of its list of fields.
    std::uint16_t length = 0;         ///< Of an array.
    std::uint64_t defaultBits = 0;    ///< Of a scalar, as it stands in memory.
    bool isText = false;              ///< Numbers of texts, which JSON shows as texts.
    bool isBits = false;              ///< Bits of no one meaning.
    bool isHidden = false;            ///< Stands in JSON elsewhere: with whoever refers to it.
    const Field* run = nullptr;       ///< The root's vector of which this is a run.

    bool isScalar() const { return type >= reflection::UType && type <= reflection::Double; }
    bool isVector() const { return type == reflection::Vector; }
    bool isArray() const { return type == reflection::Array; }
    bool isStruct() const;
    bool isTable() const;
};

struct Object {
    std::string name;  ///< Without its namespace.
    bool isStruct = false;
    std::uint32_t size = 0;       ///< Of a struct.
    std::uint32_t alignment = 1;  ///< Of a struct.
    std::vector<Field> fields;    ///< As the schema orders them.
    bool isBare = false;          ///< A struct of one array only, which is an array in JSON.
    bool hasRuns = false;
    /// A struct of which a part makes no sense, such as a matrix without its scale.
    bool isWhole = false;

    /// The field of that name, or null. The search begins at number `hint`.
    const Field* find(std::string_view key, std::size_t hint) const;
    const Field& field(std::string_view key) const;
};

/// How many bytes a scalar takes.
std::uint32_t widthOf(Base type);

/// The two root tables, described. Made once; lives as long as the process.
struct Roots {
    const Object& document;
    const Object& tessellation;
};
const Roots& roots();

}  // namespace ovdl::json
