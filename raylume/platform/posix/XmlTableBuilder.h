// Fills a table from what the parser tells.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "raylume/platform/XmlTable.h"

namespace platform {

/// Takes elements as they start and end. May throw std::bad_alloc from everything; a table that it left
/// half-filled is to be cleared.
class XmlTableBuilder {
public:
    explicit XmlTableBuilder(XmlTable& table);

    /// Names and values of attributes in turn, then null, as the parser has them.
    void start(const char* name, const char* const* attributes);
    void end();

    /// A name had a prefix, or declared one.
    bool sawPrefix() const { return sawPrefix_; }
    /// Attributes so far, those that the document's own declarations add included; long names count more.
    std::uint64_t attributeCount() const { return attributeCount_; }
    /// Bytes kept so far.
    std::uint64_t keptSize() const { return keptSize_; }
    /// The table can hold no more.
    bool isFull() const { return isFull_; }

    static void clear(XmlTable& table);

private:
    // An attribute as it stood at the same place of an element of the same name before.
    struct Seen {
        std::string name;
        int number = -1;
    };
    using Order = std::vector<Seen>;
    using Numbers = std::unordered_map<std::string_view, int>;

    static Numbers numbersOf(const std::vector<std::string>& names);
    int elementNumber(const char* name);
    void checkNames(const char* const* attributes);
    void keep(int name, const char* const* attributes);
    std::uint32_t keepAttributes(Order& order, const char* const* attributes);
    int attributeNumber(Order& order, std::size_t place, const char* name);
    void noteName(std::string_view name);
    void append(int number, const char* value);
    void reserve(std::size_t size);
    void addBlock(std::size_t size);

    XmlTable& table_;
    const Numbers elementNumbers_;
    const Numbers attributeNumbers_;
    std::vector<Order> orders_;  // By element; the last one is the root's when it has no number.
    std::string lastName_;
    int lastNumber_ = -1;

    struct Open {
        std::uint32_t element;
        std::uint64_t depth;
    };
    std::vector<Open> open_;  // Those that are kept.
    std::uint64_t depth_ = 0;

    unsigned char* blockStart_ = nullptr;  // Of the last block.
    std::uint64_t blockOffset_ = 0;
    std::size_t blockSize_ = 0;
    std::size_t used_ = 0;         // In the last block.
    std::size_t elementUsed_ = 0;  // Where the attributes of the element under way start.

    std::uint64_t attributeCount_ = 0;
    std::uint64_t keptSize_ = 0;
    bool sawPrefix_ = false;
    bool isFull_ = false;
};

}  // namespace platform
