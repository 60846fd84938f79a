#ifndef BREVAN_SIMULATOR_TEXT_H
#define BREVAN_SIMULATOR_TEXT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brevan::sim {

/// The whole text as a decimal number; nothing where it is empty, too large or anything else. "007" is a number, too.
std::optional<std::uint64_t> decimal(std::string_view text);

/// The pieces between the separators; an empty text is one empty piece.
std::vector<std::string> split(std::string_view text, std::string_view separator);

/// Resolves %XX. Nothing where an escape is broken or stands for the character NUL.
std::optional<std::string> percentDecoded(std::string_view text);

/// A client's text in an error description: quoted, cut after 64 bytes.
std::string inQuotes(std::string_view text);

bool hasControlCharacter(std::string_view text);
bool startsWith(std::string_view text, std::string_view prefix);

/// Whether all characters are letters, digits or among `others`.
bool consistsOf(std::string_view text, std::string_view others);

/// Whether it is the name of an iSCSI initiator or target that is safe as the name of a file, too.
bool isIscsiName(std::string_view text);

/// Whether it is a name as the array's own objects have: 1 to 31 letters, digits, "_", "-" and ".".
bool isObjectName(std::string_view text);

/// Whether it is the name of a Fibre Channel port: 16 hexadecimal digits.
bool isPortName(std::string_view text);

/// Whether it is an IPv4 or IPv6 literal.
bool isAddress(const std::string& text);

}  // namespace brevan::sim

#endif
