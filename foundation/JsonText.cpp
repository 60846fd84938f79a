#include "foundation/JsonText.h"

#include <utility>

namespace brevan {

std::optional<std::string> textOf(const Json::Value& value)
{
    switch (value.type()) {
        case Json::stringValue: {  // what nearly every value is: without the copy that asString() makes
            const char* begin = nullptr;
            const char* end = nullptr;
            value.getString(&begin, &end);
            return std::optional<std::string>(std::in_place, begin, end);
        }
        case Json::arrayValue:
        case Json::objectValue:
            return std::nullopt;
        default:
            return value.asString();
    }
}

std::optional<std::string> textOf(const Json::Value& record, const char* key)
{
    if (record.isNull()) {
        return std::string();
    }
    return record.isObject() ? textOf(record[key]) : std::nullopt;
}

}  // namespace brevan
