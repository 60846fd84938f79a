#ifndef BREVAN_SIMULATOR_INVENTORYVALUES_H
#define BREVAN_SIMULATOR_INVENTORYVALUES_H

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace brevan::sim {

/// Single values of an inventory file. What does not do is a std::runtime_error that says what is wanted.

[[noreturn]] void wrong(const std::string& mistake);

/// A JSON number or decimal text, from 0 to `most`.
std::int64_t numberFrom(const nlohmann::json& value, std::uint64_t most);

/// At most so many bytes without control characters.
const std::string& textFrom(const nlohmann::json& value, std::size_t longest = 255);

/// A text that obeys the rule; `what` says what it is not otherwise.
const std::string& textThatIs(bool (*rule)(std::string_view), const nlohmann::json& value, const char* what);

/// 0 or 1.
std::int64_t flagFrom(const nlohmann::json& value);

bool isChapMode(std::string_view text);
bool isPortKind(std::string_view text);

/// What objects of a table are called: "LUN group" for "lun_group".
std::string kindName(std::string table);

}  // namespace brevan::sim

#endif
