#include <brevan/StorageRecords.h>

// The records with a virtual destructor have their members here, so that their tables of virtual functions stand in the library
// and nowhere else.

LunMO::LunMO() = default;
LunMO::LunMO(const LunMO&) = default;
LunMO::LunMO(LunMO&&) noexcept = default;
LunMO& LunMO::operator=(const LunMO&) = default;
LunMO& LunMO::operator=(LunMO&&) noexcept = default;
LunMO::~LunMO() = default;

SnapshotMO::SnapshotMO() = default;
SnapshotMO::SnapshotMO(const SnapshotMO&) = default;
SnapshotMO::SnapshotMO(SnapshotMO&&) noexcept = default;
SnapshotMO& SnapshotMO::operator=(const SnapshotMO&) = default;
SnapshotMO& SnapshotMO::operator=(SnapshotMO&&) noexcept = default;
SnapshotMO::~SnapshotMO() = default;

MappingViewMO::MappingViewMO() = default;
MappingViewMO::MappingViewMO(const MappingViewMO&) = default;
MappingViewMO::MappingViewMO(MappingViewMO&&) noexcept = default;
MappingViewMO& MappingViewMO::operator=(const MappingViewMO&) = default;
MappingViewMO& MappingViewMO::operator=(MappingViewMO&&) noexcept = default;
MappingViewMO::~MappingViewMO() = default;

LunQuery::LunQuery() = default;
LunQuery::LunQuery(const LunMO& lun, std::uint64_t start, std::uint64_t count)
    : condition(lun), rangeStart(start), rangeCount(count)
{
}
LunQuery::LunQuery(const LunQuery&) = default;
LunQuery::LunQuery(LunQuery&&) noexcept = default;
LunQuery& LunQuery::operator=(const LunQuery&) = default;
LunQuery& LunQuery::operator=(LunQuery&&) noexcept = default;
LunQuery::~LunQuery() = default;

SnapshotQuery::SnapshotQuery() = default;
SnapshotQuery::SnapshotQuery(const SnapshotMO& snapshot, std::uint64_t start, std::uint64_t count)
    : condition(snapshot), rangeStart(start), rangeCount(count)
{
}
SnapshotQuery::SnapshotQuery(const SnapshotQuery&) = default;
SnapshotQuery::SnapshotQuery(SnapshotQuery&&) noexcept = default;
SnapshotQuery& SnapshotQuery::operator=(const SnapshotQuery&) = default;
SnapshotQuery& SnapshotQuery::operator=(SnapshotQuery&&) noexcept = default;
SnapshotQuery::~SnapshotQuery() = default;

MappingViewQuery::MappingViewQuery() = default;
MappingViewQuery::MappingViewQuery(const MappingViewMO& view, std::uint64_t start, std::uint64_t count)
    : condition(view), rangeStart(start), rangeCount(count)
{
}
MappingViewQuery::MappingViewQuery(const MappingViewQuery&) = default;
MappingViewQuery::MappingViewQuery(MappingViewQuery&&) noexcept = default;
MappingViewQuery& MappingViewQuery::operator=(const MappingViewQuery&) = default;
MappingViewQuery& MappingViewQuery::operator=(MappingViewQuery&&) noexcept = default;
MappingViewQuery::~MappingViewQuery() = default;
