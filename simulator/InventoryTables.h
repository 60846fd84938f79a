#ifndef BREVAN_SIMULATOR_INVENTORYTABLES_H
#define BREVAN_SIMULATOR_INVENTORYTABLES_H

#include "Database.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace brevan::sim {

/// What a value in an inventory is, and so how it is written and checked.
enum class InventoryType {
    kId,         ///< of the object; left out: a free one
    kPoolId,     ///< chosen by people, never given by the array
    kName,       ///< by the rule for names, unique among objects of its kind
    kText,       ///< up to `most`, but never more than 255 bytes without control characters
    kNumber,     ///< 0 to `most`
    kFlag,       ///< true or false
    kChapMode,   ///< "0", "1" or "2"
    kReference,  ///< the ID of an object of `table`
    kMembers,    ///< a list of such IDs
    kWwn,        ///< left out: a free one
    kIscsiName,  ///< an ID, too
    kPortName,   ///< an ID, too
    kPortKind,
    kDetail,  ///< a text that is a member of the JSON object in the column
    kSecret,  ///< read and kept as a seal, never written
};

/// Whether a value that is left out is a mistake, and what it is otherwise: NULL, an empty text, 0, or this number.
enum class Missing { kMistake, kNothing, kZero, kOne, kTwo };

struct InventoryColumn {
    const char* key;
    const char* column;
    InventoryType type;
    Missing missing = Missing::kMistake;
    std::uint64_t most = 65535;       ///< kNumber, kText
    const char* table = nullptr;      ///< kReference, kMembers
    const char* members = nullptr;    ///< kMembers: their IDs, by the ID of the group
    const char* addMember = nullptr;  ///< kMembers: a statement that takes the IDs of group and member
};

/// The values of an object while it is loaded, by column.
using InventoryRow = std::map<std::string, Value>;

/// A list in the document: what one table holds.
struct InventorySection {
    const char* key;
    const char* table;
    const char* order;
    std::vector<InventoryColumn> columns;
    /// What no value tells alone: completes the row, or throws a std::runtime_error with the mistake. May be null.
    void (*check)(Database& database, InventoryRow& row);
};

/// In the order in which they refer to one another.
const std::vector<InventorySection>& inventorySections();

}  // namespace brevan::sim

#endif
