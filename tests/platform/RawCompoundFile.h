// Compound files by their bytes, for what no library would write.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace compound_tests {

/// The bytes of a file, with ways to the places that tests change.
class RawCompoundFile {
public:
    explicit RawCompoundFile(std::string content) : bytes(std::move(content)) {}

    std::uint32_t get32(std::size_t place) const
    {
        std::uint32_t number = 0;
        for (int i = 3; i >= 0; --i)
            number =
                number << 8 | static_cast<unsigned char>(bytes.at(place + static_cast<std::size_t>(i)));
        return number;
    }

    void put32(std::size_t place, std::uint32_t number)
    {
        for (std::size_t i = 0; i < 4; ++i)
            bytes.at(place + i) = static_cast<char>(number >> 8 * i);
    }

    void put16(std::size_t place, std::uint32_t number)
    {
        bytes.at(place) = static_cast<char>(number);
        bytes.at(place + 1) = static_cast<char>(number >> 8);
    }

    std::size_t sectorSize() const { return std::size_t{1} << (bytes.at(30) & 31); }
    std::size_t sector(std::uint32_t number) const { return (std::size_t{number} + 1) * sectorSize(); }
    /// Where the allocation table tells what follows a sector, in files with a single table sector.
    std::size_t tablePlace(std::uint32_t number) const
    {
        return sector(get32(76)) + 4 * std::size_t{number};
    }
    std::uint32_t firstSector(std::u16string_view name) const { return get32(entry(name) + 116); }

    /// Where the entry of that name begins.
    std::size_t entry(std::u16string_view name) const
    {
        std::string text;
        for (const char16_t unit : name) {
            text += static_cast<char>(unit & 0xFF);
            text += static_cast<char>(unit >> 8);
        }
        text.append(2, '\0');
        for (std::size_t place = sectorSize(); place + 128 <= bytes.size(); place += 128) {
            if (bytes.compare(place, text.size(), text) == 0 &&
                static_cast<unsigned char>(bytes[place + 64]) == text.size())
                return place;
        }
        throw std::runtime_error("no such entry");
    }

    std::string bytes;
};

/// Lays out a file sector by sector.
class RawCompoundBuilder {
public:
    static constexpr std::uint32_t kEnd = 0xFFFFFFFEu;
    static constexpr std::uint32_t kNone = 0xFFFFFFFFu;

    explicit RawCompoundBuilder(unsigned sectorShift = 9) : shift_(sectorShift) {}

    /// Adds bytes as a chain of sectors; gives the first.
    std::uint32_t add(const std::string& content)
    {
        if (content.empty())
            return kEnd;
        const auto first = static_cast<std::uint32_t>(next_.size());
        const std::size_t count = (content.size() + size() - 1) / size();
        for (std::size_t i = 0; i < count; ++i)
            next_.push_back(i + 1 < count ? first + static_cast<std::uint32_t>(i) + 1 : kEnd);
        sectors_ += content;
        sectors_.resize(next_.size() * size());
        return first;
    }

    struct Entry {
        std::u16string name;
        int type = 2;
        std::uint32_t left = kNone;
        std::uint32_t right = kNone;
        std::uint32_t child = kNone;
        std::uint32_t first = kEnd;
        std::uint64_t size = 0;
    };

    /// The file of these entries. The small stream is the root's.
    std::string file(const std::vector<Entry>& entries, std::uint32_t smallTable = kEnd,
                     std::uint32_t smallCount = 0)
    {
        std::string directory;
        for (const Entry& entry : entries)
            directory += entryBytes(entry);
        while (directory.size() % size() != 0)
            directory += entryBytes({u"", 0});
        const std::uint32_t directoryStart = add(directory);
        std::vector<std::uint32_t> tables;
        while (tables.size() * size() / 4 < next_.size()) {
            tables.push_back(static_cast<std::uint32_t>(next_.size()));
            next_.push_back(0xFFFFFFFDu);
        }
        std::string table;
        for (std::size_t i = 0; i < tables.size() * size() / 4; ++i)
            table += little(i < next_.size() ? next_[i] : kNone, 4);
        return header(directoryStart, smallTable, smallCount, tables) + sectors_ + table;
    }

    std::size_t size() const { return std::size_t{1} << shift_; }

    static std::string little(std::uint64_t number, int bytes)
    {
        std::string text;
        for (int i = 0; i < bytes; ++i)
            text += static_cast<char>(number >> 8 * i);
        return text;
    }

private:
    static std::string entryBytes(const Entry& entry)
    {
        std::string text;
        for (const char16_t unit : entry.name)
            text += little(unit, 2);
        const std::size_t length = entry.type == 0 ? 0 : text.size() + 2;
        text.resize(64);
        text += little(length, 2) + little(static_cast<std::uint64_t>(entry.type), 1) + little(1, 1);
        text += little(entry.left, 4) + little(entry.right, 4) + little(entry.child, 4);
        text.resize(116);
        return text + little(entry.first, 4) + little(entry.size, 8);
    }

    std::string header(std::uint32_t directory, std::uint32_t smallTable, std::uint32_t smallCount,
                       const std::vector<std::uint32_t>& tables) const
    {
        std::string text = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
        text.resize(24);
        text += little(0x3E, 2) + little(shift_ == 12 ? 4 : 3, 2) + little(0xFFFE, 2) + little(shift_, 2);
        text += little(6, 2) + std::string(10, '\0') + little(tables.size(), 4) + little(directory, 4);
        text += little(0, 4) + little(4096, 4) + little(smallTable, 4) + little(smallCount, 4);
        text += little(kEnd, 4) + little(0, 4);
        for (std::size_t i = 0; i < 109; ++i)
            text += little(i < tables.size() ? tables[i] : kNone, 4);
        text.resize(size());
        return text;
    }

    unsigned shift_;
    std::vector<std::uint32_t> next_;
    std::string sectors_;
};

}  // namespace compound_tests
