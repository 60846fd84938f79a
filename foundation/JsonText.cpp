#include "foundation/JsonText.h"

namespace brevan {

std::optional<std::string> textOf(const Json::Value& record, const char* key)
{
    if (record.isNull()) {
        return std::string();
    }
    if (!record.isObject()) {
        return std::nullopt;
    }
    const Json::Value& value = record[key];
    if (value.isArray() || value.isObject()) {
        return std::nullopt;
    }
    return value.asString();
}

}  // namespace brevan
