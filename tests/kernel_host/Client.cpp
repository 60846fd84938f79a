// One operation of the library in a process of its own, for tests that need several, or one of another user:
//   kernel_host_client PORT COMMAND ID [WHEN]     COMMAND: attach, scan, scan-snapshot
// Logs in to the array on 127.0.0.1, begins at second WHEN since the epoch, prints result or path and what lastFailure() says, a line each.
#include "KernelHost.h"

#include <cstdio>
#include <cstdlib>

namespace {

using namespace brevan::test;

std::string perform(HostClient& client, const std::string& command, const std::string& id)
{
    if (command == "attach") {
        return std::to_string(client.attach(id));
    }
    return command == "scan" ? client.scan(id) : client.scanSnapshot(id);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 4) {
        std::fprintf(stderr, "usage: kernel_host_client PORT COMMAND ID [WHEN]\n");
        return 2;
    }
    HostClient client(ownInitiator());
    const auto port = static_cast<unsigned int>(std::atoi(argv[1]));
    if (client.manager->loginDevice("127.0.0.1", port, "admin", kHostPassword, USERTYPE_LOCAL) != 1) {
        std::fprintf(stderr, "no login: %s\n", brevan::lastFailure().text.c_str());
        return 1;
    }
    if (argc > 4) {
        std::this_thread::sleep_until(std::chrono::system_clock::from_time_t(std::atol(argv[4])));
    }
    const std::string result = perform(client, argv[2], argv[3]);
    const brevan::Failure failure = brevan::lastFailure();
    std::printf("result: %s\noperation: %s\ncode: %d\ntext: %s\nadvice: %s\n", result.c_str(), failure.operation.c_str(),
                failure.code, failure.text.c_str(), failure.advice.c_str());
    return 0;
}
