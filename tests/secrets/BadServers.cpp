// Servers that are not to be trusted, too slow, too talkative, or gone, and a process that cannot connect: each with secrets.
#include "Failures.h"

#include "platform/q7common/TlsServer.h"

#include <UserManager.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <vector>

namespace brevan::test {
namespace {

void answerLogin(Peer& peer, const Received&)
{
    peer.answer(loginBody(), 200, std::string("Set-Cookie: ") + kCookie + "; Path=/\r\n");
}

/// The reply's head at once, then a byte now and then.
void drip(Peer& peer, const Received&)
{
    peer.write("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n" + loginBody());
    while (!peer.isStopping() && peer.write(" ")) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void sendWithoutEnd(Peer& peer, const Received&)
{
    peer.write("HTTP/1.1 200 OK\r\n\r\n");
    while (!peer.isStopping() && peer.write(loginBody() + std::string(100000, ' '))) {
    }
}

struct BadServer {
    std::string name;
    Identity identity;
    std::string settings;  ///< behind "[tls] ca_file = ..."
    TlsServer::Options options;
    TlsServer::Handler handler = answerLogin;
};

TlsServer::Options with(void (*change)(TlsServer::Options& options))
{
    TlsServer::Options options;
    change(options);
    return options;
}

std::vector<BadServer> badServers(const Identity& authority)
{
    const Identity good = makeIdentity(authority);
    return {
        {"the name of another host", makeIdentity(authority, {"IP:127.0.0.2"}), "", {}},
        {"expired", makeIdentity(authority, {"IP:127.0.0.1", -7200, -3600}), "", {}},
        {"signed by itself", makeSelfSigned(), "", {}},
        {"another key than the pinned one", good, "pin_sha256 = " + makeSelfSigned().pin() + "\n", {}},
        {"an old TLS", good, "", with([](TlsServer::Options& it) { it.largestTlsVersion = TLS1_1_VERSION; })},
        {"no handshake", good, "[time]\nconnect_seconds = 0.3\n",
         with([](TlsServer::Options& it) { it.answersHandshake = false; })},
        {"a reset in the handshake", good, "", with([](TlsServer::Options& it) { it.resetsAtFirstByte = true; })},
        {"drips", good, "[time]\nrequest_seconds = 1\n", {}, drip},
        {"no end", good, "[limits]\nreply_megabytes = 1\n", {}, sendWithoutEnd},
        {"wrong settings", good, "verfy = off\n", {}},
    };
}

class Servers {
public:
    explicit Servers(std::string folder) : m_folder(std::move(folder))
    {
        std::ofstream(m_folder + "/ca.pem") << m_authority.pem();
    }

    const Identity& authority() const { return m_authority; }

    void use(const std::string& settings) const { useSettings(m_folder, m_folder + "/ca.pem", settings); }

    bool login(const std::string& what, const TlsServer& server) const
    {
        return tell("log in, " + what,
                    [&] { m_manager->loginDevice("127.0.0.1", server.port(), "admin", kPassword, USERTYPE_LOCAL); });
    }

    bool create(const std::string& what) const
    {
        return tell("create an initiator, " + what, [&] {
            auto initiator = initiatorWithSecrets("iqn.2020-01.lab:canary");
            initiators(*m_manager).createIscsiInitiator(initiator);
        });
    }

    /// Under a handle that stands for another session as well.
    bool createUnderASharedHandle(const TlsServer& server) const
    {
        const auto* other = reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(m_manager.get()) + (1ULL << 32));
        CUserManager::getInstance().RegisterSession(other, "1", "127.0.0.1", server.port(), kToken, kCookie, true);
        const bool failed = create("under a shared handle") && lastFailure().code == FAILURE_AMBIGUOUS_SESSION;
        CUserManager::getInstance().RemoveSession(other);
        return failed;
    }

private:
    std::string m_folder;
    Identity m_authority = makeAuthority();
    Manager m_manager{CDeviceManager::getInstance(0, 1)};
};

/// The same in a child that shares the parent's open connections.
bool createsInChild(const Servers& servers)
{
    std::cout.flush();
    const pid_t child = fork();
    if (child == 0) {
        servers.create("in a child");
        std::cout.flush();
        _exit(0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return status == 0;
}

bool failsWithoutDescriptors(const Servers& servers, const TlsServer& server)
{
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{3, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const bool failed = servers.login("without descriptors", server);
    setrlimit(RLIMIT_NOFILE, &before);
    return failed;
}

}  // namespace

int meetBadServers(const std::string& folder)
{
    const Servers servers(folder);
    int missing = 0;
    const auto want = [&missing](bool isSo, const std::string& what) {
        missing += isSo ? 0 : 1;
        std::cerr << (isSo ? "" : "secrets_failures: this did not come about: " + what + "\n");
    };
    for (const BadServer& bad : badServers(servers.authority())) {
        const TlsServer server(bad.identity, bad.handler, bad.options);
        servers.use(bad.settings);
        want(servers.login(bad.name, server), "a login fails: " + bad.name);
    }
    servers.use("verify = off\n");
    want(!servers.login("unverified", TlsServer(makeSelfSigned(), answerLogin)), "a login without verification");
    servers.use("");
    auto server = std::make_unique<TlsServer>(makeIdentity(servers.authority()), answerLogin);
    want(failsWithoutDescriptors(servers, *server), "a login fails without descriptors");
    want(!servers.login("well", *server), "a good login");
    want(createsInChild(servers), "a creation in a child");
    want(servers.createUnderASharedHandle(*server), "a creation fails under a shared handle");
    server->closeConnections();
    servers.create("after an idle end");
    server.reset();
    want(servers.create("with the server gone"), "a creation fails with the server gone");
    return missing;
}

}  // namespace brevan::test
