#ifndef BREVAN_PORTRECORDS_H
#define BREVAN_PORTRECORDS_H

#include <cstdint>
#include <string>

// Records of the array's front-end ports. A field carries the REST key of its name; the numbers are the array's and passed
// through; LOGICTYPE 100 means not set. As a condition ID, NAME and LOGICTYPE count.

struct FCPortMO {
    std::string ID;
    std::string NAME;
    std::string LOCATION;
    std::uint32_t HEALTHSTATUS = 0;
    std::uint32_t RUNNINGSTATUS = 0;
    std::uint32_t LOGICTYPE = 100;
    std::int64_t RUNSPEED = 0;  ///< negative: not linked
    std::uint64_t CONFSPEED = UINT64_MAX;
    std::string WWN;
    std::uint32_t INIORTGT = 0;
    std::uint32_t FCRUNMODE = 0;
    std::uint64_t LOSTSIGNALS = 0;
    std::uint64_t BADCHARNUMBER = 0;
    std::uint64_t LOSTSYNC = 0;
    std::uint64_t LINKFAIL = 0;
    std::uint64_t STARTTIME = 0;
    std::uint64_t FLOGINDELAYTIMES = 0;
    std::uint64_t MAXSUPPORTSPEED = 0;
};

struct FCoEPortMO {
    std::string ID;
    std::string NAME;
    std::string LOCATION;
    std::uint32_t HEALTHSTATUS = 0;
    std::uint32_t RUNNINGSTATUS = 0;
    std::uint32_t LOGICTYPE = 100;
    std::int64_t RUNSPEED = 0;
    std::string WWN;
    std::uint32_t INIORTGT = 0;
    std::uint64_t ERRORPACKETS = 0;
    std::uint64_t LOSTPACKETS = 0;
    std::uint64_t OVERFLOWEDPACKETS = 0;
    std::uint64_t STARTTIME = 0;
    std::string VLANID;
};

struct ETHPortMO {
    std::string ID;
    std::string NAME;
    std::string LOCATION;
    std::uint32_t HEALTHSTATUS = 0;
    std::uint32_t RUNNINGSTATUS = 0;
    std::uint32_t LOGICTYPE = 100;
    std::string MACADDRESS;
    std::uint32_t INIORTGT = 0;
    std::uint64_t MTU = 0;
    std::string ISCSITCPPORT;
    std::string ISCSINAME;
    std::uint64_t ERRORPACKETS = 0;
    std::uint64_t LOSTPACKETS = 0;
    std::uint64_t OVERFLOWEDPACKETS = 0;
    std::uint64_t STARTTIME = 0;
    std::uint64_t SPEED = 0;
    std::string IPV4MASK;
    std::string IPV4ADDRESS;
    std::string IPV6MASK;
    std::string IPV6ADDRESS;
};

/// A query of ports: the port record as the condition, and the range wanted (rangeCount 0: all).
struct FCPortQuery {
    FCPortQuery() = default;
    FCPortQuery(const FCPortMO& port, std::uint64_t start, std::uint64_t count)
        : condition(port), rangeStart(start), rangeCount(count)
    {
    }

    FCPortMO condition;
    std::uint64_t rangeStart = 0;
    std::uint64_t rangeCount = 0;
};

struct FCoEPortQuery {
    FCoEPortQuery() = default;
    FCoEPortQuery(const FCoEPortMO& port, std::uint64_t start, std::uint64_t count)
        : condition(port), rangeStart(start), rangeCount(count)
    {
    }

    FCoEPortMO condition;
    std::uint64_t rangeStart = 0;
    std::uint64_t rangeCount = 0;
};

struct ETHPortQuery {
    ETHPortQuery() = default;
    ETHPortQuery(const ETHPortMO& port, std::uint64_t start, std::uint64_t count)
        : condition(port), rangeStart(start), rangeCount(count)
    {
    }

    ETHPortMO condition;
    std::uint64_t rangeStart = 0;
    std::uint64_t rangeCount = 0;
};

#endif
