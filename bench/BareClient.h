#ifndef BREVAN_BENCH_BARECLIENT_H
#define BREVAN_BENCH_BARECLIENT_H

#include <curl/curl.h>
#include <json/reader.h>
#include <json/value.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace brevan::bench {

/// The least that a program can do: one libcurl handle, kept, whose replies JsonCpp parses. One thread at a time.
class BareClient {
public:
    BareClient(std::string server, const std::string& caFile) : m_server(std::move(server))
    {
        for (const char* line : {"iBaseToken: t", "Cookie: session=c", "Content-Type: application/json"}) {
            m_headers = curl_slist_append(m_headers, line);
        }
        curl_easy_setopt(m_handle, CURLOPT_CAINFO, caFile.c_str());
        curl_easy_setopt(m_handle, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(m_handle, CURLOPT_HTTPHEADER, m_headers);
        curl_easy_setopt(m_handle, CURLOPT_WRITEFUNCTION, &BareClient::keep);
        curl_easy_setopt(m_handle, CURLOPT_WRITEDATA, &m_reply);
    }
    ~BareClient()
    {
        curl_easy_cleanup(m_handle);
        curl_slist_free_all(m_headers);
    }
    BareClient(const BareClient&) = delete;
    BareClient& operator=(const BareClient&) = delete;

    Json::Value get(const std::string& path)
    {
        curl_easy_setopt(m_handle, CURLOPT_HTTPGET, 1L);
        return perform(path);
    }

    Json::Value post(const std::string& path, const std::string& body)
    {
        curl_easy_setopt(m_handle, CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
        curl_easy_setopt(m_handle, CURLOPT_COPYPOSTFIELDS, body.c_str());
        return perform(path);
    }

private:
    static std::size_t keep(const char* data, std::size_t size, std::size_t count, std::string* reply)
    {
        reply->append(data, size * count);
        return size * count;
    }

    Json::Value perform(const std::string& path)
    {
        m_reply.clear();
        curl_easy_setopt(m_handle, CURLOPT_URL, (m_server + path).c_str());
        Json::Value root;
        if (curl_easy_perform(m_handle) != CURLE_OK ||
            !m_reader->parse(m_reply.data(), m_reply.data() + m_reply.size(), &root, nullptr)) {
            throw std::runtime_error("the web server gave no JSON for " + path);
        }
        return root;
    }

    std::string m_server;
    std::string m_reply;
    curl_slist* m_headers = nullptr;
    CURL* m_handle = curl_easy_init();
    std::unique_ptr<Json::CharReader> m_reader{Json::CharReaderBuilder().newCharReader()};
};

}  // namespace brevan::bench

#endif
