#include "reader/formats/ovdl/JsonBuffer.h"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <cstring>
#include <type_traits>

#include "reader/formats/ovdl/DocumentStreams.h"
#include "reader/formats/ovdl/Refusal.h"
#include "reader/formats/ovdl/TextEncoding.h"

namespace ovdl::json {
namespace {

constexpr std::size_t kLargestStruct = 128;

// Of structs or numbers in one vector. An empty record is two characters and a comma, whatever it is long
// in memory; those that say something are no shorter as text.
std::uint64_t mostBytes(const Tokens& tokens)
{
    constexpr std::uint64_t kFloor = 1 << 20;
    constexpr std::uint64_t kTimes = 12;
    return std::min(kFloor + kTimes * tokens.size(), kLargestBuffer);
}

std::string takes(std::string_view name, const char* what)
{
    return quoted(name) + " takes " + what;
}

bool beginsNumber(char c)
{
    return c == '-' || (c >= '0' && c <= '9');
}

// Where the first digit that counts stands: 0 for ones, -1 for tenths. `text` is no zero.
std::int64_t decimalPlace(std::string_view text)
{
    constexpr std::int64_t kFar = std::int64_t{1} << 60;
    const std::size_t first = text.find_first_of("123456789");
    const std::size_t mantissaEnd = std::min(text.find_first_of("eE"), text.size());
    const std::size_t point = std::min(text.find('.'), mantissaEnd);
    const auto place =
        static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) - (first < point ? 1 : 0);
    std::string_view digits = text.substr(std::min(mantissaEnd + 1, text.size()));
    if (digits.starts_with('+'))
        digits.remove_prefix(1);
    std::int64_t exponent = 0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    if (parsed.ec == std::errc::result_out_of_range || exponent > kFar || exponent < -kFar)
        exponent = digits.starts_with('-') ? -kFar : kFar;
    return place + exponent;
}

// What lies between zero and the smallest number is nearest to zero; it keeps its sign.
template <class Number>
bool isZeroAfterRounding(std::string_view text, Number& number)
{
    if constexpr (std::is_floating_point_v<Number>) {
        number = text.starts_with('-') ? Number{-0.0} : Number{};
        return decimalPlace(text) < 0;
    }
    return false;
}

template <class Number>
Number parse(Tokens& tokens, std::string_view name, const char* what)
{
    if (!beginsNumber(tokens.peek()))
        tokens.fail(takes(name, what));
    const std::string_view text = tokens.number();
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::result_out_of_range && isZeroAfterRounding(text, number))
        return number;
    if (error == std::errc::result_out_of_range)
        tokens.fail(quoted(text) + " is beyond what " + quoted(name) + " can hold");
    if (error != std::errc() || end != text.data() + text.size())
        tokens.fail(takes(name, what));
    return number;
}

template <class Number>
void readWholeInto(Tokens& tokens, std::string_view name, std::uint8_t* target)
{
    const Number number = readWhole<Number>(tokens, name);
    std::memcpy(target, &number, sizeof(number));
}

// Digits go straight to the type of the field: through double, some would be rounded twice.
template <class Real>
void readRealInto(Tokens& tokens, std::string_view name, std::uint8_t* target)
{
    if (tokens.peek() == '"') {
        const std::uint64_t bits = tokens.bits(2 * sizeof(Real));
        std::memcpy(target, &bits, sizeof(Real));
        return;
    }
    const Real number = parse<Real>(tokens, name, "a number, or its bits as a text");
    std::memcpy(target, &number, sizeof(number));
}

std::size_t sizeOf(const Field& field)
{
    return field.isScalar() ? widthOf(field.type) : field.isStruct() ? field.object->alignment : 4;
}

}  // namespace

std::uint32_t TextPool::numberOf(const std::string& bytes)
{
    if (bytes.empty())
        return 0;
    const auto [place, isNew] = numbers_.try_emplace(bytes, static_cast<std::uint32_t>(texts_.size() + 1));
    if (isNew)
        texts_.push_back(&place->first);
    return place->second;
}

// -0 is no whole number of an unsigned type to from_chars, and not worth to be one here.
template <class Number>
Number readWhole(Tokens& tokens, std::string_view name)
{
    return parse<Number>(tokens, name, "a whole number");
}
template std::uint32_t readWhole(Tokens&, std::string_view);

BufferReading::BufferReading(Tokens& tokens, const Object& root, TextPool& texts)
    : tokens_(tokens), root_(root), texts_(texts), builder_(256), runs_(root.fields.size())
{
    // A builder looks for an equal list of fields among all that it has, one by one.
    builder_.DedupVtables(false);
}

template <class Visit>
std::uint64_t BufferReading::eachField(const Object& object, Visit visit)
{
    assert(object.fields.size() <= 64);
    tokens_.expect('{');
    std::uint64_t seen = 0;
    std::size_t next = 0;
    if (tokens_.take('}'))
        return seen;
    do {
        tokens_.key(key_);
        const Field* field = object.find(key_, next);
        if (!field || field->isHidden)
            tokens_.fail("there is no key " + quoted(key_) + " in " + object.name);
        const auto number = static_cast<std::size_t>(field - object.fields.data());
        if (seen >> number & 1)
            tokens_.fail("the key " + quoted(key_) + " stands twice in the same " + object.name);
        seen |= std::uint64_t{1} << number;
        next = number + 1;
        visit(*field);
    } while (tokens_.take(','));
    tokens_.expect('}');
    return seen;
}

template <class Visit>
void BufferReading::eachElement(Visit visit)
{
    tokens_.expect('[');
    if (tokens_.take(']'))
        return;
    do
        visit();
    while (tokens_.take(','));
    tokens_.expect(']');
}

void BufferReading::read()
{
    rootFields_ = readFields(root_);
}

BufferReading::Fields BufferReading::readFields(const Object& object)
{
    Fields fields;
    eachField(object, [&](const Field& field) {
        const std::uint64_t value = readFieldOf(field, fields);
        fields.slots.push_back({&field, value});
    });
    return fields;
}

std::uint64_t BufferReading::readFieldOf(const Field& field, Fields& fields)
{
    if (field.isScalar()) {
        std::uint8_t bytes[8] = {};
        readScalar(field, field.type, bytes);
        std::uint64_t value;
        std::memcpy(&value, bytes, sizeof(value));
        return value;
    }
    if (field.isVector())
        return readVector(field);
    if (field.isTable())
        return readTable(*field.object);
    const std::size_t place = fields.structs.size();
    fields.structs.resize(place + field.object->size);
    if (field.run)
        readRun(field, fields.structs.data() + place);
    else
        readStruct(*field.object, fields.structs.data() + place);
    return place;
}

BufferReading::Offset BufferReading::readTable(const Object& object)
{
    Fields fields = readFields(object);
    return addTable(object, fields);
}

void BufferReading::readStruct(const Object& object, std::uint8_t* target)
{
    if (object.isBare)
        return readArray(object.fields[0], target);
    const std::uint64_t seen = eachField(object, [&](const Field& field) {
        if (field.isArray())
            readArray(field, target + field.offset);
        else if (field.run)
            readRun(field, target + field.offset);
        else
            readScalar(field, field.type, target + field.offset);
    });
    if (object.isWhole)
        requireAll(object, seen);
}

void BufferReading::requireAll(const Object& object, std::uint64_t seen)
{
    for (std::size_t i = 0; i < object.fields.size(); ++i)
        if (!(seen >> i & 1))
            tokens_.fail("a whole " + object.name + " is needed: " + quoted(object.fields[i].name) +
                         " is missing");
}

void BufferReading::readArray(const Field& field, std::uint8_t* target)
{
    const std::string expected = "there must be " + std::to_string(field.length) + " numbers here";
    std::size_t count = 0;
    eachElement([&] {
        if (count == field.length)
            tokens_.fail(expected);
        readScalar(field, field.element, target + count * widthOf(field.element));
        ++count;
    });
    if (count != field.length)
        tokens_.fail(expected);
}

void BufferReading::readRun(const Field& field, std::uint8_t* target)
{
    const Field& vector = *field.run;
    std::vector<std::uint8_t>& bytes = runs_[static_cast<std::size_t>(&vector - root_.fields.data())];
    const std::size_t stride = vector.object ? vector.object->size : widthOf(vector.element);
    const std::size_t before = bytes.size();
    readInto(vector, bytes);
    const std::uint32_t range[2] = {static_cast<std::uint32_t>(before / stride),
                                    static_cast<std::uint32_t>((bytes.size() - before) / stride)};
    std::memcpy(target, range, sizeof(range));
}

BufferReading::Offset BufferReading::readVector(const Field& field)
{
    if (field.element == reflection::Obj && !field.object->isStruct)
        return readTables(field);
    std::vector<std::uint8_t> bytes;
    readInto(field, bytes);
    return addVector(field, bytes.data(), bytes.size());
}

BufferReading::Offset BufferReading::readTables(const Field& field)
{
    std::vector<Offset> offsets;
    eachElement([&] { offsets.push_back(readTable(*field.object)); });
    needRoom(offsets.size() * sizeof(Offset));
    builder_.StartVector(offsets.size(), sizeof(Offset));
    for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset)
        builder_.PushElement(flatbuffers::Offset<void>(*offset));
    return builder_.EndVector(offsets.size());
}

void BufferReading::readInto(const Field& vector, std::vector<std::uint8_t>& bytes)
{
    const std::size_t stride = vector.object ? vector.object->size : widthOf(vector.element);
    assert(stride <= kLargestStruct);
    eachElement([&] {
        std::uint8_t element[kLargestStruct] = {};
        if (vector.object)
            readStruct(*vector.object, element);
        else
            readScalar(vector, vector.element, element);
        if (bytes.size() + stride > mostBytes(tokens_))
            tokens_.fail("a text of this size has no room for so many records");
        bytes.insert(bytes.end(), element, element + stride);
    });
}

void BufferReading::readScalar(const Field& field, Base type, std::uint8_t* target)
{
    if (field.isText) {
        const std::uint32_t number = readText(field);
        std::memcpy(target, &number, sizeof(number));
        return;
    }
    if (field.isBits) {
        const std::uint64_t bits = tokens_.bits(2 * widthOf(type));
        std::memcpy(target, &bits, widthOf(type));
        return;
    }
    switch (type) {
    case reflection::Bool:
        *target = tokens_.boolean();
        break;
    case reflection::Float:
        readRealInto<float>(tokens_, field.name, target);
        break;
    case reflection::Double:
        readRealInto<double>(tokens_, field.name, target);
        break;
    case reflection::Byte:
        readWholeInto<std::int8_t>(tokens_, field.name, target);
        break;
    case reflection::Short:
        readWholeInto<std::int16_t>(tokens_, field.name, target);
        break;
    case reflection::UShort:
        readWholeInto<std::uint16_t>(tokens_, field.name, target);
        break;
    case reflection::Int:
        readWholeInto<std::int32_t>(tokens_, field.name, target);
        break;
    case reflection::UInt:
        readWholeInto<std::uint32_t>(tokens_, field.name, target);
        break;
    case reflection::Long:
        readWholeInto<std::int64_t>(tokens_, field.name, target);
        break;
    case reflection::ULong:
        readWholeInto<std::uint64_t>(tokens_, field.name, target);
        break;
    default:
        readWholeInto<std::uint8_t>(tokens_, field.name, target);
        break;
    }
}

std::uint32_t BufferReading::readText(const Field& field)
{
    const char next = tokens_.peek();
    if (next == '"') {
        tokens_.string(text_);
    } else if (next == '[') {
        std::wstring values;
        eachElement([&] { values += static_cast<wchar_t>(readWhole<std::uint32_t>(tokens_, field.name)); });
        text_ = encodeText(values);
    } else {
        tokens_.fail(takes(field.name, "a text"));
    }
    return texts_.numberOf(text_);
}

// The largest fields first, so that nothing is lost to alignment.
BufferReading::Offset BufferReading::addTable(const Object& object, Fields& fields)
{
    needRoom(object.fields.size() * 10 + fields.structs.size() * 2);
    std::stable_sort(fields.slots.begin(), fields.slots.end(),
                     [](const Slot& a, const Slot& b) { return sizeOf(*a.field) > sizeOf(*b.field); });
    const Offset start = builder_.StartTable();
    for (const Slot& slot : fields.slots)
        addSlot(slot, fields.structs);
    return builder_.EndTable(start);
}

void BufferReading::addSlot(const Slot& slot, const std::vector<std::uint8_t>& structs)
{
    const Field& field = *slot.field;
    if (field.isStruct()) {
        builder_.Align(field.object->alignment);
        builder_.PushBytes(structs.data() + slot.value, field.object->size);
        builder_.AddStructOffset(field.offset, builder_.GetSize());
    } else if (!field.isScalar()) {
        builder_.AddOffset(field.offset, flatbuffers::Offset<void>(static_cast<Offset>(slot.value)));
    } else if (sizeOf(field) == 8) {
        builder_.AddElement<std::uint64_t>(field.offset, slot.value);
    } else if (sizeOf(field) == 4) {
        builder_.AddElement<std::uint32_t>(field.offset, static_cast<std::uint32_t>(slot.value));
    } else if (sizeOf(field) == 2) {
        builder_.AddElement<std::uint16_t>(field.offset, static_cast<std::uint16_t>(slot.value));
    } else {
        builder_.AddElement<std::uint8_t>(field.offset, static_cast<std::uint8_t>(slot.value));
    }
}

BufferReading::Offset BufferReading::addVector(const Field& field, const void* bytes, std::size_t size)
{
    const std::size_t stride = field.object ? field.object->size : widthOf(field.element);
    const std::size_t alignment = field.object ? field.object->alignment : stride;
    needRoom(size);
    builder_.StartVector(size / alignment, alignment);
    if (size != 0)
        builder_.PushBytes(static_cast<const std::uint8_t*>(bytes), size);
    return builder_.EndVector(size / stride);
}

// The builder has no bound of its own.
void BufferReading::needRoom(std::size_t bytes)
{
    constexpr std::uint64_t kReserve = 4096;
    if (builder_.GetSize() + bytes + kReserve >= kLargestBuffer)
        refuse("the document is too large");
}

void BufferReading::addTexts()
{
    if (texts_.texts().empty())
        return;
    std::vector<Offset> offsets;
    offsets.reserve(texts_.texts().size());
    for (const std::string* text : texts_.texts()) {
        needRoom(text->size() + 16);
        offsets.push_back(builder_.CreateString(*text).o);
    }
    needRoom(offsets.size() * sizeof(Offset));
    builder_.StartVector(offsets.size(), sizeof(Offset));
    for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset)
        builder_.PushElement(flatbuffers::Offset<void>(*offset));
    rootFields_.slots.push_back({&root_.field("texts"), builder_.EndVector(offsets.size())});
}

void BufferReading::addStructs(const char* name, const void* structs, std::size_t count)
{
    const Field& field = root_.field(name);
    rootFields_.slots.push_back({&field, addVector(field, structs, count * field.object->size)});
}

std::vector<unsigned char> BufferReading::finish(const char* identifier)
{
    for (std::size_t i = 0; i < runs_.size(); ++i)
        if (!runs_[i].empty()) {
            const Field& field = root_.fields[i];
            rootFields_.slots.push_back({&field, addVector(field, runs_[i].data(), runs_[i].size())});
            runs_[i] = {};
        }
    const Offset root = addTable(root_, rootFields_);
    builder_.Finish(flatbuffers::Offset<void>(root), identifier);
    const std::uint8_t* bytes = builder_.GetBufferPointer();
    return {bytes, bytes + builder_.GetSize()};
}

}  // namespace ovdl::json
