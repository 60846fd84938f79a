#ifndef BREVAN_TESTS_CONTRACT_ATTACHSTEPS_H
#define BREVAN_TESTS_CONTRACT_ATTACHSTEPS_H

#include "Contract.h"

// The operations that attach and detach consist of. Volume 7, initiator "iqn", host 21, LUN group 30, host group 40, view 50; the
// clock stands at 1614834367.

namespace brevan::contract {

/// What is said of LUNs and of snapshots.
struct Volume {
    std::string word;      ///< in paths and log lines
    std::string capital;   ///< in operation names
    std::string readPath;  ///< of the single read
    std::string type;
    bool isLun() const { return type == "11"; }
    std::string read() const { return "get" + capital; }
    std::string add() const { return "add" + capital + "ToLunGroup"; }
    std::string remove() const { return "remove" + capital + "FromLunGroup"; }
};

inline const Volume kLun = {"lun", "Lun", "/lun/", "11"};
inline const Volume kSnapshot = {"snapshot", "Snapshot", "/SNAPSHOT/", "27"};

std::string idRecord(const std::string& id);

/// A list of IDs, and the single read of each.
Steps listed(const std::string& request, const std::string& read, const std::string& readPath,
             const std::vector<std::string>& ids);

Steps readVolume(const Volume& volume);
Steps readInitiator(const std::string& hostId);
Steps readHost();

/// The volume as one of those that belong to something, e.g. getLunByHost.
std::string volumesRequest(const Volume& volume, const std::string& associateType, const std::string& id);
Steps volumesOf(const Volume& volume, const std::string& place, const std::string& associateType, const std::string& id,
                const std::vector<std::string>& found);

/// How attach and detach end: the leave line comes before the record, unlike elsewhere.
Steps closing(const std::string& operation);

/// A failure on the array: a record of its own, then the end as usual, with a second record.
Steps caught(const std::string& operation);

}  // namespace brevan::contract

#endif
