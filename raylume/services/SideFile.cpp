#include "raylume/services/SideFile.h"

#include <algorithm>

#include "raylume/platform/Text.h"

namespace {

constexpr std::size_t kBufferSize = 64 * 1024;
constexpr char kEndOfText = '\x1A';

}  // namespace

SideFile::SideFile(const std::wstring& path) : file_(platform::InputFile::open(path))
{
    if (file_) {
        buffer_.resize(kBufferSize);
    }
}

SideFile::~SideFile() = default;

// Cuts what comes in at the mark, so that the rest need not know of it. False at the end.
bool SideFile::fill()
{
    if (!file_ || hasEnded_) {
        return false;
    }
    next_ = 0;
    filled_ = file_->read(buffer_.data(), buffer_.size());
    const auto end = buffer_.begin() + static_cast<std::ptrdiff_t>(filled_);
    const auto mark = std::find(buffer_.begin(), end, kEndOfText);
    hasEnded_ = filled_ == 0 || mark != end;
    filled_ = static_cast<std::size_t>(mark - buffer_.begin());
    return filled_ > 0;
}

void SideFile::take(std::size_t end)
{
    const std::size_t room = kLongestLine - line_.size();
    line_.append(buffer_.data() + next_, std::min(end - next_, room));
    if (end > next_) {
        length_ += end - next_;
        endsInReturn_ = buffer_[end - 1] == '\r';
    }
    next_ = end;
}

// The CR may lie in another part of the file than the LF, or behind the cut.
void SideFile::dropReturn()
{
    if (endsInReturn_ && length_ <= kLongestLine) {
        line_.pop_back();
    }
}

bool SideFile::readLine()
{
    line_.clear();
    length_ = 0;
    endsInReturn_ = false;
    while (next_ < filled_ || fill()) {
        const auto begin = buffer_.begin() + static_cast<std::ptrdiff_t>(next_);
        const auto end = buffer_.begin() + static_cast<std::ptrdiff_t>(filled_);
        const auto feed = std::find(begin, end, '\n');
        take(static_cast<std::size_t>(feed - buffer_.begin()));
        if (feed != end) {
            ++next_;
            dropReturn();
            return true;
        }
    }
    return length_ > 0;
}

std::optional<std::wstring> SideFile::nextLine()
{
    return readLine() ? std::optional(platform::widen(line_)) : std::nullopt;
}

std::optional<ImageLocationLine> splitImageLocation(const std::wstring& line)
{
    const std::size_t tab = line.find(L'\t');
    if (tab == std::wstring::npos || tab + 1 == line.size()) {
        return std::nullopt;
    }
    return ImageLocationLine{line.substr(0, tab), line.substr(tab + 1)};
}
