#include "Chain.h"

#include "ChainFormats.h"
#include "Database.h"

namespace brevan::sim {

namespace {

constexpr std::uint64_t kSectorBytes = 512;

void readMembers(Database& database, const std::string& sql, MappingChain::ById<MappingChain::Group>& groups)
{
    Statement row = database.query(sql);
    while (row.step()) {
        MappingChain::Group& group = groups[row.number(0)];
        group.name = row.text(1);
        if (!row.isNull(2)) {
            group.members.push_back(row.text(2));
        }
    }
}

void readInitiators(Database& database, MappingChain& chain)
{
    Statement row = database.query(
        "SELECT 'iSCSI', id, host_id FROM iscsi_initiator UNION ALL SELECT 'FC', id, host_id FROM fc_initiator ORDER BY 1 "
        "DESC, 2");
    while (row.step()) {
        chain.initiators.push_back({row.text(0), row.text(1), row.text(2)});
    }
}

void readViews(Database& database, MappingChain& chain)
{
    Statement row = database.query("SELECT id, name, host_group_id, lun_group_id FROM mapping_view");
    while (row.step()) {
        chain.views[row.number(0)] = {row.text(1), row.text(2), row.text(3)};
    }
}

void readVolumes(Database& database, MappingChain& chain)
{
    Statement row = database.query(
        "SELECT id, 'LUN', name, wwn, capacity FROM lun UNION ALL SELECT id, 'snapshot', name, wwn, capacity FROM snapshot");
    while (row.step()) {
        chain.volumes[row.number(0)] = {row.text(1), row.text(2), row.text(3),
                                        static_cast<std::uint64_t>(row.number(4)) * kSectorBytes};
    }
}

}  // namespace

MappingChain readChain(Database& database)
{
    MappingChain chain;
    readInitiators(database, chain);
    Statement host = database.query("SELECT id, name FROM host");
    while (host.step()) {
        chain.hosts[host.number(0)] = host.text(1);
    }
    readMembers(database,
                "SELECT g.id, g.name, m.host_id FROM host_group g LEFT JOIN host_group_member m ON m.group_id = g.id"
                " ORDER BY g.id, m.host_id",
                chain.hostGroups);
    readViews(database, chain);
    readMembers(database,
                "SELECT g.id, g.name, m.volume_id FROM lun_group g LEFT JOIN lun_group_member m ON m.group_id = g.id"
                " ORDER BY g.id, m.volume_id",
                chain.lunGroups);
    readVolumes(database, chain);
    Statement number = database.query("SELECT host_id, number, volume_id FROM lun_number");
    while (number.step()) {
        chain.seen[number.number(0)][static_cast<unsigned>(number.number(1))] = number.text(2);
    }
    return chain;
}

std::string written(const MappingChain& chain, ChainFormat format)
{
    switch (format) {
        case ChainFormat::kJson:
            return chainJson(chain);
        case ChainFormat::kDot:
            return chainDot(chain);
        case ChainFormat::kText:
            break;
    }
    return chainText(chain);
}

}  // namespace brevan::sim
