#ifndef BREVAN_ATTACH_VOLUME_H
#define BREVAN_ATTACH_VOLUME_H

#include "attach/AttachHandlers.h"

// What attach and detach do with a LUN and with a snapshot, under the same names.

namespace brevan {

/// All objects with that ID: none or one.
template <class Query, class Record>
Query queryById(const std::string& id)
{
    Record wanted;
    wanted.ID = id;
    return Query(wanted, 0, kAllRecords);
}

struct LunVolume {
    static constexpr const char* kIdMissing = "lunID is empty! ";
    static constexpr const char* kIdInvalid = "The lunID is not valid! ";

    static LunMO read(const AttachHandlers& with, const std::string& id) { return with.lun->getLun(id); }

    static std::vector<LunMO> onHost(const AttachHandlers& with, const std::string& id, const std::string& hostId)
    {
        auto query = queryById<LunQuery, LunMO>(id);
        return with.lun->getLunByHost(hostId, query);
    }

    static std::vector<LunMO> inLunGroup(const AttachHandlers& with, const std::string& id, const std::string& groupId)
    {
        auto query = queryById<LunQuery, LunMO>(id);
        return with.lun->getLunByLunGroup(groupId, query);
    }

    static std::vector<LunGroupMO> lunGroups(const AttachHandlers& with, const std::string& id)
    {
        LunGroupQuery all;
        return with.lunGroup->getLunGroupByLun(id, all);
    }

    static void removeFromLunGroup(const AttachHandlers& with, const std::string& id, const std::string& groupId)
    {
        with.lunGroup->removeLunFromLunGroup(id, groupId);
    }
};

struct SnapshotVolume {
    static constexpr const char* kIdMissing = "snapshotID is empty! ";
    static constexpr const char* kIdInvalid = "The snapshotID is not valid! ";

    static SnapshotMO read(const AttachHandlers& with, const std::string& id) { return with.snapshot->getSnapshot(id); }

    static std::vector<SnapshotMO> onHost(const AttachHandlers& with, const std::string& id, const std::string& hostId)
    {
        auto query = queryById<SnapshotQuery, SnapshotMO>(id);
        return with.snapshot->getSnapshotByHost(hostId, query);
    }

    static std::vector<SnapshotMO> inLunGroup(const AttachHandlers& with, const std::string& id, const std::string& groupId)
    {
        auto query = queryById<SnapshotQuery, SnapshotMO>(id);
        return with.snapshot->getSnapshotByLunGroup(groupId, query);
    }

    static std::vector<LunGroupMO> lunGroups(const AttachHandlers& with, const std::string& id)
    {
        LunGroupQuery all;
        return with.lunGroup->getLunGroupBySnapshot(id, all);
    }

    static void removeFromLunGroup(const AttachHandlers& with, const std::string& id, const std::string& groupId)
    {
        with.lunGroup->removeSnapshotFromLunGroup(id, groupId);
    }
};

}  // namespace brevan

#endif
