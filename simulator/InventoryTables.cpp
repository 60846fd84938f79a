#include "InventoryTables.h"

#include "Mapping.h"
#include "Text.h"

#include <limits>
#include <stdexcept>

namespace brevan::sim {

namespace {

using Type = InventoryType;

constexpr std::uint64_t kSectors = std::uint64_t{1} << 53;

std::int64_t number(const InventoryRow& row, const char* column)
{
    return std::get<std::int64_t>(row.at(column));
}

bool isLeftOut(const InventoryRow& row, const char* column)
{
    return std::holds_alternative<std::monostate>(row.at(column));
}

void checkPool(Database&, InventoryRow& row)
{
    if (number(row, "capacity") == 0) {
        throw std::runtime_error("a storage pool has a CAPACITY of at least 1 sector");
    }
}

/// Takes what the LUN holds from its pool.
void checkLun(Database& database, InventoryRow& row)
{
    const std::int64_t capacity = number(row, "capacity");
    const bool thin = number(row, "alloc_type") == 1;
    if (isLeftOut(row, "allocated")) {
        row["allocated"] = thin ? 0 : capacity;
    }
    if (std::get<std::string>(row["controller"]).empty()) {
        row["controller"] = std::string("A");
    }
    const std::int64_t allocated = number(row, "allocated");
    const Value pool = row.at("pool_id");
    const std::int64_t most = database.number("SELECT capacity FROM pool WHERE id = ?", {pool});
    if (capacity == 0 || capacity > most) {
        throw std::runtime_error("the CAPACITY of " + std::to_string(capacity) +
                                 " sectors is not between 1 and the pool's " + std::to_string(most));
    }
    if (thin ? allocated > capacity : allocated != capacity) {
        throw std::runtime_error(
            "the ALLOCCAPACITY of " + std::to_string(allocated) +
            (thin ? " sectors is larger than the CAPACITY" : " sectors of a thick LUN is not its CAPACITY"));
    }
    if (database.execute("UPDATE pool SET allocated = allocated + ? WHERE id = ? AND allocated + ? <= capacity",
                         {allocated, pool, allocated}) != 1) {
        throw std::runtime_error("the storage pool has no room for " + std::to_string(allocated) + " sectors more");
    }
}

void checkSnapshot(Database& database, InventoryRow& row)
{
    const std::int64_t capacity = database.number("SELECT capacity FROM lun WHERE id = ?", {row.at("lun_id")});
    if (isLeftOut(row, "capacity")) {
        row["capacity"] = capacity;
    }
    if (number(row, "capacity") != capacity) {
        throw std::runtime_error("the USERCAPACITY is not the CAPACITY of its LUN, " + std::to_string(capacity) +
                                 " sectors");
    }
}

/// A secret may be missing: an inventory that the array wrote has none.
void checkChap(Database&, InventoryRow& row)
{
    const std::string& normal = std::get<std::string>(row.at("normal_mode"));
    const std::string& discovery = std::get<std::string>(row.at("discovery_mode"));
    const bool any = normal != "0" || discovery != "0";
    const bool mutual = normal == "2" || discovery == "2";
    if (any != (number(row, "use_chap") == 1)) {
        throw std::runtime_error(
            "USECHAP is true where NORMALVERMODE or DISCOVERYVERMODE is \"1\" or \"2\", and only there");
    }
    if (any == std::get<std::string>(row.at("chap_name")).empty()) {
        throw std::runtime_error("CHAPNAME stands where CHAP is in force, and only there");
    }
    if (mutual == std::get<std::string>(row.at("target_chap_name")).empty()) {
        throw std::runtime_error("CHAPNAMEINITATORVERTARGET stands where a mode is \"2\", and only there");
    }
}

void checkLunNumber(Database& database, InventoryRow& row)
{
    const Value host = row.at("host_id");
    const Value volume = row.at("volume_id");
    row["volume_type"] = database.number("SELECT type FROM volume WHERE id = ?", {volume});
    if (!database.exists("SELECT 1 FROM host_volume WHERE host_id = ? AND volume_id = ?", {host, volume})) {
        throw std::runtime_error("no mapping view maps the volume to the host");
    }
    if (number(row, "number") == 0 ||
        database.exists("SELECT 1 FROM lun_number WHERE host_id = ? AND (volume_id = ? OR number = ?)",
                        {host, volume, row.at("number")})) {
        throw std::runtime_error("the host has this volume or this NUMBER already, or the NUMBER is 0");
    }
}

std::vector<InventoryColumn> with(std::vector<InventoryColumn> columns, const std::vector<const char*>& details,
                                  const char* column)
{
    for (const char* key : details) {
        columns.push_back({key, column, Type::kDetail, Missing::kNothing});
    }
    return columns;
}

const InventoryColumn kHealth{"HEALTHSTATUS", "health", Type::kNumber, Missing::kOne};
const InventoryColumn kRunning{"RUNNINGSTATUS", "running", Type::kNumber, Missing::kTwo};
const InventoryColumn kId{"ID", "id", Type::kId, Missing::kNothing};
const InventoryColumn kName{"NAME", "name", Type::kName};
const InventoryColumn kDescription{"DESCRIPTION", "description", Type::kText, Missing::kNothing};
const InventoryColumn kHost{"PARENTID", "host_id", Type::kReference, Missing::kNothing, 0, "host"};

InventorySection ports()
{
    return {"ports", "port", "id",
            with({kId,
                  {"KIND", "kind", Type::kPortKind},
                  {"NAME", "name", Type::kName},
                  {"LOCATION", "location", Type::kText, Missing::kNothing},
                  {"LOGICTYPE", "logic_type", Type::kNumber, Missing::kZero},
                  kHealth,
                  kRunning},
                 {"RUNSPEED",      "CONFSPEED",        "WWN",
                  "INIORTGT",      "FCRUNMODE",        "LOSTSIGNALS",
                  "BADCHARNUMBER", "LOSTSYNC",         "LINKFAIL",
                  "STARTTIME",     "FLOGINDELAYTIMES", "MAXSUPPORTSPEED",
                  "ERRORPACKETS",  "LOSTPACKETS",      "OVERFLOWEDPACKETS",
                  "VLANID",        "MACADDRESS",       "MTU",
                  "ISCSITCPPORT",  "ISCSINAME",        "SPEED",
                  "IPV4MASK",      "IPV4ADDRESS",      "IPV6MASK",
                  "IPV6ADDRESS"},
                 "details"),
            nullptr};
}

InventorySection luns()
{
    return {"luns", "lun", "id",
            with({kId,
                  kName,
                  {"PARENTID", "pool_id", Type::kReference, Missing::kMistake, 0, "pool"},
                  kDescription,
                  {"ALLOCTYPE", "alloc_type", Type::kNumber, Missing::kZero, 1},
                  {"CAPACITY", "capacity", Type::kNumber, Missing::kMistake, kSectors},
                  {"ALLOCCAPACITY", "allocated", Type::kNumber, Missing::kNothing, kSectors},
                  {"THINCAPACITYUSAGE", "thin_usage", Type::kNumber, Missing::kZero, 100},
                  {"WWN", "wwn", Type::kWwn, Missing::kNothing},
                  {"OWNINGCONTROLLER", "controller", Type::kText, Missing::kNothing},
                  kHealth,
                  kRunning},
                 {"WRITEPOLICY", "MIRRORPOLICY", "PREFETCHPOLICY", "PREFETCHVALUE", "DATATRANSFERPOLICY",
                  "INITIALDISTRIBUTEPOLICY"},
                 "settings"),
            checkLun};
}

InventorySection snapshots()
{
    return {"snapshots",
            "snapshot",
            "id",
            {kId,
             kName,
             {"PARENTID", "lun_id", Type::kReference, Missing::kMistake, 0, "lun"},
             kDescription,
             {"USERCAPACITY", "capacity", Type::kNumber, Missing::kNothing, kSectors},
             {"CONSUMEDCAPACITY", "consumed", Type::kNumber, Missing::kZero, kSectors},
             {"WWN", "wwn", Type::kWwn, Missing::kNothing},
             kHealth,
             kRunning},
            checkSnapshot};
}

InventorySection lunGroups()
{
    return {"lun_groups",
            "lun_group",
            "id",
            {kId,
             kName,
             kDescription,
             {"APPTYPE", "app_type", Type::kNumber, Missing::kZero},
             {"GROUPTYPE", "group_type", Type::kNumber, Missing::kZero},
             {"LUNS", "", Type::kMembers, Missing::kNothing, 0, "lun",
              "SELECT volume_id FROM lun_group_member WHERE group_id = ? AND volume_type = 11 ORDER BY 1",
              "INSERT OR IGNORE INTO lun_group_member VALUES (?, 11, ?)"},
             {"SNAPSHOTS", "", Type::kMembers, Missing::kNothing, 0, "snapshot",
              "SELECT volume_id FROM lun_group_member WHERE group_id = ? AND volume_type = 27 ORDER BY 1",
              "INSERT OR IGNORE INTO lun_group_member VALUES (?, 27, ?)"}},
            nullptr};
}

InventorySection hosts()
{
    return {"hosts",
            "host",
            "id",
            {kId,
             kName,
             {"LOCATION", "location", Type::kText, Missing::kNothing},
             kDescription,
             {"OPERATIONSYSTEM", "operating_system", Type::kNumber, Missing::kZero},
             {"IP", "ip", Type::kText, Missing::kNothing},
             kHealth,
             kRunning},
            nullptr};
}

InventorySection hostGroups()
{
    return {"host_groups",
            "host_group",
            "id",
            {kId,
             kName,
             kDescription,
             {"HOSTS", "", Type::kMembers, Missing::kNothing, 0, "host",
              "SELECT host_id FROM host_group_member WHERE group_id = ? ORDER BY 1",
              "INSERT OR IGNORE INTO host_group_member VALUES (?, ?)"}},
            nullptr};
}

InventorySection views()
{
    return {"mapping_views",
            "mapping_view",
            "id",
            {kId,
             kName,
             kDescription,
             {"ENABLEINBANDCOMMAND", "in_band", Type::kFlag, Missing::kZero},
             {"HOSTGROUP", "host_group_id", Type::kReference, Missing::kNothing, 0, "host_group"},
             {"LUNGROUP", "lun_group_id", Type::kReference, Missing::kNothing, 0, "lun_group"}},
            nullptr};
}

InventorySection iscsiInitiators()
{
    return {"iscsi_initiators",
            "iscsi_initiator",
            "id",
            {{"ID", "id", Type::kIscsiName},
             {"NAME", "name", Type::kText, Missing::kNothing, 127},
             kHost,
             {"USECHAP", "use_chap", Type::kFlag, Missing::kZero},
             {"NORMALVERMODE", "normal_mode", Type::kChapMode, Missing::kZero},
             {"DISCOVERYVERMODE", "discovery_mode", Type::kChapMode, Missing::kZero},
             {"CHAPNAME", "chap_name", Type::kText, Missing::kNothing},
             {"CHAPNAMEINITATORVERTARGET", "target_chap_name", Type::kText, Missing::kNothing},
             {"CHAPPASSWORD", "chap_secret", Type::kSecret, Missing::kNothing},
             {"CHAPPASSWORDINITATORVERTARGET", "target_chap_secret", Type::kSecret, Missing::kNothing},
             kHealth,
             kRunning},
            checkChap};
}

InventorySection fcInitiators()
{
    return {"fc_initiators",
            "fc_initiator",
            "id",
            {{"ID", "id", Type::kPortName}, {"NAME", "name", Type::kText, Missing::kNothing, 127}, kHost, kHealth, kRunning},
            nullptr};
}

}  // namespace

const std::vector<InventorySection>& inventorySections()
{
    static const std::vector<InventorySection> kSections{
        {"pools",
         "pool",
         "id",
         {{"ID", "id", Type::kPoolId},
          kName,
          {"CAPACITY", "capacity", Type::kNumber, Missing::kMistake, kSectors},
          kHealth,
          kRunning},
         checkPool},
        ports(),
        luns(),
        snapshots(),
        lunGroups(),
        hosts(),
        hostGroups(),
        views(),
        iscsiInitiators(),
        fcInitiators(),
        {"lun_numbers",
         "lun_number",
         "host_id, number",
         {{"HOST", "host_id", Type::kReference, Missing::kMistake, 0, "host"},
          {"VOLUME", "volume_id", Type::kReference, Missing::kMistake, 0, "volume"},
          {"NUMBER", "number", Type::kNumber, Missing::kMistake, static_cast<std::uint64_t>(kHighestLunNumber)}},
         checkLunNumber}};
    return kSections;
}

}  // namespace brevan::sim
