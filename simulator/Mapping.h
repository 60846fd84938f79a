#ifndef BREVAN_SIMULATOR_MAPPING_H
#define BREVAN_SIMULATOR_MAPPING_H

#include "Database.h"
#include "ExposureDriver.h"

namespace brevan::sim {

/// The highest LUN number of a host; numbers begin with 1, because LUN 0 belongs to the target itself.
constexpr std::int64_t kHighestLunNumber = 16383;

/// Gives every volume that is mapped to a host a LUN number there, the lowest that is free, and takes back the numbers of
/// those that no longer are. A number that stays is never changed.
void updateLunNumbers(Database& database);

/// What every iSCSI initiator sees, as the associations and the LUN numbers say.
ExposurePlan readExposurePlan(Database& database);

}  // namespace brevan::sim

#endif
