#ifndef BREVAN_TESTS_SIMULATOR_HTTPSSESSION_H
#define BREVAN_TESTS_SIMULATOR_HTTPSSESSION_H

#include "HttpsClient.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace brevan::sim::test {

/// A client that is logged in to an array on this machine as "admin" with the password "secret".
class HttpsSession {
public:
    HttpsSession(const std::string& port, const std::string& caFile, const std::string& deviceId = "210000000001")
        : m_base("/deviceManager/rest/" + deviceId), m_https("https://127.0.0.1:" + port, caFile)
    {
        const HttpsReply reply = m_https.send("POST", "/deviceManager/rest/xxxx/sessions",
                                              R"({"username":"admin","password":"secret","scope":0})");
        m_headers = {"iBaseToken: " + between(reply.body, R"("iBaseToken":")", "\""),
                     "Cookie: session=" + between(reply.headers, "session=", ";")};
    }

    /// The reply's body; empty where there was no answer. An error that the array answers is a std::runtime_error.
    std::string send(const std::string& method, const std::string& path, const std::string& body = "")
    {
        const HttpsReply reply = m_https.send(method, m_base + path, body, m_headers);
        // The error stands at the end of a reply that may be long.
        if (reply.result == CURLE_OK && reply.body.rfind(R"("code":0)") == std::string::npos) {
            throw std::runtime_error(method + " " + path + " was answered " + reply.body);
        }
        return reply.result == CURLE_OK ? reply.body : std::string();
    }

    /// The value of a text in a reply.
    static std::string field(const std::string& reply, const std::string& key)
    {
        return between(reply, "\"" + key + "\":\"", "\"");
    }

private:
    static std::string between(const std::string& text, const std::string& begin, const std::string& end)
    {
        const std::size_t at = text.find(begin);
        if (at == std::string::npos) {
            throw std::runtime_error("no " + begin + " in " + text);
        }
        const std::size_t from = at + begin.size();
        return text.substr(from, text.find(end, from) - from);
    }

    std::string m_base;
    HttpsClient m_https;
    std::vector<std::string> m_headers;
};

}  // namespace brevan::sim::test

#endif
