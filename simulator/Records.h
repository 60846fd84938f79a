#ifndef BREVAN_SIMULATOR_RECORDS_H
#define BREVAN_SIMULATOR_RECORDS_H

#include "Database.h"
#include "RequestQuery.h"
#include "ResourceKind.h"

#include <string>

namespace brevan::sim {

/// The most records that one reply carries.
constexpr std::uint64_t kMostRecords = 65536;

/// The ID as the database keeps it, of an object that exists; otherwise an ApiError with the kind's own code.
Value existingId(Database& database, const ResourceKind& kind, const std::string& id);

/// The whole record as JSON text; "{}" where there is no such object.
std::string readRecord(Database& database, const ResourceKind& kind, const Value& id);

/// The records that filter, association and range of the query ask for, in the order of their IDs, as JSON text; empty where
/// there are none.
std::string readRecords(Database& database, const ResourceKind& kind, const RequestQuery& query);

/// How many objects filter and association of the query ask for.
std::int64_t countRecords(Database& database, const ResourceKind& kind, const RequestQuery& query);

}  // namespace brevan::sim

#endif
