#include "raylume/services/TemporaryFiles.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <string_view>

#include "raylume/platform/Environment.h"
#include "raylume/platform/Files.h"
#include "raylume/platform/Folders.h"
#include "raylume/platform/Text.h"

namespace {

constexpr std::wstring_view kBitmapEnding = L".bmp";
// One more still fits.
constexpr int kHighestNumber = 2147483646;

bool isWebAddress(const std::wstring& path)
{
    return platform::toLower(path.substr(0, 4)) == L"http";
}

// Asked of the bare name, so in the current folder and not where the entry lies. What is not there
// counts as a folder; temporary folders pass by that.
bool countsAsFolder(const std::wstring& bareName)
{
    return platform::pathKind(bareName) != platform::PathKind::kFile;
}

// Like atoi: white space, a sign, digits, and 0 without any.
int parseNumber(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    long long number = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9') {
            break;
        }
        number = std::min<long long>(number * 10 + (digit - '0'), kHighestNumber);
    }
    return static_cast<int>(isNegative ? -number : number);
}

int numberOf(const std::wstring& fileName)
{
    constexpr std::size_t kMostBytes = 50;
    const std::wstring name = platform::toLower(fileName);
    return parseNumber(platform::narrow(name.substr(0, name.find(kBitmapEnding))).substr(0, kMostBytes));
}

int highestListed(const std::wstring& folder)
{
    int highest = 0;
    for (const std::wstring& name : platform::matchingNames(folder + L"*.bmp")) {
        highest = std::max(highest, numberOf(name));
    }
    return highest;
}

// The numbering after our last save, so that a folder is listed again only when somebody else changed it.
struct Numbering {
    platform::FolderState state;
    int highest = 0;
};

struct Remembered {
    std::mutex mutex;
    std::optional<Numbering> numbering;
};

// Never destroyed: other threads may save until the very end.
Remembered& remembered()
{
    static auto* const instance = new Remembered;
    return *instance;
}

int highestNumber(const std::wstring& folder, const std::optional<Numbering>& last)
{
    if (folder.empty() || !probeFolder(folder)) {
        return 0;
    }
    if (last && platform::ownFolderState(folder) == last->state) {
        return last->highest;
    }
    return highestListed(folder);
}

struct Next {
    std::wstring folder;
    std::wstring name;
    int number = 0;

    std::wstring path() const { return folder.empty() ? std::wstring() : folder + name; }
};

Next nextBitmap(const std::optional<Numbering>& last)
{
    Next next;
    next.folder = getTemporaryFilePath(std::wstring(), true);
    next.number = highestNumber(next.folder, last) + 1;
    next.name = std::to_wstring(next.number) + L".bmp";
    return next;
}

using Pieces = std::span<const std::span<const unsigned char>>;

// A file is never written over another, unless the numbering itself says so: when the highest number is
// reached, or the folder does not count as one.
Next saveUnderNumber(Next next, Pieces pieces, std::optional<Numbering>& last)
{
    using platform::IfTaken;
    using platform::SaveFile;
    auto ifTaken = IfTaken::kLeave;
    std::optional<platform::FolderState> state;
    SaveFile outcome;
    while (true) {
        outcome = saveInOwnFolder(next.folder, next.name, pieces, ifTaken, &state);
        if (outcome != SaveFile::kNameTaken || ifTaken == IfTaken::kReplace) {
            break;
        }
        Next other = nextBitmap(std::nullopt);
        ifTaken = other.path() == next.path() ? IfTaken::kReplace : IfTaken::kLeave;
        next = std::move(other);
    }
    if (outcome == SaveFile::kSaved) {
        last = state ? std::optional(Numbering{*state, next.number}) : std::nullopt;
    }
    return next;
}

}  // namespace

std::wstring getProcessTempFolder(bool perProcess)
{
    const auto base = platform::temporaryFolderVariable();
    if (!base) {
        return {};
    }
    if (!perProcess) {
        return *base + L"\\";
    }
    const std::wstring folder = *base + L"\\rlx" + std::to_wstring(platform::processId());
    if (platform::pathKind(folder) == platform::PathKind::kNothing) {
        platform::makeFolder(folder);
    }
    return folder + L"\\";
}

std::wstring getTemporaryFilePath(const std::wstring& fileName, bool perProcess)
{
    const std::wstring folder = getProcessTempFolder(perProcess);
    return folder.empty() ? std::wstring() : folder + fileName;
}

bool probeFolder(const std::wstring& path)
{
    if (isWebAddress(path)) {
        return true;
    }
    const std::wstring trimmed = path.ends_with(L'\\') ? path.substr(0, path.size() - 1) : path;
    const auto names = platform::matchingNames(trimmed);
    return std::any_of(names.begin(), names.end(), countsAsFolder);
}

void nextTempBitmapPath(std::wstring& destination)
{
    Remembered& last = remembered();
    const std::lock_guard lock(last.mutex);
    destination = nextBitmap(last.numbering).path();
}

void saveNextTempBitmap(Pieces pieces, std::wstring& destination)
{
    Remembered& last = remembered();
    const std::lock_guard lock(last.mutex);
    Next next = nextBitmap(last.numbering);
    if (!next.folder.empty() && !pieces.empty()) {
        next = saveUnderNumber(std::move(next), pieces, last.numbering);
    }
    destination = next.path();
}
