// The main job from end to end: log in, create or take a LUN, attach it to this host's iSCSI initiator, find its disk, and, on
// --detach, take it away again. Copy it together with common/: it uses nothing but that and the public headers.
#include "common/ArraySession.h"
#include "common/Attachment.h"

#include <chrono>
#include <string>
#include <vector>

using namespace example;

namespace {

constexpr int kCreateFailed = kFirstStatusBesidesAttach;

const char* const kHelp =
    R"(Attaches a LUN of the array to this host and prints the path of its disk.

usage: attach_volume --address IP --initiator IQN [options]

  --address IP     management address of the array, an IPv4 or IPv6 literal
  --port N         its HTTPS port (default 8088)
  --user NAME      login user (default admin)
  --scope N        0: a user of the array, 1: a user of the directory server (default 0)
  --initiator IQN  this host's iSCSI initiator, as the array knows it; see /etc/iscsi/initiatorname.iscsi
  --host-ip IP     address to record where the array gets a new host object
  --pool ID        storage pool in which a thin LUN of 1 GiB is created (default 0)
  --lun ID         attach this LUN instead of creating one
  --detach         detach the LUN again at the end
  --help           this text

The password comes from BREVAN_PASSWORD, or from a prompt. Certificates are verified: name the array's CA file in
transport.ini (BREVAN_TRANSPORT_CONFIG names the file to read). Finding the disk needs the rescan script under
/opt/root_tool/common, allowed for sudo, and the right to open disks (root, or group disk).

exit status: 0 done, 1 other failure, 2 wrong usage, 3 login refused, 4 array not there, 5 certificate not trusted,
             6 unknown LUN, 7 unknown initiator, 8 attach failed, 9 no disk found, 10 detach failed, 11 LUN not created
)";

struct Options {
    Connection connection;
    std::string initiator;
    std::string hostIp;
    std::string pool = "0";
    std::string lun;
    bool detach = false;
};

Options parse(int argc, char** argv)
{
    Options options;
    std::vector<Option> known = connectionOptions(options.connection);
    known.push_back(textOption("initiator", options.initiator));
    known.push_back(textOption("host-ip", options.hostIp));
    known.push_back(textOption("pool", options.pool));
    known.push_back(textOption("lun", options.lun));
    known.push_back(flagOption("detach", options.detach));
    parseOptions(argc, argv, kHelp, known);
    if (options.connection.address.empty() || options.initiator.empty()) {
        throw Trouble{kUsage, "--address and --initiator are needed; try --help"};
    }
    return options;
}

LunMO createLun(ArraySession& array, const std::string& pool)
{
    LunMO wanted;
    wanted.NAME = "example_" + std::to_string(std::chrono::system_clock::now().time_since_epoch().count() / 1000000);
    wanted.PARENTID = pool;
    wanted.CAPACITY = 1ULL << 30;
    wanted.ALLOCTYPE = 1;
    wanted.ALLOCCAPACITY = 64ULL << 20;  // the initial allocation of a thin LUN: it must be set
    LunMO lun = array.get<CLunHandler>(HANDLER_LUN).createLun(wanted);
    if (lun.ID.empty()) {
        throw failure(kCreateFailed, "the LUN was created, but it cannot be read yet");
    }
    return lun;
}

LunMO takeLun(ArraySession& array, const Options& options)
{
    if (options.lun.empty()) {
        try {
            return createLun(array, options.pool);
        } catch (const PlimAPIException&) {
            throw failure(kCreateFailed, "cannot create a LUN in pool " + options.pool);
        }
    }
    return readKnown(kUnknownVolume,
                     "the array has no LUN " + options.lun + "; choose one that it lists, or leave --lun out",
                     [&] { return array.get<CLunHandler>(HANDLER_LUN).getLun(options.lun); });
}

/// The chain from the host to the LUN, as the array has it now.
std::string chain(ArraySession& array, const LunMO& lun, const std::string& initiator)
{
    const auto bound = array.get<CIscsiInitiatorHandler>(HANDLER_ISCSI_INITIATOR).getIscsiInitiator(initiator);
    std::string text = "host " + bound.PARENTID;
    LunGroupQuery allGroups;
    for (const LunGroupMO& group : array.get<CLunGroupHandler>(HANDLER_LUNGROUP).getLunGroupByLun(lun.ID, allGroups)) {
        MappingViewQuery allViews;
        for (const MappingViewMO& view :
             array.get<CMappingViewHandler>(HANDLER_MAPPINGVIEW).getMappingViewByLunGroup(group.ID, allViews)) {
            const HostGroupMO hosts = array.get<CHostGroupHandler>(HANDLER_HOSTGROUP).getHostGroupByMappingView(view.ID);
            text += ", host group " + hosts.ID + ", mapping view " + view.ID + ", LUN group " + group.ID;
        }
    }
    return text;
}

void attach(ArraySession& array, const Options& options, const LunMO& lun, Steps& steps)
{
    checkInitiator(array, options.initiator);
    waitForNewSecond();
    steps.done("wait", "for a new second");
    const int result =
        array.get<CDiskAttachHandler>(HANDLER_DISK_ATTACH).attachLunToHost(lun.ID, options.initiator, options.hostIp);
    const bool isNew = isNewlyAttached(result, "LUN " + lun.ID);
    steps.done("attach", (isNew ? "" : "already: ") + chain(array, lun, options.initiator));
}

std::string findDisk(ArraySession& array, const LunMO& lun)
{
    std::string id = lun.ID;
    return requireDisk(array.get<CDiskScannerHandler>(HANDLER_DISK_SCANNER).scanLunAfterAttach(id), "LUN " + lun.ID);
}

void detach(ArraySession& array, const Options& options, const LunMO& lun)
{
    std::string id = lun.ID;
    array.get<CDiskScannerHandler>(HANDLER_DISK_SCANNER).scanLunBeforeDetach(id);
    array.get<CDiskAttachHandler>(HANDLER_DISK_ATTACH).detachLunFromHost(lun.ID, options.initiator);
    requireDetached("LUN " + lun.ID);
}

void run(const Options& options)
{
    Steps steps;
    ArraySession array;
    array.login(options.connection);
    steps.done("login", nameOf(options.connection));
    const LunMO lun = takeLun(array, options);
    steps.done(options.lun.empty() ? "create" : "read",
               "LUN " + lun.ID + " " + lun.NAME + ", " + std::to_string(lun.CAPACITY >> 20) + " MiB, wwn " + lun.WWN);
    attach(array, options, lun, steps);
    const std::string path = findDisk(array, lun);
    steps.done("scan", path);
    if (options.detach) {
        detach(array, options, lun);
        steps.done("detach", "LUN " + lun.ID + "; the host keeps its disk until it is deleted there");
    }
    array.logout();
    steps.done("logout", "session ended");
    printResult("disk", path);
    printResult("wwn", lun.WWN);
}

}  // namespace

int main(int argc, char** argv)
{
    return runProgram("attach_volume", [&] { run(parse(argc, argv)); });
}
