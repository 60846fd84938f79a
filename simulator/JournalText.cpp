#include "JournalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <ctime>

namespace brevan::sim {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr const char* kMask = "\"***\"";

bool isSecret(std::string key)
{
    std::transform(key.begin(), key.end(), key.begin(), [](unsigned char letter) { return std::tolower(letter); });
    const auto holds = [&key](const char* word) { return key.find(word) != std::string::npos; };
    return holds("passw") || holds("pwd") || holds("secret") || holds("token") || holds("cookie");
}

/// Writes a flat object anew as it is parsed: double keys and their order stay, and nothing deep is ever built.
class Masker : public nlohmann::json_sax<json> {
public:
    bool null() override { return add("null"); }
    bool boolean(bool value) override { return add(value ? "true" : "false"); }
    bool number_integer(number_integer_t value) override { return add(std::to_string(value)); }
    bool number_unsigned(number_unsigned_t value) override { return add(std::to_string(value)); }
    bool number_float(number_float_t, const string_t& text) override { return add(text); }
    bool string(string_t& value) override { return add(quoted(value)); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return m_text.empty() && append("{"); }
    bool key(string_t& name) override
    {
        m_isSecret = isSecret(name);
        m_hasSecret = m_hasSecret || m_isSecret;
        return append((m_text == "{" ? "" : ",") + quoted(name) + ":");
    }
    bool end_object() override { return append("}"); }
    bool start_array(std::size_t) override { return false; }
    bool end_array() override { return false; }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override { return false; }

    const std::string& text() const { return m_text; }
    bool hasSecret() const { return m_hasSecret; }

private:
    static std::string quoted(const std::string& text) { return json(text).dump(); }
    bool append(const std::string& text)
    {
        m_text += text;
        return true;
    }
    bool add(const std::string& value) { return !m_text.empty() && append(m_isSecret ? kMask : value); }

    std::string m_text;
    bool m_isSecret = false;
    bool m_hasSecret = false;
};

}  // namespace

std::string maskedBody(const std::string& body)
{
    if (body.empty()) {
        return body;
    }
    Masker masker;
    if (!json::sax_parse(body, &masker)) {
        return "(" + std::to_string(body.size()) + " bytes that are no flat JSON object)";
    }
    return masker.hasSecret() ? masker.text() : body;
}

std::string timeText(std::chrono::system_clock::time_point time)
{
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(time.time_since_epoch()).count();
    const auto seconds = static_cast<std::time_t>(micros / 1000000);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char text[64];
    const std::size_t length = std::strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text + length, sizeof(text) - length, ".%06dZ", static_cast<int>(micros % 1000000));
    return text;
}

std::string journalLine(const JournalEntry& entry)
{
    const ordered_json line{
        {"number", entry.number},         {"time", timeText(entry.time)}, {"session", entry.session},
        {"connection", entry.connection}, {"method", entry.method},       {"path", entry.path},
        {"operation", entry.operation},   {"body", entry.body},           {"code", entry.code},
        {"status", entry.status},         {"fault", entry.fault},         {"duration_us", entry.duration.count()}};
    // Paths may hold bytes that are no UTF-8.
    return line.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

}  // namespace brevan::sim
