#include "TlsSessions.h"

#include "ForkGate.h"

#include <new>

namespace brevan {

void TlsSessions::ShareCloser::operator()(CURLSH* share) const noexcept
{
    const ForkGate::Pass pass;
    curl_share_cleanup(share);
}

TlsSessions::TlsSessions() : m_share(curl_share_init())
{
    if (m_share == nullptr) {
        throw std::bad_alloc();
    }
    curl_share_setopt(m_share.get(), CURLSHOPT_LOCKFUNC, &TlsSessions::lock);
    curl_share_setopt(m_share.get(), CURLSHOPT_UNLOCKFUNC, &TlsSessions::unlock);
    curl_share_setopt(m_share.get(), CURLSHOPT_USERDATA, this);
    curl_share_setopt(m_share.get(), CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
}

void TlsSessions::lock(CURL*, curl_lock_data data, curl_lock_access, void* self) noexcept
{
    static_cast<TlsSessions*>(self)->m_mutexes[data].lock();
}

void TlsSessions::unlock(CURL*, curl_lock_data data, void* self) noexcept
{
    static_cast<TlsSessions*>(self)->m_mutexes[data].unlock();
}

}  // namespace brevan
