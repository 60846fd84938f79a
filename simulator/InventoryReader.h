#ifndef BREVAN_SIMULATOR_INVENTORYREADER_H
#define BREVAN_SIMULATOR_INVENTORYREADER_H

#include "InventoryTables.h"

#include <nlohmann/json.hpp>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace brevan::sim {

/// One object of an inventory as it stands in the file: values by column, in the file's order.
using InventoryRecord = std::vector<std::pair<const InventoryColumn*, nlohmann::json>>;

/// What an inventory file says, before it is checked for sense.
struct InventoryDocument {
    std::map<std::string, nlohmann::json> header;  ///< "version", "device_id", "next_id", "next_volume"
    std::map<const InventorySection*, std::vector<InventoryRecord>> sections;
};

/// Reads the text. Broken JSON, unknown keys, keys that stand twice and values that are no values are a std::runtime_error with
/// the place and the mistake, such as "luns[17].NAMEE: there is no such key".
InventoryDocument readInventory(const std::string& text);

}  // namespace brevan::sim

#endif
