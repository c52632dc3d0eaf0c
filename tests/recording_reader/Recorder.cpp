#include <algorithm>

#include "tests/recording_reader/RecordingReader.h"

namespace recording {
namespace {

bool begins(const std::string& line, const std::string& prefix)
{
    return line.compare(0, prefix.size(), prefix) == 0;
}

}  // namespace

Recorder& Recorder::get()
{
    static Recorder recorder;
    return recorder;
}

void Recorder::reset()
{
    probes.clear();
    answers = {};
    lines_.clear();
    hooks_.clear();
    names_.clear();
}

void Recorder::record(const std::string& line)
{
    lines_.push_back(line);
    // By index and by copy: a hook may call the reader, add hooks or reset everything.
    for (std::size_t index = 0; index < hooks_.size(); ++index) {
        if (!begins(line, hooks_[index].first))
            continue;
        const std::function<void()> hook = hooks_[index].second;
        hook();
    }
}

std::vector<std::string> Recorder::linesBeginning(const std::vector<std::string>& prefixes) const
{
    std::vector<std::string> found;
    for (const std::string& line : lines_) {
        const auto matches = [&](const std::string& prefix) { return begins(line, prefix); };
        if (std::any_of(prefixes.begin(), prefixes.end(), matches))
            found.push_back(line);
    }
    return found;
}

std::size_t Recorder::count(const std::string& line) const
{
    return static_cast<std::size_t>(std::count(lines_.begin(), lines_.end(), line));
}

std::size_t Recorder::countBeginning(const std::string& prefix) const
{
    return linesBeginning({prefix}).size();
}

void Recorder::onCall(std::string prefix, std::function<void()> hook)
{
    hooks_.emplace_back(std::move(prefix), std::move(hook));
}

void Recorder::name(const void* object, std::string text)
{
    names_[object] = std::move(text);
}

std::string Recorder::prefixOf(const void* object) const
{
    const auto entry = names_.find(object);
    return entry == names_.end() ? std::string() : entry->second + ".";
}

}  // namespace recording
