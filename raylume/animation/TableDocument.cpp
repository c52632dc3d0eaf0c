#include "raylume/animation/TableDocument.h"

#include <limits>
#include <utility>

#include "raylume/animation/SideFileNames.h"
#include "raylume/platform/Errors.h"

namespace {

using platform::XmlAttributes;
using platform::XmlTable;

// Deletes itself with its last reference, as COM objects do.
class Counted {
public:
    void addReference() { ++references_; }
    bool dropReference() { return --references_ == 0; }

private:
    int references_ = 1;
};

class TableElement final : public XmlElement, public XmlNode, private Counted {
public:
    TableElement(const XmlTable& table, std::uint32_t element)
        : table_(table), element_(element), attributes_(table.attributes(element))
    {
    }

    void release() noexcept override
    {
        if (dropReference()) {
            delete this;
        }
    }

    XmlResult asElement(XmlPointer<XmlElement>& element) override
    {
        addReference();
        element.reset(this);
        return kXmlOk;
    }

    XmlResult elementsByTagName(const XmlName& name, XmlPointer<XmlNodeList>& list) override;

    XmlResult attribute(const XmlName& name, XmlValue& value) override
    {
        value.type =
            attributes_.find(name.number, value.text) ? XmlValue::Type::kText : XmlValue::Type::kNone;
        return kXmlOk;
    }

    std::uint64_t identity() const override { return std::uint64_t{element_} + 1; }

private:
    ~TableElement() = default;

    const XmlTable& table_;
    const std::uint32_t element_;
    XmlAttributes attributes_;
};

class TableList final : public XmlNodeList {
public:
    TableList(const XmlTable& table, int name, XmlTable::Range range)
        : table_(table), name_(name), range_(range)
    {
    }

    void release() noexcept override { delete this; }

    XmlResult length(std::int32_t& length) override
    {
        if (range_.length() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
            return platform::kErrorOutOfMemory;
        }
        length = static_cast<std::int32_t>(range_.length());
        return kXmlOk;
    }

    XmlResult item(std::int32_t index, XmlPointer<XmlNode>& node) override
    {
        const std::size_t position = range_.first + static_cast<std::size_t>(index);
        if (index < 0 || position >= range_.last) {
            return platform::kErrorInvalidArgument;
        }
        node.reset(new TableElement(table_, table_.elementAt(name_, position)));
        return kXmlOk;
    }

private:
    ~TableList() = default;

    const XmlTable& table_;
    const int name_;
    const XmlTable::Range range_;
};

XmlResult TableElement::elementsByTagName(const XmlName& name, XmlPointer<XmlNodeList>& list)
{
    list.reset(new TableList(table_, name.number, table_.descendants(element_, name.number)));
    return kXmlOk;
}

template <std::size_t count>
void appendNames(std::vector<std::string>& texts, const XmlName (&names)[count])
{
    for (const XmlName& name : names) {
        texts.push_back(name.text);
    }
}

// In the order of their numbers.
platform::XmlVocabulary sideFileVocabulary()
{
    platform::XmlVocabulary vocabulary;
    appendNames(vocabulary.elements, side_file::kElements);
    appendNames(vocabulary.attributes, side_file::kSingleAttributes);
    appendNames(vocabulary.attributes, side_file::kPosition);
    appendNames(vocabulary.attributes, side_file::kRotation);
    appendNames(vocabulary.attributes, side_file::kMatrix);
    appendNames(vocabulary.attributes, side_file::kModelView);
    return vocabulary;
}

class TableDocument final : public XmlDocument {
public:
    explicit TableDocument(XmlTable::Open open) : open_(std::move(open)), table_(sideFileVocabulary()) {}

    void release() noexcept override { delete this; }

    XmlResult load(const std::wstring& path, bool& isLoaded, std::uint64_t& size) override
    {
        const platform::XmlLoad load = open_ ? table_.load(open_) : table_.load(path);
        isLoaded = isLoaded_ = load.status == platform::XmlStatus::kLoaded;
        size = load.size;
        return load.status == platform::XmlStatus::kOutOfMemory ? platform::kErrorOutOfMemory : kXmlOk;
    }

    XmlResult documentElement(XmlPointer<XmlElement>& root) override
    {
        root.reset(isLoaded_ ? new TableElement(table_, 0) : nullptr);
        return kXmlOk;
    }

private:
    ~TableDocument() = default;

    const XmlTable::Open open_;
    XmlTable table_;
    bool isLoaded_ = false;
};

}  // namespace

TableXmlService::TableXmlService(XmlTable::Open open) : open_(std::move(open))
{
}

XmlPointer<XmlDocument> TableXmlService::createDocument()
{
    return XmlPointer<XmlDocument>(new TableDocument(open_));
}
