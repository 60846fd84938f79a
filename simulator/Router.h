#ifndef BREVAN_SIMULATOR_ROUTER_H
#define BREVAN_SIMULATOR_ROUTER_H

#include "RequestContext.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace brevan::sim {

using Handler = std::function<Answer(RequestContext&)>;

/// One operation of the array: a method, a path and what it does. In a pattern, "{id}" stands for one part of the path that
/// is not empty; all else is compared to the letter, a slash at the end included.
struct Route {
    std::string method;
    std::string pattern;
    Handler handler;
    bool needsSession = true;

    /// By this name faults and the journal know the operation: "POST /lungroup" for the pattern "/lungroup/".
    std::string operation() const;
};

struct RouteMatch {
    const Route* route = nullptr;  ///< null: the array has no such operation
    std::string id;                ///< what "{id}" stood for, decoded
};

class Router {
public:
    void add(Route route);
    /// `path`: relative to the device, as sent. A pattern without "{id}" goes before one with it.
    RouteMatch find(std::string_view method, std::string_view path) const;
    bool hasOperation(const std::string& operation) const;

private:
    struct Entry {
        Route route;
        std::vector<std::string> parts;
    };
    std::vector<Entry> m_entries;
};

}  // namespace brevan::sim

#endif
