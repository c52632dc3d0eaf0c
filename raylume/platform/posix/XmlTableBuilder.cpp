#include "raylume/platform/posix/XmlTableBuilder.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "raylume/platform/Memory.h"

namespace platform {

namespace {

constexpr std::size_t kLargestBlock = std::size_t{4} << 20;
// A name of this length is not kept for comparing, and counts as so many more attributes as it is longer.
constexpr std::size_t kLongName = 64;

// Names are two or three characters long, and mostly the same one again: not worth a call.
bool isSame(const char* a, const char* b)
{
    while (*a == *b && *a != '\0') {
        ++a;
        ++b;
    }
    return *a == *b;
}

std::size_t roundUp(std::size_t size, std::size_t step)
{
    return (size + step - 1) / step * step;
}

}  // namespace

XmlTableBuilder::XmlTableBuilder(XmlTable& table)
    : table_(table),
      elementNumbers_(numbersOf(table.vocabulary_.elements)),
      attributeNumbers_(numbersOf(table.vocabulary_.attributes)),
      orders_(table.vocabulary_.elements.size() + 1)
{
    clear(table_);
    table_.elementsByName_.resize(table.vocabulary_.elements.size());
    addBlock(1);
    blockStart_[0] = 0;  // An empty list, for all elements that have no attributes.
    used_ = 1;
}

XmlTableBuilder::Numbers XmlTableBuilder::numbersOf(const std::vector<std::string>& names)
{
    Numbers numbers;
    for (const std::string& name : names) {
        numbers.emplace(name, static_cast<int>(numbers.size()));
    }
    return numbers;
}

void XmlTableBuilder::clear(XmlTable& table)
{
    table.elements_.clear();
    table.elementsByName_.clear();
    table.blocks_.clear();
    table.pages_.clear();
}

void XmlTableBuilder::start(const char* name, const char* const* attributes)
{
    const int number = elementNumber(name);
    if (number >= 0 || depth_ == 0) {
        keep(number, attributes);
    } else {
        checkNames(attributes);
    }
    ++depth_;
}

void XmlTableBuilder::end()
{
    --depth_;
    if (open_.back().depth == depth_) {
        table_.elements_[open_.back().element].end = static_cast<std::uint32_t>(table_.elements_.size());
        open_.pop_back();
    }
}

int XmlTableBuilder::elementNumber(const char* name)
{
    if (!isSame(name, lastName_.c_str())) {
        lastName_ = name;
        noteName(lastName_);
        const auto found = elementNumbers_.find(lastName_);
        lastNumber_ = found == elementNumbers_.end() ? -1 : found->second;
    }
    return lastNumber_;
}

// Elements that are not kept may still tell of prefixes.
void XmlTableBuilder::checkNames(const char* const* attributes)
{
    for (; *attributes; attributes += 2) {
        const std::string_view name = *attributes;
        attributeCount_ += 1 + name.size() / kLongName;
        if (!sawPrefix_) {
            noteName(name);
        }
    }
}

void XmlTableBuilder::noteName(std::string_view name)
{
    sawPrefix_ = sawPrefix_ || name == "xmlns" || name.find(':') != std::string_view::npos;
}

void XmlTableBuilder::keep(int name, const char* const* attributes)
{
    if (table_.elements_.size() >= std::numeric_limits<std::uint32_t>::max()) {
        isFull_ = true;
        return;
    }
    const auto element = static_cast<std::uint32_t>(table_.elements_.size());
    Order& order = name < 0 ? orders_.back() : orders_[static_cast<std::size_t>(name)];
    table_.elements_.push_back({element, keepAttributes(order, attributes)});
    keptSize_ += sizeof(XmlTable::Element);
    if (name >= 0) {
        table_.elementsByName_[static_cast<std::size_t>(name)].push_back(element);
        keptSize_ += sizeof element;
    }
    open_.push_back({element, depth_});
}

std::uint32_t XmlTableBuilder::keepAttributes(Order& order, const char* const* attributes)
{
    elementUsed_ = used_;
    for (std::size_t place = 0; *attributes; ++place, attributes += 2) {
        ++attributeCount_;
        const int number = attributeNumber(order, place, attributes[0]);
        if (number >= 0) {
            append(number, attributes[1]);
        }
    }
    if (used_ == elementUsed_) {
        return 0;
    }
    reserve(1);
    blockStart_[used_++] = 0;
    keptSize_ += used_ - elementUsed_;
    const std::uint64_t offset = blockOffset_ + elementUsed_;
    isFull_ = isFull_ || blockOffset_ + used_ > std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(offset);
}

int XmlTableBuilder::attributeNumber(Order& order, std::size_t place, const char* name)
{
    // What stands further back than all of the vocabulary is looked up each time, so that the memory
    // of an order stays small.
    if (place < order.size() && isSame(name, order[place].name.c_str())) {
        return order[place].number;
    }
    noteName(name);
    const std::size_t length = std::strlen(name);
    attributeCount_ += length / kLongName;
    const auto found = attributeNumbers_.find({name, length});
    const int number = found == attributeNumbers_.end() ? -1 : found->second;
    if (place < 2 * attributeNumbers_.size() && length < kLongName) {
        order.resize(std::max(order.size(), place + 1));
        order[place] = {name, number};
    }
    return number;
}

void XmlTableBuilder::append(int number, const char* value)
{
    const std::size_t length = std::strlen(value);
    if (length > std::numeric_limits<std::uint32_t>::max() / 2) {
        isFull_ = true;
        return;
    }
    reserve(length + 6);
    unsigned char* to = blockStart_ + used_;
    *to++ = static_cast<unsigned char>(number + 1);
    if (length < XmlAttributes::kLong) {
        *to++ = static_cast<unsigned char>(length);
    } else {
        *to++ = XmlAttributes::kLong;
        const auto longLength = static_cast<std::uint32_t>(length);
        std::memcpy(to, &longLength, sizeof longLength);
        to += sizeof longLength;
    }
    std::memcpy(to, value, length);
    used_ = static_cast<std::size_t>(to - blockStart_) + length;
}

// The attributes of one element lie in one piece: what the last block has of them moves along.
void XmlTableBuilder::reserve(std::size_t size)
{
    if (used_ + size <= blockSize_) {
        return;
    }
    const unsigned char* const begun = blockStart_ + elementUsed_;
    const std::size_t begunSize = used_ - elementUsed_;
    addBlock(begunSize + std::max(begunSize, size));
    std::memcpy(blockStart_, begun, begunSize);
    elementUsed_ = 0;
    used_ = begunSize;
}

// Blocks grow with the table, so that a small file takes little and a large one has huge pages.
void XmlTableBuilder::addBlock(std::size_t size)
{
    constexpr std::size_t kPage = XmlTable::kPageSize;
    const std::size_t soFar = table_.pages_.size() * kPage;
    blockSize_ = roundUp(std::max(size, std::min(soFar, kLargestBlock)), kPage);
    table_.blocks_.push_back(std::unique_ptr<unsigned char[]>(new unsigned char[blockSize_]));
    blockStart_ = table_.blocks_.back().get();
    prepareForFilling(blockStart_, blockSize_);
    blockOffset_ = soFar;
    for (std::size_t page = 0; page < blockSize_; page += kPage) {
        table_.pages_.push_back(blockStart_ + page);
    }
}

}  // namespace platform
