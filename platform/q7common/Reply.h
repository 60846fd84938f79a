#ifndef BREVAN_Q7COMMON_REPLY_H
#define BREVAN_Q7COMMON_REPLY_H

#include "RestResponse.h"
#include "Secret.h"

#include <json/value.h>

#include <string>
#include <string_view>

namespace brevan {

/// What the array answered: "data" is null (no record), an object (one) or a list of objects.
struct Reply {
    int code = 0;
    std::string description;
    Json::Value data;
};

/// Reads the body of a reply, whose length is that of `text`, whatever bytes it holds. Returns nullptr and fills `reply`, or
/// returns what is wrong with the text: no JSON, keys given twice, nested too deep, no "error" member, records that are no
/// objects. Throws std::bad_alloc only.
const char* parseReply(std::string_view text, Reply& reply);

}  // namespace brevan

/// Fills and empties what the SDK reads.
struct RestResponseAccess {
    /// `text` is what `reply` was read from.
    static void fill(RestResponse& response, brevan::Reply&& reply, brevan::SecretBytes&& text);
    static void clear(RestResponse& response) noexcept;
};

#endif
