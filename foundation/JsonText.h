#ifndef BREVAN_FOUNDATION_JSONTEXT_H
#define BREVAN_FOUNDATION_JSONTEXT_H

#include <json/value.h>

#include <optional>
#include <string>

namespace brevan {

/// The text of a member of a reply's record; numbers and booleans as the array would write them, an absent member or null as
/// the empty text. Nothing where a list or an object stands, or where `record` is no object.
std::optional<std::string> textOf(const Json::Value& record, const char* key);

}  // namespace brevan

#endif
