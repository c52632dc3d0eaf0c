// What every stored record shares: the archive that it reads and writes itself by.
#pragma once

#include <cstdint>

#include "raylume/persist/RLByteStream.h"
#include "raylume/platform/Export.h"

/// The handle that records are given. Whoever builds it sets the version; RLData replaces it by that of
/// the stream when loading and by the current one when storing.
///
/// Ownership: a plain value; borrows the stream.
struct RLArchive {
    /// What is written now. Nothing refuses a higher one: it is read like this one.
    static constexpr std::uint32_t kCurrentVersion = 10;

    RLByteStream* archive = nullptr;
    /// Decides when loading which fields the stream has. Storing does not look at it.
    std::uint32_t version = kCurrentVersion;
};

/// A record that reads and writes itself. There is no virtual destructor: records die as what they are.
class DL_API RLSerializable {
public:
    RLSerializable() = default;
    RLSerializable(const RLSerializable&) = default;
    RLSerializable& operator=(const RLSerializable&) = default;

    /// Reads or writes all fields, by the direction of the archive. A failure (see RLByteStream) leaves
    /// the fields before it set and those behind it as they were.
    virtual void serialize(RLArchive& archive) = 0;

protected:
    ~RLSerializable() = default;
};
