// Archives over memory, for the length of a test.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "raylume/persist/RLArchive.h"
#include "raylume/persist/RLByteEnds.h"
#include "raylume/platform/Errors.h"

namespace persist_tests {

inline constexpr wchar_t kFileName[] = L"C:\\parts\\a.doc";

/// A loading archive over bytes of its own.
class Loading {
public:
    explicit Loading(std::string bytes, std::uint32_t version = RLArchive::kCurrentVersion)
        : bytes_(std::move(bytes)),
          source_(bytes_),
          stream_(source_, kFileName),
          archive_{&stream_, version}
    {
    }
    Loading(const Loading&) = delete;
    Loading& operator=(const Loading&) = delete;

    RLArchive& archive() { return archive_; }
    RLByteStream& stream() { return stream_; }
    /// The bytes behind what was read.
    std::string rest()
    {
        std::string rest(bytes_.size() + 1, '\0');
        rest.resize(stream_.readRaw(rest.data(), rest.size()));
        return rest;
    }

private:
    std::string bytes_;
    RLMemorySource source_;
    RLByteStream stream_;
    RLArchive archive_;
};

/// A storing archive.
class Storing {
public:
    explicit Storing(std::uint32_t version = RLArchive::kCurrentVersion)
        : stream_(sink_, kFileName), archive_{&stream_, version}
    {
    }
    Storing(const Storing&) = delete;
    Storing& operator=(const Storing&) = delete;

    RLArchive& archive() { return archive_; }
    RLByteStream& stream() { return stream_; }
    /// All that was written so far.
    const std::string& bytes()
    {
        stream_.close();
        return sink_.bytes();
    }

private:
    RLMemorySink sink_;
    RLByteStream stream_;
    RLArchive archive_;
};

inline std::string stored(RLSerializable& record, std::uint32_t version = RLArchive::kCurrentVersion)
{
    Storing storing(version);
    record.serialize(storing.archive());
    return storing.bytes();
}

/// Reads into the record and gives what is left of the bytes.
inline std::string load(RLSerializable& record, const std::string& bytes,
                        std::uint32_t version = RLArchive::kCurrentVersion)
{
    Loading loading(bytes, version);
    record.serialize(loading.archive());
    return loading.rest();
}

/// The cause of the archive's failure, 0 for none. Its file name must be right.
inline int causeOf(const std::function<void()>& call)
{
    try {
        call();
        return 0;
    } catch (const platform::ArchiveError& error) {
        return error.fileName() == kFileName ? error.cause() : -1;
    }
}

}  // namespace persist_tests
