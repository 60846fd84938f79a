#ifndef BREVAN_TESTS_SIMULATOR_SERVEDARRAY_H
#define BREVAN_TESTS_SIMULATOR_SERVEDARRAY_H

#include "ArrayClient.h"
#include "HttpsClient.h"

namespace brevan::sim::test {

inline std::string httpsUrl(const ArrayServer& server)
{
    return "https://127.0.0.1:" + std::to_string(server.port());
}

inline int codeOf(const HttpsReply& reply)
{
    return Data::parse(reply.body).at("error").at("code").number();
}

/// A client that is logged in over HTTPS. Paths are relative to the device.
class ServedClient {
public:
    explicit ServedClient(const ArrayServer& server)
        : m_client(httpsUrl(server), server.caFile()), m_device("/deviceManager/rest/" + server.deviceId())
    {
        const HttpsReply login = m_client.send("POST", "/deviceManager/rest/xxxx/sessions",
                                               R"({"username":"admin","password":"secret","scope":0})");
        const std::size_t begin = login.headers.find("Set-Cookie: ") + 12;
        m_headers = {"iBaseToken: " + Data::parse(login.body).at("data").at("iBaseToken").text(),
                     "Cookie: " + login.headers.substr(begin, login.headers.find(';', begin) - begin)};
    }

    HttpsReply send(const std::string& method, const std::string& path, const std::string& body = "")
    {
        return m_client.send(method, m_device + path, body, m_headers);
    }
    HttpsReply get(const std::string& path) { return send("GET", path); }
    HttpsClient& client() { return m_client; }

private:
    HttpsClient m_client;
    std::string m_device;
    std::vector<std::string> m_headers;
};

/// Listens as soon as it is made, for members that need its port.
struct StartedServer : ArrayServer {
    explicit StartedServer(ServerOptions options = testOptions()) : ArrayServer(std::move(options)) { start(); }
};

}  // namespace brevan::sim::test

#endif
