#ifndef BREVAN_SIMULATOR_RESOURCEKIND_H
#define BREVAN_SIMULATOR_RESOURCEKIND_H

#include <vector>

namespace brevan::sim {

/// The numbers by which clients name kinds of objects. Kinds that no request names by number are kNone.
enum class ObjectType : int {
    kNone = 0,
    kLun = 11,
    kHostGroup = 14,
    kHost = 21,
    kSnapshot = 27,
    kPool = 216,
    kMappingView = 245,
    kLunGroup = 256
};

/// How a value is written into a reply. kMembers: the column holds a JSON object whose members become keys of the record.
enum class Form { kText, kNumber, kMembers };

/// Whether and as what a value can stand in a filter.
enum class Match { kNever, kText, kNumber, kFlag };

/// One key of a record. A NULL leaves the key out.
struct Field {
    const char* key;
    const char* sql;
    Form form = Form::kText;
    Match match = Match::kNever;
};

/// Objects of this kind that belong to an object of `type`: a condition with one parameter, the ID of that object.
struct Association {
    ObjectType type;
    const char* condition;
    /// A column "table.column" with the IDs of the objects, which the condition picks. Large groups are read along that table's
    /// primary key, in the order of the IDs, as far as a range asks for.
    const char* through = nullptr;
};

/// Everything that reading, listing, counting and filtering needs to know about a kind of object.
struct ResourceKind {
    const char* name;  ///< in texts for people: "LUN group"
    const char* table;
    ObjectType type;
    int unknownCode;  ///< answered where there is no such object
    bool numericId;
    bool settles;             ///< a new object may be unreadable for some reads
    const char* restriction;  ///< a condition on every read; "1" where there is none
    std::vector<Field> fields;
    std::vector<Association> associations;
};

const ResourceKind& poolKind();
const ResourceKind& lunKind();
const ResourceKind& snapshotKind();
const ResourceKind& lunGroupKind();
const ResourceKind& hostKind();
const ResourceKind& hostGroupKind();
const ResourceKind& mappingViewKind();
const ResourceKind& iscsiInitiatorKind();
const ResourceKind& fcInitiatorKind();

/// The kind that clients name by this number; null where there is none.
const ResourceKind* kindOfType(ObjectType type);

}  // namespace brevan::sim

#endif
