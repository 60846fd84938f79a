#ifndef BREVAN_Q7COMMON_SETTINGTABLE_H
#define BREVAN_Q7COMMON_SETTINGTABLE_H

#include "Settings.h"

#include <string>
#include <string_view>

namespace brevan {

/// One setting of transport.ini. A number has a range from `least` to `most` in `unit`; a text names what is `allowed`.
/// `store` gets the text as it stands and, for numbers, its value; false: the text is not allowed.
struct SettingRow {
    std::string_view section;
    std::string_view key;
    std::string_view unit;
    std::string_view defaultText;
    double least;
    double most;
    std::string_view allowed;
    bool (*store)(Settings& settings, TlsSettings& tls, std::string_view text, double number);

    bool isNumber() const { return most > 0; }
};

struct SettingTable {
    const SettingRow* begin() const;
    const SettingRow* end() const;
};

/// The row of a setting, null where there is none of that name.
const SettingRow* findSetting(std::string_view section, std::string_view key);

/// What may be set: "0.1 to 600 seconds", "on or off".
std::string allowedValues(const SettingRow& row);

/// Checks `text` against the row and stores it; false where it is not allowed.
bool applySetting(const SettingRow& row, std::string_view text, Settings& settings, TlsSettings& tls);

/// Settings as they are without a file.
Settings defaultSettings();

}  // namespace brevan

#endif
