#include "InventoryValues.h"

#include "Text.h"

#include <algorithm>
#include <stdexcept>

namespace brevan::sim {

void wrong(const std::string& mistake)
{
    throw std::runtime_error(mistake);
}

std::int64_t numberFrom(const nlohmann::json& value, std::uint64_t most)
{
    const auto fromText = value.is_string() ? decimal(value.get_ref<const std::string&>()) : std::nullopt;
    if ((!value.is_number_unsigned() && !fromText) || (fromText ? *fromText : value.get<std::uint64_t>()) > most) {
        wrong("a whole number from 0 to " + std::to_string(most) + " is wanted");
    }
    return static_cast<std::int64_t>(fromText ? *fromText : value.get<std::uint64_t>());
}

const std::string& textFrom(const nlohmann::json& value, std::size_t longest)
{
    if (!value.is_string()) {
        wrong("a text is wanted");
    }
    const auto& text = value.get_ref<const std::string&>();
    if (text.size() > longest || hasControlCharacter(text)) {
        wrong("a text of at most " + std::to_string(longest) + " bytes without control characters is wanted");
    }
    return text;
}

const std::string& textThatIs(bool (*rule)(std::string_view), const nlohmann::json& value, const char* what)
{
    const std::string& text = textFrom(value);
    if (!rule(text)) {
        wrong(inQuotes(text) + " is not " + what);
    }
    return text;
}

std::string kindName(std::string table)
{
    std::replace(table.begin(), table.end(), '_', ' ');
    return table == "lun" ? "LUN" : table == "lun group" ? "LUN group" : table;
}

bool isChapMode(std::string_view text)
{
    return text == "0" || text == "1" || text == "2";
}

bool isPortKind(std::string_view text)
{
    return text == "FC_PORT" || text == "FCoE_PORT" || text == "ETH_PORT";
}

std::int64_t flagFrom(const nlohmann::json& value)
{
    if (!value.is_boolean()) {
        wrong("true or false is wanted");
    }
    return value.get<bool>() ? 1 : 0;
}

}  // namespace brevan::sim
