#include "DocumentComparison.h"

#include <bit>
#include <type_traits>
#include <unordered_map>

#include "ReaderFields.h"
#include "reader/PreparedDocuments.h"

namespace ovdl_tests {
namespace {

class Comparison {
public:
    std::vector<std::string> found;

    template <class T>
    void compare(const std::string& at, const T& a, const T& b) requires std::is_class_v<T>
    {
        eachField(&a,
                  [&](const char* name, auto member) { compare(at + "." + name, a.*member, b.*member); });
    }

    template <class T>
    void compare(const std::string& at, T a, T b) requires(std::is_integral_v<T> || std::is_enum_v<T>)
    {
        check(at, a == b);
    }
    void compare(const std::string& at, float a, float b)
    {
        check(at, std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b));
    }
    void compare(const std::string& at, double a, double b)
    {
        check(at, std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b));
    }
    void compare(const std::string& at, const std::wstring& a, const std::wstring& b) { check(at, a == b); }
    void compare(const std::string& at, const std::string& a, const std::string& b) { check(at, a == b); }

    template <class T, std::size_t N>
    void compare(const std::string& at, const T (&a)[N], const T (&b)[N])
    {
        for (std::size_t i = 0; i < N; ++i)
            compare(element(at, i), a[i], b[i]);
    }

    template <class Key, class T>
    void compare(const std::string& at, const std::map<Key, T>& a, const std::map<Key, T>& b)
    {
        if (!check(at + " (size)", a.size() == b.size()))
            return;
        for (auto i = a.begin(), j = b.begin(); i != a.end(); ++i, ++j) {
            check(at + " (key)", i->first == j->first);
            compare(at + "[]", i->second, j->second);
        }
    }

    template <class T>
    void compare(const std::string& at, const std::list<T>& a, const std::list<T>& b)
    {
        if (!check(at + " (size)", a.size() == b.size()))
            return;
        for (auto i = a.begin(), j = b.begin(); i != a.end(); ++i, ++j)
            compare(at + "[]", *i, *j);
    }

    template <class T>
    void compare(const std::string& at, const ovPointerArray<T>& a, const ovPointerArray<T>& b)
    {
        if (!check(at + " (count)", a.count == b.count))
            return;
        for (long long i = 0; i < a.count; ++i)
            compare(element(at, static_cast<std::size_t>(i)), a.at(i), b.at(i));
    }

    template <class T>
    void compare(const std::string& at, const ovArrayView<T>& a, const ovArrayView<T>& b)
    {
        if (!check(at + " (count)", a.count == b.count))
            return;
        for (long long i = 0; i < a.count; ++i)
            compare(element(at, static_cast<std::size_t>(i)), a.data[i], b.data[i]);
    }

    // Two places that point at one object do so in both documents, or in neither.
    template <class T>
    void compare(const std::string& at, T* const& a, T* const& b)
    {
        if (!check(at + " (null)", !a == !b) || !a)
            return;
        const auto [there, isNew] = partners_.try_emplace(a, b);
        const auto [back, isNewBack] = partnersBack_.try_emplace(b, a);
        if (!check(at + " (sharing)", there->second == b && back->second == a) || !isNew)
            return;
        compare(at, *a, *b);
    }

    void compare(const std::string& at, OVDLExtrasBlock* const& a, OVDLExtrasBlock* const& b)
    {
        const OVDLExtrasRecord* left = a ? a->record : nullptr;
        const OVDLExtrasRecord* right = b ? b->record : nullptr;
        check(at, !a == !b && !left == !right);
        if (left && right)
            check(at + ".record", !left->first == !right->first && !left->second == !right->second);
    }

    // Arrays are no objects of their own.
    template <class T>
    void compare(const std::string& at, ovPointerArray<T>* const& a, ovPointerArray<T>* const& b)
    {
        if (check(at + " (null)", !a == !b) && a)
            compare(at, *a, *b);
    }

private:
    static std::string element(const std::string& at, std::size_t i)
    {
        return at + "[" + std::to_string(i) + "]";
    }

    bool check(const std::string& at, bool equal)
    {
        constexpr std::size_t kMost = 24;
        if (!equal && found.size() < kMost)
            found.push_back(at);
        return equal;
    }

    std::unordered_map<const void*, const void*> partners_;
    std::unordered_map<const void*, const void*> partnersBack_;
};

}  // namespace

std::vector<std::string> differences(const ovdl::DocumentContents& expected,
                                     const ovdl::DocumentContents& actual)
{
    Comparison comparison;
    comparison.compare("documentVersion", expected.documentVersion, actual.documentVersion);
    comparison.compare("displayListVersion", expected.displayListVersion, actual.displayListVersion);
    comparison.compare("part", expected.part, actual.part);
    comparison.compare("assembly", expected.assembly, actual.assembly);
    comparison.compare("configurations", expected.configurations, actual.configurations);
    comparison.compare("reason", expected.reason, actual.reason);
    return comparison.found;
}

ovdl::DocumentContents contentsOf(ovdl::PreparedDocument& document)
{
    ovdl::DocumentContents contents;
    contents.documentVersion = document.version;
    contents.part = document.part.get();
    contents.assembly = document.assembly.get();
    for (auto& [name, components] : document.configurations)
        contents.configurations[name] = &components;
    contents.reason = document.reason;
    return contents;
}

}  // namespace ovdl_tests
