#include "reader/formats/ovdl/JsonSchema.h"

#include <ovdl_schema/reflection_bfbs_generated.h>
#include <algorithm>
#include <cassert>
#include <cstring>

namespace ovdl::json {
namespace {

std::string withoutNamespace(const flatbuffers::String& name)
{
    const std::string text = name.str();
    return text.substr(text.rfind('.') + 1);
}

std::uint64_t bitsOfDefault(const reflection::Field& source, Base type)
{
    std::uint64_t bits = 0;
    if (type == reflection::Float) {
        const auto value = static_cast<float>(source.default_real());
        std::memcpy(&bits, &value, sizeof(value));
    } else if (type == reflection::Double) {
        const double value = source.default_real();
        std::memcpy(&bits, &value, sizeof(value));
    } else {
        const std::int64_t value = source.default_integer();
        std::memcpy(&bits, &value, widthOf(type));
    }
    return bits;
}

const reflection::KeyValue* attribute(const reflection::Field& source, const char* key)
{
    return source.attributes() ? source.attributes()->LookupByKey(key) : nullptr;
}

class Description {
public:
    // A copy, since the data as it is embedded may begin anywhere.
    Description()
        : bytes_(fb::DocumentBinarySchema::data(),
                 fb::DocumentBinarySchema::data() + fb::DocumentBinarySchema::size()),
          schema_(*reflection::GetSchema(bytes_.data()))
    {
        objects_.resize(schema_.objects()->size());
        for (std::size_t i = 0; i < objects_.size(); ++i)
            describe(*schema_.objects()->Get(static_cast<flatbuffers::uoffset_t>(i)), objects_[i]);
        joinRuns(named("Document"));
        joinRuns(named("Tessellation"));
        // Texts stand where they are used, and how many pieces there are is told by those that follow.
        hide(named("Document"), "texts");
        hide(named("Document"), "tessellations");
    }

    Object& named(std::string_view name)
    {
        return *std::find_if(objects_.begin(), objects_.end(),
                             [name](const Object& object) { return object.name == name; });
    }

private:
    void describe(const reflection::Object& source, Object& object)
    {
        object.name = withoutNamespace(*source.name());
        object.isStruct = source.is_struct();
        object.size = static_cast<std::uint32_t>(source.bytesize());
        object.alignment = static_cast<std::uint32_t>(source.minalign());
        for (const reflection::Field* field : *source.fields())
            object.fields.push_back(describe(*field));
        // They come by name.
        std::sort(object.fields.begin(), object.fields.end(),
                  [](const Field& a, const Field& b) { return a.offset < b.offset; });
        const bool hasArray = std::any_of(object.fields.begin(), object.fields.end(),
                                          [](auto& field) { return field.isArray(); });
        object.isBare = object.isStruct && hasArray && object.fields.size() == 1;
        object.isWhole = object.isStruct && hasArray;
    }

    Field describe(const reflection::Field& source)
    {
        Field field;
        field.name = source.name()->str();
        field.type = source.type()->base_type();
        field.element = source.type()->element();
        field.offset = source.offset();
        field.length = source.type()->fixed_length();
        field.isText = attribute(source, "text") != nullptr;
        field.isBits = attribute(source, "bits") != nullptr;
        if (field.type == reflection::Obj || field.element == reflection::Obj)
            field.object = &objects_[static_cast<std::size_t>(source.type()->index())];
        if (field.isScalar())
            field.defaultBits = bitsOfDefault(source, field.type);
        return field;
    }

    // Finds which fields are runs of this root's vectors.
    void joinRuns(Object& root)
    {
        for (const reflection::Object* source : *schema_.objects())
            for (const reflection::Field* field : *source->fields())
                if (const auto* run = attribute(*field, "slice"))
                    join(root, named(withoutNamespace(*source->name())), field->name()->str(),
                         run->value()->str());
    }
    void join(Object& root, Object& owner, const std::string& name, const std::string& vector)
    {
        auto* target = const_cast<Field*>(root.find(vector, 0));
        if (!target)
            return;
        target->isHidden = true;
        const_cast<Field&>(owner.field(name)).run = target;
        owner.hasRuns = true;
    }
    static void hide(Object& root, const char* name)
    {
        const_cast<Field&>(root.field(name)).isHidden = true;
    }

    std::vector<std::uint8_t> bytes_;
    const reflection::Schema& schema_;
    std::vector<Object> objects_;
};

}  // namespace

bool Field::isStruct() const
{
    return type == reflection::Obj && object->isStruct;
}

bool Field::isTable() const
{
    return type == reflection::Obj && !object->isStruct;
}

const Field* Object::find(std::string_view key, std::size_t hint) const
{
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Field& candidate = fields[(hint + i) % fields.size()];
        if (candidate.name == key)
            return &candidate;
    }
    return nullptr;
}

const Field& Object::field(std::string_view key) const
{
    const Field* found = find(key, 0);
    assert(found);
    return *found;
}

std::uint32_t widthOf(Base type)
{
    switch (type) {
    case reflection::Short:
    case reflection::UShort:
        return 2;
    case reflection::Int:
    case reflection::UInt:
    case reflection::Float:
        return 4;
    case reflection::Long:
    case reflection::ULong:
    case reflection::Double:
        return 8;
    default:
        return 1;
    }
}

const Roots& roots()
{
    static Description description;
    static const Roots both{description.named("Document"), description.named("Tessellation")};
    return both;
}

}  // namespace ovdl::json
