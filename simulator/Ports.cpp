#include "Ports.h"

#include <nlohmann/json.hpp>

#include <cstdio>

namespace brevan::sim {

namespace {

constexpr std::int64_t kLinkUp = 10;
constexpr std::int64_t kLinkDown = 11;
constexpr const char* kStartTime = "1700000000";

struct FactoryPort {
    const char* kind;
    const char* name;
    const char* location;
    std::int64_t logicType;  ///< 0: for hosts, 3: for management
    std::int64_t running;
    nlohmann::json details;  ///< every value as the text that a client gets
};

/// A port name of NAA type 2, made from the array's own digits and the port's number.
std::string portWwn(const std::string& deviceId, int number)
{
    char first[8];
    std::snprintf(first, sizeof(first), "2%02x0", static_cast<unsigned>(number));
    return first + wwnPrefix(deviceId).substr(1, 12);
}

nlohmann::json fcDetails(const std::string& wwn)
{
    return {{"RUNSPEED", "16000"},     {"CONFSPEED", "0"},        {"WWN", wwn},
            {"INIORTGT", "3"},         {"FCRUNMODE", "1"},        {"LOSTSIGNALS", "0"},
            {"BADCHARNUMBER", "0"},    {"LOSTSYNC", "0"},         {"LINKFAIL", "0"},
            {"STARTTIME", kStartTime}, {"FLOGINDELAYTIMES", "0"}, {"MAXSUPPORTSPEED", "16000"}};
}

nlohmann::json fcoeDetails(const std::string& wwn)
{
    return {{"RUNSPEED", "10000"},     {"WWN", wwn},         {"INIORTGT", "3"},
            {"ERRORPACKETS", "0"},     {"LOSTPACKETS", "0"}, {"OVERFLOWEDPACKETS", "0"},
            {"STARTTIME", kStartTime}, {"VLANID", "100"}};
}

nlohmann::json ethDetails(const ServerOptions& options, const std::string& address, const std::string& mac)
{
    const std::size_t colon = options.lioPortal.rfind(':');
    const std::string iscsiPort = colon == std::string::npos ? "3260" : options.lioPortal.substr(colon + 1);
    return {{"MACADDRESS", mac},
            {"INIORTGT", "4"},
            {"MTU", "1500"},
            {"ISCSITCPPORT", iscsiPort},
            {"ISCSINAME", targetName(options)},
            {"ERRORPACKETS", "0"},
            {"LOSTPACKETS", "0"},
            {"OVERFLOWEDPACKETS", "0"},
            {"STARTTIME", kStartTime},
            {"SPEED", "10000"},
            {"IPV4MASK", address.empty() ? "" : "255.0.0.0"},
            {"IPV4ADDRESS", address},
            {"IPV6MASK", ""},
            {"IPV6ADDRESS", ""}};
}

}  // namespace

std::string targetName(const ServerOptions& options)
{
    return options.lioTarget.empty() ? "iqn.2020-01.brevan:array-" + options.deviceId : options.lioTarget;
}

void addFactoryPorts(Array& array)
{
    const ServerOptions& options = array.options;
    const std::string& device = options.deviceId;
    const std::string portal = options.lioPortal.substr(0, options.lioPortal.rfind(':'));
    const std::string iscsiAddress = portal.find(':') == std::string::npos ? portal : "";
    const std::string ownAddress = options.address.find(':') == std::string::npos ? options.address : "";
    const FactoryPort ports[] = {
        {"FC_PORT", "A.FC0", "A.0", 0, kLinkUp, fcDetails(portWwn(device, 0))},
        {"FC_PORT", "B.FC0", "B.0", 0, kLinkUp, fcDetails(portWwn(device, 1))},
        {"FCoE_PORT", "A.FCoE0", "A.1", 0, kLinkUp, fcoeDetails(portWwn(device, 2))},
        {"FCoE_PORT", "B.FCoE0", "B.1", 0, kLinkUp, fcoeDetails(portWwn(device, 3))},
        {"ETH_PORT", "A.ETH0", "A.2", 0, kLinkUp, ethDetails(options, iscsiAddress, "02:00:5e:10:00:00")},
        {"ETH_PORT", "B.ETH0", "B.2", 0, kLinkDown, ethDetails(options, "", "02:00:5e:10:00:01")},
        {"ETH_PORT", "A.MGMT0", "A.3", 3, kLinkUp, ethDetails(options, ownAddress, "02:00:5e:10:00:02")},
    };
    for (const FactoryPort& port : ports) {
        array.database.insert("port", {{"id", array.database.next("object")},
                                       {"kind", std::string(port.kind)},
                                       {"name", std::string(port.name)},
                                       {"location", std::string(port.location)},
                                       {"logic_type", port.logicType},
                                       {"running", port.running},
                                       {"details", port.details.dump()}});
    }
}

}  // namespace brevan::sim
