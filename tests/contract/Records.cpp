#include "Records.h"

namespace brevan::contract {
namespace {

std::string plain(const std::string& text)
{
    return text;
}

template <class Number>
std::string plain(Number number)
{
    return std::to_string(number);
}

/// The fields of a record that differ from a fresh one.
template <class Record>
class Fields {
public:
    explicit Fields(const Record& record) : m_record(record) {}

    template <class Type>
    Fields& operator()(const char* name, Type Record::*field)
    {
        if (m_record.*field != m_fresh.*field) {
            m_text += (m_text.empty() ? "" : " ") + std::string(name) + ":" + plain(m_record.*field);
        }
        return *this;
    }

    operator std::string() const { return m_text; }

private:
    const Record& m_record;
    const Record m_fresh{};
    std::string m_text;
};

}  // namespace

#define FIELD(Record, name) (#name, &Record::name)

std::string show(const LunMO& record)
{
    return Fields<LunMO>(record) FIELD(LunMO, ID) FIELD(LunMO, NAME) FIELD(LunMO, PARENTTYPE) FIELD(LunMO, PARENTID)
        FIELD(LunMO, PARENTNAME) FIELD(LunMO, HEALTHSTATUS) FIELD(LunMO, RUNNINGSTATUS) FIELD(LunMO, DESCRIPTION)
            FIELD(LunMO, ALLOCTYPE) FIELD(LunMO, CAPACITY) FIELD(LunMO, ALLOCCAPACITY) FIELD(LunMO, allocCapacitySectors)
                FIELD(LunMO, THINCAPACITYUSAGE) FIELD(LunMO, EXPOSEDTOINITIATOR) FIELD(LunMO, WWN)
                    FIELD(LunMO, OWNINGCONTROLLER) FIELD(LunMO, WORKINGCONTROLLER) FIELD(LunMO, ISADD2LUNGROUP);
}

std::string show(const SnapshotMO& record)
{
    return Fields<SnapshotMO>(record) FIELD(SnapshotMO, ID) FIELD(SnapshotMO, NAME) FIELD(SnapshotMO, PARENTTYPE)
        FIELD(SnapshotMO, PARENTID) FIELD(SnapshotMO, PARENTNAME) FIELD(SnapshotMO, HEALTHSTATUS)
            FIELD(SnapshotMO, RUNNINGSTATUS) FIELD(SnapshotMO, DESCRIPTION) FIELD(SnapshotMO, USERCAPACITY)
                FIELD(SnapshotMO, CONSUMEDCAPACITY) FIELD(SnapshotMO, WWN);
}

std::string show(const LunGroupMO& record)
{
    return Fields<LunGroupMO>(record) FIELD(LunGroupMO, ID) FIELD(LunGroupMO, NAME) FIELD(LunGroupMO, DESCRIPTION)
        FIELD(LunGroupMO, ISADD2MAPPINGVIEW) FIELD(LunGroupMO, APPTYPE) FIELD(LunGroupMO, GROUPTYPE);
}

std::string show(const MappingViewMO& record)
{
    return Fields<MappingViewMO>(record) FIELD(MappingViewMO, ID) FIELD(MappingViewMO, NAME)
        FIELD(MappingViewMO, DESCRIPTION) FIELD(MappingViewMO, ENABLEINBANDCOMMAND);
}

std::string show(const HostMO& record)
{
    return Fields<HostMO>(record) FIELD(HostMO, ID) FIELD(HostMO, NAME) FIELD(HostMO, PARENTTYPE) FIELD(HostMO, PARENTID)
        FIELD(HostMO, LOCATION) FIELD(HostMO, HEALTHSTATUS) FIELD(HostMO, RUNNINGSTATUS) FIELD(HostMO, DESCRIPTION)
            FIELD(HostMO, OPERATIONSYSTEM) FIELD(HostMO, IP) FIELD(HostMO, ISADD2HOSTGROUP);
}

std::string show(const HostGroupMO& record)
{
    return Fields<HostGroupMO>(record) FIELD(HostGroupMO, ID) FIELD(HostGroupMO, NAME) FIELD(HostGroupMO, DESCRIPTION)
        FIELD(HostGroupMO, ISADD2MAPPINGVIEW);
}

std::string show(const IscsiInitiatorMO& record)
{
    using R = IscsiInitiatorMO;
    return Fields<R>(record) FIELD(R, ID) FIELD(R, NAME) FIELD(R, PARENTID) FIELD(R, PARENTNAME) FIELD(R, PARENTTYPE)
        FIELD(R, HEALTHSTATUS) FIELD(R, RUNNINGSTATUS) FIELD(R, ISFREE) FIELD(R, USECHAP) FIELD(R, NORMALVERMODE)
            FIELD(R, DISCOVERYVERMODE) FIELD(R, CHAPNAME) FIELD(R, CHAPPASSWORD) FIELD(R, CHAPOLDPASSWORD)
                FIELD(R, CHAPNAMEINITATORVERTARGET) FIELD(R, CHAPPASSWORDINITATORVERTARGET)
                    FIELD(R, CHAPOLDPASSWORDINITATORVERTARGET);
}

std::string show(const FCInitiatorMO& record)
{
    using R = FCInitiatorMO;
    return Fields<R>(record) FIELD(R, ID) FIELD(R, NAME) FIELD(R, PARENTID) FIELD(R, PARENTNAME) FIELD(R, HEALTHSTATUS)
        FIELD(R, RUNNINGSTATUS) FIELD(R, ISFREE);
}

std::string show(const FCPortMO& record)
{
    using R = FCPortMO;
    return Fields<R>(record) FIELD(R, ID) FIELD(R, NAME) FIELD(R, LOCATION) FIELD(R, HEALTHSTATUS) FIELD(R, RUNNINGSTATUS)
        FIELD(R, LOGICTYPE) FIELD(R, RUNSPEED) FIELD(R, CONFSPEED) FIELD(R, WWN) FIELD(R, INIORTGT) FIELD(R, FCRUNMODE)
            FIELD(R, LOSTSIGNALS) FIELD(R, BADCHARNUMBER) FIELD(R, LOSTSYNC) FIELD(R, LINKFAIL) FIELD(R, STARTTIME)
                FIELD(R, FLOGINDELAYTIMES) FIELD(R, MAXSUPPORTSPEED);
}

std::string show(const FCoEPortMO& record)
{
    using R = FCoEPortMO;
    return Fields<R>(record) FIELD(R, ID) FIELD(R, NAME) FIELD(R, LOCATION) FIELD(R, HEALTHSTATUS) FIELD(R, RUNNINGSTATUS)
        FIELD(R, LOGICTYPE) FIELD(R, RUNSPEED) FIELD(R, WWN) FIELD(R, INIORTGT) FIELD(R, ERRORPACKETS) FIELD(R, LOSTPACKETS)
            FIELD(R, OVERFLOWEDPACKETS) FIELD(R, STARTTIME) FIELD(R, VLANID);
}

std::string show(const ETHPortMO& record)
{
    using R = ETHPortMO;
    return Fields<R>(record) FIELD(R, ID) FIELD(R, NAME) FIELD(R, LOCATION) FIELD(R, HEALTHSTATUS) FIELD(R, RUNNINGSTATUS)
        FIELD(R, LOGICTYPE) FIELD(R, MACADDRESS) FIELD(R, INIORTGT) FIELD(R, MTU) FIELD(R, ISCSITCPPORT) FIELD(R, ISCSINAME)
            FIELD(R, ERRORPACKETS) FIELD(R, LOSTPACKETS) FIELD(R, OVERFLOWEDPACKETS) FIELD(R, STARTTIME) FIELD(R, SPEED)
                FIELD(R, IPV4MASK) FIELD(R, IPV4ADDRESS) FIELD(R, IPV6MASK) FIELD(R, IPV6ADDRESS);
}

}  // namespace brevan::contract
