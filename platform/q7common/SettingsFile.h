#ifndef BREVAN_Q7COMMON_SETTINGSFILE_H
#define BREVAN_Q7COMMON_SETTINGSFILE_H

#include "Settings.h"

#include <string>
#include <string_view>

namespace brevan {

/// The file that holds the settings: the one that $BREVAN_TRANSPORT_CONFIG names (not looked at in a setuid program), else
/// transport.ini beside this library, else /etc/brevan/transport.ini. Empty where there is none of the latter two.
std::string findSettingsFile();

/// Reads the settings of `file`; an empty name gives the defaults. Whatever is wrong (file not readable, line that is no
/// setting, unknown name, value out of range, name given twice) stands in `problems`, with file, line, name and what is
/// allowed.
Settings readSettingsFile(const std::string& file);

/// The same from text; `file` is for the messages.
Settings readSettingsText(std::string_view text, const std::string& file);

}  // namespace brevan

#endif
