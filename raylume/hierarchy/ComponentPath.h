// Component paths: tokens "component-occurrence@owner", separated by "/".
#pragma once

#include <string>
#include <string_view>

namespace hierarchy {

/// Takes tokens off the front of a path. Runs of "/" and a "/" at either end make no empty tokens.
class PathTokens {
public:
    explicit PathTokens(std::string_view path) : rest_(path) {}
    /// False at the end of the path.
    bool next(std::string_view& token);

private:
    std::string_view rest_;
};

/// The path as far as a C string goes: what lies behind a zero character never counted.
std::string_view textOf(const std::string& path);

/// The last token; empty without any.
std::string_view lastToken(std::string_view path);
/// All before the last token, with the separators.
std::string_view parentPath(std::string_view path);

/// The component: what stands before the last "-" before the first "@". Empty without these two.
std::string_view shortName(std::string_view token);
/// The owner: what stands behind the first "@". Empty without one.
std::string_view owner(std::string_view token);

}  // namespace hierarchy
