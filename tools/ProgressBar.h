#pragma once

#include <ostream>

namespace tool {

/// A bar of one line that is drawn over itself while a document is read. The destructor erases it,
/// so that whatever comes next starts on a clean line.
class ProgressBar {
public:
    explicit ProgressBar(std::ostream& terminal);
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar();

    /// `done` from 0 to 1; draws only when the whole percents change.
    void show(float done);

private:
    std::ostream& terminal_;
    int shownPercent_ = -1;
};

}  // namespace tool
