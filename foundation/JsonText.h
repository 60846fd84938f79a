#ifndef BREVAN_FOUNDATION_JSONTEXT_H
#define BREVAN_FOUNDATION_JSONTEXT_H

#include <json/value.h>

#include <optional>
#include <string>

namespace brevan {

/// The text of a value of a reply; numbers and booleans as the array would write them, null as the empty text. Nothing for a
/// list or an object.
std::optional<std::string> textOf(const Json::Value& value);

/// The same for a member of a record; an absent one is the empty text. Nothing where `record` is no object.
std::optional<std::string> textOf(const Json::Value& record, const char* key);

}  // namespace brevan

#endif
