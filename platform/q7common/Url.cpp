#include "Url.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace brevan {

namespace {

constexpr std::string_view kScheme = "https://";
constexpr std::string_view kNameCharacters = "-._";
// Letters and digits aside: the unreserved characters and the delimiters of RFC 3986 but "'", "+", "#" and "%".
constexpr std::string_view kPlainCharacters = "-._~!$&()*,;=:@/?[]";

constexpr bool isLetterOrDigit(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool isControl(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7f;
}

/// Whether a character stands in a URL as it is, for each of them.
constexpr std::array<bool, 256> tableOfPlainCharacters()
{
    std::array<bool, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        const char c = static_cast<char>(byte);
        table[byte] = isLetterOrDigit(c) || kPlainCharacters.find(c) != std::string_view::npos;
    }
    return table;
}

constexpr std::array<bool, 256> kIsPlain = tableOfPlainCharacters();

bool isPort(std::string_view text)
{
    unsigned int port = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), port);
    return fault == std::errc() && end == text.data() + text.size() && port >= 1 && port <= 65535;
}

bool isIpv6Literal(std::string_view text)
{
    in6_addr address{};
    return inet_pton(AF_INET6, std::string(text).c_str(), &address) == 1;
}

bool isHost(std::string_view text)
{
    if (text.find(':') != std::string_view::npos) {
        return text.find('\0') == std::string_view::npos && isIpv6Literal(text);
    }
    const auto allowed = [](char c) { return isLetterOrDigit(c) || kNameCharacters.find(c) != std::string_view::npos; };
    return !text.empty() && std::all_of(text.begin(), text.end(), allowed);
}

bool hasParentSegment(std::string_view path)
{
    path = path.substr(0, path.find('?'));
    if (path.find("..") == std::string_view::npos) {
        return false;  // nearly always
    }
    while (!path.empty()) {
        const std::size_t end = path.find('/');
        if (path.substr(0, end) == "..") {
            return true;
        }
        path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
    }
    return false;
}

}  // namespace

std::optional<Server> makeServer(std::string_view host, std::string_view port)
{
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
        if (host.find(':') == std::string_view::npos) {
            return std::nullopt;
        }
    }
    if (!isHost(host) || !isPort(port)) {
        return std::nullopt;
    }
    return Server{std::string(host), std::string(port)};
}

std::optional<Server> parseServer(std::string_view url)
{
    if (url.size() < kScheme.size() || strncasecmp(url.data(), kScheme.data(), kScheme.size()) != 0) {
        return std::nullopt;
    }
    url.remove_prefix(kScheme.size());
    const std::size_t colon = url.rfind(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    return makeServer(url.substr(0, colon), url.substr(colon + 1));
}

std::string urlHost(std::string_view host)
{
    const bool needsBrackets = host.find(':') != std::string_view::npos;
    return needsBrackets ? "[" + std::string(host) + "]" : std::string(host);
}

std::string baseUrl(const Server& server)
{
    return std::string(kScheme) + urlHost(server.host) + ":" + server.port;
}

PathFault checkPath(std::string_view path)
{
    if (path.empty() || path.front() != '/') {
        return PathFault::NotAbsolute;
    }
    if (std::any_of(path.begin(), path.end(), isControl)) {
        return PathFault::ControlCharacter;
    }
    return hasParentSegment(path) ? PathFault::ParentSegment : PathFault::None;
}

const char* describe(PathFault fault)
{
    switch (fault) {
        case PathFault::None:
            return "the path is good";
        case PathFault::NotAbsolute:
            return "the path does not begin with \"/\"";
        case PathFault::ControlCharacter:
            return "the path holds a control character";
        case PathFault::ParentSegment:
            return "the path holds a \"..\" segment";
    }
    return "the path is not usable";
}

std::string encodePath(std::string_view path)
{
    constexpr char kHexDigits[] = "0123456789abcdef";  // libcurl makes small letters of capitals
    std::string encoded;
    encoded.reserve(path.size() + 16);
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (kIsPlain[byte]) {
            encoded += c;
            continue;
        }
        encoded += '%';
        encoded += kHexDigits[byte >> 4];
        encoded += kHexDigits[byte & 0x0f];
    }
    return encoded;
}

}  // namespace brevan
