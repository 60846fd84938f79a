#ifndef BREVAN_SIMULATOR_ARRAY_H
#define BREVAN_SIMULATOR_ARRAY_H

#include "Database.h"
#include "ExposureDriver.h"
#include "Files.h"
#include "Identity.h"
#include "LoginGuard.h"
#include "ServerOptions.h"
#include "SessionStore.h"

#include <list>
#include <memory>
#include <optional>

namespace brevan::sim {

/// A snapshot whose data is being copied: not there yet, but its name is taken and its LUN must stay.
struct SnapshotInMaking {
    std::string name;
    std::int64_t lun = 0;
};

/// What operations work on. One request at a time.
struct Array {
    explicit Array(ServerOptions arrayOptions);

    ServerOptions options;
    std::optional<FileLock> lock;  ///< on the database's file
    Database database;
    SessionStore sessions;
    LoginGuard logins;
    std::unique_ptr<ExposureDriver> exposure;
    std::list<SnapshotInMaking> snapshotsInMaking;
};

/// A further pool; a free initiator, which may be there already. A value that does not do is a std::invalid_argument.
std::string addPool(Array& array, const PoolOption& pool);
void addFreeInitiator(Array& array, const std::string& name);

/// Gives a new array what its seed says, or else the pools and ports that arrays are delivered with, and any array the
/// initiators of its options. Its device ID is then the database's own. What does not fit is a std::invalid_argument; it is
/// for the caller's transaction to undo what was done before it.
void furnish(Array& array);

/// A 32-digit name for a new volume: an NAA type 6 designator that no other volume of this array ever had.
std::string newWwn(Array& array);

}  // namespace brevan::sim

#endif
