#ifndef BREVAN_SIMULATOR_REQUESTQUERY_H
#define BREVAN_SIMULATOR_REQUESTQUERY_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brevan::sim {

/// Records first to last (exclusive).
struct Range {
    std::uint64_t first = 0;
    std::uint64_t last = 0;
};

/// What stands behind the "?": "filter=NAME:x and ID:y", "range=[a-b]", and single values such as "TYPE=11". A text of
/// another form, a parameter that the array does not know and one that is given twice are an ApiError (kBadQuery).
class RequestQuery {
public:
    RequestQuery() = default;
    explicit RequestQuery(std::string_view text);

    /// The value; empty where the parameter was not given.
    std::string value(const std::string& parameter) const;
    /// The value; an ApiError (kMissingParameter) where the parameter was not given.
    std::string require(const std::string& parameter) const;
    const std::vector<std::pair<std::string, std::string>>& filter() const;
    const std::optional<Range>& range() const;

private:
    void readParameter(std::string_view text);
    void readFilter(const std::string& text);
    void readRange(const std::string& text);

    std::map<std::string, std::string> m_values;
    std::vector<std::pair<std::string, std::string>> m_filter;
    std::optional<Range> m_range;
};

}  // namespace brevan::sim

#endif
