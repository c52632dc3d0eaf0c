#include "SchemaCoverage.h"

#include <flatbuffers/reflection.h>
#include <ovdl_schema/reflection_bfbs_generated.h>

#include <algorithm>
#include <cstring>

namespace ovdl_tests {
namespace {

const reflection::Schema& schema()
{
    // A copy, since the data as it is embedded may begin anywhere.
    using Embedded = ovdl::fb::DocumentBinarySchema;
    static const std::vector<std::uint64_t> words =
        MemoryStreams::copyOf({Embedded::data(), Embedded::size()});
    return *reflection::GetSchema(words.data());
}

std::string nameOf(const reflection::Object& object, const reflection::Field& field)
{
    return object.name()->str() + "." + field.name()->str();
}

const reflection::Object& objectOf(const reflection::Type& type)
{
    return *schema().objects()->Get(static_cast<flatbuffers::uoffset_t>(type.index()));
}

bool anyBit(const std::uint8_t* bytes, std::size_t size)
{
    return std::any_of(bytes, bytes + size, [](std::uint8_t byte) { return byte != 0; });
}

class Walk {
public:
    explicit Walk(std::set<std::string>& seen) : seen_(seen) {}

    void table(const flatbuffers::Table& table, const reflection::Object& object)
    {
        for (const reflection::Field* field : *object.fields())
            if (table.GetAddressOf(field->offset()))
                visit(table, object, *field);
    }

private:
    void see(const reflection::Object& object, const reflection::Field& field)
    {
        seen_.insert(nameOf(object, field));
    }

    void visit(const flatbuffers::Table& holder, const reflection::Object& object,
               const reflection::Field& field)
    {
        switch (field.type()->base_type()) {
        case reflection::Obj:
            return visitObject(holder, object, field);
        case reflection::Vector:
            return visitVector(holder, object, field);
        default:
            if (!isDefault(holder, field))
                see(object, field);
        }
    }

    template <class T>
    static T valueAt(const std::uint8_t* bytes)
    {
        return flatbuffers::ReadScalar<T>(bytes);
    }

    static bool isDefault(const flatbuffers::Table& table, const reflection::Field& field)
    {
        const std::uint8_t* bytes = table.GetAddressOf(field.offset());
        const reflection::BaseType type = field.type()->base_type();
        if (type == reflection::Double)
            return valueAt<double>(bytes) == field.default_real();
        if (type == reflection::Float)
            return valueAt<float>(bytes) == static_cast<float>(field.default_real());
        const std::int64_t byDefault = field.default_integer();
        return std::memcmp(bytes, &byDefault, flatbuffers::GetTypeSize(type)) == 0;
    }

    void visitObject(const flatbuffers::Table& holder, const reflection::Object& object,
                     const reflection::Field& field)
    {
        const reflection::Object& type = objectOf(*field.type());
        see(object, field);
        if (type.is_struct())
            structure(holder.GetStruct<const std::uint8_t*>(field.offset()), type);
        else
            table(*flatbuffers::GetFieldT(holder, field), type);
    }

    void structure(const std::uint8_t* bytes, const reflection::Object& type)
    {
        for (const reflection::Field* field : *type.fields())
            if (anyBit(bytes + field->offset(), sizeInStruct(*field)))
                see(type, *field);
    }

    static std::size_t sizeInStruct(const reflection::Field& field)
    {
        const reflection::Type& type = *field.type();
        if (type.base_type() == reflection::Array)
            return flatbuffers::GetTypeSize(type.element()) * type.fixed_length();
        return flatbuffers::GetTypeSize(type.base_type());
    }

    void visitVector(const flatbuffers::Table& holder, const reflection::Object& object,
                     const reflection::Field& field)
    {
        const auto& vector = *flatbuffers::GetFieldAnyV(holder, field);
        if (field.type()->element() != reflection::Obj)
            return seeIf(anyElement(vector, field), object, field);
        const reflection::Object& type = objectOf(*field.type());
        seeIf(vector.size() != 0, object, field);
        for (flatbuffers::uoffset_t i = 0; i < vector.size(); ++i)
            if (type.is_struct())
                structure(vector.Data() + i * static_cast<std::size_t>(type.bytesize()), type);
            else
                table(*flatbuffers::GetAnyVectorElemPointer<const flatbuffers::Table>(&vector, i), type);
    }

    static bool anyElement(const flatbuffers::VectorOfAny& vector, const reflection::Field& field)
    {
        return anyBit(vector.Data(), vector.size() * flatbuffers::GetTypeSize(field.type()->element()));
    }

    void seeIf(bool condition, const reflection::Object& object, const reflection::Field& field)
    {
        if (condition)
            see(object, field);
    }

    std::set<std::string>& seen_;
};

const reflection::Object& named(const char* name)
{
    return *schema().objects()->LookupByKey(name);
}

}  // namespace

void SchemaCoverage::add(const MemoryStreams& streams)
{
    Walk walk(seen_);
    const auto root = [](const MemoryStreams::Stream& stream) -> const flatbuffers::Table& {
        return *flatbuffers::GetRoot<flatbuffers::Table>(stream.words.data());
    };
    walk.table(root(streams.document), named("ovdl.fb.Document"));
    for (const auto& [place, stream] : streams.tessellations)
        walk.table(root(stream), named("ovdl.fb.Tessellation"));
}

std::set<std::string> SchemaCoverage::missing() const
{
    std::set<std::string> names;
    for (const reflection::Object* object : *schema().objects())
        for (const reflection::Field* field : *object->fields())
            if (const std::string name = nameOf(*object, *field);
                name.starts_with("ovdl.fb.") && !seen_.contains(name))
                names.insert(name);
    return names;
}

}  // namespace ovdl_tests
