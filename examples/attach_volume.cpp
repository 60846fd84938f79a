// The main job from end to end: log in, create or take a LUN, attach it to this host's iSCSI initiator, find its disk, and, on
// --detach, take it away again. Copy it: it uses nothing but the public headers.
#include <brevan/brevan.h>

#include <getopt.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

// How the program ends: each trouble has its own exit status.
enum Status {
    kDone = 0,
    kOtherFailure = 1,
    kUsage = 2,
    kLoginRefused = 3,
    kArrayNotThere = 4,
    kNotTrusted = 5,
    kUnknownLun = 6,
    kUnknownInitiator = 7,
    kAttachFailed = 8,
    kNoDisk = 9,
    kDetachFailed = 10,
    kCreateFailed = 11
};

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

/// Ends the program with a status and one line that says what is wrong and what to do.
struct Trouble {
    Status status;
    std::string text;
};

struct Options {
    std::string address;
    unsigned int port = 8088;
    std::string user = "admin";
    int scope = USERTYPE_LOCAL;
    std::string initiator;
    std::string hostIp;
    std::string pool = "0";
    std::string lun;
    bool detach = false;
};

unsigned int number(const char* option, const char* text, unsigned long highest)
{
    char* end = nullptr;
    const unsigned long value = std::strtoul(text, &end, 10);
    if (*text < '0' || *text > '9' || *end != '\0' || value > highest) {
        throw Trouble{kUsage, std::string(option) + " takes a number from 0 to " + std::to_string(highest)};
    }
    return static_cast<unsigned int>(value);
}

Options parse(int argc, char** argv)
{
    enum { kAddress = 1, kPort, kUser, kScope, kInitiator, kHostIp, kPool, kLun, kDetach, kHelpFlag };
    static const option known[] = {{"address", required_argument, nullptr, kAddress},
                                   {"port", required_argument, nullptr, kPort},
                                   {"user", required_argument, nullptr, kUser},
                                   {"scope", required_argument, nullptr, kScope},
                                   {"initiator", required_argument, nullptr, kInitiator},
                                   {"host-ip", required_argument, nullptr, kHostIp},
                                   {"pool", required_argument, nullptr, kPool},
                                   {"lun", required_argument, nullptr, kLun},
                                   {"detach", no_argument, nullptr, kDetach},
                                   {"help", no_argument, nullptr, kHelpFlag},
                                   {nullptr, 0, nullptr, 0}};
    Options options;
    opterr = 0;  // one line of our own is enough
    for (int flag = 0; (flag = getopt_long(argc, argv, "", known, nullptr)) != -1;) {
        switch (flag) {
            case kAddress:
                options.address = optarg;
                break;
            case kPort:
                options.port = number("--port", optarg, 65535);
                break;
            case kUser:
                options.user = optarg;
                break;
            case kScope:
                options.scope = static_cast<int>(number("--scope", optarg, 1000));
                break;
            case kInitiator:
                options.initiator = optarg;
                break;
            case kHostIp:
                options.hostIp = optarg;
                break;
            case kPool:
                options.pool = optarg;
                break;
            case kLun:
                options.lun = optarg;
                break;
            case kDetach:
                options.detach = true;
                break;
            case kHelpFlag:
                std::cout << kHelp;
                std::exit(kDone);
            default:
                throw Trouble{kUsage, std::string(argv[optind - 1]) + " is no option, or lacks its value; try --help"};
        }
    }
    if (optind != argc || options.address.empty() || options.initiator.empty()) {
        throw Trouble{kUsage, "--address and --initiator are needed, and nothing but options; try --help"};
    }
    return options;
}

/// Asks on the terminal, without echo.
std::string promptForPassword(const std::string& user)
{
    termios before;
    if (tcgetattr(STDIN_FILENO, &before) != 0) {
        throw Trouble{kUsage, "there is no terminal to ask for the password; set BREVAN_PASSWORD"};
    }
    termios silent = before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    std::cerr << "Password of " << user << ": " << std::flush;
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    std::string password;
    std::getline(std::cin, password);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
    std::cerr << "\n";
    return password;
}

std::string password(const std::string& user)
{
    const char* given = std::getenv("BREVAN_PASSWORD");
    return given != nullptr ? given : promptForPassword(user);
}

/// What went wrong and what to do, from the library.
Trouble failure(Status status, const std::string& what)
{
    const brevan::Failure why = brevan::lastFailure();
    std::string text = what;
    if (!why.empty()) {
        text += ": " + why.text + (why.advice.empty() ? "" : ". " + why.advice);
    }
    return Trouble{status, text};
}

/// Prints one aligned line a step, with the time that it took.
class Steps {
public:
    void done(const char* step, const std::string& what)
    {
        const auto now = std::chrono::steady_clock::now();
        const std::chrono::duration<double, std::milli> took = now - m_last;
        std::printf("%-10s%-78s %8.1f ms\n", step, what.c_str(), took.count());
        std::fflush(stdout);
        m_last = now;
    }

private:
    std::chrono::steady_clock::time_point m_last = std::chrono::steady_clock::now();
};

/// The device manager, released whatever happens; a session that was opened is ended before.
class Array {
public:
    Array() : m_manager(CDeviceManager::getInstance()) {}
    ~Array()
    {
        if (m_loggedIn) {
            m_manager->logoutDevice();
        }
        CDeviceManager::releaseInstance(m_manager);
    }
    Array(const Array&) = delete;
    Array& operator=(const Array&) = delete;

    void login(const Options& options)
    {
        const int result = m_manager->loginDevice(options.address, options.port, options.user, password(options.user),
                                                  static_cast<USERTYPE>(options.scope));
        if (result != 1) {
            const int code = brevan::lastFailure().code;
            const bool notThere = code == brevan::FAILURE_NO_CONNECTION || code == brevan::FAILURE_TIMED_OUT ||
                                  code == brevan::FAILURE_CONNECTION_LOST || code == brevan::FAILURE_UNUSABLE_REPLY;
            throw failure(code == brevan::FAILURE_NOT_TRUSTED    ? kNotTrusted
                          : notThere                             ? kArrayNotThere
                          : code == brevan::FAILURE_REFUSED      ? kUsage
                          : code == brevan::FAILURE_BAD_SETTINGS ? kOtherFailure
                                                                 : kLoginRefused,
                          "cannot log in to " + options.address + ":" + std::to_string(options.port));
        }
        m_loggedIn = true;
    }

    void logout()
    {
        m_loggedIn = false;
        if (m_manager->logoutDevice() != 1) {
            throw failure(kOtherFailure, "cannot log out");
        }
    }

    template <class Handler>
    Handler& get(HANDLERTYPE type)
    {
        return *static_cast<Handler*>(m_manager->getHandler(type));
    }

private:
    CDeviceManager* m_manager;
    bool m_loggedIn = false;
};

LunMO createLun(Array& array, const std::string& pool)
{
    LunMO wanted;
    wanted.NAME = "example_" + std::to_string(std::chrono::system_clock::now().time_since_epoch().count() / 1000000);
    wanted.PARENTID = pool;
    wanted.CAPACITY = 1ULL << 30;
    wanted.ALLOCTYPE = 1;
    wanted.ALLOCCAPACITY = 64ULL << 20;  // the initial allocation of a thin LUN: it must be set
    const LunMO lun = array.get<CLunHandler>(HANDLER_LUN).createLun(wanted);
    if (lun.ID.empty()) {
        throw failure(kCreateFailed, "the LUN was created, but it cannot be read yet");
    }
    return lun;
}

LunMO takeLun(Array& array, const Options& options)
{
    if (options.lun.empty()) {
        try {
            return createLun(array, options.pool);
        } catch (const PlimAPIException&) {
            throw failure(kCreateFailed, "cannot create a LUN in pool " + options.pool);
        }
    }
    const std::string unknown = "the array has no LUN " + options.lun + "; choose one that it lists, or leave --lun out";
    try {
        const LunMO lun = array.get<CLunHandler>(HANDLER_LUN).getLun(options.lun);
        if (!lun.ID.empty()) {
            return lun;
        }
    } catch (PlimAPIExceptionWithErrCode&) {
        throw failure(kUnknownLun, unknown);
    }
    throw Trouble{kUnknownLun, unknown};
}

void checkInitiator(Array& array, const std::string& initiator)
{
    const std::string unknown =
        "the array has no iSCSI initiator " + initiator + "; create it there, or correct --initiator";
    try {
        if (!array.get<CIscsiInitiatorHandler>(HANDLER_ISCSI_INITIATOR).getIscsiInitiator(initiator).ID.empty()) {
            return;
        }
    } catch (PlimAPIExceptionWithErrCode&) {
        throw failure(kUnknownInitiator, unknown);
    }
    throw Trouble{kUnknownInitiator, unknown};
}

/// The objects that an attach names carry the current second in their names: begin in a new one.
void waitForNewSecond()
{
    const auto now = std::chrono::system_clock::now();
    const auto next = std::chrono::time_point_cast<std::chrono::seconds>(now) + std::chrono::seconds(1);
    std::this_thread::sleep_until(next + std::chrono::milliseconds(10));
}

/// The chain from the host to the LUN, as the array has it now.
std::string chain(Array& array, const LunMO& lun, const std::string& initiator)
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

void attach(Array& array, const Options& options, const LunMO& lun, Steps& steps)
{
    checkInitiator(array, options.initiator);
    waitForNewSecond();
    steps.done("wait", "for a new second");
    const int result =
        array.get<CDiskAttachHandler>(HANDLER_DISK_ATTACH).attachLunToHost(lun.ID, options.initiator, options.hostIp);
    // Result 0 says only that the attach ran to its end; 1 that the LUN was attached already.
    if (result == 0 && !brevan::lastFailure().empty()) {
        throw failure(kAttachFailed, "LUN " + lun.ID + " could not be attached");
    }
    steps.done("attach", (result == 1 ? "already: " : "") + chain(array, lun, options.initiator));
}

std::string findDisk(Array& array, const LunMO& lun)
{
    std::string id = lun.ID;
    std::string path = array.get<CDiskScannerHandler>(HANDLER_DISK_SCANNER).scanLunAfterAttach(id);
    if (path.empty()) {
        throw failure(kNoDisk, "this host has no disk of LUN " + lun.ID);
    }
    return path;
}

void detach(Array& array, const Options& options, const LunMO& lun)
{
    std::string id = lun.ID;
    array.get<CDiskScannerHandler>(HANDLER_DISK_SCANNER).scanLunBeforeDetach(id);
    array.get<CDiskAttachHandler>(HANDLER_DISK_ATTACH).detachLunFromHost(lun.ID, options.initiator);
    if (!brevan::lastFailure().empty()) {
        throw failure(kDetachFailed, "LUN " + lun.ID + " could not be detached");
    }
}

void run(const Options& options)
{
    Steps steps;
    Array array;
    array.login(options);
    steps.done("login", options.user + " at " + options.address + ":" + std::to_string(options.port));
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
    std::printf("%-10s%s\n%-10s%s\n", "disk", path.c_str(), "wwn", lun.WWN.c_str());
}

}  // namespace

int main(int argc, char** argv)
{
    try {
        run(parse(argc, argv));
        return kDone;
    } catch (const Trouble& trouble) {
        std::cerr << "attach_volume: " << trouble.text << "\n";
        return trouble.status;
    } catch (const std::exception&) {
        std::cerr << "attach_volume: " << failure(kOtherFailure, "failed").text << "\n";
        return kOtherFailure;
    }
}
