#include "raylume/platform/posix/FolderListings.h"

#include <string_view>
#include <utility>

#include "raylume/platform/Text.h"
#include "raylume/platform/posix/Handles.h"

namespace platform {

namespace {

constexpr std::time_t kSettledAfter = 2;
// The search through them is linear.
constexpr std::size_t kMostListings = 128;
// Of an entry in the table of names, besides its characters.
constexpr std::size_t kEntryBytes = 128;

std::string lowerName(std::string_view name)
{
    return toUtf8(toLower(fromUtf8(name)));
}

const char* orCurrent(const std::string& folder)
{
    return folder.empty() ? "." : folder.c_str();
}

// A folder may let names through that it does not list.
std::optional<std::string> unlistedName(const std::string& folder, const std::string& name)
{
    const bool needsSeparator = !folder.empty() && folder.back() != '/';
    struct stat status;
    const bool exists = lstat((folder + (needsSeparator ? "/" : "") + name).c_str(), &status) == 0;
    return exists ? std::optional(name) : std::nullopt;
}

bool isEqual(const std::timespec& a, const std::timespec& b)
{
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool isBefore(const std::timespec& a, const std::timespec& b)
{
    return a.tv_sec != b.tv_sec ? a.tv_sec < b.tv_sec : a.tv_nsec < b.tv_nsec;
}

}  // namespace

void FolderListings::Names::add(std::string lower, std::string_view name)
{
    const auto [entry, isNew] = first.try_emplace(std::move(lower), name);
    if (isNew) {
        return;
    }
    std::string other(name);
    if (other < entry->second) {
        entry->second.swap(other);
    }
    others.insert(std::move(other));
}

std::optional<std::string> FolderListings::Names::find(const std::string& name) const
{
    if (others.count(name) != 0) {
        return name;
    }
    const auto found = first.find(lowerName(name));
    return found == first.end() ? std::nullopt : std::optional(found->second);
}

// One pass over a folder, which collects its names until they are too many to keep.
struct FolderListings::Reading {
    Reading(const std::string& name, std::size_t most)
        : wanted(name), lowerWanted(lowerName(name)), mostBytes(most)
    {
    }

    const std::string& wanted;
    const std::string lowerWanted;
    const std::size_t mostBytes;
    std::optional<std::string> match;
    Names names;
    std::size_t bytes = 0;

    void add(std::string_view name)
    {
        std::string lower = lowerName(name);
        if (lower == lowerWanted && isBetter(name)) {
            match = name;
        }
        if (fits()) {
            collect(std::move(lower), name);
        }
    }

    bool fits() const { return bytes <= mostBytes; }

private:
    bool isBetter(std::string_view name) const
    {
        return !match || name == wanted || (*match != wanted && name < *match);
    }

    void collect(std::string lower, std::string_view name)
    {
        bytes += lower.size() + name.size() + kEntryBytes;
        if (fits()) {
            names.add(std::move(lower), name);
        } else {
            names = {};
        }
    }
};

FolderListings::FolderListings(Clock now, std::size_t mostBytes)
    : now_(std::move(now)), mostBytes_(mostBytes)
{
}

FolderListings::State FolderListings::stateOf(const struct stat& status)
{
    return {status.st_dev, status.st_ino, status.st_ctim, status.st_mtim};
}

bool FolderListings::isSameFolder(const State& a, const State& b)
{
    return a.device == b.device && a.number == b.number;
}

bool FolderListings::isUnchanged(const State& a, const State& b)
{
    return isEqual(a.changed, b.changed) && isEqual(a.modified, b.modified);
}

// Asked before the folder is read, so that a change during the reading has another time for certain.
bool FolderListings::isSettled(const State& state) const
{
    std::timespec latest = now_();
    latest.tv_sec -= kSettledAfter;
    return !isBefore(latest, state.changed) && !isBefore(latest, state.modified);
}

std::size_t FolderListings::keptBytes() const
{
    const std::lock_guard lock(mutex_);
    return keptBytes_;
}

void FolderListings::forget(std::list<Kept>::iterator listing)
{
    keptBytes_ -= listing->bytes;
    kept_.erase(listing);
}

std::shared_ptr<const FolderListings::Names> FolderListings::kept(const State& state)
{
    const std::lock_guard lock(mutex_);
    for (auto listing = kept_.begin(); listing != kept_.end(); ++listing) {
        if (!isSameFolder(listing->state, state)) {
            continue;
        }
        if (!isUnchanged(listing->state, state)) {
            forget(listing);
            return nullptr;
        }
        kept_.splice(kept_.begin(), kept_, listing);
        return listing->names;
    }
    return nullptr;
}

void FolderListings::keep(Kept listing)
{
    const std::lock_guard lock(mutex_);
    // Another thread may have read the same folder meanwhile.
    for (auto other = kept_.begin(); other != kept_.end(); ++other) {
        if (isSameFolder(other->state, listing.state)) {
            forget(other);
            break;
        }
    }
    const std::size_t bytes = listing.bytes;
    kept_.push_front(std::move(listing));
    keptBytes_ += bytes;
    while (keptBytes_ > mostBytes_ || kept_.size() > kMostListings) {
        forget(std::prev(kept_.end()));
    }
}

FolderListings::Answer FolderListings::read(const std::string& folder, const std::string& name)
{
    const OpenFolder listing(opendir(orCurrent(folder)));
    struct stat status;
    if (!listing || fstat(dirfd(listing.get()), &status) != 0) {
        return {true, unlistedName(folder, name)};
    }
    ++readCount_;
    const State state = stateOf(status);
    const bool keeps = isSettled(state);
    Reading reading(name, keeps ? mostBytes_ : 0);
    while (const dirent* const entry = readdir(listing.get())) {
        reading.add(entry->d_name);
    }
    if (keeps && reading.fits()) {
        keep({state, std::make_shared<const Names>(std::move(reading.names)), reading.bytes});
    }
    return {true, std::move(reading.match)};
}

FolderListings::Answer FolderListings::find(const std::string& folder, const std::string& name)
{
    struct stat status;
    if (stat(orCurrent(folder), &status) != 0 || !S_ISDIR(status.st_mode)) {
        return {};
    }
    const auto names = kept(stateOf(status));
    return names ? Answer{true, names->find(name)} : read(folder, name);
}

}  // namespace platform
