// The tree behind the views of a compound file: what the file has and what was edited since, whatever
// reads and writes the file itself.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "raylume/platform/CompoundFile.h"

namespace platform::compound {

inline constexpr std::uint64_t kLargestStream = 0xFFFFFFFFu;
inline constexpr int kDeepestStorage = 1000;
inline constexpr std::size_t kMostElements = 32768;

/// Counts the elements of a whole file against what libgsf can be given: it sorts the elements of a
/// storage in quadratic time, in reading and in writing.
class Census {
public:
    /// A storage with that many elements; false when that is too much.
    bool add(std::size_t children)
    {
        elements_ += children;
        pairs_ += static_cast<std::uint64_t>(children) * children;
        return children <= kMostElements && elements_ <= kMostInFile && pairs_ <= kMostPairs;
    }

private:
    static constexpr std::size_t kMostInFile = 262144;
    static constexpr std::uint64_t kMostPairs = std::uint64_t{1} << 32;

    std::size_t elements_ = 0;
    std::uint64_t pairs_ = 0;
};

/// The bytes of a stream as they lie in the file.
class StreamSource {
public:
    virtual ~StreamSource() = default;
    virtual std::uint64_t size() const = 0;
    /// Reads exactly `count` bytes, which lie within size(). False when they cannot be had.
    virtual bool read(std::uint64_t offset, void* buffer, std::size_t count) = 0;
    /// Where all of the bytes stand, if they do in one piece in memory, with what keeps them there.
    virtual std::shared_ptr<const unsigned char> inPlace() const { return nullptr; }
};

/// The bytes of a stream that was written to, in pieces, so that growing moves little. Small streams take
/// little: a document may have very many of them.
class EditedBytes {
public:
    std::uint64_t size() const { return size_; }
    void read(std::uint64_t offset, void* buffer, std::size_t count) const;
    /// Grows as needed; `offset` is at most size().
    void write(std::uint64_t offset, const void* buffer, std::size_t count);

private:
    static constexpr std::size_t kPiece = 65536;

    void grow(std::uint64_t size);

    /// All but the last one are full.
    std::vector<std::vector<std::byte>> pieces_;
    std::uint64_t capacity_ = 0;
    std::uint64_t size_ = 0;
};

class Element;
using ElementPtr = std::shared_ptr<Element>;

/// Opens a stream of a file.
class StreamOpener {
public:
    virtual ~StreamOpener() = default;
    /// Null when the stream is damaged.
    virtual std::shared_ptr<StreamSource> open() = 0;
};

enum class Kind { kStorage, kStream };

/// A storage or a stream of the tree. The bytes of a stream that nobody wrote to are held only while
/// somebody reads them.
class Element {
public:
    /// A new one, without content. `depth` is how many storages it lies in; add() sets it too.
    Element(std::wstring name, Kind kind, int depth = 0);
    /// A stream of a file.
    Element(std::wstring name, std::unique_ptr<StreamOpener> opener);

    const std::wstring& name() const { return name_; }
    Kind kind() const { return kind_; }
    bool detached() const { return detached_; }
    int depth() const { return depth_; }

    // Of a storage.
    const std::vector<ElementPtr>& children() const { return children_; }
    /// The child of that name, without case; the exact name goes first. Null when there is none.
    ElementPtr find(std::wstring_view name) const;
    void add(ElementPtr child);
    /// Takes the child out; it and all below are detached.
    void remove(const ElementPtr& child);
    std::array<std::uint8_t, 16> classId = {};
    /// When it was changed, in microseconds since 1970.
    std::optional<std::int64_t> modified;

    // Of a stream. The bytes are what was edited, else what the file has.
    /// False when the bytes cannot be had; null in `source` when they were edited.
    bool openBytes(std::shared_ptr<StreamSource>& source);
    EditedBytes* edited() const { return edited_.get(); }
    /// Makes the bytes editable. False when those of the file cannot be had.
    bool edit();

private:
    void detach();

    std::wstring name_;
    Kind kind_;
    std::unique_ptr<StreamOpener> opener_;
    std::weak_ptr<StreamSource> source_;
    std::unique_ptr<EditedBytes> edited_;
    std::vector<ElementPtr> children_;
    /// By lower-cased name: places in children_.
    std::unordered_multimap<std::wstring, std::size_t> places_;
    int depth_ = 0;
    bool detached_ = false;
};

/// Writes a tree to where it belongs.
class TreeWriter {
public:
    virtual ~TreeWriter() = default;
    virtual HResult write(Element& root) = 0;
};

/// True for a name that a new element may have.
bool isValidName(std::wstring_view name);
/// How many UTF-16 units a text takes.
std::size_t utf16Length(std::wstring_view text);

/// Copies the bytes of a stream piece by piece into `sink`, a function of a pointer and a size that
/// gives false to stop. The result is kStorageOk, or why it ended.
template <class Sink>
HResult copyBytes(Element& stream, Sink sink)
{
    std::shared_ptr<StreamSource> source;
    if (!stream.openBytes(source))
        return kStorageCorrupt;
    const EditedBytes* edited = stream.edited();
    const std::uint64_t size = edited ? edited->size() : source->size();
    std::vector<std::byte> piece(static_cast<std::size_t>(size < 65536 ? size : 65536));
    for (std::uint64_t at = 0; at < size;) {
        const auto count = static_cast<std::size_t>(size - at < piece.size() ? size - at : piece.size());
        if (edited)
            edited->read(at, piece.data(), count);
        else if (!source->read(at, piece.data(), count))
            return kStorageReadFault;
        if (!sink(piece.data(), count))
            return kStorageWriteFault;
        at += count;
    }
    return kStorageOk;
}

/// Gives the first view of a tree, with one reference. With a `writer` the view is writable;
/// `unsaved` says that the tree differs from the file before anything was edited.
IStorage* viewTree(ElementPtr root, std::unique_ptr<TreeWriter> writer, bool unsaved);

/// What a view shows; null for a storage that is no view of a tree.
ElementPtr elementOf(IStorage& view);
/// Puts an element into what a view shows, in the place of one of that name. Errors: as
/// IStorage::CreateStorage; kNotImplemented for what is no view.
HResult putElement(IStorage& view, ElementPtr element);

}  // namespace platform::compound
