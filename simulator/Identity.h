#ifndef BREVAN_SIMULATOR_IDENTITY_H
#define BREVAN_SIMULATOR_IDENTITY_H

#include "Database.h"

#include <string>

namespace brevan::sim {

/// Of an array that neither its options nor its database or inventory name.
constexpr const char* kUsualDeviceId = "210000000001";

/// The device ID of the array that lives in the database; empty: none does yet.
std::string identityOf(Database& database);

/// Makes the database that of a new array. An ID that is not 1 to 64 letters, digits, "-" and "_" is a std::invalid_argument.
void setIdentity(Database& database, const std::string& deviceId);

/// With what all WWNs of an array begin.
std::string wwnPrefix(const std::string& deviceId);

/// An NAA type 6 designator of 32 digits; `prefix` as above.
std::string wwnOf(const std::string& prefix, std::int64_t serial);

}  // namespace brevan::sim

#endif
