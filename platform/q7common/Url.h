#ifndef BREVAN_Q7COMMON_URL_H
#define BREVAN_Q7COMMON_URL_H

#include <optional>
#include <string>
#include <string_view>

namespace brevan {

/// One array as an address: `host` is an IPv4 or IPv6 literal (without brackets) or a name, `port` decimal text.
struct Server {
    std::string host;
    std::string port;
};

/// Reads "https://" host ":" port. An IPv6 literal may come with brackets or without: what follows the last colon is the
/// port. Nothing where it is another scheme, has no host, a port outside 1 to 65535, or anything after the port.
std::optional<Server> parseServer(std::string_view url);

/// The same from its parts.
std::optional<Server> makeServer(std::string_view host, std::string_view port);

/// The host as it stands in a URL, an IPv6 literal in brackets.
std::string urlHost(std::string_view host);

/// "https://" host ":" port.
std::string baseUrl(const Server& server);

enum class PathFault { None, NotAbsolute, ControlCharacter, ParentSegment };

/// Looks at a raw path with its query: it begins with "/", holds no control character and, before the "?", no ".." segment.
PathFault checkPath(std::string_view path);

const char* describe(PathFault fault);

/// The raw path with everything encoded that is not allowed in a URL, byte by byte; "?", "&", "=", ":", "[", "]" and "/"
/// stay. A "%" is text and becomes "%25". A "+" becomes "%2b", because many servers read a bare one as a blank.
std::string encodePath(std::string_view path);

}  // namespace brevan

#endif
