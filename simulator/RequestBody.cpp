#include "RequestBody.h"

#include "ApiError.h"
#include "Text.h"

namespace brevan::sim {

namespace {

constexpr std::size_t kMostKeys = 64;

[[noreturn]] void wrongValue(const std::string& key, const std::string& wanted)
{
    throw ApiError(kBadParameter, "The value of " + inQuotes(key) + " must be " + wanted + ".");
}

/// Takes the object's members as they are parsed, so that nothing deep and nothing double is ever built.
class FlatObjectReader : public nlohmann::json_sax<nlohmann::json> {
public:
    explicit FlatObjectReader(std::map<std::string, nlohmann::json>& values) : m_values(values) {}

    bool null() override { return take(nullptr); }
    bool boolean(bool value) override { return take(value); }
    bool number_integer(number_integer_t value) override { return take(value); }
    bool number_unsigned(number_unsigned_t value) override { return take(value); }
    bool number_float(number_float_t value, const string_t&) override { return take(value); }
    bool string(string_t& value) override { return take(std::move(value)); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override
    {
        return m_inside ? stop("holds an object inside the object") : (m_inside = true);
    }
    bool key(string_t& name) override
    {
        m_key = std::move(name);
        if (m_values.count(m_key) != 0) {
            return stop("has the key " + inQuotes(m_key) + " twice");
        }
        return m_values.size() < kMostKeys || stop("has more than " + std::to_string(kMostKeys) + " keys");
    }
    bool end_object() override { return true; }
    bool start_array(std::size_t) override { return stop("holds a list"); }
    bool end_array() override { return true; }
    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception&) override
    {
        return stop("is not JSON at byte " + std::to_string(position));
    }

    const std::string& problem() const { return m_problem; }

private:
    bool take(nlohmann::json value)
    {
        if (!m_inside) {
            return stop("is not an object");
        }
        m_values[m_key] = std::move(value);
        return true;
    }
    bool stop(const std::string& problem)
    {
        m_problem = problem;
        return false;
    }

    std::map<std::string, nlohmann::json>& m_values;
    std::string m_key;
    std::string m_problem;
    bool m_inside = false;
};

}  // namespace

RequestBody::RequestBody(const std::string& text)
{
    if (text.empty()) {
        return;
    }
    FlatObjectReader reader(m_values);
    if (!nlohmann::json::sax_parse(text, &reader)) {
        throw ApiError(kBadBody, "The request body " + reader.problem() + ".");
    }
}

bool RequestBody::has(const std::string& key) const
{
    return m_values.count(key) != 0;
}

std::string RequestBody::text(const std::string& key, std::size_t longest) const
{
    const auto found = m_values.find(key);
    if (found == m_values.end()) {
        return {};
    }
    const auto* value = found->second.get_ptr<const std::string*>();
    if (value == nullptr || value->size() > longest || hasControlCharacter(*value)) {
        wrongValue(key, "text of at most " + std::to_string(longest) + " bytes without control characters");
    }
    return *value;
}

std::string RequestBody::requireText(const std::string& key, std::size_t longest) const
{
    std::string value = text(key, longest);
    if (value.empty()) {
        throw ApiError(kMissingParameter, "The value of " + inQuotes(key) + " is missing.");
    }
    return value;
}

std::optional<std::uint64_t> RequestBody::number(const std::string& key, std::uint64_t largest) const
{
    const auto found = m_values.find(key);
    if (found == m_values.end()) {
        return std::nullopt;
    }
    std::optional<std::uint64_t> value;
    if (found->second.is_number_unsigned()) {
        value = found->second.get<std::uint64_t>();
    } else if (const auto* digits = found->second.get_ptr<const std::string*>()) {
        value = decimal(*digits);
    }
    if (!value || *value > largest) {
        wrongValue(key, "a whole number from 0 to " + std::to_string(largest));
    }
    return value;
}

std::uint64_t RequestBody::requireNumber(const std::string& key, std::uint64_t largest) const
{
    const std::optional<std::uint64_t> value = number(key, largest);
    if (!value) {
        throw ApiError(kMissingParameter, "The value of " + inQuotes(key) + " is missing.");
    }
    return *value;
}

bool RequestBody::flag(const std::string& key) const
{
    const auto found = m_values.find(key);
    if (found == m_values.end() || found->second == false || found->second == "false") {
        return false;
    }
    if (found->second != true && found->second != "true") {
        wrongValue(key, "true or false");
    }
    return true;
}

}  // namespace brevan::sim
