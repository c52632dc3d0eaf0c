#include "tests/ovdl/JsonTools.h"

#include <flatbuffers/reflection_generated.h>

#include <ovdl_schema/document_generated.h>
#include <ovdl_schema/reflection_bfbs_generated.h>
#include <algorithm>
#include <cstring>
#include <sstream>

#include "reader/formats/ovdl/TextEncoding.h"

namespace json_tests {
namespace {

namespace fb = ovdl::fb;
using flatbuffers::uoffset_t;
using reflection::BaseType;
using Place = const std::uint8_t*;

const reflection::Schema& schema()
{
    static const std::vector<std::uint8_t> bytes(
        fb::DocumentBinarySchema::data(),
        fb::DocumentBinarySchema::data() + fb::DocumentBinarySchema::size());
    return *reflection::GetSchema(bytes.data());
}

const reflection::Object& objectNamed(const std::string& name)
{
    return *schema().objects()->LookupByKey(("ovdl.fb." + name).c_str());
}

const reflection::Object& objectOf(const reflection::Field& field)
{
    return *schema().objects()->Get(static_cast<uoffset_t>(field.type()->index()));
}

std::vector<const reflection::Field*> inOrder(const reflection::Object& object)
{
    std::vector<const reflection::Field*> fields(object.fields()->begin(), object.fields()->end());
    std::sort(fields.begin(), fields.end(), [](auto* a, auto* b) { return a->offset() < b->offset(); });
    return fields;
}

bool has(const reflection::Field& field, const char* attribute)
{
    return field.attributes() && field.attributes()->LookupByKey(attribute);
}

std::string runOf(const reflection::Field& field)
{
    return has(field, "slice") ? field.attributes()->LookupByKey("slice")->value()->str() : std::string();
}

bool isReal(BaseType type)
{
    return type == reflection::Float || type == reflection::Double;
}

std::size_t widthOf(BaseType type)
{
    switch (type) {
    case reflection::Int:
    case reflection::UInt:
    case reflection::Float:
        return 4;
    case reflection::Long:
    case reflection::ULong:
    case reflection::Double:
        return 8;
    case reflection::Short:
    case reflection::UShort:
        return 2;
    default:
        return 1;
    }
}

std::uint64_t defaultBits(const reflection::Field& field)
{
    std::uint64_t bits = 0;
    const auto type = field.type()->base_type();
    const double real = field.default_real();
    const auto single = static_cast<float>(real);
    const std::int64_t whole = field.default_integer();
    const void* source = &whole;
    if (type == reflection::Double)
        source = &real;
    if (type == reflection::Float)
        source = &single;
    std::memcpy(&bits, source, widthOf(type));
    return bits;
}

std::string shortName(const reflection::Object& object)
{
    const std::string name = object.name()->str();
    return name.substr(name.rfind('.') + 1);
}

bool isHidden(const reflection::Object& owner, const std::string& field)
{
    const std::string name = shortName(owner);
    if (name == "Document")
        return field == "texts" || field == "faceMappings";
    return name == "Tessellation" && (field == "stripLengths" || field == "points" || field == "normals" ||
                                      field == "uvs" || field == "faceVizProps" || field == "vizPropModes");
}

class Meaning {
public:
    Meaning(const reflection::Object& root, Place at) : root_(root), rootAt_(at) {}

    std::string text()
    {
        record(root_, rootAt_);
        return out_.str();
    }

private:
    static Place follow(Place at) { return at + flatbuffers::ReadScalar<uoffset_t>(at); }

    static Place fieldOf(const reflection::Object& object, Place at, const reflection::Field& field)
    {
        return object.is_struct()
                   ? at + field.offset()
                   : reinterpret_cast<const flatbuffers::Table*>(at)->GetAddressOf(field.offset());
    }

    void record(const reflection::Object& object, Place at)
    {
        out_ << shortName(object) << "{";
        for (const reflection::Field* field : inOrder(object))
            if (!isHidden(object, field->name()->str()))
                if (const Place place = fieldOf(object, at, *field))
                    this->field(*field, place);
        out_ << "}\n";
    }

    void field(const reflection::Field& field, Place at)
    {
        const BaseType type = field.type()->base_type();
        const bool isScalar = type <= reflection::Double;
        std::uint64_t bits = 0;
        if (isScalar) {
            std::memcpy(&bits, at, widthOf(type));
            if (bits == defaultBits(field) || (has(field, "text") && textOf(bits).empty()))
                return;
        }
        out_ << field.name()->str() << "=";
        if (isScalar)
            scalar(field, at, type);
        else if (!runOf(field).empty())
            run(runOf(field), at);
        else if (type == reflection::Vector)
            elements(field, follow(at) + 4, flatbuffers::ReadScalar<uoffset_t>(follow(at)));
        else if (type == reflection::Array)
            elements(field, at, field.type()->fixed_length());
        else
            record(objectOf(field), objectOf(field).is_struct() ? at : follow(at));
        out_ << ";";
    }

    void scalar(const reflection::Field& field, Place at, BaseType type)
    {
        std::uint64_t bits = 0;
        std::memcpy(&bits, at, widthOf(type));
        if (!has(field, "text")) {
            out_ << std::hex << bits << std::dec;
            return;
        }
        out_ << '"' << textOf(bits) << '"';
    }
    std::string textOf(std::uint64_t number) const
    {
        const auto* texts = reinterpret_cast<const fb::Document*>(rootAt_)->texts();
        return number == 0 ? "" : texts->Get(static_cast<uoffset_t>(number - 1))->str();
    }

    void run(const std::string& name, Place range)
    {
        const auto first = flatbuffers::ReadScalar<uoffset_t>(range);
        const auto count = flatbuffers::ReadScalar<uoffset_t>(range + 4);
        const reflection::Field& vector = *root_.fields()->LookupByKey(name.c_str());
        const Place at =
            count ? follow(fieldOf(root_, rootAt_, vector)) + 4 + first * stride(vector) : nullptr;
        elements(vector, at, count);
    }

    static std::size_t stride(const reflection::Field& field)
    {
        if (field.type()->element() != reflection::Obj)
            return widthOf(field.type()->element());
        const reflection::Object& object = objectOf(field);
        return object.is_struct() ? static_cast<std::size_t>(object.bytesize()) : 4;
    }

    void elements(const reflection::Field& field, Place at, uoffset_t count)
    {
        out_ << "[";
        for (uoffset_t i = 0; i < count; ++i, at += stride(field)) {
            if (field.type()->element() != reflection::Obj)
                scalar(field, at, field.type()->element());
            else
                record(objectOf(field), objectOf(field).is_struct() ? at : follow(at));
            out_ << ",";
        }
        out_ << "]";
    }

    const reflection::Object& root_;
    Place rootAt_;
    std::ostringstream out_;
};

std::string meaningOf(const char* root, const unsigned char* bytes)
{
    return Meaning(objectNamed(root), bytes + flatbuffers::ReadScalar<uoffset_t>(bytes)).text();
}

// ------------------------------------------------------------------------------------ random buffers

class RandomBuffer {
public:
    RandomBuffer(std::mt19937& random, std::set<std::string>& changed, const reflection::Object& root)
        : random_(random), changed_(changed), root_(root)
    {
    }

    Buffer make(const char* identifier, const std::vector<std::uint32_t>* pieces)
    {
        pieces_ = pieces;
        if (pieces) {
            std::vector<std::string> texts;
            for (int i = 0; i < 6; ++i)
                texts.push_back(ovdl::encodeText(randomText()));
            texts_ = builder_.CreateVectorOfStrings(texts).o;
        }
        makeRuns();
        const uoffset_t root = table(root_);
        builder_.Finish(flatbuffers::Offset<void>(root), identifier);
        return {builder_.GetBufferPointer(), builder_.GetBufferPointer() + builder_.GetSize()};
    }

private:
    struct Run {
        uoffset_t offset;
        std::uint32_t count;
    };

    std::uint32_t below(std::uint32_t end) { return static_cast<std::uint32_t>(random_() % end); }

    std::wstring randomText()
    {
        static const std::uint32_t kValues[] = {1,       '"',      '\\',     'a',        0x7F,
                                                0xE9,    0x2028,   0xFFFD,   0xD800,     0xDC00,
                                                0x1F600, 0x10FFFF, 0x110000, 0xFFFFFFFFu};
        std::wstring text;
        const bool isPlain = below(2) == 0;
        for (std::uint32_t length = below(6); length > 0; --length)
            text += static_cast<wchar_t>(isPlain ? 'a' + below(26) : kValues[below(14)]);
        return text;
    }

    std::uint64_t randomBits(const reflection::Field& field, BaseType type)
    {
        if (has(field, "text"))
            return below(7);
        if (type == reflection::Bool)
            return below(2);
        if (isReal(type))
            return type == reflection::Float ? single() : real();
        std::uint64_t bits = (std::uint64_t{random_()} << 32) | random_();
        bits = below(2) ? bits : below(3) - 1;
        const std::size_t width = widthOf(type);
        return width == 8 ? bits : bits & ((std::uint64_t{1} << (8 * width)) - 1);
    }
    std::uint32_t single()
    {
        static const std::uint32_t kValues[] = {0,          0x80000000, 0x7F800000, 0xFF800000,
                                                0x7FC00000, 0x7FA00001, 0xFFC12345, 1,
                                                0x007FFFFF, 0x7F7FFFFF, 0x3DCCCCCD};
        return below(2) ? random_() : kValues[below(11)];
    }
    std::uint64_t real()
    {
        static const std::uint64_t kValues[] = {0,
                                                std::uint64_t{1} << 63,
                                                0x7FF0000000000000,
                                                0xFFF0000000000000,
                                                0x7FF8000000000000,
                                                0x7FF4000000000001,
                                                1,
                                                0x000FFFFFFFFFFFFF,
                                                0x7FEFFFFFFFFFFFFF,
                                                0x3FB999999999999A};
        return below(2) ? (std::uint64_t{random_()} << 32) | random_() : kValues[below(10)];
    }

    void note(const reflection::Object& owner, const reflection::Field& field, bool isOther)
    {
        if (isOther)
            changed_.insert(shortName(owner) + "." + field.name()->str());
    }

    void makeRuns()
    {
        for (const reflection::Field* field : inOrder(root_))
            if (isHidden(root_, field->name()->str()) && field->name()->str() != "texts")
                runs_[field->name()->str()] = vector(root_, *field, 8);
    }

    // The bytes of a struct.
    Buffer structBytes(const reflection::Object& object)
    {
        Buffer bytes(static_cast<std::size_t>(object.bytesize()));
        for (const reflection::Field* field : inOrder(object)) {
            const BaseType type = field->type()->base_type();
            std::uint8_t* at = bytes.data() + field->offset();
            if (!runOf(*field).empty()) {
                putRun(object, *field, at);
            } else if (type == reflection::Array) {
                const std::size_t width = widthOf(field->type()->element());
                for (std::size_t i = 0; i < field->type()->fixed_length(); ++i)
                    putScalar(object, *field, field->type()->element(), at + i * width);
            } else {
                putScalar(object, *field, type, at);
            }
        }
        return bytes;
    }
    void putScalar(const reflection::Object& owner, const reflection::Field& field, BaseType type,
                   std::uint8_t* at)
    {
        const std::uint64_t bits = randomBits(field, type);
        note(owner, field, bits != 0);
        std::memcpy(at, &bits, widthOf(type));
    }
    void putRun(const reflection::Object& owner, const reflection::Field& field, std::uint8_t* at)
    {
        const std::uint32_t all = runs_.at(runOf(field)).count;
        const std::uint32_t first = below(all + 1);
        const std::uint32_t count = below(all - first + 1);
        note(owner, field, count != 0);
        std::memcpy(at, &first, 4);
        std::memcpy(at + 4, &count, 4);
    }

    Run vector(const reflection::Object& owner, const reflection::Field& field, std::uint32_t count)
    {
        const BaseType element = field.type()->element();
        if (element == reflection::Obj && !objectOf(field).is_struct())
            return tables(field, count);
        Buffer bytes;
        std::size_t alignment = widthOf(element);
        for (std::uint32_t i = 0; i < count; ++i) {
            Buffer one(widthOf(element));
            if (element == reflection::Obj)
                one = structBytes(objectOf(field));
            else
                putScalar(owner, field, element, one.data());
            bytes.insert(bytes.end(), one.begin(), one.end());
        }
        if (element == reflection::Obj)
            alignment = static_cast<std::size_t>(objectOf(field).minalign());
        note(owner, field, true);
        builder_.StartVector(bytes.size() / alignment, alignment);
        builder_.PushBytes(bytes.data(), bytes.size());
        return {builder_.EndVector(count), count};
    }
    Run tables(const reflection::Field& field, std::uint32_t count)
    {
        std::vector<flatbuffers::Offset<void>> offsets;
        for (std::uint32_t i = 0; i < count; ++i)
            offsets.emplace_back(table(objectOf(field)));
        return {builder_.CreateVector(offsets).o, count};
    }

    uoffset_t table(const reflection::Object& object)
    {
        std::vector<std::pair<const reflection::Field*, std::uint64_t>> offsets;
        for (const reflection::Field* field : inOrder(object))
            if (const uoffset_t offset = childOf(object, *field))
                offsets.emplace_back(field, offset);
        const uoffset_t start = builder_.StartTable();
        for (const auto& [field, offset] : offsets)
            builder_.AddOffset(field->offset(), flatbuffers::Offset<void>(static_cast<uoffset_t>(offset)));
        for (const reflection::Field* field : inOrder(object))
            inlineField(object, *field);
        return builder_.EndTable(start);
    }
    uoffset_t childOf(const reflection::Object& owner, const reflection::Field& field)
    {
        const std::string name = field.name()->str();
        const BaseType type = field.type()->base_type();
        if (name == "texts")
            return texts_;
        if (const auto run = runs_.find(name); &owner == &root_ && run != runs_.end())
            return run->second.offset;
        if (name == "tessellations") {
            std::vector<fb::TessellationEntry> entries(pieces_->begin(), pieces_->end());
            return builder_.CreateVectorOfStructs(entries).o;
        }
        if (type != reflection::Vector && (type != reflection::Obj || objectOf(field).is_struct()))
            return 0;
        if (below(8) == 0)
            return 0;
        note(owner, field, true);
        return type == reflection::Vector ? vector(owner, field, below(4)).offset : table(objectOf(field));
    }
    void inlineField(const reflection::Object& owner, const reflection::Field& field)
    {
        const BaseType type = field.type()->base_type();
        if (type == reflection::Vector || (type == reflection::Obj && !objectOf(field).is_struct()) ||
            below(8) == 0)
            return;
        if (type == reflection::Obj) {
            structField(owner, field);
            return;
        }
        const std::uint64_t bits = randomBits(field, type);
        note(owner, field, bits != defaultBits(field));
        if (widthOf(type) == 8)
            builder_.AddElement<std::uint64_t>(field.offset(), bits);
        else if (widthOf(type) == 4)
            builder_.AddElement<std::uint32_t>(field.offset(), static_cast<std::uint32_t>(bits));
        else
            builder_.AddElement<std::uint8_t>(field.offset(), static_cast<std::uint8_t>(bits));
    }
    void structField(const reflection::Object& owner, const reflection::Field& field)
    {
        Buffer bytes(8);
        if (runOf(field).empty())
            bytes = structBytes(objectOf(field));
        else
            putRun(owner, field, bytes.data());
        note(owner, field, true);
        builder_.Align(static_cast<std::size_t>(objectOf(field).minalign()));
        builder_.PushBytes(bytes.data(), bytes.size());
        builder_.AddStructOffset(field.offset(), builder_.GetSize());
    }

    std::mt19937& random_;
    std::set<std::string>& changed_;
    const reflection::Object& root_;
    flatbuffers::FlatBufferBuilder builder_;
    std::map<std::string, Run> runs_;
    uoffset_t texts_ = 0;
    const std::vector<std::uint32_t>* pieces_ = nullptr;
};

}  // namespace

Buffer documentOf(const std::function<uoffset_t(flatbuffers::FlatBufferBuilder&)>& fill)
{
    flatbuffers::FlatBufferBuilder builder;
    builder.ForceDefaults(true);
    const uoffset_t root = fill(builder);
    builder.Finish(flatbuffers::Offset<fb::Document>(root), ovdl::kDocumentIdentifier);
    return {builder.GetBufferPointer(), builder.GetBufferPointer() + builder.GetSize()};
}

std::string toJson(ovdl::DocumentStreams& streams)
{
    std::string text;
    const auto sink = ovdl::makeJsonSink([&](std::string_view piece) { text += piece; });
    const auto bytes = streams.document();
    sink->document(streams.header(), bytes);
    if (const auto* entries = flatbuffers::GetRoot<fb::Document>(bytes.data())->tessellations())
        for (uoffset_t number = 0; number < entries->size(); ++number) {
            const std::uint32_t pieces = entries->Get(number)->pieces();
            for (std::uint32_t piece = 0; piece < pieces; ++piece)
                sink->tessellation(number, piece, pieces, streams.tessellation(number, piece, pieces));
        }
    sink->finish();
    return text;
}

std::string toJson(const Buffer& document)
{
    MemoryStreams streams;
    streams.documentBytes = document;
    return toJson(streams);
}

std::string meaning(ovdl::DocumentStreams& streams)
{
    const ovdl::DocumentHeader header = streams.header();
    const auto bytes = streams.document();
    std::string text = std::to_string(header.formatVersion) + " " + std::to_string(header.documentVersion) +
                       " " + std::to_string(header.displayListVersion) + "\n" +
                       meaningOf("Document", bytes.data());
    if (const auto* entries = flatbuffers::GetRoot<fb::Document>(bytes.data())->tessellations())
        for (uoffset_t number = 0; number < entries->size(); ++number)
            for (std::uint32_t piece = 0; piece < entries->Get(number)->pieces(); ++piece)
                text +=
                    meaningOf("Tessellation",
                              streams.tessellation(number, piece, entries->Get(number)->pieces()).data());
    return text;
}

std::string meaning(const Buffer& document)
{
    return meaningOf("Document", document.data());
}

void makeRandom(std::mt19937& random, MemoryStreams& streams, std::set<std::string>& changed)
{
    streams.headerRead = {1, static_cast<std::uint32_t>(random()), static_cast<std::uint32_t>(random())};
    std::vector<std::uint32_t> pieces;
    for (int i = 0; i < 3; ++i)
        pieces.push_back(static_cast<std::uint32_t>(random() % 3));
    streams.documentBytes =
        RandomBuffer(random, changed, objectNamed("Document")).make(ovdl::kDocumentIdentifier, &pieces);
    for (std::uint32_t number = 0; number < pieces.size(); ++number)
        for (std::uint32_t piece = 0; piece < pieces[number]; ++piece)
            streams.tessellations[{number, piece}] =
                RandomBuffer(random, changed, objectNamed("Tessellation"))
                    .make(ovdl::kTessellationIdentifier, nullptr);
}

std::set<std::string> allFields()
{
    std::set<std::string> names;
    for (const reflection::Object* object : *schema().objects()) {
        const std::string name = shortName(*object);
        for (const reflection::Field* field : *object->fields())
            names.insert(name + "." + field->name()->str());
    }
    // Made by what refers to them, not by the random values.
    for (const char* name : {"Document.texts", "Document.tessellations", "TessellationEntry.pieces",
                             "Range.first", "Range.count"})
        names.erase(name);
    return names;
}

}  // namespace json_tests
