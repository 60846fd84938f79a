#ifndef BREVAN_SESSION_SESSIONCOOKIE_H
#define BREVAN_SESSION_SESSIONCOOKIE_H

#include <optional>
#include <string>
#include <vector>

namespace brevan {

/// The session cookie from the header lines of a login reply: what stands between "Set-Cookie:" and the next ";", a leading
/// blank included. Only the first line with "Set-Cookie:" counts; where it has no ";" there is no cookie.
std::optional<std::string> sessionCookie(const std::vector<std::string>& headerLines);

}  // namespace brevan

#endif
