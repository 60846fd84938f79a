#ifndef BREVAN_TESTS_ATTACH_ATTACHCALLS_H
#define BREVAN_TESTS_ATTACH_ATTACHCALLS_H

#include "attach/AttachFixture.h"

// The calls of attach and detach on an array with volume 7, initiator "iqn", host 21, LUN group 30, host group 40 and view 50,
// at the fake clock's time.

namespace brevan::test {

using Ids = std::vector<std::string>;

Call readVolume(const VolumeKind& kind);
Call readInitiator(const std::string& hostId);
Call readHost();
Call newHost();
Call bindInitiator();
Call volumesOnHost(const VolumeKind& kind, const Ids& found);

Call newLunGroup();
Call addVolume(const VolumeKind& kind);
Call newHostGroup();
Call addHost();
Call newView();
Call joinHostGroup();
Call joinLunGroup();

/// From the LUN group or host group to the view, in the order of that kind of volume.
Flow chain(const VolumeKind& kind);

/// All that an attach does for an initiator without a host.
Flow wholeAttach(const VolumeKind& kind);

Call lunGroupsOf(const VolumeKind& kind, const Ids& found);
Call takeOut(const VolumeKind& kind, const std::string& groupId);
Call countIn(const std::string& groupId, int luns, int snapshots);
Call viewsOfLunGroup(const std::string& groupId, const Ids& found);
Call unjoin(const std::string& groupId, const std::string& viewId);
Call deleteLunGroup(const std::string& groupId);

Call hostGroups(const Ids& found);
Call viewsOfHostGroup(const std::string& groupId, const Ids& found);
Call lunGroupOfView(const std::string& viewId, const Ids& found);
Call volumesIn(const VolumeKind& kind, const std::string& groupId, const Ids& found);

/// The flow of all parts.
Flow operator+(Flow left, const Flow& right);

}  // namespace brevan::test

#endif
