// Progress and interruption of one read.
#pragma once

#include <optional>
#include <ostream>

#include "tools/ProgressBar.h"

namespace tool {

/// While an object of this kind lives, the reader draws a bar where it is told and asks whether it was
/// interrupted. One at a time.
class ReaderHandlers {
public:
    /// `progressTo` is null for no bar.
    explicit ReaderHandlers(std::ostream* progressTo);
    ReaderHandlers(const ReaderHandlers&) = delete;
    ReaderHandlers& operator=(const ReaderHandlers&) = delete;
    ~ReaderHandlers();

private:
    std::optional<ProgressBar> bar_;
};

}  // namespace tool
