#include "foundation/JsonText.h"

namespace brevan {

std::optional<std::string> textOf(const Json::Value& value)
{
    if (value.isArray() || value.isObject()) {
        return std::nullopt;
    }
    return value.asString();
}

std::optional<std::string> textOf(const Json::Value& record, const char* key)
{
    if (record.isNull()) {
        return std::string();
    }
    return record.isObject() ? textOf(record[key]) : std::nullopt;
}

}  // namespace brevan
