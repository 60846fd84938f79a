#ifndef BREVAN_INITIATORRECORDS_H
#define BREVAN_INITIATORRECORDS_H

#include <cstdint>
#include <string>

// Records of host initiators. A field carries the REST key of its name. Secrets are never read back from the array.

/// An iSCSI initiator of a host. A fresh record asks for no CHAP (RFC 7143, clause 9.2.1).
struct IscsiInitiatorMO {
    std::string ID;               ///< the iSCSI initiator name, e.g. an IQN (RFC 7143, clause 4.2.7)
    std::string NAME;             ///< display name
    std::string PARENTID;         ///< ID of the host it belongs to; empty: none
    std::string PARENTNAME;       ///< name of that host; read only
    std::int32_t PARENTTYPE = 0;  ///< 21: a host, 0: not set
    std::uint32_t HEALTHSTATUS = 0;
    std::uint32_t RUNNINGSTATUS = 0;
    std::int32_t ISFREE = 0;             ///< 1: bound to no host; read only
    std::int32_t USECHAP = 0;            ///< 1: CHAP wanted, or in force
    std::string NORMALVERMODE = "0";     ///< normal sessions: "0" no CHAP, "2" mutual CHAP, anything else one-way CHAP
    std::string DISCOVERYVERMODE = "0";  ///< discovery sessions, the same codes
    std::string CHAPNAME;                ///< by which the target verifies the initiator
    std::string CHAPPASSWORD;
    std::string CHAPOLDPASSWORD;            ///< the secret until now, needed when it is changed
    std::string CHAPNAMEINITATORVERTARGET;  ///< by which the initiator verifies the target; the spelling is the array's
    std::string CHAPPASSWORDINITATORVERTARGET;
    std::string CHAPOLDPASSWORDINITATORVERTARGET;
};

/// A Fibre Channel initiator of a host.
struct FCInitiatorMO {
    std::string ID;  ///< the port name (WWPN), 16 hexadecimal digits
    std::string NAME;
    std::string PARENTID;    ///< ID of the host it belongs to; empty: none
    std::string PARENTNAME;  ///< read only
    std::uint32_t HEALTHSTATUS = 0;
    std::uint32_t RUNNINGSTATUS = 0;
    std::int32_t ISFREE = 0;  ///< 1: bound to no host; read only
};

#endif
