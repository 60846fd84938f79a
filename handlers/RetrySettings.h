#ifndef BREVAN_HANDLERS_RETRYSETTINGS_H
#define BREVAN_HANDLERS_RETRYSETTINGS_H

#include "foundation/Clock.h"
#include "foundation/FailureState.h"
#include "foundation/RunLog.h"

#include <brevan/Errors.h>

#include <atomic>
#include <cstdint>

class CDeviceManagerImpl;

namespace brevan {

constexpr int kNotReadableYet = 1077949006;
constexpr int kLunGroupNotThereYet = 1077949001;

/// How often a handler tries again, and how long it waits between. A copy of the class-wide settings, refreshed before each
/// use; several threads may refresh it at once, always with the same values.
class RetrySettings {
public:
    explicit RetrySettings(std::uint32_t retryTimes) : m_retryTimes(retryTimes) {}

    /// Without a device manager the settings stay as they are.
    void refresh(const CDeviceManagerImpl* manager);

    std::uint32_t times() const { return m_retryTimes.load(std::memory_order_relaxed); }
    std::uint32_t pauseMicroseconds() const { return m_trySleepTimeMs.load(std::memory_order_relaxed); }

private:
    std::atomic<std::uint32_t> m_retryTimes;
    std::atomic<std::uint32_t> m_trySleepTimeMs{500000};  // microseconds, despite the name
};

/// How an object that was just created is read back.
struct ReadBack {
    const char* retryLine;
    int codes[2];  ///< of an object that is not there yet; 0: no second one
    std::uint64_t firstPauseMicroseconds = 0;
    bool givesUpQuietly = false;  ///< a read that fails for good gives a default record instead of its exception
};

/// Reads until the object is there, another failure comes, or the tries are used up: at most settings.times() + 1 reads.
template <class Read>
auto readBack(const ReadBack& policy, RetrySettings& settings, const CDeviceManagerImpl* manager, Read read)
    -> decltype(read())
{
    if (policy.firstPauseMicroseconds != 0) {
        theClock().sleepMicroseconds(policy.firstPauseMicroseconds);
    }
    settings.refresh(manager);
    const FailureMark before;
    for (std::uint32_t triesLeft = settings.times();; --triesLeft) {
        try {
            auto record = read();
            before.forgive();
            return record;
        } catch (PlimAPIExceptionWithErrCode& failure) {
            const int code = failure.getErrCode();
            const bool notYet = code == policy.codes[0] || code == policy.codes[1];
            if (!notYet || triesLeft == 0) {
                if (policy.givesUpQuietly) {
                    return {};
                }
                throw;
            }
        }
        before.forgive();  // what counts is how the last read ends
        COMMLOG(OS_LOG_INFO, "%s", policy.retryLine);
        theClock().sleepMicroseconds(settings.pauseMicroseconds());
    }
}

}  // namespace brevan

#endif
