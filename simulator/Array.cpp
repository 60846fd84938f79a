#include "Array.h"

#include "LioDriver.h"
#include "Ports.h"
#include "Secrets.h"
#include "Text.h"
#include "TreeDriver.h"

#include <cstdio>
#include <stdexcept>

namespace brevan::sim {

namespace {

// Digits 2 to 7 of every WWN. The second bit of the first byte says "locally administered": it is no company's.
constexpr const char* kCompanyId = "02b7e4";
constexpr std::size_t kArrayDigits = 9;
constexpr std::int64_t kSectorsPerGib = 2097152;
constexpr std::uint64_t kLargestPoolGib = 1024 * 1024 * 64;

void checkOptions(const ServerOptions& options)
{
    if (options.deviceId.empty() || options.deviceId.size() > 64 || !consistsOf(options.deviceId, "-_")) {
        throw std::invalid_argument("the device ID must be 1 to 64 letters, digits, \"-\" and \"_\"");
    }
    if (!isAddress(options.address)) {
        throw std::invalid_argument(inQuotes(options.address) + " is not an IPv4 or IPv6 address");
    }
    if (!consistsOf(options.serverName, ".-")) {
        throw std::invalid_argument(inQuotes(options.serverName) + " is not the name of a server");
    }
    if (options.password.empty() || options.user.empty()) {
        throw std::invalid_argument("user name and password must not be empty");
    }
    if (options.settleReads > 1000000) {
        throw std::invalid_argument("a new object can stay unreadable for at most 1000000 reads");
    }
}

std::unique_ptr<ExposureDriver> makeDriver(const ServerOptions& options)
{
    switch (options.exposure) {
        case Exposure::kLio: {
            LioOptions lio{options.lioRoot,         targetName(options),         options.lioPortal,
                           options.volumeDirectory, wwnPrefix(options.deviceId), options.database != ":memory:"};
            return std::make_unique<LioDriver>(lio, std::make_unique<ConfigTree>());
        }
        case Exposure::kTree:
            return std::make_unique<TreeDriver>(options.treeDirectory);
        case Exposure::kNone:
            break;
    }
    return std::make_unique<NoExposure>();
}

}  // namespace

Array::Array(ServerOptions arrayOptions)
    : options((checkOptions(arrayOptions), std::move(arrayOptions))),
      database(options.database),
      sessions(options.maxSessions, options.sessionIdle, options.now),
      exposure(makeDriver(options))
{
}

std::string addPool(Array& array, const PoolOption& pool)
{
    const auto id = decimal(pool.id);
    if (!id || std::to_string(*id) != pool.id || *id > 999999999 || pool.name.empty() || pool.name.size() > 31 ||
        !consistsOf(pool.name, "_-.")) {
        throw std::invalid_argument(
            "a storage pool needs a number as its ID and a name of 1 to 31 letters, digits, \"_\", \"-\" and \".\"");
    }
    if (pool.gib == 0 || pool.gib > kLargestPoolGib) {
        throw std::invalid_argument("a storage pool has 1 to " + std::to_string(kLargestPoolGib) + " GiB");
    }
    const auto number = static_cast<std::int64_t>(*id);
    if (array.database.exists("SELECT 1 FROM pool WHERE id = ? OR name = ?", {number, pool.name})) {
        throw std::invalid_argument("there are two storage pools with the ID " + pool.id + " or the name " + pool.name);
    }
    array.database.insert(
        "pool", {{"id", number}, {"name", pool.name}, {"capacity", static_cast<std::int64_t>(pool.gib) * kSectorsPerGib}});
    return pool.id;
}

void addFreeInitiator(Array& array, const std::string& name)
{
    if (!isIscsiName(name)) {
        throw std::invalid_argument(inQuotes(name) + " is not an iSCSI name: it begins with \"iqn.\", \"eui.\" or \"naa.\"");
    }
    array.database.execute("INSERT OR IGNORE INTO iscsi_initiator (id, name) VALUES (?, '')", {name});
}

void furnish(Array& array)
{
    Transaction transaction(array.database);
    if (!array.database.exists("SELECT 1 FROM pool", {})) {
        for (const PoolOption& pool : array.options.pools) {
            addPool(array, pool);
        }
        addFactoryPorts(array);
    }
    for (const std::string& initiator : array.options.iscsiInitiators) {
        addFreeInitiator(array, initiator);
    }
    transaction.commit();
}

std::string wwnPrefix(const std::string& deviceId)
{
    return std::string("6") + kCompanyId + sha256(deviceId).substr(0, kArrayDigits);
}

std::string newWwn(Array& array)
{
    char serial[17];
    std::snprintf(serial, sizeof(serial), "%016llx", static_cast<unsigned long long>(array.database.next("volume")));
    return wwnPrefix(array.options.deviceId) + serial;
}

}  // namespace brevan::sim
