// What the animation reader needs of an XML document object, and no more than that, so that a test
// can put a scripted one in its place.
//
// Every operation answers a 32-bit result with the published values; one with its top bit set is a failure.
// What is handed out is released by its holder, once, also when an error is raised.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

using XmlResult = std::uint32_t;

inline constexpr XmlResult kXmlOk = 0;
/// A node that is no element says so with this.
inline constexpr XmlResult kXmlNoInterface = 0x80004002u;

constexpr bool isXmlFailure(XmlResult result)
{
    return (result & 0x80000000u) != 0;
}

/// A name to ask for: its text, and its number in the reader's own list (SideFileNames.h), by which a table
/// finds it without comparing texts.
struct XmlName {
    const char* text;
    int number;
};

/// The value of an attribute. It owns nothing: text belongs to the element.
struct XmlValue {
    enum class Type { kNone, kText, kReal, kFloat, kInteger };

    Type type = Type::kNone;     ///< kNone: there is no such attribute.
    std::string_view text = {};  ///< UTF-8.
    double real = 0;
    float single = 0;
    std::int32_t integer = 0;
};

/// Counted as the holder likes; release() gives one reference back.
class XmlObject {
public:
    virtual void release() noexcept = 0;

protected:
    ~XmlObject() = default;
};

struct XmlRelease {
    void operator()(XmlObject* object) const noexcept { object->release(); }
};
template <class Object>
using XmlPointer = std::unique_ptr<Object, XmlRelease>;

class XmlNodeList;

class XmlElement : public XmlObject {
public:
    /// Descendants at any depth in document order, never the element itself. A null list is a
    /// possible answer.
    virtual XmlResult elementsByTagName(const XmlName& name, XmlPointer<XmlNodeList>& list) = 0;
    virtual XmlResult attribute(const XmlName& name, XmlValue& value) = 0;
    /// The same number for the same element as long as the document lives, growing in document order; 0
    /// when elements cannot be told apart.
    virtual std::uint64_t identity() const { return 0; }

protected:
    ~XmlElement() = default;
};

class XmlNode : public XmlObject {
public:
    virtual XmlResult asElement(XmlPointer<XmlElement>& element) = 0;

protected:
    ~XmlNode() = default;
};

class XmlNodeList : public XmlObject {
public:
    virtual XmlResult length(std::int32_t& length) = 0;
    /// A null node is a possible answer.
    virtual XmlResult item(std::int32_t index, XmlPointer<XmlNode>& node) = 0;

protected:
    ~XmlNodeList() = default;
};

class XmlDocument : public XmlObject {
public:
    /// `isLoaded`: the file is there and well-formed to its end. `size`: how many bytes it has.
    virtual XmlResult load(const std::wstring& path, bool& isLoaded, std::uint64_t& size) = 0;
    virtual XmlResult documentElement(XmlPointer<XmlElement>& root) = 0;

protected:
    ~XmlDocument() = default;
};

/// Where documents come from.
class XmlService {
public:
    virtual ~XmlService() = default;
    /// An empty document, or null when one cannot be made on this machine.
    virtual XmlPointer<XmlDocument> createDocument() = 0;
};
