#ifndef BREVAN_TESTS_SIMULATOR_HTTPSCLIENT_H
#define BREVAN_TESTS_SIMULATOR_HTTPSCLIENT_H

#include <curl/curl.h>

#include <memory>
#include <string>
#include <vector>

namespace brevan::sim::test {

struct HttpsReply {
    CURLcode result = CURLE_OK;
    long status = 0;
    long newConnections = 0;
    std::string headers;
    std::string body;
    std::string error;  ///< libcurl's own words
};

/// One connection that stays open, to an array that is verified through its CA file.
class HttpsClient {
public:
    HttpsClient(std::string base, const std::string& caFile)
        : m_handle(curl_easy_init(), curl_easy_cleanup), m_base(std::move(base))
    {
        set(CURLOPT_CAINFO, caFile.c_str());
        set(CURLOPT_TIMEOUT, 20L);
        set(CURLOPT_PATH_AS_IS, 1L);
        set(CURLOPT_NOSIGNAL, 1L);
        set(CURLOPT_WRITEFUNCTION, append);
        set(CURLOPT_HEADERFUNCTION, append);
    }

    template <typename Value>
    void set(CURLoption option, Value value)
    {
        curl_easy_setopt(m_handle.get(), option, value);
    }

    HttpsReply send(const std::string& method, const std::string& path, const std::string& body = "",
                    const std::vector<std::string>& headers = {})
    {
        HttpsReply reply;
        curl_slist* raw = nullptr;
        for (const std::string& header : headers) {
            raw = curl_slist_append(raw, header.c_str());
        }
        const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> lines(raw, curl_slist_free_all);
        set(CURLOPT_HTTPHEADER, lines.get());
        set(CURLOPT_URL, (m_base + path).c_str());
        set(CURLOPT_CUSTOMREQUEST, method.c_str());
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
        set(CURLOPT_POSTFIELDS, body.empty() ? nullptr : body.data());
        set(CURLOPT_HTTPGET, body.empty() ? 1L : 0L);
        set(CURLOPT_CUSTOMREQUEST, method.c_str());
        set(CURLOPT_WRITEDATA, &reply.body);
        set(CURLOPT_HEADERDATA, &reply.headers);
        char error[CURL_ERROR_SIZE] = "";
        set(CURLOPT_ERRORBUFFER, error);
        reply.result = curl_easy_perform(m_handle.get());
        set(CURLOPT_ERRORBUFFER, nullptr);
        reply.error = error;
        curl_easy_getinfo(m_handle.get(), CURLINFO_RESPONSE_CODE, &reply.status);
        curl_easy_getinfo(m_handle.get(), CURLINFO_NUM_CONNECTS, &reply.newConnections);
        return reply;
    }

private:
    static std::size_t append(char* bytes, std::size_t size, std::size_t count, void* text)
    {
        static_cast<std::string*>(text)->append(bytes, size * count);
        return size * count;
    }

    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> m_handle;
    std::string m_base;
};

}  // namespace brevan::sim::test

#endif
