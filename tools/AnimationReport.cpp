#include "tools/AnimationReport.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "raylume/platform/Text.h"
#include "tools/Values.h"

namespace tool {
namespace {

// The entries of the table that are no components.
constexpr wchar_t kCamera[] = L"@CAMERA";
constexpr wchar_t kViewport[] = L"@VIEWPORT";
constexpr wchar_t kLights[] = L"@LIGHTS";

/// Which names of the table mean an instance, and which instances have no entry.
class Matching {
public:
    explicit Matching(const dlModel& model)
    {
        for (std::int32_t i = 0; i < model.instanceCount; ++i)
            addInstance(model, model.instances[i]);
        for (const auto& [name, tracks] : model.animationTracks)
            if (!isFixed(name) && !isInstance(name))
                strangers_.push_back(platform::toUtf8(name));
    }

    static bool isFixed(const std::wstring& name)
    {
        return name == kCamera || name == kViewport || name == kLights;
    }
    bool isInstance(const std::wstring& name) const { return instances_.contains(name); }
    const std::vector<std::string>& strangers() const { return strangers_; }
    const std::vector<std::string>& still() const { return still_; }

private:
    void addInstance(const dlModel& model, const dlInstance& instance)
    {
        const std::wstring name = platform::widen(instance.name);
        if (!model.animationTracks.contains(name))
            still_.push_back(platform::toUtf8(name));
        instances_.insert(name);
    }

    std::set<std::wstring> instances_;
    std::vector<std::string> strangers_;
    std::vector<std::string> still_;
};

// Of an appearance that never has a colour of its own the loading keeps only the keys that change.
std::size_t thinnedKeys(const std::wstring& name, const dlAnimTrackSet& tracks, const KeysInFile& inFile)
{
    const auto entry = inFile.find(name);
    const std::size_t kept = tracks.visualTransforms.size();
    return entry != inFile.end() && entry->second > kept ? entry->second - kept : 0;
}

template <std::size_t N>
Json doubleValues(const double (&values)[N])
{
    Json list = Json::array();
    for (const double value : values)
        list.push_back(doubleValue(value));
    return list;
}

void describe(const dlVisualTransformKey& key, Json& json)
{
    json["red"] = doubleValue(key.red);
    json["green"] = doubleValue(key.green);
    json["blue"] = doubleValue(key.blue);
    json["transparency"] = doubleValue(key.transparency);
    json["nullVizprop"] = key.nullVizprop;
}

void describe(const dlTransformKey& key, Json& json)
{
    json["matrix"] = doubleValues(key.matrix);
}

void describe(const dlVisualStateKey& key, Json& json)
{
    json["componentVisibility"] = key.componentVisibility;
}

void describe(const dlViewKey& key, Json& json)
{
    json["position"] = doubleValues(key.position);
    json["modelView"] = doubleValues(key.modelView);
    json["focalDistance"] = doubleValue(key.focalDistance);
    json["focalLength"] = doubleValue(key.focalLength);
}

void describe(const dlLightKey& key, Json& json)
{
    json["lightId"] = key.lightId;
    json["lightType"] = key.lightType;
    json["enabledInRL"] = key.enabledInRL;
    json["color"] = {doubleValue(key.red), doubleValue(key.green), doubleValue(key.blue)};
    json["position"] = doubleValues(key.position);
    json["rotation"] = doubleValues(key.rotation);
    json["sunTime"] = floatValue(key.sunTime);
    json["sunDay"] = floatValue(key.sunDay);
    json["sunHaze"] = floatValue(key.sunHaze);
}

template <class Key>
Json keysJson(const std::map<double, Key>& track)
{
    Json keys = Json::array();
    for (const auto& [time, key] : track) {
        Json json{{"time", doubleValue(time)}, {"interpolateMode", key.interpolateMode}};
        describe(key, json);
        keys.push_back(std::move(json));
    }
    return keys;
}

template <class Key>
Json trackJson(const std::map<double, Key>& track)
{
    Json json{{"keyCount", track.size()}, {"from", nullptr}, {"to", nullptr}};
    if (!track.empty()) {
        json["from"] = doubleValue(track.begin()->first);
        json["to"] = doubleValue(track.rbegin()->first);
    }
    json["keys"] = keysJson(track);
    return json;
}

Json componentJson(const std::wstring& name, const dlAnimTrackSet& tracks, const Matching& matching,
                   std::size_t thinned)
{
    return {{"name", platform::toUtf8(name)},
            {"isInstance", matching.isInstance(name)},
            {"appearanceKeysThinned", thinned},
            {"appearance", trackJson(tracks.visualTransforms)},
            {"placement", trackJson(tracks.transforms)},
            {"visibility", trackJson(tracks.visualStates)}};
}

const dlAnimTrackSet* entryOf(const dlModel& model, const wchar_t* name)
{
    const auto entry = model.animationTracks.find(name);
    return entry == model.animationTracks.end() ? nullptr : &entry->second;
}

Json viewJson(const dlModel& model, const wchar_t* name)
{
    const dlAnimTrackSet* const tracks = entryOf(model, name);
    return tracks ? trackJson(tracks->viewKeys) : Json();
}

Json lightsJson(const dlModel& model)
{
    Json lights = Json::array();
    if (const dlAnimTrackSet* const tracks = entryOf(model, kLights))
        for (const auto& [id, track] : tracks->lightTracks) {
            Json light{{"id", id}};
            light.update(trackJson(track));
            lights.push_back(std::move(light));
        }
    return lights;
}

template <class Key>
std::string spanText(const char* what, const std::map<double, Key>& track)
{
    if (track.empty())
        return {};
    const std::string from = doubleText(track.begin()->first), to = doubleText(track.rbegin()->first);
    return std::string("  ") + what + " " + counted(static_cast<long long>(track.size()), "key") +
           (from == to ? " at " + from : ", " + from + " to " + to);
}

void writeComponent(const std::wstring& name, const dlAnimTrackSet& tracks, const Matching& matching,
                    std::size_t thinned, std::ostream& out)
{
    out << oneLine(platform::toUtf8(name)) << (matching.isInstance(name) ? "" : "  (no such instance)")
        << '\n';
    const std::string spans = spanText("placement", tracks.transforms) +
                              spanText("visibility", tracks.visualStates) +
                              spanText("appearance", tracks.visualTransforms);
    out << "  " << (spans.empty() ? "  nothing" : spans)
        << (thinned > 0 ? " (" + std::to_string(thinned) + " more thinned out)" : "") << '\n';
}

void writeViews(const dlModel& model, std::ostream& out)
{
    for (const auto& [name, title] : {std::pair(kCamera, "camera"), std::pair(kViewport, "viewport")})
        if (const dlAnimTrackSet* const tracks = entryOf(model, name))
            out << title << '\n' << "  " << spanText("view", tracks->viewKeys) << '\n';
    if (const dlAnimTrackSet* const tracks = entryOf(model, kLights))
        for (const auto& [id, track] : tracks->lightTracks)
            out << "light " << id << '\n' << "  " << spanText("light", track) << '\n';
}

void writeNames(const char* title, const std::vector<std::string>& names, std::ostream& out)
{
    out << title << ": " << names.size() << '\n';
    for (const std::string& name : names)
        out << "  " << oneLine(name) << '\n';
}

}  // namespace

void writeAnimationText(const dlModel& model, const KeysInFile& inFile, std::ostream& out)
{
    if (model.animationTracks.empty()) {
        out << "no animation\n";
        return;
    }
    const Matching matching(model);
    for (const auto& [name, tracks] : model.animationTracks)
        if (!Matching::isFixed(name))
            writeComponent(name, tracks, matching, thinnedKeys(name, tracks, inFile), out);
    writeViews(model, out);
    writeNames("tracks that match no instance", matching.strangers(), out);
    writeNames("instances without a track", matching.still(), out);
}

void writeAnimationJson(const dlModel& model, const KeysInFile& inFile, std::ostream& out)
{
    const Matching matching(model);
    Json json;
    Json& components = json["components"] = Json::array();
    for (const auto& [name, tracks] : model.animationTracks)
        if (!Matching::isFixed(name))
            components.push_back(componentJson(name, tracks, matching, thinnedKeys(name, tracks, inFile)));
    json["camera"] = viewJson(model, kCamera);
    json["viewport"] = viewJson(model, kViewport);
    json["lights"] = lightsJson(model);
    json["tracksWithoutInstance"] = matching.strangers();
    json["instancesWithoutTrack"] = matching.still();
    out << json.dump(2) << '\n';
}

}  // namespace tool
