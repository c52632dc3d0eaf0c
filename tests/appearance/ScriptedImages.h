// Image and search services that answer what a test tells them and write their calls down. They stand in
// the place of the services room.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace scripted {

/// What a load gives; the pixels are 4 bytes each.
struct Picture {
    int status = 1;
    int width = 0;
    int height = 0;
    std::vector<unsigned char> pixels;
};

/// What a save was given.
struct Saved {
    int width;
    int height;
    int stride;
    std::vector<unsigned char> pixels;
};

struct Images {
    std::map<std::wstring, std::wstring> places;  ///< Stored path to resolved one; others stay as they are.
    std::map<std::wstring, Picture> pictures;     ///< By resolved path; others cannot be loaded.
    std::optional<std::wstring> savePath;         ///< Otherwise saves are numbered.
    int saveNumber = 0;
    std::function<void()> onSearch;

    std::vector<std::string> lines;
    std::vector<Saved> saved;
};

Images& images();
/// Back to the defaults; paths of saves begin with `folder`. What the library caches stays.
void reset(const std::wstring& folder);

}  // namespace scripted
