#include "Array.h"

#include "Files.h"
#include "Identity.h"
#include "Inventory.h"
#include "LioDriver.h"
#include "Ports.h"
#include "Text.h"
#include "TreeDriver.h"

#include <stdexcept>

namespace brevan::sim {

namespace {

constexpr const char* kInMemory = ":memory:";
constexpr std::int64_t kSectorsPerGib = 2097152;
constexpr std::uint64_t kLargestPoolGib = 1024 * 1024 * 64;

void checkOptions(const ServerOptions& options)
{
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
                           options.volumeDirectory, wwnPrefix(options.deviceId), options.database != kInMemory};
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
      lock(options.database == kInMemory ? std::nullopt : std::make_optional<FileLock>(options.database)),
      database(options.database),
      sessions(options.maxSessions, options.sessionIdle, options.now),
      logins(options.lockoutAfter, options.lockoutTime, options.now)
{
    // Where anything is wrong, the database stays as it was.
    Transaction transaction(database);
    furnish(*this);
    exposure = makeDriver(options);
    transaction.commit();
}

std::string addPool(Array& array, const PoolOption& pool)
{
    const auto id = decimal(pool.id);
    if (!id || std::to_string(*id) != pool.id || *id > 999999999 || !isObjectName(pool.name)) {
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

namespace {

/// A new array: as the seed says, or as arrays are delivered.
void establish(Array& array)
{
    const ServerOptions& options = array.options;
    if (!options.seed.empty()) {
        loadInventoryFile(array.database, options.seed, options.deviceId);
        return;
    }
    setIdentity(array.database, options.deviceId.empty() ? kUsualDeviceId : options.deviceId);
    for (const PoolOption& pool : options.pools) {
        addPool(array, pool);
    }
}

}  // namespace

void furnish(Array& array)
{
    const std::string known = identityOf(array.database);
    std::string& wanted = array.options.deviceId;
    if (!known.empty() && !array.options.seed.empty()) {
        throw std::invalid_argument(array.options.database +
                                    " has an array already: start without a seed, or with another database file");
    }
    if (!known.empty() && !wanted.empty() && wanted != known) {
        throw std::invalid_argument(array.options.database + " is the database of the array " + inQuotes(known) +
                                    ", not of " + inQuotes(wanted));
    }
    if (known.empty()) {
        establish(array);
    }
    wanted = identityOf(array.database);
    if (known.empty() && array.options.seed.empty()) {
        addFactoryPorts(array);
    }
    for (const std::string& initiator : array.options.iscsiInitiators) {
        addFreeInitiator(array, initiator);
    }
}

std::string newWwn(Array& array)
{
    return wwnOf(wwnPrefix(array.options.deviceId), array.database.next("volume"));
}

}  // namespace brevan::sim
