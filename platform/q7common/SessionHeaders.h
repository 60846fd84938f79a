#ifndef BREVAN_Q7COMMON_SESSIONHEADERS_H
#define BREVAN_Q7COMMON_SESSIONHEADERS_H

namespace brevan {

/// The headers that carry a session.
inline constexpr const char* kTokenHeader = "iBaseToken";
inline constexpr const char* kCookieHeader = "Cookie";

}  // namespace brevan

#endif
