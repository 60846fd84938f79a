#include <brevan/StorageRecords.h>

// The records with a virtual destructor have their members here, so that their tables of virtual functions stand in the library
// and nowhere else.

LunMO::LunMO() = default;
LunMO::LunMO(const LunMO&) = default;
LunMO& LunMO::operator=(const LunMO&) = default;
LunMO::~LunMO() = default;

SnapshotMO::SnapshotMO() = default;
SnapshotMO::SnapshotMO(const SnapshotMO&) = default;
SnapshotMO& SnapshotMO::operator=(const SnapshotMO&) = default;
SnapshotMO::~SnapshotMO() = default;

MappingViewMO::MappingViewMO() = default;
MappingViewMO::MappingViewMO(const MappingViewMO&) = default;
MappingViewMO& MappingViewMO::operator=(const MappingViewMO&) = default;
MappingViewMO::~MappingViewMO() = default;

LunQuery::LunQuery() = default;
LunQuery::LunQuery(const LunMO& lun, std::uint64_t start, std::uint64_t count)
    : condition(lun), rangeStart(start), rangeCount(count)
{
}
LunQuery::LunQuery(const LunQuery&) = default;
LunQuery& LunQuery::operator=(const LunQuery&) = default;
LunQuery::~LunQuery() = default;

SnapshotQuery::SnapshotQuery() = default;
SnapshotQuery::SnapshotQuery(const SnapshotMO& snapshot, std::uint64_t start, std::uint64_t count)
    : condition(snapshot), rangeStart(start), rangeCount(count)
{
}
SnapshotQuery::SnapshotQuery(const SnapshotQuery&) = default;
SnapshotQuery& SnapshotQuery::operator=(const SnapshotQuery&) = default;
SnapshotQuery::~SnapshotQuery() = default;

MappingViewQuery::MappingViewQuery() = default;
MappingViewQuery::MappingViewQuery(const MappingViewMO& view, std::uint64_t start, std::uint64_t count)
    : condition(view), rangeStart(start), rangeCount(count)
{
}
MappingViewQuery::MappingViewQuery(const MappingViewQuery&) = default;
MappingViewQuery& MappingViewQuery::operator=(const MappingViewQuery&) = default;
MappingViewQuery::~MappingViewQuery() = default;
