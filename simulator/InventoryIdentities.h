#ifndef BREVAN_SIMULATOR_INVENTORYIDENTITIES_H
#define BREVAN_SIMULATOR_INVENTORYIDENTITIES_H

#include "Database.h"

#include <cstdint>
#include <set>
#include <string>

namespace brevan::sim {

constexpr std::int64_t kLargestId = 999999999999999;

/// The IDs and WWNs of an inventory: those that it chooses, each once, come before those that the array gives to objects without.
/// A mistake is thrown as InventoryValues.h says.
class InventoryIdentities {
public:
    /// What the WWNs of this array begin with.
    void setPrefix(const std::string& wwnPrefix) { m_wwnPrefix = wwnPrefix; }

    void takeId(std::int64_t id);
    void takeWwn(const std::string& wwn);

    /// The lowest number that may be given from now on; a document may tell higher ones.
    std::int64_t nextId() const { return m_nextId; }
    std::int64_t nextVolume() const { return m_nextVolume; }
    void setNext(std::int64_t id, std::int64_t volume);

    std::int64_t giveId() { return m_nextId++; }
    std::string giveWwn();

    /// So that the array goes on after the last of them.
    void setCounters(Database& database) const;

private:
    std::int64_t serialOf(const std::string& wwn) const;

    std::string m_wwnPrefix;
    std::int64_t m_nextId = 1;
    std::int64_t m_nextVolume = 1;
    std::set<std::int64_t> m_ids;
    std::set<std::string> m_wwns;
};

}  // namespace brevan::sim

#endif
