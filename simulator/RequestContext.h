#ifndef BREVAN_SIMULATOR_REQUESTCONTEXT_H
#define BREVAN_SIMULATOR_REQUESTCONTEXT_H

#include "Array.h"
#include "ErrorCodes.h"
#include "RequestBody.h"
#include "RequestQuery.h"
#include "Wire.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace brevan::sim {

/// What an operation answers. What it has changed is kept whatever the code; an ApiError undoes it.
struct Answer {
    int code = kDone;
    std::string text = "0";
    std::string data = "{}";  ///< JSON; empty: the reply has no "data"
};

/// A request on its way through one operation.
struct RequestContext {
    Array& array;
    const WireRequest& wire;
    RequestQuery query;
    RequestBody body;
    std::string id;  ///< of the object that the path names
    std::vector<std::pair<std::string, std::string>> replyHeaders;
    bool exposureChanged = false;                   ///< set by what may change who sees which volume
    std::vector<std::function<void()>> afterwards;  ///< what cannot be undone: done once the change is kept
    std::uint64_t session = 0;                      ///< number of the session that the request belongs to or opens

    Database& database() { return array.database; }
};

}  // namespace brevan::sim

#endif
