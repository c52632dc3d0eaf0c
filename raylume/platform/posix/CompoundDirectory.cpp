#include "raylume/platform/posix/CompoundDirectory.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "raylume/platform/Text.h"
#include "raylume/platform/posix/CompoundTree.h"

namespace platform::compound {

namespace {

constexpr std::size_t kHeaderSize = 512;
constexpr std::size_t kEntrySize = 128;
constexpr std::size_t kSmallSectorShift = 6;
constexpr std::size_t kTableSectorsInHeader = 109;
// Streams below this lie in small sectors. The format knows no other limit.
constexpr std::uint32_t kSmallLimit = 4096;
// Sector numbers from here on are marks.
constexpr std::uint32_t kFirstMark = 0xFFFFFFFAu;
constexpr std::uint32_t kEndOfChain = 0xFFFFFFFEu;
constexpr std::uint32_t kNoNumber = 0xFFFFFFFFu;

std::uint32_t get16(const std::uint8_t* bytes)
{
    return static_cast<std::uint32_t>(bytes[0] | bytes[1] << 8);
}

std::uint32_t get32(const std::uint8_t* bytes)
{
    return get16(bytes) | get16(bytes + 2) << 16;
}

std::uint64_t get64(const std::uint8_t* bytes)
{
    return get32(bytes) | std::uint64_t{get32(bytes + 4)} << 32;
}

// From 100 nanoseconds since 1601. Zero is no time.
std::optional<std::int64_t> timeOf(std::uint64_t stamp)
{
    constexpr std::uint64_t kFrom1601To1970 = 11644473600000000u;
    if (stamp == 0 || stamp / 10 > std::uint64_t{1} << 60)
        return std::nullopt;
    return static_cast<std::int64_t>(stamp / 10) - static_cast<std::int64_t>(kFrom1601To1970);
}

std::wstring fromUtf16(const std::vector<std::uint32_t>& units)
{
    std::wstring text;
    for (std::size_t i = 0; i < units.size(); ++i) {
        std::uint32_t code = units[i];
        const bool pair =
            (code & 0xFC00u) == 0xD800u && i + 1 < units.size() && (units[i + 1] & 0xFC00u) == 0xDC00u;
        if (pair)
            code = 0x10000u + ((code & 0x3FFu) << 10) + (units[++i] & 0x3FFu);
        text += static_cast<wchar_t>(code);
    }
    return text;
}

// Some writers put 8-bit text there; what libgsf takes for it has to be the same here, since streams are
// found by name.
bool is8BitName(const std::uint8_t* entry, std::size_t length)
{
    const auto* end = std::find(entry, entry + length, std::uint8_t{0});
    return length > 2 && end == entry + length - 1 &&
           std::all_of(entry, end, [](std::uint8_t c) { return c < 0x80; });
}

std::wstring nameOf(const std::uint8_t* entry)
{
    const std::size_t length = std::min<std::size_t>(get16(entry + 64), 64);
    if (is8BitName(entry, length))
        return std::wstring(entry, entry + length - 1);
    std::vector<std::uint32_t> units;
    for (std::size_t i = 0; i + 1 < length && get16(entry + i) != 0; i += 2)
        units.push_back(get16(entry + i));
    return fromUtf16(units);
}

// An allocation table: what follows each sector. Every sector belongs to one chain.
class SectorTable {
public:
    std::vector<std::uint32_t> next;
    /// How many sectors there are: tables come in whole sectors and mostly have numbers for more.
    std::uint64_t limit = 0;

    /// Marks the sectors of a chain as taken and counts them. Nothing for a chain that leaves the table
    /// or the file, or that meets a sector taken before.
    std::optional<std::uint64_t> take(std::uint32_t first, std::vector<std::uint32_t>* sectors = nullptr)
    {
        const std::uint64_t end = std::min<std::uint64_t>(next.size(), limit);
        taken_.resize(next.size());
        std::uint64_t count = 0;
        inOrder_ = true;
        std::uint32_t sector = first;
        for (; sector < end && !taken_[sector]; sector = next[sector]) {
            taken_[sector] = true;
            inOrder_ = inOrder_ && sector == first + count;
            ++count;
            if (sectors)
                sectors->push_back(sector);
        }
        if (sector != kEndOfChain)
            return std::nullopt;
        return count;
    }

    /// Whether the sectors of the chain last taken lie one behind the other.
    bool inOrder() const { return inOrder_; }

private:
    std::vector<bool> taken_;
    bool inOrder_ = true;
};

class DirectoryReader {
public:
    DirectoryReader(const FileBytes& file, Directory& directory) : file_(file), directory_(directory) {}

    HResult read()
    {
        for (const auto step : {&DirectoryReader::readHeader, &DirectoryReader::readTable,
                                &DirectoryReader::readChains, &DirectoryReader::readEntries}) {
            const HResult result = (this->*step)();
            if (result < 0)
                return result;
        }
        return kStorageOk;
    }

private:
    HResult readHeader()
    {
        static constexpr std::uint8_t kSignature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
        std::uint8_t signature[8];
        if (!file_.read(0, signature, sizeof(signature)) || std::memcmp(signature, kSignature, 8) != 0)
            return kStorageExists;
        if (!file_.read(0, header_, sizeof(header_)))
            return kStorageCorrupt;
        const std::uint32_t shift = get16(header_ + 30);
        if ((shift != 9 && shift != 12) || get16(header_ + 32) != kSmallSectorShift ||
            get32(header_ + 56) != kSmallLimit)
            return kStorageCorrupt;
        shift_ = shift;
        directory_.sectorSize = std::size_t{1} << shift;
        // The header takes a whole sector. Sector numbers stay below the marks in any file that has them.
        const std::uint64_t size = file_.size();
        sectors_ = size <= sectorSize() ? 0 : (size - 1) >> shift_;
        table_.limit = sectors_;
        return sectors_ == 0 || sectors_ >= kFirstMark ? kStorageCorrupt : kStorageOk;
    }

    std::size_t sectorSize() const { return directory_.sectorSize; }
    std::size_t numbersInSector() const { return sectorSize() / 4; }

    bool readSector(std::uint32_t sector, std::vector<std::uint8_t>& bytes) const
    {
        bytes.resize(sectorSize());
        return sector < sectors_ &&
               file_.read((std::uint64_t{sector} + 1) << shift_, bytes.data(), bytes.size());
    }

    // The sectors of the table stand in the header, and further ones in a chain of sectors.
    bool listTableSectors(std::vector<std::uint32_t>& list) const
    {
        const std::uint32_t count = get32(header_ + 44);
        if (count >= sectors_ + 1)
            return false;
        for (std::size_t i = 0; i < kTableSectorsInHeader && list.size() < count; ++i)
            list.push_back(get32(header_ + 76 + 4 * i));
        std::vector<std::uint8_t> bytes;
        std::uint32_t sector = get32(header_ + 68);
        while (list.size() < count) {
            if (!readSector(sector, bytes))
                return false;
            for (std::size_t i = 0; i + 1 < numbersInSector() && list.size() < count; ++i)
                list.push_back(get32(&bytes[4 * i]));
            sector = get32(&bytes[bytes.size() - 4]);
        }
        return true;
    }

    // A table sector named twice would make the table larger than the file.
    HResult readTable()
    {
        std::vector<std::uint32_t> list;
        if (!listTableSectors(list))
            return kStorageCorrupt;
        auto sorted = list;
        std::sort(sorted.begin(), sorted.end());
        if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end())
            return kStorageCorrupt;
        return appendNumbers(list, table_.next) ? kStorageOk : kStorageCorrupt;
    }

    bool appendNumbers(const std::vector<std::uint32_t>& list, std::vector<std::uint32_t>& numbers) const
    {
        std::vector<std::uint8_t> bytes;
        for (const std::uint32_t sector : list) {
            if (!readSector(sector, bytes))
                return false;
            for (std::size_t i = 0; i < numbersInSector(); ++i)
                numbers.push_back(get32(&bytes[4 * i]));
        }
        return true;
    }

    HResult readChains()
    {
        if (!table_.take(get32(header_ + 48), &entrySectors_) || entrySectors_.empty())
            return kStorageCorrupt;
        std::vector<std::uint32_t> smallSectors;
        const std::uint32_t small = get32(header_ + 60);
        // The small stream may end inside its last sector, so that its size is looked at by itself.
        smallTable_.limit = kFirstMark;
        // Some writers leave any number there when there are none.
        if (get32(header_ + 64) == 0 || small >= kFirstMark)
            return kStorageOk;
        if (!table_.take(small, &smallSectors) || !appendNumbers(smallSectors, smallTable_.next))
            return kStorageCorrupt;
        return kStorageOk;
    }

    // Zero, which is the header, for an entry that the file does not have.
    std::uint64_t placeOf(std::uint32_t number) const
    {
        const std::uint64_t offset = std::uint64_t{number} * kEntrySize;
        const std::uint64_t place = offset >> shift_;
        if (place >= entrySectors_.size() || entrySectors_[static_cast<std::size_t>(place)] >= sectors_)
            return 0;
        const std::uint64_t sector = entrySectors_[static_cast<std::size_t>(place)];
        return ((sector + 1) << shift_) + (offset & (sectorSize() - 1));
    }

    bool readEntry(std::uint32_t number, std::uint8_t* bytes) const
    {
        const std::uint64_t place = placeOf(number);
        return place != 0 && file_.read(place, bytes, kEntrySize);
    }

    // A place where an entry hangs in the tree of its siblings.
    struct Link {
        std::uint32_t number;
        std::size_t parent;
        std::size_t distance;
        int depth;
    };

    HResult readEntries()
    {
        std::uint8_t root[kEntrySize];
        const bool found = readEntry(0, root) && root[66] == 5;
        // The root has no siblings; libgsf would follow such links without end in sight.
        if (!found || get32(root + 68) != kNoNumber || get32(root + 72) != kNoNumber)
            return kStorageCorrupt;
        seen_.assign(entrySectors_.size() * (sectorSize() / kEntrySize), false);
        seen_[0] = true;
        directory_.entries.emplace_back();
        directory_.entries[0].isStorage = true;
        describeStorage(root, directory_.entries[0]);
        readSmallStream(root);
        std::vector<Link> links = {{get32(root + 76), 0, 1, 1}};
        while (!links.empty()) {
            const Link link = links.back();
            links.pop_back();
            const HResult result = link.number == kNoNumber ? kStorageOk : readLinked(link, links);
            if (result < 0)
                return result;
        }
        std::sort(directory_.damagedSizes.begin(), directory_.damagedSizes.end());
        return count();
    }

    HResult readLinked(const Link& link, std::vector<Link>& links)
    {
        std::uint8_t bytes[kEntrySize];
        if (link.number >= seen_.size() || seen_[link.number] || !readEntry(link.number, bytes))
            return kStorageCorrupt;
        if (bytes[66] != 1 && bytes[66] != 2)
            return kStorageCorrupt;
        if (link.depth > kDeepestStorage)
            return kStorageTooLarge;
        seen_[link.number] = true;
        directory_.farthest = std::max(directory_.farthest, link.distance);
        const std::size_t place = directory_.entries.size();
        directory_.entries.push_back(describe(bytes));
        if (directory_.entries.back().damaged)
            directory_.damagedSizes.push_back(placeOf(link.number) + 120);
        directory_.entries[link.parent].children.push_back(place);
        if (directory_.entries[link.parent].children.size() > kMostElements)
            return kStorageTooLarge;
        for (const std::size_t sibling : {68, 72})
            links.push_back({get32(bytes + sibling), link.parent, link.distance + 1, link.depth});
        if (directory_.entries[place].isStorage)
            links.push_back({get32(bytes + 76), place, link.distance + 1, link.depth + 1});
        return kStorageOk;
    }

    HResult count() const
    {
        Census census;
        const auto fits = [&census](const DirectoryEntry& entry) {
            return census.add(entry.children.size());
        };
        const auto& entries = directory_.entries;
        return std::all_of(entries.begin(), entries.end(), fits) ? kStorageOk : kStorageTooLarge;
    }

    static void describeStorage(const std::uint8_t* bytes, DirectoryEntry& entry)
    {
        std::copy_n(bytes + 80, entry.classId.size(), entry.classId.begin());
        entry.modified = timeOf(get64(bytes + 108));
    }

    DirectoryEntry describe(const std::uint8_t* bytes)
    {
        DirectoryEntry entry;
        entry.name = nameOf(bytes);
        entry.isStorage = bytes[66] == 1;
        if (entry.isStorage) {
            describeStorage(bytes, entry);
        } else {
            entry.size = sizeOf(bytes);
            const std::uint32_t first = get32(bytes + 116);
            entry.damaged = entry.size > 0 && !isWhole(first, entry.size);
            if (!entry.damaged && entry.size >= kSmallLimit)
                entry.place = pieceAt(first, entry.size);
        }
        return entry;
    }

    // Files with small sectors may have anything in the upper half.
    std::uint64_t sizeOf(const std::uint8_t* bytes) const
    {
        return shift_ == 9 ? get32(bytes + 120) : get64(bytes + 120);
    }

    void readSmallStream(const std::uint8_t* root)
    {
        const std::uint64_t size = sizeOf(root);
        const auto count = size == 0 ? std::optional<std::uint64_t>() : table_.take(get32(root + 116));
        if (count && *count <= sectors_)
            smallStreamSize_ = std::min(size, *count << shift_);
    }

    bool isWhole(std::uint32_t first, std::uint64_t size)
    {
        if (size > kLargestStream || size > file_.size())
            return false;
        const bool small = size < kSmallLimit;
        const auto count = (small ? smallTable_ : table_).take(first);
        const std::uint64_t room = !count ? 0 : *count << (small ? kSmallSectorShift : shift_);
        return room >= size && (!small || size <= smallStreamSize_);
    }

    // Of the chain last taken. The last sector of a file may be short of a whole one.
    std::optional<std::uint64_t> pieceAt(std::uint32_t first, std::uint64_t size) const
    {
        const std::uint64_t place = (std::uint64_t{first} + 1) << shift_;
        if (!table_.inOrder() || place > file_.size() || size > file_.size() - place)
            return std::nullopt;
        return place;
    }

    const FileBytes& file_;
    Directory& directory_;
    std::uint8_t header_[kHeaderSize] = {};
    std::size_t shift_ = 9;
    std::uint64_t sectors_ = 0;
    SectorTable table_;
    SectorTable smallTable_;
    std::vector<std::uint32_t> entrySectors_;
    std::vector<bool> seen_;
    std::uint64_t smallStreamSize_ = 0;
};

}  // namespace

HResult readDirectory(const FileBytes& file, Directory& directory)
{
    return DirectoryReader(file, directory).read();
}

}  // namespace platform::compound
