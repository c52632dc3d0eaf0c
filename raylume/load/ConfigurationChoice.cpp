#include "raylume/load/ConfigurationChoice.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>

#include "raylume/platform/Files.h"
#include "raylume/platform/Text.h"
#include "raylume/services/TemporaryFiles.h"

namespace {

constexpr wchar_t kConfigurationFile[] = L"LDRConfigName.txt";
// Anybody may put a file into the temporary folder: a longer first line names no configuration.
constexpr std::size_t kLongestLine = std::size_t{1} << 20;

void dropCarriageReturn(std::string& line)
{
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
}

// The text before the first line feed, or all of it; empty when that is longer than a line may be.
std::string readFirstLine(platform::InputFile& file)
{
    std::string line;
    char block[4096];
    while (const std::size_t size = file.read(block, sizeof block)) {
        const char* const end = std::find(block, block + size, '\n');
        line.append(block, static_cast<std::size_t>(end - block));
        if (line.size() > kLongestLine)
            return {};
        if (end != block + size) {
            dropCarriageReturn(line);
            return line;
        }
    }
    return line;
}

// All that stands behind the first TAB, later TABs and blanks included. Searched in the wide text, as
// the line is read: a damaged lead byte may take the TAB with it.
std::wstring nameBehindTab(const std::string& line)
{
    const std::wstring text = platform::widen(line);
    const std::size_t tab = text.find(L'\t');
    return tab == std::wstring::npos ? std::wstring() : text.substr(tab + 1);
}

std::wstring chosenConfigurationName()
{
    const auto file = platform::InputFile::open(getTemporaryFilePath(kConfigurationFile, false));
    return file ? nameBehindTab(readFirstLine(*file)) : std::wstring();
}

}  // namespace

uoTempAssemblySHDDataArray_c& chooseComponents(CDispListsDoc& session, OVDLAssemblyDocument& document)
{
    std::wstring name = chosenConfigurationName();
    if (name.empty())
        return document.components;
    uoTempAssemblySHDDataArray_c* named = session.getTempDispListDataSHDArrayForConfig(name);
    return named ? *named : document.components;
}
