// What the steps of decoding a document share.
#pragma once

#include <ovdl_schema/document_generated.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "raylume/platform/Memory.h"
#include "reader/DocumentFormat.h"
#include "reader/formats/ovdl/Budget.h"
#include "reader/formats/ovdl/DecodedObjects.h"
#include "reader/formats/ovdl/DocumentStreams.h"

namespace ovdl::decoding {

/// The host wants no more. Raised inside decodeDocument() only.
struct Cancellation {};

/// Tells the host how far it is, and asks it every few thousand elements whether to go on.
class Steps {
public:
    explicit Steps(ReadContext& context) : context_(context) {}

    void tick(std::uint64_t elements = 1)
    {
        left_ -= elements < left_ ? elements : left_;
        if (left_ == 0)
            ask();
    }
    void ask()
    {
        left_ = kBetween;
        if (context_.cancelled())
            throw Cancellation();
    }
    /// Of tessellations.
    void progress(std::size_t done, std::size_t all)
    {
        context_.progress(static_cast<float>(static_cast<double>(done) / static_cast<double>(all)));
        ask();
    }

private:
    static constexpr std::uint64_t kBetween = 4096;

    ReadContext& context_;
    std::uint64_t left_ = kBetween;
};

/// One document while it is decoded. `document` is verified.
struct Decoding {
    const fb::Document& document;
    DecodedObjects& objects;
    Budget& budget;
    Steps& steps;

    /// A text by its number.
    std::wstring text(std::uint32_t number) const;
    /// Its bytes.
    std::string_view textBytes(std::uint32_t number) const;
};

/// Numbers of a vector, where they lie; none for a vector that is absent.
template <class T>
std::span<const T> values(const flatbuffers::Vector<T>* vector)
{
    return vector ? std::span<const T>(vector->data(), vector->size()) : std::span<const T>();
}

/// The same for structs.
template <class T>
std::span<const T> structs(const flatbuffers::Vector<const T*>* vector)
{
    return vector ? std::span<const T>(reinterpret_cast<const T*>(vector->Data()), vector->size())
                  : std::span<const T>();
}

/// A run of a vector. Raises Refusal for one that leaves it.
template <class T>
std::span<const T> slice(const fb::Range& range, std::span<const T> all, const char* what)
{
    if (std::uint64_t{range.first()} + range.count() > all.size())
        refuse(std::string("a run of ") + what + " leaves its vector");
    return all.subspan(range.first(), range.count());
}

/// The record of that number; null for -1. Raises Refusal for one that is not there.
template <class T>
T* refer(std::vector<T>& records, std::int32_t number, const char* what)
{
    if (number == -1)
        return nullptr;
    if (number < 0 || static_cast<std::size_t>(number) >= records.size())
        refuse("number " + std::to_string(number) + " of " + what + " is not there");
    return &records[static_cast<std::size_t>(number)];
}

/// One object for each record of a root vector, as its constructor leaves it.
template <class Record, class Object>
void makeObjects(const flatbuffers::Vector<flatbuffers::Offset<Record>>* records,
                 std::vector<Object>& objects, Decoding& decoding)
{
    const std::size_t count = records ? records->size() : 0;
    decoding.budget.charge(count, sizeof(Object));
    objects.reserve(count);
    platform::prepareForFilling(objects.data(), count * sizeof(Object));
    objects.resize(count);
}

template <class Record, class Object, class Fill>
void fillObjects(const flatbuffers::Vector<flatbuffers::Offset<Record>>* records,
                 std::vector<Object>& objects, Decoding& decoding, Fill fill)
{
    for (std::size_t i = 0; i < objects.size(); ++i) {
        decoding.steps.tick();
        fill(*records->Get(static_cast<flatbuffers::uoffset_t>(i)), objects[i], decoding);
    }
}

template <class Record, class Object, class Fill>
void decodeRecords(const flatbuffers::Vector<flatbuffers::Offset<Record>>* records,
                   std::vector<Object>& objects, Decoding& decoding, Fill fill)
{
    makeObjects(records, objects, decoding);
    fillObjects(records, objects, decoding, fill);
}

/// What an element of a list or a map takes besides its value.
inline constexpr std::uint64_t kNode = 48;

/// Puts a value under a key. Raises Refusal for a key that is there.
template <class Value>
void insertNew(std::map<int, Value>& map, std::int32_t key, Value value, const char* what)
{
    const std::size_t before = map.size();
    map.emplace_hint(map.end(), key, std::move(value));
    if (map.size() == before)
        refuse("key " + std::to_string(key) + " stands twice among " + what);
}

/// Numbers of records by key, from pairs.
template <class Record>
void decodePairs(const flatbuffers::Vector<std::int32_t>* vector, std::map<int, Record*>& map,
                 std::vector<Record>& records, Decoding& decoding, const char* what)
{
    const auto pairs = values(vector);
    if (pairs.size() % 2 != 0)
        refuse(std::string("a key without a value stands among ") + what);
    decoding.budget.charge(pairs.size() / 2, kNode + 16);
    for (std::size_t i = 0; i < pairs.size(); i += 2) {
        decoding.steps.tick();
        insertNew(map, pairs[i], refer(records, pairs[i + 1], what), what);
    }
}

/// Pointers to records by their numbers. `kept` holds the array.
template <class T>
ovPointerArray<T> referAll(const flatbuffers::Vector<std::int32_t>* vector, std::vector<T>& records,
                           std::vector<T*>& kept, Decoding& decoding, const char* what)
{
    const auto numbers = values(vector);
    decoding.budget.charge(numbers.size(), sizeof(T*));
    kept.reserve(numbers.size());
    for (const std::int32_t number : numbers) {
        decoding.steps.tick();
        kept.push_back(refer(records, number, what));
    }
    return {kept.data(), static_cast<long long>(kept.size())};
}

/// The bytes at a multiple of 8, copied if they are not.
Bytes aligned(Bytes bytes, DecodedObjects& objects);
std::list<uoDecalProperties*> decalList(std::span<const std::int32_t> numbers, Decoding& decoding);

// The steps, in their order.
void decodeAppearances(Decoding& decoding);
void decodeLightsAndScenes(Decoding& decoding);
void decodeTessellations(DocumentStreams& streams, Decoding& decoding);
void decodeDocuments(Decoding& decoding);
/// Refuses a document that would become a far larger model than its bytes justify.
void checkModels(Decoding& decoding, std::uint64_t documentSize);

}  // namespace ovdl::decoding
