#include "Router.h"

#include "Text.h"

#include <algorithm>

namespace brevan::sim {

namespace {

bool fits(const std::vector<std::string>& pattern, const std::vector<std::string>& parts, std::string& id)
{
    for (std::size_t index = 0; index < pattern.size(); ++index) {
        if (pattern[index] == "{id}") {
            const auto plain = percentDecoded(parts[index]);
            if (!plain || plain->empty()) {
                return false;
            }
            id = *plain;
        } else if (pattern[index] != parts[index]) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::string Route::operation() const
{
    const bool slashAtEnd = pattern.size() > 1 && pattern.back() == '/';
    return method + " " + (slashAtEnd ? pattern.substr(0, pattern.size() - 1) : pattern);
}

void Router::add(Route route)
{
    std::vector<std::string> parts = split(route.pattern, "/");
    // A path that is given to the letter goes before one with "{id}", so that "/lun/count" is never the LUN "count".
    const bool literal = route.pattern.find("{id}") == std::string::npos;
    m_entries.insert(literal ? m_entries.begin() : m_entries.end(), {std::move(route), std::move(parts)});
}

RouteMatch Router::find(std::string_view method, std::string_view path) const
{
    const std::vector<std::string> parts = split(path, "/");
    for (const Entry& entry : m_entries) {
        RouteMatch match;
        if (entry.route.method == method && entry.parts.size() == parts.size() && fits(entry.parts, parts, match.id)) {
            match.route = &entry.route;
            return match;
        }
    }
    return {};
}

bool Router::hasOperation(const std::string& operation) const
{
    return std::any_of(m_entries.begin(), m_entries.end(),
                       [&operation](const Entry& entry) { return entry.route.operation() == operation; });
}

}  // namespace brevan::sim
