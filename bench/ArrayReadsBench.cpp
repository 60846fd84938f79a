// How much longer the simulated array takes for a list of 100 records, picked by filter, association and range out of 100,000 LUNs,
// than for a single record. Both as a client sees it: over HTTPS, on a connection that is kept alive.
#include "Measurement.h"
#include "simulator/ArrayServer.h"
#include "tests/simulator/HttpsSession.h"

#include <stdexcept>
#include <string>

namespace {

using namespace brevan::sim;
using brevan::sim::test::HttpsSession;
using namespace brevan::bench;

constexpr int kLuns = 100000;
constexpr int kMembers = 1000;
constexpr std::size_t kRecords = 100;
constexpr int kRounds = 2000;
// The array's ports have the IDs before it.
constexpr int kGroup = 8;

ServerOptions options()
{
    ServerOptions options;
    options.password = "secret";
    return options;
}

/// 100,000 LUNs, every hundredth of them in a LUN group.
void fill(ArrayServer& array, HttpsSession& client)
{
    client.send("POST", "/lungroup/", R"({"NAME":"group"})");
    const std::string group = std::to_string(kGroup);
    for (int index = 0; index < kLuns; ++index) {
        const std::string lun = array.addLun("lun_" + std::to_string(index), "0", 1048576);
        if (index % (kLuns / kMembers) == 0) {
            client.send("POST", "/lungroup/associate",
                        R"({"ID":")" + group + R"(","ASSOCIATEOBJTYPE":11,"ASSOCIATEOBJID":")" + lun + "\"}");
        }
    }
}

std::size_t recordsIn(const std::string& reply)
{
    std::size_t count = 0;
    for (std::size_t at = reply.find(R"("WWN":)"); at != std::string::npos; at = reply.find(R"("WWN":)", at + 1)) {
        ++count;
    }
    return count;
}

/// Medians of both, taken in turns so that what else the machine does meets both alike.
void compare(HttpsSession& client, const std::string& name, const std::string& list, const std::string& single)
{
    if (recordsIn(client.send("GET", list)) != kRecords || recordsIn(client.send("GET", single)) != 1) {
        throw std::runtime_error("the replies hold other numbers of records than are to be measured");
    }
    std::vector<double> lists;
    std::vector<double> singles;
    for (int round = 0; round < kRounds; ++round) {
        lists.push_back(microseconds([&] { client.send("GET", list); }));
        singles.push_back(microseconds([&] { client.send("GET", single); }));
    }
    report(name, median(lists), median(singles), "us", "<= 3");
}

}  // namespace

int main()
{
    ArrayServer array(options());
    array.start();
    HttpsSession client(std::to_string(array.port()), array.caFile());
    fill(array, client);
    const std::string list =
        "/lun/associate?filter=ALLOCTYPE:1%20and%20ISADD2LUNGROUP:1&TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" +
        std::to_string(kGroup) + "&range=[500-600]";
    compare(client, "array: 100 LUNs of a group among 100,000, against one LUN", list, "/lun/50000");
    return 0;
}
