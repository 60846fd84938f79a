#ifndef BREVAN_Q7COMMON_HEADERLINES_H
#define BREVAN_Q7COMMON_HEADERLINES_H

#include <string>
#include <string_view>
#include <vector>

namespace brevan {

/// Lines of a reply's head as libcurl hands them over, line end included.
bool isStatusLine(std::string_view line);
bool isEndOfHead(std::string_view line);

/// Adds a header line with its name written canonically ("set-cookie:" becomes "Set-Cookie:"), the rest as it came, without
/// line end. A line without a colon is no header and is left out.
void addHeaderLine(std::string_view line, std::vector<std::string>& lines);

}  // namespace brevan

#endif
