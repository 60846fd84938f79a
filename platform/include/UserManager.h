#ifndef BREVAN_PLATFORM_USERMANAGER_H
#define BREVAN_PLATFORM_USERMANAGER_H

#include <string>

/// The session store: which array a session handle stands for. Any thread, any time.
class __attribute__((visibility("default"))) CUserManager {
public:
    static CUserManager& getInstance();

    /// Keeps a session under the full `key`; a second registration under the same key replaces the first.
    /// `openedHere` says that this process logged in, not that it adopted a session of another.
    void RegisterSession(const void* key, const std::string& deviceId, const std::string& ip, unsigned int port,
                         const std::string& token, const std::string& cookie, bool openedHere);

    /// Forgets the session of `key`; nothing happens where there is none. Sends nothing.
    void RemoveSession(const void* key);

    CUserManager(const CUserManager&) = delete;
    CUserManager& operator=(const CUserManager&) = delete;

private:
    CUserManager() = default;
    ~CUserManager() = default;
};

#endif
