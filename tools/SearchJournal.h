// The image searches of one load, and the temporary bitmaps that came of them.
#pragma once

#include <string>
#include <vector>

#include "raylume/services/TextureSearchLog.h"

namespace tool {

/// One search, and the temporary bitmap that a save right after it would have made (a native path; empty
/// when the environment names no folder for temporary files).
struct LoadSearch {
    TextureSearchRecord record;
    std::string nextBitmap;
};

/// The temporary bitmaps of this process by their numbers. A decal's mask is baked into the next one, so
/// watching which one is next tells which search a bitmap belongs to.
class BitmapNumbers {
public:
    /// The native path of the next bitmap. Empty without a folder for temporary files. Costs one look at
    /// the file system while no bitmap is made.
    std::string next();

private:
    bool isFor(const std::wstring& folder) const { return number_ > 0 && folder == folder_; }
    std::string path() const;

    std::wstring folder_;
    int number_ = 0;  // 0: the folder was not looked at yet
};

/// Writes down every search that this thread makes while it lives. One at a time.
class SearchJournal {
public:
    SearchJournal();
    SearchJournal(const SearchJournal&) = delete;
    SearchJournal& operator=(const SearchJournal&) = delete;
    ~SearchJournal();

    /// What was written down, in order. Beyond a bound, searches come without their probes (a document and
    /// a side file can make any number of them), and then not at all.
    std::vector<LoadSearch> take() { return std::move(searches_); }

private:
    void add(const TextureSearchRecord& record);

    TextureSearchObserver before_;
    BitmapNumbers numbers_;
    std::vector<LoadSearch> searches_;
    std::size_t probesKept_ = 0;
};

}  // namespace tool
