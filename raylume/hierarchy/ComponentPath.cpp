#include "raylume/hierarchy/ComponentPath.h"

#include <algorithm>

namespace hierarchy {

bool PathTokens::next(std::string_view& token)
{
    rest_.remove_prefix(std::min(rest_.find_first_not_of('/'), rest_.size()));
    token = rest_.substr(0, rest_.find('/'));
    rest_.remove_prefix(token.size());
    return !token.empty();
}

std::string_view textOf(const std::string& path)
{
    return path.c_str();
}

std::string_view lastToken(std::string_view path)
{
    path = path.substr(0, path.find_last_not_of('/') + 1);
    return path.substr(path.rfind('/') + 1);
}

std::string_view parentPath(std::string_view path)
{
    const std::string_view last = lastToken(path);
    return path.substr(0, static_cast<std::size_t>(last.data() - path.data()));
}

std::string_view shortName(std::string_view token)
{
    const std::size_t at = token.find('@');
    if (at == std::string_view::npos) {
        return {};
    }
    const std::size_t minus = token.substr(0, at).rfind('-');
    return minus == std::string_view::npos ? std::string_view() : token.substr(0, minus);
}

std::string_view owner(std::string_view token)
{
    const std::size_t at = token.find('@');
    return at == std::string_view::npos ? std::string_view() : token.substr(at + 1);
}

}  // namespace hierarchy
