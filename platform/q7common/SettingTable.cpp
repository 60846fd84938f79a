#include "SettingTable.h"

#include "Url.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <iterator>

namespace brevan {

namespace {

constexpr std::string_view kPinPrefix = "sha256//";
constexpr std::size_t kPinLength = 44;  // 32 bytes in base64
constexpr std::string_view kProxySchemes[] = {"http://", "https://", "socks5://", "socks5h://"};

std::chrono::milliseconds secondsToTime(double seconds)
{
    return std::chrono::milliseconds(std::llround(seconds * 1000));
}

bool storeVerify(Settings&, TlsSettings& tls, std::string_view text, double)
{
    tls.verify = text != "off";
    return text == "on" || text == "off";
}

bool storeCaFile(Settings&, TlsSettings& tls, std::string_view text, double)
{
    tls.caFile = text;
    return text.empty() || text.front() == '/';
}

bool isBase64(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '+' || c == '/';
}

bool isPin(std::string_view text)
{
    return text.size() == kPinLength && text.back() == '=' && std::all_of(text.begin(), text.end() - 1, isBase64);
}

bool storePin(Settings&, TlsSettings& tls, std::string_view text, double)
{
    tls.pin.clear();
    while (!text.empty()) {
        const std::size_t blank = std::min(text.find(' '), text.size());
        if (!isPin(text.substr(0, blank))) {
            return false;
        }
        tls.pin += (tls.pin.empty() ? "" : ";") + std::string(kPinPrefix) + std::string(text.substr(0, blank));
        text.remove_prefix(blank);
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    }
    return true;
}

bool storeServerName(Settings&, TlsSettings& tls, std::string_view text, double)
{
    tls.serverName = text;
    return text.empty() || (text.find(':') == std::string_view::npos && makeServer(text, "1").has_value());
}

bool storeConnectTime(Settings& settings, TlsSettings&, std::string_view, double number)
{
    settings.connectTime = secondsToTime(number);
    return true;
}

bool storeRequestTime(Settings& settings, TlsSettings&, std::string_view, double number)
{
    settings.requestTime = secondsToTime(number);
    return true;
}

bool storeCommandTime(Settings& settings, TlsSettings&, std::string_view, double number)
{
    settings.commandTime = secondsToTime(number);
    return true;
}

bool storeReplyBytes(Settings& settings, TlsSettings&, std::string_view, double number)
{
    settings.replyBytes = static_cast<std::size_t>(number * 1024 * 1024);
    return true;
}

bool storeCommandOutput(Settings& settings, TlsSettings&, std::string_view, double number)
{
    settings.commandOutputBytes = static_cast<std::size_t>(number * 1024);
    return true;
}

bool storeProxy(Settings& settings, TlsSettings&, std::string_view text, double)
{
    settings.proxy = text;
    const auto begins = [text](std::string_view scheme) {
        return text.size() > scheme.size() && text.substr(0, scheme.size()) == scheme;
    };
    return text.empty() || std::any_of(std::begin(kProxySchemes), std::end(kProxySchemes), begins);
}

constexpr SettingRow kSettings[] = {
    {"tls", "verify", "", "on", 0, 0, "on or off", storeVerify},
    {"tls", "ca_file", "", "", 0, 0, "an absolute path of a readable PEM file", storeCaFile},
    {"tls", "pin_sha256", "", "", 0, 0, "44 characters of base64, several separated by blanks", storePin},
    {"tls", "server_name", "", "", 0, 0, "a host name", storeServerName},
    {"time", "connect_seconds", "seconds", "10", 0.1, 600, "", storeConnectTime},
    {"time", "request_seconds", "seconds", "60", 0.1, 3600, "", storeRequestTime},
    {"time", "command_seconds", "seconds", "600", 0.1, 86400, "", storeCommandTime},
    {"limits", "reply_megabytes", "MiB", "64", 1, 1024, "", storeReplyBytes},
    {"limits", "command_output_kilobytes", "KiB", "1024", 1, 1048576, "", storeCommandOutput},
    {"net", "proxy", "", "", 0, 0, "a URL that begins with http://, https://, socks5:// or socks5h://", storeProxy},
};

std::string plainNumber(double number)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.0f", number);
    return number < 1 ? "0.1" : text;
}

bool readNumber(std::string_view text, double& number)
{
    const char* end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
    return fault == std::errc() && stop == end;
}

}  // namespace

const SettingRow* SettingTable::begin() const
{
    return std::begin(kSettings);
}

const SettingRow* SettingTable::end() const
{
    return std::end(kSettings);
}

const SettingRow* findSetting(std::string_view section, std::string_view key)
{
    const auto isMeant = [&](const SettingRow& row) { return row.section == section && row.key == key; };
    const auto* row = std::find_if(std::begin(kSettings), std::end(kSettings), isMeant);
    return row == std::end(kSettings) ? nullptr : row;
}

std::string allowedValues(const SettingRow& row)
{
    if (!row.isNumber()) {
        return std::string(row.allowed);
    }
    return plainNumber(row.least) + " to " + plainNumber(row.most) + " " + std::string(row.unit);
}

bool applySetting(const SettingRow& row, std::string_view text, Settings& settings, TlsSettings& tls)
{
    double number = 0;
    if (row.isNumber() && !(readNumber(text, number) && number >= row.least && number <= row.most)) {
        return false;
    }
    return row.store(settings, tls, text, number);
}

Settings defaultSettings()
{
    Settings settings;
    for (const SettingRow& row : kSettings) {
        applySetting(row, row.defaultText, settings, settings.tls);
    }
    return settings;
}

}  // namespace brevan
