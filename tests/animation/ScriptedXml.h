// An XML document object that does what a test says, keeps a record of what it was asked, and counts
// what it handed out.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "raylume/animation/XmlDocument.h"
#include "tests/animation/Tag.h"

/// Calls are told as "load PATH", "root", "list ELEMENT.TAG", "length TAG", "item TAG 0", "element TAG" and
/// "attribute ELEMENT.NAME".
struct Script {
    Tag root = {};
    bool canCreate = true;
    bool isLoaded = true;
    std::uint64_t size = 0;

    /// The result of a call; may throw. Without it all calls succeed.
    std::function<XmlResult(const std::string& call)> answer = {};
    /// Calls that succeed and hand out nothing.
    std::function<bool(const std::string& call)> givesNull = {};
    /// Changes the value of an attribute.
    std::function<void(const std::string& call, XmlValue& value)> value = {};

    std::vector<std::string> calls = {};
    int live = 0;  ///< References that are not released.

    XmlResult run(const std::string& call)
    {
        calls.push_back(call);
        return answer ? answer(call) : kXmlOk;
    }
    bool isNull(const std::string& call) const { return givesNull && givesNull(call); }
    /// The calls that begin with a text, without it.
    std::vector<std::string> callsBeginning(const std::string& start) const;
};

class ScriptedService final : public XmlService {
public:
    explicit ScriptedService(Script& script) : script_(script) {}
    XmlPointer<XmlDocument> createDocument() override;

private:
    Script& script_;
};
