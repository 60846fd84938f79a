#ifndef BREVAN_SIMULATOR_REQUESTCONTEXT_H
#define BREVAN_SIMULATOR_REQUESTCONTEXT_H

#include "Array.h"
#include "ErrorCodes.h"
#include "RequestBody.h"
#include "RequestQuery.h"
#include "Wire.h"

#include <nlohmann/json.hpp>

#include <exception>
#include <functional>
#include <optional>
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

struct RequestContext;

/// What takes long and touches nothing but the exposure driver: done once the change is kept, while the array works on other
/// requests. `finish` then runs as an operation of its own, with what went wrong or null, and gives the answer.
struct LongWork {
    std::function<void()> work;
    std::function<Answer(RequestContext&, const std::exception_ptr&)> finish;
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

    std::optional<LongWork> longWork;

    Database& database() { return array.database; }
};

}  // namespace brevan::sim

#endif
