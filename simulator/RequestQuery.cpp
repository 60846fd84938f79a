#include "RequestQuery.h"

#include "ApiError.h"
#include "Text.h"

#include <algorithm>
#include <array>

namespace brevan::sim {

namespace {

constexpr std::array kParameters{"filter", "range", "TYPE", "ID", "ASSOCIATEOBJTYPE", "ASSOCIATEOBJID"};

}  // namespace

RequestQuery::RequestQuery(std::string_view text)
{
    for (const std::string& parameter : split(text, "&")) {
        // A query may end in "&" or be empty: clients put "&" behind a filter whatever follows.
        if (!parameter.empty()) {
            readParameter(parameter);
        }
    }
}

void RequestQuery::readParameter(std::string_view text)
{
    const std::optional<std::string> plain = percentDecoded(text);
    const std::size_t equals = plain ? plain->find('=') : std::string::npos;
    if (equals == std::string::npos) {
        throw ApiError(kBadQuery, "The query part " + inQuotes(text) + " is not of the form NAME=VALUE.");
    }
    const std::string name = plain->substr(0, equals);
    const std::string value = plain->substr(equals + 1);
    if (std::find(kParameters.begin(), kParameters.end(), name) == kParameters.end()) {
        throw ApiError(kBadQuery, "The query parameter " + inQuotes(name) + " is not known.");
    }
    if (!m_values.emplace(name, value).second) {
        throw ApiError(kBadQuery, "The query parameter " + inQuotes(name) + " is given twice.");
    }
    if (name == "filter") {
        readFilter(value);
    } else if (name == "range") {
        readRange(value);
    }
}

void RequestQuery::readFilter(const std::string& text)
{
    for (const std::string& condition : split(text, " and ")) {
        const std::size_t colon = condition.find(':');
        if (colon == std::string::npos || colon == 0) {
            throw ApiError(kBadQuery, "The filter condition " + inQuotes(condition) + " is not of the form KEY:VALUE.");
        }
        m_filter.emplace_back(condition.substr(0, colon), condition.substr(colon + 1));
    }
}

void RequestQuery::readRange(const std::string& text)
{
    const std::size_t dash = text.find('-');
    if (dash != std::string::npos && text.front() == '[' && text.back() == ']') {
        const auto first = decimal(std::string_view(text).substr(1, dash - 1));
        const auto last = decimal(std::string_view(text).substr(dash + 1, text.size() - dash - 2));
        if (first && last && *first <= *last) {
            m_range = Range{*first, *last};
            return;
        }
    }
    throw ApiError(kBadQuery, "The range " + inQuotes(text) + " is not of the form [FIRST-END] with FIRST <= END.");
}

std::string RequestQuery::value(const std::string& parameter) const
{
    const auto found = m_values.find(parameter);
    return found == m_values.end() ? std::string() : found->second;
}

std::string RequestQuery::require(const std::string& parameter) const
{
    std::string text = value(parameter);
    if (text.empty()) {
        throw ApiError(kMissingParameter, "The query parameter " + parameter + " is missing.");
    }
    return text;
}

const std::vector<std::pair<std::string, std::string>>& RequestQuery::filter() const
{
    return m_filter;
}

const std::optional<Range>& RequestQuery::range() const
{
    return m_range;
}

}  // namespace brevan::sim
