#ifndef BREVAN_SIMULATOR_SCHEMA_H
#define BREVAN_SIMULATOR_SCHEMA_H

namespace brevan::sim {

/// The text of schema.sql, put into the library by the build.
extern const char* const kSchema;

/// Written into every database file, so that a file of another schema is noticed.
constexpr int kSchemaVersion = 3;

}  // namespace brevan::sim

#endif
