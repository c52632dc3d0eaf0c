// The bitmaps that the library leaves in its temporary folder.
#pragma once

namespace tool {

/// Removes the temporary bitmaps of this process, and their folder, when it goes, or earlier; once. Only
/// what carries the number of this process is touched.
class TemporaryBitmaps {
public:
    explicit TemporaryBitmaps(bool keep) : keep_(keep) {}
    TemporaryBitmaps(const TemporaryBitmaps&) = delete;
    TemporaryBitmaps& operator=(const TemporaryBitmaps&) = delete;
    ~TemporaryBitmaps();

    /// Has to be called where they were made, that is with the same folder in the environment.
    void remove();

private:
    bool keep_;  // or removed already
};

}  // namespace tool
