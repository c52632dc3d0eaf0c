// What of a decal's image stays visible: baked into the alpha bytes of a new image.
//
// Pixels are 4 bytes each: blue, green, red, alpha; rows without gaps.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace maskimages {

/// Makes the pixels of the listed colours (red in the low byte) transparent and all others opaque,
/// whatever their alpha was. An entry above 0xFFFFFF matches no pixel. An empty list leaves everything as
/// it is. Takes the same time for any number of colours above four.
void cutOutColours(unsigned char* pixels, std::size_t pixelCount, const std::list<std::uint32_t>& colours);

struct Size {
    int width;
    int height;
};

/// Gives each pixel the first byte (blue) of the mask's pixel at the same place as its alpha, or 255 minus
/// that with `invert`. Between different sizes it takes the nearest towards the first row and column. With
/// a side of 0 or less nothing happens.
void takeAlphaFromMask(unsigned char* pixels, Size size, const unsigned char* mask, Size maskSize,
                       bool invert);

/// What was made with which colours.
struct ColorsRecord {
    std::wstring imageName;  ///< Resolved.
    std::list<std::uint32_t> colors;
    std::wstring resultFile;
};

/// What was made with which mask image.
struct FileRecord {
    std::wstring imageName;  ///< Resolved.
    std::wstring maskName;   ///< Resolved.
    bool inverted;
    std::wstring resultFile;
};

// What two records must share to be the same image: all but the result; names in lower case.
using ColorsKey = std::pair<std::wstring, std::list<std::uint32_t>>;
using FileKey = std::tuple<std::wstring, std::wstring, bool>;
ColorsKey keyOf(const ColorsRecord& record);
FileKey keyOf(const FileRecord& record);

/// Records in the order in which they came, and beside them an index from what they were made of. Lives
/// as long as the process; nothing is ever taken out, files that are gone included.
template <class Record>
class Cache {
public:
    /// The first record made of the same as `wanted`, whose result does not matter. Null if there is none;
    /// valid until the next add.
    const Record* find(const Record& wanted) const
    {
        const auto entry = first_.find(keyOf(wanted));
        return entry == first_.end() ? nullptr : &records_[entry->second];
    }

    /// When memory runs out, everything stays as it was.
    void add(Record record)
    {
        Key key = keyOf(record);
        records_.push_back(std::move(record));
        try {
            first_.try_emplace(std::move(key), records_.size() - 1);
        } catch (...) {
            records_.pop_back();
            throw;
        }
    }

    const std::vector<Record>& records() const { return records_; }

private:
    using Key = decltype(keyOf(std::declval<const Record&>()));

    std::vector<Record> records_;
    std::map<Key, std::size_t> first_;
};

}  // namespace maskimages

extern maskimages::Cache<maskimages::ColorsRecord> maskImageCacheColors;
extern maskimages::Cache<maskimages::FileRecord> maskImageCacheFiles;
