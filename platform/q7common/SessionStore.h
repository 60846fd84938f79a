#ifndef BREVAN_Q7COMMON_SESSIONSTORE_H
#define BREVAN_Q7COMMON_SESSIONSTORE_H

#include "HeaderList.h"
#include "Url.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace brevan {

/// One open session. Never changed after it was registered: a request that runs while the session is replaced or removed
/// goes on with the one it found.
struct Session {
    std::optional<Server> server;  ///< empty where address or port are none that can be connected to
    std::string address;           ///< for log lines
    std::string deviceId;
    SecretHeader token;
    SecretHeader cookie;
    bool isSendable = true;  ///< false where token or cookie hold a control character
    bool openedHere = false;
};

using SessionPointer = std::shared_ptr<const Session>;

/// The sessions of this process under their full keys, found by the lower 32 bits of the key. Any thread.
class SessionStore {
public:
    enum class Finding { Found, Unknown, Ambiguous };
    struct Found {
        Finding finding;
        SessionPointer session;  ///< null unless found
    };

    /// Lives as long as the process.
    static SessionStore& instance();

    void put(const void* key, SessionPointer session);
    void remove(const void* key) noexcept;

    /// Ambiguous where two sessions share the handle: a guess could send a request to the wrong array.
    Found find(std::uint32_t handle) const;

    void lockForFork() { m_mutex.lock(); }
    void unlockAfterFork() { m_mutex.unlock(); }

private:
    struct Entry {
        const void* key;
        SessionPointer session;
    };

    mutable std::mutex m_mutex;
    std::unordered_map<std::uint32_t, std::vector<Entry>> m_entries;
};

}  // namespace brevan

#endif
