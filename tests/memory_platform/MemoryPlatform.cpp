#include "tests/memory_platform/MemoryPlatform.h"

#include "raylume/platform/Environment.h"
#include "raylume/platform/HostProgram.h"
#include "raylume/platform/Messages.h"
#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"
#include "raylume/platform/UserFolders.h"

namespace memory_platform {

namespace {

void put(const std::wstring& path, platform::PathKind kind)
{
    const std::wstring tidy = tidyPath(path);
    machine().entries[tidy] = kind;
    ++machine().changes[tidyPath(tidy.substr(0, tidy.rfind(L'\\') + 1))];
}

}  // namespace

Machine& machine()
{
    static Machine instance;
    return instance;
}

void reset()
{
    const std::uint64_t device = machine().device + 1;
    machine() = Machine();
    machine().device = device;
}

std::wstring tidyPath(const std::wstring& path)
{
    std::wstring tidy = platform::toLower(path);
    for (wchar_t& character : tidy) {
        character = character == L'/' ? L'\\' : character;
    }
    while (!tidy.empty() && tidy.back() == L'\\') {
        tidy.pop_back();
    }
    return tidy;
}

void Machine::addFolder(const std::wstring& path)
{
    put(path, platform::PathKind::kFolder);
}

void Machine::addFile(const std::wstring& path)
{
    put(path, platform::PathKind::kFile);
}

}  // namespace memory_platform

namespace platform {

using memory_platform::machine;
using memory_platform::tidyPath;

PathKind pathKind(const std::wstring& path)
{
    machine().probes.push_back(path);
    const auto found = machine().entries.find(tidyPath(path));
    return found == machine().entries.end() ? PathKind::kNothing : found->second;
}

MakeFolder makeFolder(const std::wstring& path)
{
    machine().makes.push_back(path);
    if (static_cast<int>(machine().makes.size()) == machine().failingMake) {
        return MakeFolder::kFailed;
    }
    const bool isNew = machine().entries.emplace(tidyPath(path), PathKind::kFolder).second;
    return isNew ? MakeFolder::kMade : MakeFolder::kExists;
}

std::optional<std::wstring> environmentVariable(const std::string& name)
{
    const auto found = machine().variables.find(name);
    return found == machine().variables.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::wstring> temporaryFolderVariable()
{
    return environmentVariable("temp");
}

int processId()
{
    return machine().processId;
}

std::wstring hostProgramPath(std::size_t bufferCharacters)
{
    machine().executableBuffers.push_back(bufferCharacters);
    return machine().executable.substr(0, bufferCharacters - 1);
}

std::optional<std::wstring> applicationDataFolder()
{
    return machine().applicationData;
}

std::string nativePath(const std::wstring& text)
{
    return toUtf8(text);
}

void debugOutput(const std::wstring& text)
{
    machine().debugTexts.push_back(text);
}

}  // namespace platform
