#include "tools/ProgressBar.h"

#include <algorithm>
#include <string>

namespace tool {
namespace {

constexpr int kWidth = 40;

int wholePercent(float done)
{
    if (!(done > 0))
        return 0;
    return static_cast<int>(std::min(done, 1.0f) * 100.0f);
}

std::string drawn(int percent)
{
    const int filled = percent * kWidth / 100;
    return "[" + std::string(filled, '#') + std::string(kWidth - filled, ' ') + "] " +
           std::to_string(percent) + " %";
}

}  // namespace

ProgressBar::ProgressBar(std::ostream& terminal) : terminal_(terminal)
{
}

ProgressBar::~ProgressBar()
{
    if (shownPercent_ >= 0)
        terminal_ << '\r' << std::string(kWidth + 8, ' ') << '\r' << std::flush;
}

void ProgressBar::show(float done)
{
    const int percent = wholePercent(done);
    if (percent == shownPercent_)
        return;
    shownPercent_ = percent;
    terminal_ << '\r' << drawn(percent) << std::flush;
}

}  // namespace tool
