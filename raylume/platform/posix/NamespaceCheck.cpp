#include "raylume/platform/posix/NamespaceCheck.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>

namespace platform {

namespace {

constexpr std::string_view kXml = "xml";
constexpr std::string_view kXmlns = "xmlns";
constexpr std::string_view kXmlNamespace = "http://www.w3.org/XML/1998/namespace";
constexpr std::string_view kXmlnsNamespace = "http://www.w3.org/2000/xmlns/";

// Letters that are called modifiers and may begin a name all the same.
bool isLeadingModifier(UChar32 character)
{
    return (character >= 0x02BB && character <= 0x02C1) || character == 0x0559 || character == 0x06E5 ||
           character == 0x06E6;
}

// The first character of a text whose characters may all stand in names.
bool beginsLikeAName(std::string_view text)
{
    UChar32 character = 0;
    std::int32_t at = 0;
    U8_NEXT(text.data(), at, static_cast<std::int32_t>(std::min<std::size_t>(text.size(), 4)), character);
    constexpr std::uint32_t kLeading =
        U_GC_LU_MASK | U_GC_LL_MASK | U_GC_LT_MASK | U_GC_LO_MASK | U_GC_NL_MASK;
    return character == '_' || isLeadingModifier(character) ||
           (character > 0 && (U_GET_GC_MASK(character) & kLeading) != 0);
}

bool isUnprefixed(std::string_view text)
{
    return !text.empty() && text.find(':') == std::string_view::npos && beginsLikeAName(text);
}

/// The prefix that an attribute declares; of the default namespace, it is empty. False for any other.
bool isDeclaration(std::string_view name, std::string_view& prefix)
{
    if (!name.starts_with(kXmlns) || (name.size() > kXmlns.size() && name[kXmlns.size()] != ':')) {
        return false;
    }
    prefix = name.size() > kXmlns.size() ? name.substr(kXmlns.size() + 1) : std::string_view();
    return true;
}

}  // namespace

NamespaceCheck::NamespaceCheck()
{
    prefixes_.emplace(kXml, numberOf(kXmlNamespace));
}

bool NamespaceCheck::isQualified(std::string_view name)
{
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ||
           (isUnprefixed(name.substr(0, colon)) && isUnprefixed(name.substr(colon + 1)));
}

bool NamespaceCheck::start(std::string_view name, const char* const* attributes)
{
    ++depth_;
    const bool hasPrefix = name.find(':') != std::string_view::npos;
    return declare(attributes) && (!hasPrefix || namespaceOf(name) != 0) &&
           areAttributesDistinct(attributes);
}

void NamespaceCheck::end() noexcept
{
    for (; !hidden_.empty() && hidden_.back().depth == depth_; hidden_.pop_back()) {
        *hidden_.back().current = hidden_.back().former;
    }
    --depth_;
}

bool NamespaceCheck::declare(const char* const* attributes)
{
    for (; *attributes; attributes += 2) {
        std::string_view prefix;
        if (**attributes == kXmlns.front() && isDeclaration(attributes[0], prefix) &&
            (!isQualified(attributes[0]) || !bind(prefix, attributes[1]))) {
            return false;
        }
    }
    return true;
}

bool NamespaceCheck::bind(std::string_view prefix, std::string_view uri)
{
    declaredSize_ += prefix.size() + uri.size();
    const bool isReserved = prefix == kXmlns || uri == kXmlnsNamespace;
    if (isReserved || (prefix == kXml) != (uri == kXmlNamespace)) {
        return false;
    }
    if (prefix.empty()) {
        return true;  // Attributes without a prefix are in no namespace, whatever the default.
    }
    if (uri.empty()) {
        return false;  // Only the default can be taken back.
    }
    const auto place = prefixes_.try_emplace(std::string(prefix), 0).first;
    hidden_.push_back({depth_, &place->second, place->second});
    place->second = numberOf(uri);
    return true;
}

NamespaceCheck::Number NamespaceCheck::numberOf(std::string_view uri)
{
    const auto next = static_cast<Number>(namespaces_.size() + 1);
    return namespaces_.try_emplace(std::string(uri), next).first->second;
}

// Of a name with a prefix; 0 when that is not declared or the name is no name.
NamespaceCheck::Number NamespaceCheck::namespaceOf(std::string_view name) const
{
    if (!isQualified(name)) {
        return 0;
    }
    const auto found = prefixes_.find(std::string(name.substr(0, name.find(':'))));
    return found == prefixes_.end() ? 0 : found->second;
}

bool NamespaceCheck::areAttributesDistinct(const char* const* attributes)
{
    expanded_.clear();
    for (; *attributes; attributes += 2) {
        const std::string_view name = *attributes;
        const std::size_t colon = name.find(':');
        std::string_view prefix;
        if (colon == std::string_view::npos || isDeclaration(name, prefix)) {
            continue;
        }
        const Number number = namespaceOf(name);
        if (number == 0) {
            return false;
        }
        expanded_.emplace_back(number, name.substr(colon + 1));
    }
    std::sort(expanded_.begin(), expanded_.end());
    return std::adjacent_find(expanded_.begin(), expanded_.end()) == expanded_.end();
}

}  // namespace platform
