// The array's front-end ports as a table: Fibre Channel, FCoE and Ethernet, each with its state and speed. Copy it together with
// common/: it uses nothing but that and the public headers.
#include "common/ArraySession.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

using namespace example;

namespace {

const char* const kHelp =
    R"(Lists the array's Fibre Channel, FCoE and Ethernet ports with their state and speed.

usage: list_ports --address IP [options]

  --address IP   management address of the array, an IPv4 or IPv6 literal
  --port N       its HTTPS port (default 8088)
  --user NAME    login user (default admin)
  --scope N      0: a user of the array, 1: a user of the directory server (default 0)
  --help         this text

STATE and HEALTH are the array's codes in words, where this program knows them, else "code N". The password comes from
BREVAN_PASSWORD, or from a prompt. Certificates are verified: name the array's CA file in transport.ini
(BREVAN_TRANSPORT_CONFIG names the file to read).

exit status: 0 done, 1 other failure, 2 wrong usage, 3 login refused, 4 array not there, 5 certificate not trusted,
             6 the ports could not be read
)";

constexpr int kNotRead = kFirstOwnStatus;
constexpr std::size_t kColumns = 8;
using Row = std::array<std::string, kColumns>;

Connection parse(int argc, char** argv)
{
    Connection connection;
    parseOptions(argc, argv, kHelp, connectionOptions(connection));
    if (connection.address.empty()) {
        throw Trouble{kUsage, "--address is needed; try --help"};
    }
    return connection;
}

std::string stateText(std::uint32_t code)
{
    return code == 10 ? "up" : code == 11 ? "down" : "code " + std::to_string(code);
}

std::string healthText(std::uint32_t code)
{
    return code == 1 ? "normal" : "code " + std::to_string(code);
}

/// The array counts in Mbit/s; a port that is not linked has no speed.
std::string speedText(std::int64_t megabits)
{
    if (megabits <= 0) {
        return "-";
    }
    return megabits % 1000 == 0 ? std::to_string(megabits / 1000) + " Gbit/s" : std::to_string(megabits) + " Mbit/s";
}

template <class Port>
Row row(const char* type, const Port& port, std::int64_t speed, const std::string& address)
{
    return {type,
            port.ID,
            port.NAME,
            port.LOCATION,
            healthText(port.HEALTHSTATUS),
            stateText(port.RUNNINGSTATUS),
            speedText(speed),
            address};
}

std::vector<Row> readPorts(ArraySession& array)
{
    std::vector<Row> rows = {{"TYPE", "ID", "NAME", "LOCATION", "HEALTH", "STATE", "SPEED", "ADDRESS"}};
    FCPortQuery allFc;
    for (const FCPortMO& port : array.get<CFCPortHandler>(HANDLER_FC_PORT).getFCPortBatch(allFc)) {
        rows.push_back(row("FC", port, port.RUNSPEED, port.WWN));
    }
    FCoEPortQuery allFcoe;
    for (const FCoEPortMO& port : array.get<CFCoEPortHandler>(HANDLER_FCOE_PORT).getFCoEPortBatch(allFcoe)) {
        rows.push_back(row("FCoE", port, port.RUNSPEED, port.WWN));
    }
    ETHPortQuery allEth;
    for (const ETHPortMO& port : array.get<CETHPortHandler>(HANDLER_ETH_PORT).getETHPortBatch(allEth)) {
        rows.push_back(row("Ethernet", port, static_cast<std::int64_t>(port.SPEED), port.IPV4ADDRESS));
    }
    return rows;
}

/// Every column as wide as its widest text, two blanks between.
void print(const std::vector<Row>& rows)
{
    std::array<std::size_t, kColumns> widths{};
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < kColumns; ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < kColumns; ++column) {
            line += row[column] + std::string(widths[column] - row[column].size() + 2, ' ');
        }
        std::printf("%s\n", line.erase(line.find_last_not_of(' ') + 1).c_str());
    }
}

void run(const Connection& connection)
{
    ArraySession array;
    array.login(connection);
    try {
        print(readPorts(array));
    } catch (const PlimAPIException&) {
        throw failure(kNotRead, "the ports of " + connection.address + " could not be read");
    }
    array.logout();
}

}  // namespace

int main(int argc, char** argv)
{
    return runProgram("list_ports", [&] { run(parse(argc, argv)); });
}
