#include "Settings.h"

#include "SettingsFile.h"
#include "TransportLog.h"

#include <mutex>
#include <utility>

namespace brevan {

namespace {

/// Lives as long as the process: a thread may still be sending while others leave it.
struct SettingsStore {
    std::mutex mutex;
    SettingsPointer current;
    std::uint64_t generations = 0;
};

SettingsStore& store()
{
    static SettingsStore* const kStore = std::make_unique<SettingsStore>().release();
    return *kStore;
}

/// Puts a fresh reading into force unless it says the same as the one in force, or is not usable and that one is.
SettingsPointer adopt(Settings fresh)
{
    SettingsStore& shared = store();
    const std::lock_guard<std::mutex> lock(shared.mutex);
    if (shared.current != nullptr && shared.current->isUsable()) {
        if (fresh.isUsable() && fresh.source == shared.current->source) {
            return shared.current;
        }
    }
    fresh.generation = ++shared.generations;
    auto adopted = std::make_shared<const Settings>(std::move(fresh));
    if (adopted->isUsable() || shared.current == nullptr || !shared.current->isUsable()) {
        shared.current = adopted;
    }
    return adopted;
}

}  // namespace

const TlsSettings& Settings::tlsFor(const std::string& host) const
{
    const auto place = tlsOfHost.find(host);
    return place == tlsOfHost.end() ? tls : place->second;
}

SettingsPointer currentSettings()
{
    {
        SettingsStore& shared = store();
        const std::lock_guard<std::mutex> lock(shared.mutex);
        if (shared.current != nullptr && shared.current->isUsable()) {
            return shared.current;
        }
    }
    return refreshedSettings();
}

SettingsPointer refreshedSettings()
{
    return adopt(readSettingsFile(findSettingsFile()));
}

void logProblems(const Settings& settings)
{
    for (const std::string& problem : settings.problems) {
        logError(problem);
    }
}

void lockSettingsForFork()
{
    store().mutex.lock();
}

void unlockSettingsAfterFork()
{
    store().mutex.unlock();
}

}  // namespace brevan
