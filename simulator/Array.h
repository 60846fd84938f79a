#ifndef BREVAN_SIMULATOR_ARRAY_H
#define BREVAN_SIMULATOR_ARRAY_H

#include "Database.h"
#include "ExposureDriver.h"
#include "ServerOptions.h"
#include "SessionStore.h"

#include <memory>

namespace brevan::sim {

/// What operations work on. One request at a time.
struct Array {
    explicit Array(ServerOptions arrayOptions);

    ServerOptions options;
    Database database;
    SessionStore sessions;
    std::unique_ptr<ExposureDriver> exposure;
};

/// A further pool; a free initiator, which may be there already. A value that does not do is a std::invalid_argument.
std::string addPool(Array& array, const PoolOption& pool);
void addFreeInitiator(Array& array, const std::string& name);

/// Gives a new array the pools and ports that it is delivered with, and any array the initiators of its options.
void furnish(Array& array);

/// A 32-digit name for a new volume: an NAA type 6 designator that no other volume of this array ever had.
std::string newWwn(Array& array);

/// With what all WWNs of an array begin.
std::string wwnPrefix(const std::string& deviceId);

}  // namespace brevan::sim

#endif
