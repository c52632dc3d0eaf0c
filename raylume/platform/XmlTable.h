// XML documents as a table of the few elements and attributes that somebody asks for.
#pragma once

#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "raylume/platform/Export.h"
#include "raylume/platform/Files.h"

namespace platform {

/// The names that a table keeps, by number: 0 is the first. Names compare as they stand in a tag, prefix
/// included. At most 250 attributes.
struct XmlVocabulary {
    std::vector<std::string> elements;
    std::vector<std::string> attributes;
};

enum class XmlStatus {
    kLoaded,
    kNotFound,     ///< No such file, or no regular one.
    kRefused,      ///< Not well-formed, or with something in it that is not read here.
    kOutOfMemory,  ///< Or the document asks for out of all proportion to its length.
};

/// What became of a load.
struct XmlLoad {
    XmlStatus status = XmlStatus::kNotFound;
    std::uint64_t size = 0;    ///< Bytes of the file that were read; all of them once it is loaded.
    std::uint64_t offset = 0;  ///< Where reading stopped, in bytes of UTF-8 for a transcoded document.
    std::string reason;        ///< English, one line; empty once it is loaded.
};

/// The attributes of one element that are in the vocabulary, in file order. A view: good for as long
/// as the table is.
class XmlAttributes {
public:
    /// The text of an attribute, in UTF-8 and as XML normalises it. False when it is absent.
    ///
    /// Looks where the last call stopped first, so that asking in file order costs no search.
    bool find(int attribute, std::string_view& text)
    {
        const auto wanted = static_cast<unsigned char>(attribute + 1);
        if (*cursor_ == wanted || seek(wanted)) {
            cursor_ = take(cursor_, text);
            return true;
        }
        return false;
    }

private:
    friend class XmlTable;
    friend class XmlTableBuilder;

    // A record is the number of its name plus one, the length in one byte or in 255 and four more, and the
    // text. The list ends with a zero.
    static constexpr unsigned char kLong = 255;

    explicit XmlAttributes(const unsigned char* start) : start_(start), cursor_(start) {}

    static const unsigned char* take(const unsigned char* record, std::string_view& text)
    {
        std::uint32_t length = record[1];
        record += 2;
        if (length == kLong) {
            std::memcpy(&length, record, sizeof length);
            record += sizeof length;
        }
        text = {reinterpret_cast<const char*>(record), length};
        return record + length;
    }

    bool seek(unsigned char wanted)
    {
        std::string_view text;
        for (cursor_ = start_; *cursor_ != 0; cursor_ = take(cursor_, text)) {
            if (*cursor_ == wanted) {
                return true;
            }
        }
        return false;
    }

    const unsigned char* start_;
    const unsigned char* cursor_;
};

/// An XML document, read once and then only asked.
///
/// Kept are the root, all elements in the vocabulary and their attributes in it; everything else is held
/// to the rules of XML and forgotten. Elements are numbered in document order; the root is 0.
///
/// Refused, beside what is not well-formed: names that break the rules of namespaces, versions other
/// than 1.0, anything with an external identifier, parameter entities, and encodings in which ASCII does
/// not stand for itself. UTF-16 is read; other declared encodings are transcoded, and a byte without a
/// meaning refuses the document. Nothing is fetched.
///
/// Memory: about half of a usual file, never more than some four times it, and about a hundred bytes
/// for each prefix that is declared. Nesting takes no stack.
/// Errors: std::bad_alloc, or kOutOfMemory where the parser found it out.
class PLATFORM_API XmlTable {
public:
    using Open = std::function<std::unique_ptr<InputFile>()>;

    explicit XmlTable(XmlVocabulary vocabulary);
    XmlTable(const XmlTable&) = delete;
    XmlTable& operator=(const XmlTable&) = delete;
    ~XmlTable();

    /// Reads a document; once only. Without kLoaded the table is empty.
    XmlLoad load(const std::wstring& path);
    /// The same from anything that opens more than once: a document is read again when its encoding
    /// turns out to need transcoding.
    XmlLoad load(const Open& open);

    /// There is not even a root: nothing was loaded.
    bool isEmpty() const { return elements_.empty() && blocks_.empty(); }

    /// Elements of one name that are inside an element, never itself: positions in the list of all
    /// elements of that name.
    struct Range {
        std::size_t first = 0;
        std::size_t last = 0;

        std::size_t length() const { return last - first; }
    };
    Range descendants(std::uint32_t element, int name) const;
    /// The element at a position in the list of a name.
    std::uint32_t elementAt(int name, std::size_t position) const
    {
        return elementsByName_[static_cast<std::size_t>(name)][position];
    }
    XmlAttributes attributes(std::uint32_t element) const
    {
        const std::uint32_t offset = elements_[element].attributes;
        return XmlAttributes(pages_[offset / kPageSize] + offset % kPageSize);
    }

private:
    friend class XmlTableBuilder;

    static constexpr std::uint32_t kPageSize = 1u << 16;

    struct Element {
        std::uint32_t end = 0;         // The first element behind all that it contains.
        std::uint32_t attributes = 0;  // Where they start, as if all pages were one piece.
    };

    XmlVocabulary vocabulary_;
    // Deques: a vector of this size would stand in memory twice while it grows.
    std::deque<Element> elements_;
    std::vector<std::deque<std::uint32_t>> elementsByName_;
    std::vector<std::unique_ptr<unsigned char[]>> blocks_;  // Each of one page or more.
    std::vector<unsigned char*> pages_;
};

}  // namespace platform
