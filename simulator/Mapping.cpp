#include "Mapping.h"

#include "ApiError.h"

#include <set>

namespace brevan::sim {

namespace {

constexpr std::uint64_t kSectorBytes = 512;

struct NewMapping {
    std::int64_t host;
    std::int64_t type;
    std::int64_t volume;
};

std::vector<NewMapping> mappingsWithoutNumber(Database& database)
{
    std::vector<NewMapping> mappings;
    Statement row = database.query(
        "SELECT host_id, volume_type, volume_id FROM host_volume "
        "EXCEPT SELECT host_id, volume_type, volume_id FROM lun_number ORDER BY 1, 2, 3");
    while (row.step()) {
        mappings.push_back({row.number(0), row.number(1), row.number(2)});
    }
    return mappings;
}

std::set<std::int64_t> numbersOf(Database& database, std::int64_t host)
{
    std::set<std::int64_t> numbers;
    Statement row = database.query("SELECT number FROM lun_number WHERE host_id = ?", {host});
    while (row.step()) {
        numbers.insert(row.number(0));
    }
    return numbers;
}

}  // namespace

void updateLunNumbers(Database& database)
{
    database.execute(
        "DELETE FROM lun_number WHERE NOT EXISTS (SELECT 1 FROM host_volume m WHERE m.host_id = lun_number.host_id"
        " AND m.volume_type = lun_number.volume_type AND m.volume_id = lun_number.volume_id)");
    std::int64_t host = -1;
    std::int64_t number = 0;
    std::set<std::int64_t> taken;
    for (const NewMapping& mapping : mappingsWithoutNumber(database)) {
        if (mapping.host != host) {
            host = mapping.host;
            number = 0;
            taken = numbersOf(database, host);
        }
        do {
            ++number;
        } while (taken.count(number) != 0);
        if (number > kHighestLunNumber) {
            throw ApiError(kTooManyVolumesForHost, "The host '" + std::to_string(host) + "' would see more than " +
                                                       std::to_string(kHighestLunNumber) + " volumes.");
        }
        database.execute("INSERT INTO lun_number VALUES (?, ?, ?, ?)", {host, mapping.type, mapping.volume, number});
    }
}

ExposurePlan readExposurePlan(Database& database)
{
    ExposurePlan plan;
    Statement row = database.query(
        "SELECT i.id, n.number, v.wwn, v.capacity FROM iscsi_initiator i"
        " LEFT JOIN lun_number n ON n.host_id = i.host_id"
        " LEFT JOIN volume v ON v.type = n.volume_type AND v.id = n.volume_id");
    while (row.step()) {
        auto& volumes = plan[row.text(0)];
        if (!row.isNull(2)) {
            volumes[static_cast<unsigned>(row.number(1))] = {row.text(2),
                                                             static_cast<std::uint64_t>(row.number(3)) * kSectorBytes};
        }
    }
    return plan;
}

}  // namespace brevan::sim
