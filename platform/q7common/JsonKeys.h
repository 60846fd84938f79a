#ifndef BREVAN_Q7COMMON_JSONKEYS_H
#define BREVAN_Q7COMMON_JSONKEYS_H

#include <json/value.h>

#include <string_view>

namespace brevan {

/// Whether an object in `text`, which is correct JSON without comments and was read as `value`, has a key twice. JsonCpp would look
/// for each key among those before it; counting takes half the time.
bool hasKeyTwice(std::string_view text, const Json::Value& value);

}  // namespace brevan

#endif
