// From elements and their attributes to values. Whatever fails raises platform::ComError with the
// result's code; a missing attribute is kErrorTypeMismatch.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "raylume/animation/XmlDocument.h"
#include "raylume/platform/Errors.h"
#include "raylume/platform/NumberText.h"

inline void raiseXmlFailure(XmlResult result)
{
    if (isXmlFailure(result)) {
        throw platform::ComError(result);
    }
}

/// An interface that is about to be used: never null.
template <class Object>
Object& requireXml(const XmlPointer<Object>& pointer)
{
    if (!pointer) {
        throw platform::ComError(platform::kErrorNullPointer);
    }
    return *pointer;
}

/// Reads the attributes of elements. A value that has the wanted type already is taken as it is; any other
/// is converted: reals and floats with "." and "," whatever the user's locale, integers with the user's
/// separators.
class AttributeReader {
public:
    double real(XmlElement& element, const XmlName& name) const;
    float single(XmlElement& element, const XmlName& name) const;
    std::int32_t integer(XmlElement& element, const XmlName& name);
    /// A real that can be the key of a map: NaN, which only a document made elsewhere could hand
    /// out, is no number.
    double time(XmlElement& element, const XmlName& name) const;
    template <std::size_t count>
    void reals(XmlElement& element, const XmlName (&names)[count], double (&values)[count]) const
    {
        for (std::size_t i = 0; i < count; ++i) {
            values[i] = real(element, names[i]);
        }
    }

private:
    const platform::NumberSeparators& userSeparators();

    const platform::NumberSeparators fixed_{};
    std::optional<platform::NumberSeparators> user_;  // Asked for once a document.
};

/// The text of an attribute as it stands; empty when it is missing or no text.
std::wstring readText(XmlElement& element, const XmlName& name);
