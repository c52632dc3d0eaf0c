#include "tests/animation/ScriptedXml.h"

#include <algorithm>
#include <utility>

namespace {

void collect(const Tag& tag, const std::string& name, std::vector<const Tag*>& found)
{
    for (const Tag& child : tag.children) {
        if (child.name == name) {
            found.push_back(&child);
        }
        collect(child, name, found);
    }
}

class Live {
public:
    explicit Live(Script& script) : script_(script) { ++script_.live; }
    Live(const Live&) = delete;
    Live& operator=(const Live&) = delete;
    ~Live() { --script_.live; }

protected:
    Script& script_;
};

class ScriptedElement final : public XmlElement, private Live {
public:
    ScriptedElement(Script& script, const Tag& tag) : Live(script), tag_(tag) {}
    void release() noexcept override { delete this; }
    XmlResult elementsByTagName(const XmlName& name, XmlPointer<XmlNodeList>& list) override;

    XmlResult attribute(const XmlName& name, XmlValue& value) override
    {
        const std::string call = "attribute " + tag_.name + "." + name.text;
        const XmlResult result = script_.run(call);
        const auto found = std::find_if(tag_.attributes.begin(), tag_.attributes.end(),
                                        [&](const auto& pair) { return pair.first == name.text; });
        if (found != tag_.attributes.end()) {
            value.type = XmlValue::Type::kText;
            value.text = found->second;
        }
        if (script_.value) {
            script_.value(call, value);
        }
        return result;
    }

private:
    ~ScriptedElement() = default;
    const Tag& tag_;
};

class ScriptedNode final : public XmlNode, private Live {
public:
    ScriptedNode(Script& script, const Tag& tag) : Live(script), tag_(tag) {}
    void release() noexcept override { delete this; }

    XmlResult asElement(XmlPointer<XmlElement>& element) override
    {
        const std::string call = "element " + tag_.name;
        const XmlResult result = script_.run(call);
        if (!isXmlFailure(result) && !script_.isNull(call)) {
            element.reset(new ScriptedElement(script_, tag_));
        }
        return result;
    }

private:
    ~ScriptedNode() = default;
    const Tag& tag_;
};

class ScriptedList final : public XmlNodeList, private Live {
public:
    ScriptedList(Script& script, std::string name, std::vector<const Tag*> tags)
        : Live(script), name_(std::move(name)), tags_(std::move(tags))
    {
    }
    void release() noexcept override { delete this; }

    XmlResult length(std::int32_t& length) override
    {
        length = static_cast<std::int32_t>(tags_.size());
        return script_.run("length " + name_);
    }

    XmlResult item(std::int32_t index, XmlPointer<XmlNode>& node) override
    {
        const std::string call = "item " + name_ + " " + std::to_string(index);
        const XmlResult result = script_.run(call);
        if (!isXmlFailure(result) && !script_.isNull(call)) {
            node.reset(new ScriptedNode(script_, *tags_.at(static_cast<std::size_t>(index))));
        }
        return result;
    }

private:
    ~ScriptedList() = default;
    const std::string name_;
    const std::vector<const Tag*> tags_;
};

XmlResult ScriptedElement::elementsByTagName(const XmlName& name, XmlPointer<XmlNodeList>& list)
{
    const std::string call = "list " + tag_.name + "." + name.text;
    const XmlResult result = script_.run(call);
    if (!isXmlFailure(result) && !script_.isNull(call)) {
        std::vector<const Tag*> found;
        collect(tag_, name.text, found);
        list.reset(new ScriptedList(script_, name.text, std::move(found)));
    }
    return result;
}

class ScriptedDocument final : public XmlDocument, private Live {
public:
    explicit ScriptedDocument(Script& script) : Live(script) {}
    void release() noexcept override { delete this; }

    XmlResult load(const std::wstring& path, bool& isLoaded, std::uint64_t& size) override
    {
        isLoaded = script_.isLoaded;
        size = script_.size;
        return script_.run("load " + std::string(path.begin(), path.end()));
    }

    XmlResult documentElement(XmlPointer<XmlElement>& root) override
    {
        const XmlResult result = script_.run("root");
        if (!isXmlFailure(result) && !script_.isNull("root")) {
            root.reset(new ScriptedElement(script_, script_.root));
        }
        return result;
    }

private:
    ~ScriptedDocument() = default;
};

}  // namespace

std::vector<std::string> Script::callsBeginning(const std::string& start) const
{
    std::vector<std::string> rest;
    for (const std::string& call : calls) {
        if (call.starts_with(start)) {
            rest.push_back(call.substr(start.size()));
        }
    }
    return rest;
}

XmlPointer<XmlDocument> ScriptedService::createDocument()
{
    script_.run("create");
    return script_.canCreate ? XmlPointer<XmlDocument>(new ScriptedDocument(script_)) : nullptr;
}
