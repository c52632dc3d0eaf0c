// One FlatBuffer made of one object of JSON.
#pragma once

#include <flatbuffers/flatbuffers.h>

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "reader/formats/ovdl/JsonSchema.h"
#include "reader/formats/ovdl/JsonTokens.h"

namespace ovdl::json {

/// The texts of a document, each once, in the order of their first use.
class TextPool {
public:
    /// 0 for the empty text.
    std::uint32_t numberOf(const std::string& bytes);
    const std::vector<const std::string*>& texts() const { return texts_; }

private:
    std::unordered_map<std::string, std::uint32_t> numbers_;
    std::vector<const std::string*> texts_;
};

/// A whole number that its type can hold. `name` is whose value it is, for reasons.
template <class Number>
Number readWhole(Tokens& tokens, std::string_view name);
extern template std::uint32_t readWhole(Tokens&, std::string_view);

/// Reads by the schema. What is refused is told with its line. Memory is a small multiple of the text that
/// was read, whatever it says: no list of fields is shared by comparing it with all others, and every
/// record takes bytes in the measure of its text.
class BufferReading {
public:
    /// All are borrowed.
    BufferReading(Tokens& tokens, const Object& root, TextPool& texts);

    /// Reads the object of the root table.
    void read();
    /// Adds a vector to it that JSON does not show.
    void addTexts();
    void addStructs(const char* field, const void* structs, std::size_t count);
    /// The buffer, which ends the work.
    std::vector<unsigned char> finish(const char* identifier);

private:
    // A field that was read: its value, where in the buffer it lies, or where among the bytes of structs.
    struct Slot {
        const Field* field;
        std::uint64_t value;
    };
    struct Fields {
        std::vector<Slot> slots;
        std::vector<std::uint8_t> structs;
    };
    using Offset = flatbuffers::uoffset_t;

    template <class Visit>
    std::uint64_t eachField(const Object& object, Visit visit);
    template <class Visit>
    void eachElement(Visit visit);

    Fields readFields(const Object& object);
    std::uint64_t readFieldOf(const Field& field, Fields& fields);
    Offset readTable(const Object& object);
    void readStruct(const Object& object, std::uint8_t* target);
    void requireAll(const Object& object, std::uint64_t seen);
    void readArray(const Field& field, std::uint8_t* target);
    void readRun(const Field& field, std::uint8_t* target);
    Offset readVector(const Field& field);
    Offset readTables(const Field& field);
    void readInto(const Field& vector, std::vector<std::uint8_t>& bytes);
    void readScalar(const Field& field, Base type, std::uint8_t* target);
    std::uint32_t readText(const Field& field);

    Offset addTable(const Object& object, Fields& fields);
    void addSlot(const Slot& slot, const std::vector<std::uint8_t>& structs);
    Offset addVector(const Field& field, const void* bytes, std::size_t size);
    void needRoom(std::size_t bytes);

    Tokens& tokens_;
    const Object& root_;
    TextPool& texts_;
    flatbuffers::FlatBufferBuilder builder_;
    Fields rootFields_;
    /// The root's vectors of which others have runs, by the number of the field.
    std::vector<std::vector<std::uint8_t>> runs_;
    std::string key_;
    std::string text_;
};

}  // namespace ovdl::json
