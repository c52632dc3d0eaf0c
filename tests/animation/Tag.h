// Side files built in code: elements with attributes and children, as text or for a scripted document.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

struct Tag {
    std::string name = {};
    std::vector<std::pair<std::string, std::string>> attributes = {};
    std::vector<Tag> children = {};

    /// Replaces an attribute, or adds it behind the others.
    Tag with(const std::string& attribute, const std::string& value) const
    {
        Tag changed = *this;
        const auto found = std::find_if(changed.attributes.begin(), changed.attributes.end(),
                                        [&](const auto& pair) { return pair.first == attribute; });
        if (found == changed.attributes.end()) {
            changed.attributes.emplace_back(attribute, value);
        } else {
            found->second = value;
        }
        return changed;
    }

    Tag without(const std::string& attribute) const
    {
        Tag changed = *this;
        std::erase_if(changed.attributes, [&](const auto& pair) { return pair.first == attribute; });
        return changed;
    }

    Tag holding(std::vector<Tag> inner) const
    {
        Tag changed = *this;
        changed.children = std::move(inner);
        return changed;
    }

    std::string text() const
    {
        std::string xml = "<" + name;
        for (const auto& [attribute, value] : attributes) {
            xml += " " + attribute + "=\"" + value + "\"";
        }
        if (children.empty()) {
            return xml + "/>";
        }
        xml += ">";
        for (const Tag& child : children) {
            xml += child.text();
        }
        return xml + "</" + name + ">";
    }
};

inline Tag tag(const std::string& name, std::vector<Tag> children = {})
{
    return {name, {}, std::move(children)};
}

inline Tag component(const std::string& name, std::vector<Tag> children = {})
{
    return {"COMPONENT", {{"Name", name}}, std::move(children)};
}

inline Tag animation(std::vector<Tag> children = {})
{
    return tag("ANIMATION", std::move(children));
}

/// A document with one animation.
inline Tag document(std::vector<Tag> children)
{
    return tag("ROOT", {animation(std::move(children))});
}

inline void addNumbered(Tag& tag, const std::string& prefix, int count, int first)
{
    for (int i = 0; i < count; ++i) {
        tag.attributes.emplace_back(prefix + std::to_string(i), std::to_string(first + i));
    }
}

/// Elements m0 to m15 are `first`, first + 1, and so on.
inline Tag transform(const std::string& time, int first = 0)
{
    Tag key{"Transform", {{"InterpolateMode", "3"}, {"Time", time}}, {}};
    addNumbered(key, "m", 16, first);
    return key;
}

inline Tag visualTransform(const std::string& time, const std::string& red = "0.25",
                           const std::string& isNull = "1")
{
    return {"VisualTransform",
            {{"InterpolateMode", "2"},
             {"Time", time},
             {"Red", red},
             {"Green", "0.5"},
             {"Blue", "0.75"},
             {"Transparency", "0.125"},
             {"NullCompVizprop", isNull}},
            {}};
}

inline Tag visualState(const std::string& time, const std::string& visibility)
{
    return {
        "VisualState", {{"InterpolateMode", "4"}, {"Time", time}, {"ComponentVisibility", visibility}}, {}};
}

/// mv0 is `first`, pos0 is first + 100, then the two distances at first + 200 and 201.
inline Tag view(const std::string& name, const std::string& time, int first = 0)
{
    Tag key{name, {{"Time", time}, {"InterpolateMode", "5"}}, {}};
    addNumbered(key, "pos", 3, first + 100);
    addNumbered(key, "mv", 16, first);
    key.attributes.emplace_back("FocalDistance", std::to_string(first + 200));
    key.attributes.emplace_back("FocalLength", std::to_string(first + 201));
    return key;
}

inline Tag camera(const std::string& time, int first = 0)
{
    return view("CameraProperties", time, first);
}

inline Tag viewPoint(const std::string& time, int first = 0)
{
    return view("ViewPointTransform", time, first);
}

inline Tag viewport(std::vector<Tag> children = {})
{
    return tag("VIEWPORT", std::move(children));
}

/// Only what every type of light has.
inline Tag bareLight(const std::string& time, int id, int type)
{
    return {"LightProperties",
            {{"Time", time},
             {"InterpolateMode", "6"},
             {"ID", std::to_string(id)},
             {"LightType", std::to_string(type)},
             {"EnabledInRL", "1"},
             {"Red", "0.1"},
             {"Green", "0.2"},
             {"Blue", "0.3"}},
            {}};
}

/// With what its type reads: positions from 10 on, rotations from 20 on, the sun's values 0.5, 1.5, 2.5.
inline Tag lightKey(const std::string& time, int id, int type)
{
    Tag key = bareLight(time, id, type);
    if (type == 2 || type == 3 || type == 4) {
        addNumbered(key, "pos", 3, 10);
    }
    if (type == 2 || type == 4) {
        addNumbered(key, "rot", 3, 20);
    }
    if (type == 6) {
        key = key.with("sunTime", "0.5").with("sunDay", "1.5").with("sunHaze", "2.5");
    }
    return key;
}

inline Tag light(std::vector<Tag> children = {})
{
    return tag("LIGHT", std::move(children));
}
