// Drives, a current folder and per-user settings of a test's own, and searches on them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "raylume/platform/Text.h"
#include "raylume/services/HostPaths.h"
#include "raylume/services/TextureSearch.h"
#include "raylume/services/TextureSearchLog.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

using Paths = std::vector<std::wstring>;

/// Drives C: and D:, with D:\Data as the host's data folder.
class TextureMachine {
public:
    TextureMachine() : before_(std::filesystem::current_path())
    {
        folder_.makeFolder("drives/c:/docs");
        folder_.makeFolder("drives/d:/Data");
        std::filesystem::current_path(folder_.makeFolder("here"));
        g_dataDir = L"D:\\Data";
    }
    TextureMachine(const TextureMachine&) = delete;
    TextureMachine& operator=(const TextureMachine&) = delete;
    ~TextureMachine()
    {
        g_dataDir.clear();
        std::filesystem::current_path(before_);
    }

    /// An empty file at a path like "c:/docs/wood.jpg", or relative to the current folder.
    void add(const std::string& path) const { write(path, ""); }

    void write(const std::string& path, const std::string& bytes) const
    {
        const std::string name = (path.find(':') == std::string::npos ? "here/" : "drives/") + path;
        folder_.makeFolder(std::filesystem::path(name).parent_path());
        folder_.write(name, bytes);
    }

    void makeFolder(const std::string& path) const { folder_.makeFolder("drives/" + path); }

    void setUserFolders(const std::string& lines) const
    {
        folder_.write("settings.reg",
                      "Windows Registry Editor Version 5.00\r\n\r\n"
                      "[HKEY_CURRENT_USER\\Software\\Orvane\\Orvane 2013\\ExtReferences]\r\n" +
                          lines);
    }

private:
    TemporaryFolder folder_;
    std::filesystem::path before_;
    ScopedVariable drives_{"RAYLUME_DRIVES", folder_ / "drives"};
    ScopedVariable registry_{"RAYLUME_REGISTRY", folder_ / "settings.reg"};
};

/// Collects the searches of this thread.
class ObservedSearches {
public:
    ObservedSearches()
        : before_(rlu_observeTextureSearches([this](const auto& search) { all.push_back(search); }))
    {
    }
    ObservedSearches(const ObservedSearches&) = delete;
    ObservedSearches& operator=(const ObservedSearches&) = delete;
    ~ObservedSearches() { rlu_observeTextureSearches(before_); }

    std::vector<TextureSearchRecord> all;

private:
    TextureSearchObserver before_;
};

inline Paths pathsOf(const TextureSearchRecord& search)
{
    Paths paths;
    for (const TextureProbe& probe : search.probes) {
        paths.push_back(probe.path);
    }
    return paths;
}

/// What a search gave and which paths it tried, in order.
struct Outcome {
    int found = -1;
    std::wstring result;
    Paths probes;
    std::vector<TextureSearchStep> steps;
};

struct SearchInput {
    std::wstring stored;
    TextureImageType type = TextureImageAppearance;
    std::wstring folder = L"C:\\docs\\";
    std::wstring scene = L"";
    std::wstring data = L"D:\\Data";
};

inline Outcome search(const SearchInput& input)
{
    const ObservedSearches observed;
    Outcome outcome;
    outcome.result = L"before";
    outcome.found =
        findFile(input.stored.c_str(), input.data, input.folder, input.type, &outcome.result, input.scene);
    outcome.probes = pathsOf(observed.all.at(0));
    for (const TextureProbe& probe : observed.all.at(0).probes) {
        outcome.steps.push_back(probe.step);
    }
    return outcome;
}
