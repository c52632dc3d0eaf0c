// A machine in memory: folders, variables, settings and what goes wrong with them are fields that a
// test fills, and what was asked of the machine stands in its records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "raylume/platform/Files.h"
#include "raylume/platform/Folders.h"
#include "raylume/platform/UserSettings.h"
#include "raylume/platform/posix/CompoundTree.h"

namespace memory_platform {

using SettingValues = std::map<std::wstring, platform::SettingValue>;

struct Machine {
    /// Folders and files by tidyPath(). Parents are not made by themselves.
    std::map<std::wstring, platform::PathKind> entries;
    /// What files hold, by tidyPath(), for those that are opened.
    std::map<std::wstring, std::string> contents;
    /// Bytes of each file that can be read before the device fails.
    std::size_t failingRead = static_cast<std::size_t>(-1);
    /// Compound files by tidyPath(), as they were saved last.
    std::map<std::wstring, platform::compound::ElementPtr> compoundFiles;
    /// What saving one comes to. A failure leaves the saved tree as it was.
    HResult compoundWriteResult = kStorageOk;
    int compoundWrites = 0;
    std::map<std::string, std::wstring> variables;
    /// Empty: the system does not tell.
    std::wstring executable;
    std::optional<std::wstring> applicationData;
    int processId = 4711;
    /// Keys of the current user by tidyPath(), with their values by lower-cased name.
    std::map<std::wstring, SettingValues> keys;
    /// The makeFolder() call, counted from 1, that fails with another error than "exists".
    int failingMake = 0;
    /// Another one after each reset(), so that no state of a folder comes back.
    std::uint64_t device = 0;
    /// How many times something was put into a folder, by tidyPath().
    std::map<std::wstring, int> changes;
    /// What the next saves come to, one after the other; behind them they go by what is there.
    std::deque<platform::SaveFile> saveOutcomes;
    /// Whether a save tells the state that it leaves behind.
    bool saveTellsState = true;

    // What was asked, in order and as it was written.
    std::vector<std::wstring> probes;
    std::vector<std::wstring> opens;
    std::vector<std::wstring> makes;
    std::vector<std::wstring> listings;
    std::vector<std::size_t> executableBuffers;
    std::vector<std::wstring> keyOpens;
    std::vector<std::wstring> queries;
    std::vector<std::size_t> queryBuffers;
    int openKeys = 0;
    std::vector<std::wstring> debugTexts;

    void addFolder(const std::wstring& path);
    void addFile(const std::wstring& path);
    void addKey(const std::wstring& path);
    void addText(const std::wstring& key, const std::wstring& name, const std::wstring& text);
    void addNumber(const std::wstring& key, const std::wstring& name, std::uint32_t number);
};

/// The one machine of the process.
Machine& machine();
/// An empty one in its place.
void reset();

/// How paths are compared: "\" for both separators, none at the end, lower case.
std::wstring tidyPath(const std::wstring& path);

}  // namespace memory_platform
