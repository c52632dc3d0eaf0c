// The small text files beside a document, line by line.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "raylume/platform/Files.h"

/// A text file in the ANSI code page that is read as a stream, so that its size does not matter. Only a
/// regular file opens, and opening never waits.
///
/// A line ends at LF, a CR right before it goes with it, and what follows the last LF is a line if it is
/// not empty. The file ends at the first byte 1A, as text files of old do. No byte order mark is looked
/// for: one is part of the first line.
class SideFile {
public:
    /// What a line has beyond that many bytes is dropped.
    static constexpr std::size_t kLongestLine = std::size_t{1} << 20;

    /// A file that cannot be opened has no lines; isOpen() tells it from an empty one.
    explicit SideFile(const std::wstring& path);
    ~SideFile();

    bool isOpen() const { return file_ != nullptr; }
    /// The next line as wide text, without its end; nothing behind the last. A file that can be read no
    /// further ends there.
    std::optional<std::wstring> nextLine();

private:
    bool fill();
    void take(std::size_t end);
    void dropReturn();
    bool readLine();

    std::unique_ptr<platform::InputFile> file_;
    std::vector<char> buffer_;
    std::size_t next_ = 0;
    std::size_t filled_ = 0;
    bool hasEnded_ = false;
    std::string line_;
    // Of the line as the file has it.
    std::size_t length_ = 0;
    bool endsInReturn_ = false;
};

/// A line of an image locations file.
struct ImageLocationLine {
    std::wstring key;
    std::wstring value;
};

/// Splits at the first tab. Nothing for a line without one, and for one with nothing behind it.
std::optional<ImageLocationLine> splitImageLocation(const std::wstring& line);

/// The names of the two files, to be put behind a folder that ends in a separator.
inline constexpr const wchar_t* kImageLocationsFile = L"__ImageLocations__.txt";
inline constexpr const wchar_t* kIgnoredImagesFile = L"__IgnoredImages__.txt";

/// The one key of an image locations file that names no folder.
inline constexpr const wchar_t* kDefaultColorKey = L"DEFAULT_COLOR";
