#ifndef BREVAN_SIMULATOR_INVENTORY_H
#define BREVAN_SIMULATOR_INVENTORY_H

#include <cstdint>
#include <string>

namespace brevan::sim {

class Database;

/// The largest inventory file that is read, and the version of its form.
constexpr std::size_t kLargestInventory = std::size_t{1} << 30;
constexpr std::int64_t kInventoryVersion = 1;

/// All that the array has, as one JSON document, an object a line, keys and objects always in the same order. Not in it:
/// sessions, CHAP secrets, and reads that new objects still refuse.
std::string writeInventory(Database& database);

/// Fills a database that has no array yet with what `text` describes, by the rules that requests obey, too. `deviceId`: what
/// the array must be called; empty: as the document says, else as arrays usually are. What is wrong is a std::runtime_error that names
/// place and mistake; the caller's transaction undoes what was loaded before it.
void loadInventory(Database& database, const std::string& text, const std::string& deviceId);

/// The same from a file, which messages name, too.
void loadInventoryFile(Database& database, const std::string& path, const std::string& deviceId);

}  // namespace brevan::sim

#endif
