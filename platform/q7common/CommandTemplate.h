#ifndef BREVAN_Q7COMMON_COMMANDTEMPLATE_H
#define BREVAN_Q7COMMON_COMMANDTEMPLATE_H

#include <string>
#include <vector>

namespace brevan {

/// Puts the parameters into a command line: each '?' outside quotes or inside single quotes takes the next one, quoted for
/// the place where it stands, so that the command sees it as one argument, whatever it holds. A '?' in double quotes or
/// after a backslash is an ordinary character. Returns nullptr and fills `line`, or returns why it refuses: too few or too
/// many parameters; one that is empty (to a grep it would match everything), begins with "-" (an option), holds a control
/// character, or is longer than 4096 bytes.
const char* fillTemplate(const std::string& commandLine, const std::vector<std::string>& parameters, std::string& line);

}  // namespace brevan

#endif
