#include "InventoryIdentities.h"

#include "Identity.h"
#include "InventoryValues.h"
#include "Text.h"

#include <algorithm>

namespace brevan::sim {

void InventoryIdentities::takeId(std::int64_t id)
{
    m_nextId = std::max(m_nextId, id + 1);
    if (!m_ids.insert(id).second) {
        wrong("another object has the ID " + std::to_string(id) + ", too");
    }
}

void InventoryIdentities::takeWwn(const std::string& wwn)
{
    m_nextVolume = std::max(m_nextVolume, serialOf(wwn) + 1);
    if (!m_wwns.insert(wwn).second) {
        wrong("another volume has the same WWN");
    }
}

void InventoryIdentities::setNext(std::int64_t id, std::int64_t volume)
{
    m_nextId = id;
    m_nextVolume = volume;
}

std::string InventoryIdentities::giveWwn()
{
    return wwnOf(m_wwnPrefix, m_nextVolume++);
}

void InventoryIdentities::setCounters(Database& database) const
{
    database.execute("UPDATE counter SET next = ? WHERE name = 'object'", {m_nextId});
    database.execute("UPDATE counter SET next = ? WHERE name = 'volume'", {m_nextVolume});
}

std::int64_t InventoryIdentities::serialOf(const std::string& wwn) const
{
    const std::string serial = startsWith(wwn, m_wwnPrefix) ? wwn.substr(m_wwnPrefix.size()) : "";
    if (serial.size() != 16 || serial.find_first_not_of("0123456789abcdef") != std::string::npos || serial[0] > '7') {
        wrong(inQuotes(wwn) + " is not a WWN of this array: 32 digits, " + m_wwnPrefix +
              " and a serial number of 16 lower-case hexadecimal digits");
    }
    return static_cast<std::int64_t>(std::stoull(serial, nullptr, 16));
}

}  // namespace brevan::sim
