#ifndef BREVAN_Q7COMMON_TLSSESSIONS_H
#define BREVAN_Q7COMMON_TLSSESSIONS_H

#include <curl/curl.h>

#include <array>
#include <memory>
#include <mutex>

namespace brevan {

/// The TLS sessions of one server, shared by its connections, so that a further connection resumes instead of shaking hands
/// in full.
class TlsSessions {
public:
    TlsSessions();
    CURLSH* handle() const { return m_share.get(); }

private:
    struct ShareCloser {
        void operator()(CURLSH* share) const noexcept;
    };
    static void lock(CURL*, curl_lock_data data, curl_lock_access, void* self) noexcept;
    static void unlock(CURL*, curl_lock_data data, void* self) noexcept;

    std::array<std::mutex, CURL_LOCK_DATA_LAST> m_mutexes;
    std::unique_ptr<CURLSH, ShareCloser> m_share;  // goes first: closing takes the locks
};

}  // namespace brevan

#endif
