#ifndef BREVAN_SIMULATOR_RECORDTEXT_H
#define BREVAN_SIMULATOR_RECORDTEXT_H

#include "Database.h"
#include "ResourceKind.h"

#include <string>

namespace brevan::sim {

/// Writes a record as JSON behind what `json` holds already. The row's columns are those of the kind's fields, in their order.
void appendRecord(std::string& json, const Statement& row, const ResourceKind& kind);

}  // namespace brevan::sim

#endif
