#include "UserManager.h"

#include "ForkGuard.h"
#include "LastWords.h"
#include "SessionHeaders.h"
#include "SessionStore.h"

#include <exception>

CUserManager& CUserManager::getInstance()
{
    static CUserManager instance;
    return instance;
}

void CUserManager::RegisterSession(const void* key, const std::string& deviceId, const std::string& ip, unsigned int port,
                                   const std::string& token, const std::string& cookie, bool openedHere)
{
    try {
        brevan::guardForks();
        auto session = std::make_shared<brevan::Session>();
        session->server = brevan::makeServer(ip, std::to_string(port));
        session->address = brevan::urlHost(ip) + ":" + std::to_string(port);
        session->deviceId = deviceId;
        session->isSendable =
            session->token.set(brevan::kTokenHeader, token) && session->cookie.set(brevan::kCookieHeader, cookie);
        session->openedHere = openedHere;
        brevan::SessionStore::instance().put(key, std::move(session));
    } catch (const std::exception&) {
        brevan::SessionStore::instance().remove(key);  // rather none than the one that was to be replaced
        brevan::logLastWords("A session could not be kept, because memory is exhausted. Log in again.");
    }
}

void CUserManager::RemoveSession(const void* key)
{
    brevan::SessionStore::instance().remove(key);
}
