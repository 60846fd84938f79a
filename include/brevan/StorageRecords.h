#ifndef BREVAN_STORAGERECORDS_H
#define BREVAN_STORAGERECORDS_H

#include <brevan/Export.h>

#include <cstdint>
#include <string>

// Records of the array's storage objects. A field in capitals carries the REST key of that name; IDs are decimal text as the
// array gives it; status numbers are the array's and passed through. As the condition of a query every set field is a
// filter. Not set is: text empty, status and type 0, a tri-state -1, a type whose 0 means something 100, a capacity all bits
// set.

/// The array's object types.
enum MOType : int {
    MOTYPE_LUN = 11,
    MOTYPE_HOSTGROUP = 14,
    MOTYPE_HOST = 21,
    MOTYPE_SNAPSHOT = 27,
    MOTYPE_MAPPINGVIEW = 245,
    MOTYPE_LUNGROUP = 256
};

/// A volume of the array.
class BREVAN_API LunMO {
public:
    LunMO();
    LunMO(const LunMO& other);
    LunMO(LunMO&& other) noexcept;
    LunMO& operator=(const LunMO& other);
    LunMO& operator=(LunMO&& other) noexcept;
    virtual ~LunMO();

    std::string ID;
    std::string NAME;
    std::uint32_t PARENTTYPE = 0;  ///< 216 (storage pool) when read; not used when creating
    std::string PARENTID;          ///< ID of the storage pool
    std::string PARENTNAME;        ///< name of the storage pool; read only
    std::uint32_t HEALTHSTATUS = 0;
    std::uint32_t RUNNINGSTATUS = 0;
    std::string DESCRIPTION;
    std::int32_t ALLOCTYPE = 100;              ///< 0 thick, 1 thin, 100 not set
    std::uint64_t CAPACITY = UINT64_MAX;       ///< bytes, a multiple of 512; all bits set: not set
    std::uint64_t ALLOCCAPACITY = UINT64_MAX;  ///< bytes allocated; when creating a thin LUN the initial allocation
    std::uint64_t allocCapacitySectors = 0;    ///< the array's own figure for ALLOCCAPACITY, in sectors; read only
    std::uint64_t THINCAPACITYUSAGE = 0;       ///< percent; sent when a thin LUN is created, unless above 100
    std::int32_t EXPOSEDTOINITIATOR = 0;       ///< 1: mapped to an initiator; read only
    std::string WWN;                           ///< world-wide name, hexadecimal, as the array spells it; read only
    std::string OWNINGCONTROLLER;
    std::string WORKINGCONTROLLER;
    std::int32_t ISADD2LUNGROUP = -1;  ///< 1: in a LUN group, 0: not, -1: unknown or not set
};

/// A snapshot of a LUN.
class BREVAN_API SnapshotMO {
public:
    SnapshotMO();
    SnapshotMO(const SnapshotMO& other);
    SnapshotMO(SnapshotMO&& other) noexcept;
    SnapshotMO& operator=(const SnapshotMO& other);
    SnapshotMO& operator=(SnapshotMO&& other) noexcept;
    virtual ~SnapshotMO();

    std::string ID;
    std::string NAME;
    std::uint32_t PARENTTYPE = 0;
    std::string PARENTID;  ///< ID of the source LUN
    std::string PARENTNAME;
    std::uint32_t HEALTHSTATUS = 0;
    std::uint32_t RUNNINGSTATUS = 0;
    std::string DESCRIPTION;
    std::uint64_t USERCAPACITY = UINT64_MAX;      ///< as the array gives it: sectors of 512 bytes; all bits set: not set
    std::uint64_t CONSUMEDCAPACITY = UINT64_MAX;  ///< as the array gives it
    std::string WWN;
};

/// A set of volumes that are mapped together.
struct LunGroupMO {
    std::string ID;
    std::string NAME;
    std::string DESCRIPTION;
    std::int32_t ISADD2MAPPINGVIEW = -1;  ///< tri-state: 1 in a mapping view, 0 not, -1 not set
    std::uint32_t APPTYPE = 100;          ///< 100: not set
    std::uint64_t GROUPTYPE = 0;
};

/// Joins a LUN group and a host group and so exposes the volumes of the one to the hosts of the other.
class BREVAN_API MappingViewMO {
public:
    MappingViewMO();
    MappingViewMO(const MappingViewMO& other);
    MappingViewMO(MappingViewMO&& other) noexcept;
    MappingViewMO& operator=(const MappingViewMO& other);
    MappingViewMO& operator=(MappingViewMO&& other) noexcept;
    virtual ~MappingViewMO();

    std::string ID;
    std::string NAME;
    std::string DESCRIPTION;
    std::int32_t ENABLEINBANDCOMMAND = 0;  ///< 0 or 1
};

/// The array's record of a machine whose initiators see volumes.
struct HostMO {
    std::string ID;
    std::string NAME;
    std::uint32_t PARENTTYPE = 0;
    std::string PARENTID;  ///< ID of the host group
    std::string LOCATION;
    std::uint32_t HEALTHSTATUS = 0;
    std::uint32_t RUNNINGSTATUS = 0;
    std::string DESCRIPTION;
    std::uint32_t OPERATIONSYSTEM = 100;  ///< 0: Linux; 100: not set
    std::string IP;
    std::int32_t ISADD2HOSTGROUP = -1;  ///< tri-state
};

struct HostGroupMO {
    std::string ID;
    std::string NAME;
    std::string DESCRIPTION;
    std::int32_t ISADD2MAPPINGVIEW = -1;  ///< tri-state
};

// Queries: a condition and the range of records wanted, `rangeCount` of them from `rangeStart` on (from 0). rangeCount 0:
// all.

class BREVAN_API LunQuery {
public:
    LunQuery();
    LunQuery(const LunMO& lun, std::uint64_t start, std::uint64_t count);
    LunQuery(const LunQuery& other);
    LunQuery(LunQuery&& other) noexcept;
    LunQuery& operator=(const LunQuery& other);
    LunQuery& operator=(LunQuery&& other) noexcept;
    virtual ~LunQuery();

    LunMO condition;
    std::uint64_t rangeStart = 0;
    std::uint64_t rangeCount = 0;
};

class BREVAN_API SnapshotQuery {
public:
    SnapshotQuery();
    SnapshotQuery(const SnapshotMO& snapshot, std::uint64_t start, std::uint64_t count);
    SnapshotQuery(const SnapshotQuery& other);
    SnapshotQuery(SnapshotQuery&& other) noexcept;
    SnapshotQuery& operator=(const SnapshotQuery& other);
    SnapshotQuery& operator=(SnapshotQuery&& other) noexcept;
    virtual ~SnapshotQuery();

    SnapshotMO condition;
    std::uint64_t rangeStart = 0;
    std::uint64_t rangeCount = 0;
};

class BREVAN_API MappingViewQuery {
public:
    MappingViewQuery();
    MappingViewQuery(const MappingViewMO& view, std::uint64_t start, std::uint64_t count);
    MappingViewQuery(const MappingViewQuery& other);
    MappingViewQuery(MappingViewQuery&& other) noexcept;
    MappingViewQuery& operator=(const MappingViewQuery& other);
    MappingViewQuery& operator=(MappingViewQuery&& other) noexcept;
    virtual ~MappingViewQuery();

    MappingViewMO condition;
    std::uint64_t rangeStart = 0;
    std::uint64_t rangeCount = 0;
};

struct LunGroupQuery {
    LunGroupQuery() = default;
    LunGroupQuery(const LunGroupMO& group, std::uint64_t start, std::uint64_t count)
        : condition(group), rangeStart(start), rangeCount(count)
    {
    }

    LunGroupMO condition;
    std::uint64_t rangeStart = 0;
    std::uint64_t rangeCount = 0;
};

struct HostGroupQuery {
    HostGroupQuery() = default;
    HostGroupQuery(const HostGroupMO& group, std::uint64_t start, std::uint64_t count)
        : condition(group), rangeStart(start), rangeCount(count)
    {
    }

    HostGroupMO condition;
    std::uint64_t rangeStart = 0;
    std::uint64_t rangeCount = 0;
};

/// What every create of a LUN sends with these values; a caller cannot change them. The last three are sent by no request.
struct CLunUserSettableFeature {
    std::uint64_t WRITEPOLICY = 1;
    std::uint64_t MIRRORPOLICY = 1;
    std::uint64_t PREFETCHPOLICY = 3;
    std::uint64_t PREFETCHVALUE = 0;
    std::uint64_t DATATRANSFERPOLICY = 0;
    std::uint64_t INITIALDISTRIBUTEPOLICY = 0;
    std::uint64_t spareCount = 10;
    std::string spareText;
    std::uint32_t spareFlag = 0;
};

#endif
