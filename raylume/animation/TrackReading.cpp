#include "raylume/animation/TrackReading.h"

XmlPointer<XmlElement> elementOf(const XmlPointer<XmlNode>& node)
{
    XmlPointer<XmlElement> element;
    if (!node) {
        return element;
    }
    const XmlResult result = node->asElement(element);
    if (result == kXmlNoInterface) {
        return XmlPointer<XmlElement>();
    }
    raiseXmlFailure(result);
    requireXml(element);
    return element;
}

XmlPointer<XmlNodeList> listOf(XmlElement& element, const XmlName& name)
{
    XmlPointer<XmlNodeList> list;
    raiseXmlFailure(element.elementsByTagName(name, list));
    return list;
}

std::int32_t lengthOf(const XmlPointer<XmlNodeList>& list)
{
    std::int32_t length = 0;
    if (list) {
        raiseXmlFailure(list->length(length));
    }
    return length;
}
