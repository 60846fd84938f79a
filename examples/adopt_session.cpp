// Works under a session that another process opened, and leaves it open: for services of which one logs in for all. Copy it
// together with common/: it uses nothing but that and the public headers.
#include "common/ArraySession.h"

#include <iostream>
#include <string>

using namespace example;

namespace {

const char* const kHelp =
    R"(Adopts a session with the array that another process opened, reads under it, and leaves it open.

usage: session.sh open --address IP ... | adopt_session --address IP [options]

  --address IP   management address of the array, an IPv4 or IPv6 literal
  --port N       its HTTPS port (default 8088)
  --help         this text

The session comes from standard input, because other users can see a command line, as session.sh prints it:

  deviceid: ID
  iBaseToken: TOKEN
  cookie: COOKIE

Certificates are verified: name the array's CA file in transport.ini (BREVAN_TRANSPORT_CONFIG names the file to read).

exit status: 0 done, 1 other failure, 2 wrong usage or no session on standard input, 4 array not there,
             5 certificate not trusted, 6 the array does not know the session (any more)
)";

constexpr int kUnknownSession = kFirstOwnStatus;

struct Session {
    std::string deviceId;
    std::string token;
    std::string cookie;
};

Connection parse(int argc, char** argv)
{
    Connection connection;
    parseOptions(argc, argv, kHelp,
                 {textOption("address", connection.address),
                  {"port", false, [&](const std::string& value) { connection.port = number("--port", value, 65535); }}});
    if (connection.address.empty()) {
        throw Trouble{kUsage, "--address is needed; try --help"};
    }
    return connection;
}

/// Takes what stands behind "name: ".
void take(const std::string& line, const std::string& name, std::string& value)
{
    if (line.compare(0, name.size() + 2, name + ": ") == 0) {
        value = line.substr(name.size() + 2);
    }
}

Session readSession()
{
    Session session;
    for (std::string line; std::getline(std::cin, line);) {
        take(line, "deviceid", session.deviceId);
        take(line, "iBaseToken", session.token);
        take(line, "cookie", session.cookie);
    }
    if (session.deviceId.empty() || session.token.empty() || session.cookie.empty()) {
        throw Trouble{kUsage, "standard input has no session: deviceid, iBaseToken and cookie, a line each; try --help"};
    }
    return session;
}

void adopt(ArraySession& array, const Connection& connection, const Session& session)
{
    const int result =
        array.manager().useConnection(connection.address, connection.port, session.deviceId, session.token, session.cookie);
    if (result != 1) {
        throw failure(kUsage, "the session cannot be adopted");
    }
}

/// The array's word on whether the session is good: adopting it sent nothing.
void check(ArraySession& array, const Connection& connection)
{
    if (array.manager().keepAlive() != 1) {
        const int status = loginStatus(brevan::lastFailure().code);
        throw failure(status == kLoginRefused ? kUnknownSession : status,
                      connection.address + ":" + std::to_string(connection.port) + " does not take the session");
    }
}

void run(const Connection& connection)
{
    const Session session = readSession();
    Steps steps;
    {
        ArraySession array;  // ends no session that it did not open
        adopt(array, connection, session);
        steps.done("adopt", "the session with array " + session.deviceId);
        check(array, connection);
        steps.done("keep", "the array knows the session");
        ETHPortQuery all;
        const std::size_t ports = array.get<CETHPortHandler>(HANDLER_ETH_PORT).getETHPortBatch(all).size();
        steps.done("read", std::to_string(ports) + " Ethernet ports");
    }
    steps.done("leave", "the session stays open");
}

}  // namespace

int main(int argc, char** argv)
{
    return runProgram("adopt_session", [&] { run(parse(argc, argv)); });
}
