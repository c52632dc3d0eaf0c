// The rules of namespaces, for a parser that knows nothing of them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace platform {

/// Holds names to "Namespaces in XML 1.0": https://www.w3.org/TR/xml-names. The parser's own check writes
/// the whole namespace out for every name, which takes forever where it is long.
///
/// It may begin at the first element with a prefix or a declaration; from then on it takes all of them. May
/// throw std::bad_alloc.
class NamespaceCheck {
public:
    NamespaceCheck();

    /// Attributes as the parser has them, with a null behind the last value. False for an element that
    /// breaks a rule; then the check is over.
    bool start(std::string_view name, const char* const* attributes);
    void end() noexcept;

    /// Bytes of all declarations so far, those that the document's own defaults add included.
    std::uint64_t declaredSize() const { return declaredSize_; }

    /// A name with one prefix or none, declared or not.
    static bool isQualified(std::string_view name);

private:
    using Number = std::uint32_t;  // Of a namespace; 0 is none.
    using Numbers = std::unordered_map<std::string, Number>;
    struct Hidden {
        std::int64_t depth;
        Number* current;
        Number former;
    };

    bool declare(const char* const* attributes);
    bool bind(std::string_view prefix, std::string_view uri);
    Number numberOf(std::string_view uri);
    Number namespaceOf(std::string_view name) const;
    bool areAttributesDistinct(const char* const* attributes);

    Numbers prefixes_;
    Numbers namespaces_;
    std::vector<Hidden> hidden_;                                 // What the open elements replaced.
    std::vector<std::pair<Number, std::string_view>> expanded_;  // Of one element.
    std::int64_t depth_ = 0;  // Below 0 behind the end of what was open at the start.
    std::uint64_t declaredSize_ = 0;
};

}  // namespace platform
