// How much longer the simulated array takes for a list of 100 records, picked by filter, association and range out of 100,000 LUNs,
// than for a single record. Both as a client sees it: over HTTPS, on a connection that is kept alive.
#include "Measurement.h"
#include "simulator/ArrayServer.h"
#include "simulator/Files.h"
#include "tests/simulator/HttpsSession.h"

#include <filesystem>
#include <stdexcept>
#include <string>

namespace {

using namespace brevan::sim;
using brevan::sim::test::HttpsSession;
using namespace brevan::bench;

constexpr int kLuns = 100000;
constexpr int kMembers = 1000;
constexpr std::size_t kRecords = 100;
constexpr int kRounds = 6000;
constexpr int kFirstLun = 10;

/// 100,000 LUNs, every hundredth of them in a LUN group.
std::string inventory()
{
    std::string luns;
    std::string members;
    for (int index = 0; index < kLuns; ++index) {
        const std::string id = std::to_string(kFirstLun + index);
        luns += (index == 0 ? "{\"ID\":" : ",{\"ID\":") + id + R"(,"NAME":"lun_)" + id +
                R"(","PARENTID":0,"CAPACITY":2048,"ALLOCTYPE":1})";
        if (index % (kLuns / kMembers) == 0) {
            members += (index == 0 ? "" : ",") + id;
        }
    }
    return R"({"version": 1, "pools": [{"ID": 0, "NAME": "pool", "CAPACITY": 2048}], "luns": [)" + luns +
           R"(], "lun_groups": [{"ID": 1, "NAME": "group", "LUNS": [)" + members + "]}]}";
}

/// A file that is removed at the end.
class SeedFile {
public:
    SeedFile() { brevan::sim::writeFileAtomically(path(), inventory()); }
    ~SeedFile() { std::filesystem::remove_all(m_directory); }
    SeedFile(const SeedFile&) = delete;
    SeedFile& operator=(const SeedFile&) = delete;
    std::string path() const { return m_directory + "/seed.json"; }

private:
    std::string m_directory = brevan::sim::makePrivateDirectory();
};

ServerOptions options(const SeedFile& seed)
{
    ServerOptions options;
    options.password = "secret";
    options.seed = seed.path();
    return options;
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
    const SeedFile seed;
    ArrayServer array(options(seed));
    array.start();
    HttpsSession client(std::to_string(array.port()), array.caFile());
    // A list walks its group from the beginning: the last page of the thousand members costs most.
    for (const char* range : {"[0-100]", "[500-600]", "[900-1000]"}) {
        compare(client, std::string("array: ") + range + " of a group among 100,000 LUNs, two conditions, against one LUN",
                std::string("/lun/associate?filter=ALLOCTYPE:1%20and%20HEALTHSTATUS:1&TYPE=11&ASSOCIATEOBJTYPE=256"
                            "&ASSOCIATEOBJID=1&range=") +
                    range,
                "/lun/50000");
    }
    return 0;
}
