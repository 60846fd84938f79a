// Replies that hold secrets and cannot be used: cut at every place, in the wrong shape, too large, or moved elsewhere.
#include "Failures.h"

#include "platform/q7common/TlsServer.h"

#include <fstream>
#include <iostream>
#include <mutex>
#include <vector>

namespace brevan::test {
namespace {

struct BadReply {
    std::string name;
    std::string bytes;
};

const std::string kHead = std::string("HTTP/1.1 200 OK\r\nSet-Cookie: ") + kCookie + "; Path=/; Secure\r\n";

std::string http(const std::string& head, const std::string& body)
{
    return head + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string goodLogin()
{
    return http(kHead, loginBody());
}

std::string body(const std::string& data, const std::string& code = "0")
{
    return R"({"data":)" + data + R"(,"error":{"code":)" + code + R"(,"description":"0"}})";
}

std::string secretRecord()
{
    return std::string(R"({"deviceid":"1","iBaseToken":")") + kToken + R"(","ID":")" + kToken + R"("})";
}

std::vector<BadReply> badReplies()
{
    const std::string token = std::string("\"") + kToken + "\"";
    const std::string moved =
        std::string("HTTP/1.1 302 Found\r\nLocation: https://127.0.0.1:1/") + kToken + "\r\nSet-Cookie: " + kCookie + "\r\n";
    std::vector<BadReply> replies = {
        {"not JSON", http(kHead, std::string("<html>") + kToken)},
        {"text behind the JSON", http(kHead, body(secretRecord()) + kToken)},
        {"a key twice", http(kHead, body("{\"iBaseToken\":" + token + ",\"iBaseToken\":" + token + "}"))},
        {"no record", http(kHead, body(token))},
        {"a list of texts", http(kHead, body("[" + token + "," + token + "]"))},
        {"a key that is a secret", http(kHead, body("{\"iBaseToken\":{" + token + ":[1]}}"))},
        {"no error", http(kHead, "{\"data\":" + secretRecord() + "}")},
        {"a code that is a secret", http(kHead, body(secretRecord(), token))},
        {"a refusal", http(kHead, body(secretRecord(), "1077970020"))},
        {"an unknown session", http(kHead, body(secretRecord(), "-401"))},
        {"a page that says no", http("HTTP/1.1 503 " + std::string(kToken) + "\r\n", kToken)},
        {"moved", http(moved, kToken)},
        {"no HTTP", std::string(kToken) + "\r\n\r\n"},
        {"a line of the head that is none",
         http("HTTP/1.1 200 OK\r\n" + std::string(kToken) + "\r\n", body(secretRecord()))},
        {"too large", "HTTP/1.1 200 OK\r\nContent-Length: 10737418240\r\n\r\n" + body(secretRecord())},
        {"an endless head", "HTTP/1.1 200 OK\r\nX-Filler: " + std::string(400000, 'x') + kToken + "\r\n"},
        {"nesting without end", http(kHead, kToken + std::string(100000, '['))},
    };
    for (std::size_t length = 1; length < goodLogin().size(); length += 5) {
        replies.push_back({"cut after " + std::to_string(length), goodLogin().substr(0, length)});
    }
    return replies;
}

/// An array that gives the same reply to every request and then hangs up.
class OneReplyArray {
public:
    explicit OneReplyArray(const std::string& folder)
        : m_authority(makeAuthority()), m_server(makeIdentity(m_authority), [this](Peer& peer, const Received&) {
              const std::lock_guard<std::mutex> lock(m_mutex);
              peer.write(m_reply);
              peer.close();
          })
    {
        std::ofstream(folder + "/ca.pem") << m_authority.pem();
        useSettings(folder, folder + "/ca.pem");
    }

    void say(const std::string& reply)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_reply = reply;
    }

    int login(CDeviceManager& manager) const
    {
        return manager.loginDevice("127.0.0.1", m_server.port(), "admin", kPassword, USERTYPE_LOCAL);
    }

private:
    std::mutex m_mutex;
    std::string m_reply;
    Identity m_authority;
    TlsServer m_server;
};

/// The operations whose requests or replies hold secrets, under a session whose token is one.
bool failAll(CDeviceManager& manager, const std::string& what)
{
    auto initiator = initiatorWithSecrets("iqn.2020-01.lab:canary");
    auto& luns = *static_cast<CLunHandler*>(manager.getHandler(HANDLER_LUN));
    bool failed = tell("create an initiator, " + what, [&] { initiators(manager).createIscsiInitiator(initiator); });
    failed = tell("change an initiator, " + what, [&] { initiators(manager).modifyIscsiInitiator(initiator); }) && failed;
    failed = tell("read a LUN, " + what, [&] { luns.getLun("1"); }) && failed;
    failed = tell("keep alive, " + what, [&] { manager.keepAlive(); }) && failed;
    return tell("log out, " + what, [&] { manager.logoutDevice(); }) && failed;
}

/// A refusal and an early end fail under every operation; other replies are fit for some.
bool failsEverywhere(const std::string& reply)
{
    return reply.compare(0, 3, "cut") == 0 || reply == "a refusal" || reply == "not JSON" || reply == "an unknown session";
}

}  // namespace

int meetBadReplies(const std::string& folder)
{
    OneReplyArray array(folder);
    const Manager manager(CDeviceManager::getInstance(0, 1));
    int missing = 0;
    const auto want = [&missing](bool isSo, const std::string& what) {
        missing += isSo ? 0 : 1;
        std::cerr << (isSo ? "" : "secrets_failures: this did not come about: " + what + "\n");
    };
    for (const BadReply& reply : badReplies()) {
        array.say(reply.bytes);
        want(tell("log in, " + reply.name, [&] { array.login(*manager); }), "a login fails with " + reply.name);
        array.say(goodLogin());
        want(array.login(*manager) == 1, "a good login");
        array.say(reply.bytes);
        want(failAll(*manager, reply.name) || !failsEverywhere(reply.name), "operations fail with " + reply.name);
    }
    return missing;
}

}  // namespace brevan::test
