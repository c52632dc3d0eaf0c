// What folders hold, kept so that a search without case lists a folder once and not for every name.
#pragma once

#include <sys/stat.h>

#include <atomic>
#include <cstddef>
#include <ctime>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace platform {

/// Listings by the identity and the change time of their folder. A folder's time moves in coarse ticks,
/// so one that changed less than two seconds before it was listed may change again under the same time:
/// its listing serves the call that made it and is not kept.
///
/// Bounded: what was used longest ago goes when all listings together pass the limit, and a folder that
/// alone passes it is read through each time. Safe to use from several threads.
class FolderListings {
public:
    using Clock = std::function<std::timespec()>;

    static constexpr std::size_t kMostBytes = std::size_t{64} << 20;

    /// `now` tells the time that the file system stamps changes with.
    explicit FolderListings(Clock now, std::size_t mostBytes = kMostBytes);

    struct Answer {
        /// False when the path is no folder.
        bool isFolder = false;
        /// The entry of exactly that name, else the first in byte order that equals it without case.
        std::optional<std::string> name;
    };

    /// Looks `name` (UTF-8) up in the folder at a native path; empty is the current folder. An entry whose
    /// name is no UTF-8 is met as U+FFFD, which is also how its name came into a text.
    Answer find(const std::string& folder, const std::string& name);

    /// How many times a folder was read.
    std::size_t readCount() const { return readCount_; }
    /// What is kept now, in bytes as far as they can be told.
    std::size_t keptBytes() const;

private:
    struct Names {
        // The first name in byte order by the lower-cased form.
        std::unordered_map<std::string, std::string> first;
        // All others, which differ from a first one in case only.
        std::unordered_set<std::string> others;

        void add(std::string lower, std::string_view name);
        std::optional<std::string> find(const std::string& name) const;
    };
    struct State {
        dev_t device;
        ino_t number;
        std::timespec changed;
        std::timespec modified;
    };
    struct Kept {
        State state;
        std::shared_ptr<const Names> names;
        std::size_t bytes;
    };
    struct Reading;

    static State stateOf(const struct stat& status);
    static bool isSameFolder(const State& a, const State& b);
    static bool isUnchanged(const State& a, const State& b);
    std::shared_ptr<const Names> kept(const State& state);
    Answer read(const std::string& folder, const std::string& name);
    void keep(Kept listing);
    void forget(std::list<Kept>::iterator listing);
    bool isSettled(const State& state) const;

    Clock now_;
    std::size_t mostBytes_;
    std::atomic<std::size_t> readCount_ = 0;
    mutable std::mutex mutex_;
    std::list<Kept> kept_;  // What was used last comes first.
    std::size_t keptBytes_ = 0;
};

}  // namespace platform
