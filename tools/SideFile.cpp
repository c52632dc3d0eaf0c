#include "tools/SideFile.h"

#include <set>
#include <string_view>

#include "raylume/platform/NumberText.h"
#include "raylume/platform/Text.h"
#include "raylume/platform/XmlTable.h"

namespace tool {
namespace {

using platform::XmlTable;

enum Element { kAnimation, kComponent, kAppearance };
enum Attribute { kName, kTime };

constexpr std::uint32_t kRoot = 0;

std::string sideFileOf(const std::string& document)
{
    return document.substr(0, document.find_last_of("/\\") + 1) + "_rlAnimData.xml";
}

template <class Visit>
void forEachBelow(const XmlTable& table, std::uint32_t element, Element name, Visit visit)
{
    const XmlTable::Range range = table.descendants(element, name);
    for (std::size_t i = range.first; i < range.last; ++i)
        visit(table.elementAt(name, i));
}

std::wstring nameOf(const XmlTable& table, std::uint32_t component)
{
    std::string_view name;
    auto attributes = table.attributes(component);
    return attributes.find(kName, name) ? platform::fromUtf8(name) : std::wstring();
}

std::size_t differentTimes(const XmlTable& table, std::uint32_t component)
{
    std::set<double> times;
    forEachBelow(table, component, kAppearance, [&](std::uint32_t key) {
        std::string_view text;
        double time = 0;
        auto attributes = table.attributes(key);
        if (attributes.find(kTime, text) && platform::convertReal(text, {}, time) == 0)
            times.insert(time);
    });
    return times.size();
}

}  // namespace

std::map<std::wstring, std::size_t> appearanceKeysInFile(const std::string& document)
{
    std::map<std::wstring, std::size_t> counts;
    XmlTable table({{"ANIMATION", "COMPONENT", "VisualTransform"}, {"Name", "Time"}});
    const auto loaded = table.load(platform::fromUtf8(sideFileOf(document)));
    if (loaded.status != platform::XmlStatus::kLoaded)
        return counts;
    forEachBelow(table, kRoot, kAnimation, [&](std::uint32_t animation) {
        forEachBelow(table, animation, kComponent, [&](std::uint32_t component) {
            counts[nameOf(table, component)] = differentTimes(table, component);
        });
    });
    return counts;
}

}  // namespace tool
