#include <ovdl_schema/document_generated.h>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "reader/formats/ovdl/JsonLayout.h"
#include "reader/formats/ovdl/JsonSchema.h"
#include "reader/formats/ovdl/JsonText.h"
#include "reader/formats/ovdl/Refusal.h"
#include "reader/formats/ovdl/TextEncoding.h"

namespace ovdl {
namespace json {
namespace {

using Place = const std::uint8_t*;

std::uint64_t bitsAt(Place at, Base type)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, at, widthOf(type));
    return bits;
}

template <class Number>
void appendNumber(std::string& target, Place at)
{
    Number number;
    std::memcpy(&number, at, sizeof(number));
    char text[40];
    target.append(text, std::to_chars(text, text + sizeof(text), number).ptr);
}

void appendBits(std::string& target, std::uint64_t bits, unsigned digits)
{
    char text[24];
    std::snprintf(text, sizeof(text), "\"0x%0*llx\"", static_cast<int>(digits),
                  static_cast<unsigned long long>(bits));
    target += text;
}

// The shortest digits that give the same number again; JSON has no word for the others. Without a point
// a negative zero is an integer to most readers of JSON, and loses its sign.
template <class Real>
void appendReal(std::string& target, Place at)
{
    Real number;
    std::memcpy(&number, at, sizeof(number));
    if (number == 0 && std::signbit(number))
        target += "-0.0";
    else if (std::isfinite(number))
        appendNumber<Real>(target, at);
    else
        appendBits(target, bitsAt(at, sizeof(Real) == 4 ? reflection::Float : reflection::Double),
                   2 * sizeof(Real));
}

void appendScalar(std::string& target, Place at, Base type)
{
    switch (type) {
    case reflection::Bool:
        target += *at ? "true" : "false";
        break;
    case reflection::Float:
        appendReal<float>(target, at);
        break;
    case reflection::Double:
        appendReal<double>(target, at);
        break;
    case reflection::Byte:
        appendNumber<std::int8_t>(target, at);
        break;
    case reflection::Short:
        appendNumber<std::int16_t>(target, at);
        break;
    case reflection::UShort:
        appendNumber<std::uint16_t>(target, at);
        break;
    case reflection::Int:
        appendNumber<std::int32_t>(target, at);
        break;
    case reflection::UInt:
        appendNumber<std::uint32_t>(target, at);
        break;
    case reflection::Long:
        appendNumber<std::int64_t>(target, at);
        break;
    case reflection::ULong:
        appendNumber<std::uint64_t>(target, at);
        break;
    default:
        appendNumber<std::uint8_t>(target, at);
        break;
    }
}

// A record in a buffer: a table or a struct.
struct Record {
    const Object& object;
    Place at;

    /// Where a field stands; null for one that a table leaves out.
    Place field(const Field& field) const
    {
        return object.isStruct
                   ? at + field.offset
                   : reinterpret_cast<const flatbuffers::Table*>(at)->GetAddressOf(field.offset);
    }
};

// What an offset at `at` leads to.
Place follow(Place at)
{
    return at + flatbuffers::ReadScalar<flatbuffers::uoffset_t>(at);
}

// Elements that lie one behind the other.
struct Elements {
    Place first = nullptr;
    std::uint32_t count = 0;
    Base type = reflection::None;
    const Object* object = nullptr;
    bool areTexts = false;

    std::uint32_t stride() const { return !object ? widthOf(type) : object->isStruct ? object->size : 4; }
    Place at(std::uint32_t i) const { return first + std::size_t{i} * stride(); }
    /// True for records of a few numbers, many of which stand on a line.
    bool areShort() const { return !object || (object->isStruct && !object->hasRuns && !object->isWhole); }
};

Elements vectorAt(Place offset, const Field& field)
{
    const Place vector = follow(offset);
    return {vector + 4, flatbuffers::ReadScalar<flatbuffers::uoffset_t>(vector), field.element,
            field.object, field.isText};
}

// Writes the records of one buffer.
class RecordWriter {
public:
    using Texts = flatbuffers::Vector<flatbuffers::Offset<flatbuffers::String>>;

    RecordWriter(Layout& layout, const Record& root, const Texts* texts)
        : layout_(layout), root_(root), texts_(texts)
    {
    }

    void write(const Record& record, unsigned indent)
    {
        layout_.write("{");
        bool first = true;
        for (const Field& field : record.object.fields)
            if (const Place at = shown(record, field)) {
                if (!first) {
                    layout_.write(",");
                    layout_.line(indent + 1);
                }
                layout_.write("\"" + field.name + "\": ");
                value(field, at, indent + 1);
                first = false;
            }
        layout_.write("}");
    }

private:
    // Where a field stands that is to be seen; null for any other.
    Place shown(const Record& record, const Field& field) const
    {
        const Place at = field.isHidden ? nullptr : record.field(field);
        return at && !isDefault(record.object, field, at) ? at : nullptr;
    }
    // An empty vector differs from none at all, and so does a struct of a table.
    bool isDefault(const Object& owner, const Field& field, Place at) const
    {
        if (field.isScalar())
            return !owner.isWhole &&
                   (bitsAt(at, field.type) == field.defaultBits || (field.isText && textAt(at).empty()));
        return owner.isStruct && field.run && flatbuffers::ReadScalar<std::uint32_t>(at + 4) == 0;
    }

    void value(const Field& field, Place at, unsigned indent)
    {
        if (field.isScalar())
            layout_.write(shortValue(field, at));
        else if (field.run)
            elements(run(*field.run, at), indent);
        else if (field.isVector())
            elements(vectorAt(at, field), indent);
        else if (field.isArray())
            elements(arrayAt(at, field), indent);
        else if (field.object->isBare)
            elements(arrayAt(at, field.object->fields[0]), indent);
        else
            write({*field.object, field.isTable() ? follow(at) : at}, indent);
    }

    static Elements arrayAt(Place at, const Field& field)
    {
        return {at, field.length, field.element, field.object, false};
    }
    Elements run(const Field& vector, Place range) const
    {
        const auto first = flatbuffers::ReadScalar<std::uint32_t>(range);
        const auto count = flatbuffers::ReadScalar<std::uint32_t>(range + 4);
        const Place at = root_.field(vector);
        Elements all = at ? vectorAt(at, vector) : Elements();
        if (first > all.count || count > all.count - first)
            refuse("a run goes beyond the end of \"" + vector.name + "\"");
        all.first = count ? all.at(first) : nullptr;
        all.count = count;
        return all;
    }

    void elements(const Elements& all, unsigned indent)
    {
        layout_.write("[");
        for (std::uint32_t i = 0; i < all.count; ++i)
            if (all.areShort()) {
                layout_.element(shortElement(all, i), i == 0, indent + 1);
            } else {
                layout_.write(i == 0 ? "" : ",");
                layout_.line(indent + 1);
                write({*all.object, all.object->isStruct ? all.at(i) : follow(all.at(i))}, indent + 1);
            }
        layout_.write("]");
    }

    const std::string& shortElement(const Elements& all, std::uint32_t i)
    {
        short_.clear();
        if (all.object)
            appendShort({*all.object, all.at(i)});
        else if (all.areTexts)
            appendText(all.at(i));
        else
            appendScalar(short_, all.at(i), all.type);
        return short_;
    }
    const std::string& shortValue(const Field& field, Place at)
    {
        short_.clear();
        appendShort(field, at);
        return short_;
    }
    void appendShort(const Record& record)
    {
        short_ += '{';
        for (const Field& field : record.object.fields)
            if (const Place at = shown(record, field)) {
                short_.append(short_.back() == '{' ? "\"" : ", \"").append(field.name).append("\": ");
                appendShort(field, at);
            }
        short_ += '}';
    }
    void appendShort(const Field& field, Place at)
    {
        if (field.isText)
            appendText(at);
        else if (field.isBits)
            appendBits(short_, bitsAt(at, field.type), 2 * widthOf(field.type));
        else
            appendScalar(short_, at, field.type);
    }
    void appendText(Place number)
    {
        const std::wstring text = decodeText(textAt(number));
        if (!appendQuoted(short_, text))
            appendNumbers(text);
    }
    std::string_view textAt(Place at) const
    {
        const auto number = flatbuffers::ReadScalar<std::uint32_t>(at);
        if (number == 0)
            return {};
        if (!texts_ || number > texts_->size())
            refuse("a record refers to a text that is not there");
        const flatbuffers::String& bytes = *texts_->Get(number - 1);
        return {bytes.c_str(), bytes.size()};
    }
    // A text of which JSON has no form: its values one by one.
    void appendNumbers(std::wstring_view text)
    {
        short_ += '[';
        for (const wchar_t c : text)
            short_.append(short_.back() == '[' ? "" : ", ")
                .append(std::to_string(static_cast<std::uint32_t>(c)));
        short_ += ']';
    }

    Layout& layout_;
    Record root_;
    const Texts* texts_;
    std::string short_;
};

template <class Root>
Record checkedRoot(const Object& object, Bytes bytes, const char* identifier)
{
    if (bytes.size() >= kLargestBuffer)
        refuse("a buffer is too large");
    flatbuffers::Verifier::Options options;
    options.max_tables = static_cast<flatbuffers::uoffset_t>(bytes.size() / 8);
    flatbuffers::Verifier verifier(bytes.data(), bytes.size(), options);
    if (!verifier.VerifyBuffer<Root>(identifier))
        refuse("a buffer is damaged");
    return {object, reinterpret_cast<Place>(flatbuffers::GetRoot<Root>(bytes.data()))};
}

class Sink : public JsonSink {
public:
    explicit Sink(TextOutput output) : layout_(std::move(output)) {}

    void document(const DocumentHeader& header, Bytes bytes) override
    {
        const Record root = checkedRoot<fb::Document>(roots().document, bytes, kDocumentIdentifier);
        const auto* source = reinterpret_cast<const fb::Document*>(root.at);
        if (const auto* entries = source->tessellations()) {
            hasTessellations_ = true;
            for (const fb::TessellationEntry* entry : *entries)
                pieces_.push_back(entry->pieces());
        }
        layout_.write("{\"ovdl\": " + std::to_string(header.formatVersion) + ",");
        layout_.line(1);
        layout_.write("\"documentVersion\": " + std::to_string(header.documentVersion) + ",");
        layout_.line(1);
        layout_.write("\"displayListVersion\": " + std::to_string(header.displayListVersion) + ",");
        layout_.line(1);
        layout_.write("\"document\": ");
        RecordWriter(layout_, root, source->texts()).write(root, 1);
        hasDocument_ = true;
        if (hasTessellations_) {
            layout_.write(",");
            layout_.line(1);
            layout_.write("\"tessellations\": [");
        }
        passEmptyOnes();
    }

    void tessellation(std::uint32_t number, std::uint32_t piece, std::uint32_t pieces, Bytes bytes) override
    {
        if (number != number_ || piece != piece_ || number >= pieces_.size() || pieces != pieces_[number])
            refuse("the tessellations do not come in their order");
        const Record root =
            checkedRoot<fb::Tessellation>(roots().tessellation, bytes, kTessellationIdentifier);
        if (piece == 0)
            beginTessellation();
        layout_.write(pieces > 1 && piece == 0 ? "[" : piece > 0 ? "," : "");
        if (piece > 0)
            layout_.line(3);
        RecordWriter(layout_, root, nullptr).write(root, pieces > 1 ? 3 : 2);
        if (++piece_ < pieces)
            return;
        layout_.write(pieces > 1 ? "]" : "");
        piece_ = 0;
        ++number_;
        passEmptyOnes();
    }

    void finish() override
    {
        if (!hasDocument_ || number_ != pieces_.size())
            refuse("a part of the document is missing");
        layout_.write(hasTessellations_ ? "]}\n" : "}\n");
        layout_.flush();
    }

private:
    void beginTessellation()
    {
        layout_.write(number_ > 0 ? "," : "");
        layout_.line(2);
    }
    // Tessellations without a piece, which are never given.
    void passEmptyOnes()
    {
        for (; number_ < pieces_.size() && pieces_[number_] == 0; ++number_) {
            beginTessellation();
            layout_.write("[]");
        }
    }

    Layout layout_;
    std::vector<std::uint32_t> pieces_;
    std::size_t number_ = 0;
    std::uint32_t piece_ = 0;
    bool hasDocument_ = false;
    bool hasTessellations_ = false;
};

}  // namespace
}  // namespace json

std::unique_ptr<JsonSink> makeJsonSink(TextOutput output)
{
    return std::make_unique<json::Sink>(std::move(output));
}

}  // namespace ovdl
