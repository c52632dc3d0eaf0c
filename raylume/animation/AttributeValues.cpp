#include "raylume/animation/AttributeValues.h"

#include <cmath>

#include "raylume/platform/Text.h"

namespace {

using Type = XmlValue::Type;

XmlValue valueOf(XmlElement& element, const XmlName& name)
{
    XmlValue value;
    raiseXmlFailure(element.attribute(name, value));
    return value;
}

// An empty value would convert to 0; a missing attribute is to be an error.
double numberOf(const XmlValue& value)
{
    switch (value.type) {
    case Type::kReal:
        return value.real;
    case Type::kFloat:
        return static_cast<double>(value.single);
    case Type::kInteger:
        return value.integer;
    default:
        throw platform::ComError(platform::kErrorTypeMismatch);
    }
}

float narrowed(double number)
{
    const auto single = static_cast<float>(number);
    if (std::isinf(single) && std::isfinite(number)) {
        throw platform::ComError(platform::kErrorOverflow);
    }
    return single;
}

}  // namespace

double AttributeReader::real(XmlElement& element, const XmlName& name) const
{
    const XmlValue value = valueOf(element, name);
    if (value.type != Type::kText) {
        return numberOf(value);
    }
    double number = 0;
    raiseXmlFailure(platform::convertReal(value.text, fixed_, number));
    return number;
}

float AttributeReader::single(XmlElement& element, const XmlName& name) const
{
    const XmlValue value = valueOf(element, name);
    if (value.type != Type::kText) {
        return value.type == Type::kFloat ? value.single : narrowed(numberOf(value));
    }
    float number = 0;
    raiseXmlFailure(platform::convertFloat(value.text, fixed_, number));
    return number;
}

std::int32_t AttributeReader::integer(XmlElement& element, const XmlName& name)
{
    const XmlValue value = valueOf(element, name);
    std::int32_t number = value.integer;
    if (value.type == Type::kText) {
        raiseXmlFailure(platform::convertInteger(value.text, userSeparators(), number));
    } else if (value.type != Type::kInteger) {
        raiseXmlFailure(platform::convertInteger(numberOf(value), number));
    }
    return number;
}

double AttributeReader::time(XmlElement& element, const XmlName& name) const
{
    const double time = real(element, name);
    if (std::isnan(time)) {
        throw platform::ComError(platform::kErrorTypeMismatch);
    }
    return time;
}

const platform::NumberSeparators& AttributeReader::userSeparators()
{
    if (!user_) {
        user_ = platform::numberSeparators();
    }
    return *user_;
}

std::wstring readText(XmlElement& element, const XmlName& name)
{
    const XmlValue value = valueOf(element, name);
    return value.type == Type::kText ? platform::fromUtf8(value.text) : std::wstring();
}
