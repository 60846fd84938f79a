#include "CommandLine.h"

#include "Amounts.h"
#include "Files.h"
#include "Text.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <map>
#include <stdexcept>

namespace brevan::sim {

namespace {

constexpr const char* kPasswordVariable = "BREVAN_SIM_PASSWORD";
constexpr std::size_t kLongestPassword = 1024;

constexpr const char* kDescription =
    "A block-storage array that exists in this process only: its management interface over HTTPS and, with an\n"
    "exposure driver, its volumes as disks. Prints \"listening on https://ADDRESS:PORT\" when it is ready; ends on\n"
    "SIGTERM and SIGINT.";

/// What the flags say, before it is checked and put into options.
struct Flags {
    ProgramOptions options;
    std::string passwordFile;
    std::vector<std::string> pools;
    std::string sessionIdle;
    std::string lockoutTime;
    std::string latency;
    std::string bandwidth;
    std::string connectionIdle;
    bool dump = false;
    bool chain = false;
};

PoolOption poolOption(const std::string& text)
{
    const std::vector<std::string> parts = split(text, ":");
    const auto gib = parts.size() == 3 ? decimal(parts[2]) : std::nullopt;
    if (!gib) {
        throw CLI::ValidationError("--pool", inQuotes(text) + " is not of the form ID:NAME:GIB, such as 0:pool0:1024");
    }
    return {parts[0], parts[1], *gib};
}

std::string password(const std::string& file)
{
    if (!file.empty()) {
        std::string text = readFile(file, kLongestPassword);
        text.erase(std::min(text.find_first_of("\r\n"), text.size()));
        return text;
    }
    const char* variable = std::getenv(kPasswordVariable);
    return variable == nullptr ? std::string() : variable;
}

void addNetworkFlags(CLI::App& app, Flags& flags)
{
    ServerOptions& server = flags.options.server;
    app.add_option("--address", server.address, "IPv4 or IPv6 address to listen on")
        ->type_name("ADDRESS")
        ->capture_default_str();
    app.add_option("--port", server.port, "Port to listen on; 0: one that the system chooses")
        ->type_name("PORT")
        ->capture_default_str();
    app.add_option("--ca-file", server.caFile,
                   "Where to write the certificate authority that clients shall trust (PEM); without this flag, a "
                   "file that is removed at the end")
        ->type_name("FILE");
    app.add_option("--server-name", server.serverName,
                   "A further name in the certificate, beside the address, 127.0.0.1, ::1 and localhost")
        ->type_name("NAME");
    app.add_option("--port-file", flags.options.portFile, "Where to write the port number, once the array listens")
        ->type_name("FILE");
}

void addArrayFlags(CLI::App& app, Flags& flags)
{
    ServerOptions& server = flags.options.server;
    app.add_option("--user", server.user, "Name of the one user that can log in")->type_name("NAME")->capture_default_str();
    app.add_option("--password-file", flags.passwordFile,
                   "File whose first line is the password; without this flag, the environment variable BREVAN_SIM_PASSWORD")
        ->type_name("FILE");
    app.add_option("--max-sessions", server.maxSessions, "So many sessions may be open at once")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000).description(""))
        ->capture_default_str();
    app.add_option("--session-idle", flags.sessionIdle, "A session that is not used for this time ends (default 20min)")
        ->type_name("TIME");
    app.add_option("--lockout-after", server.lockoutAfter,
                   "So many wrong passwords in a row lock a user name out for a while; 0: never")
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--lockout-time", flags.lockoutTime, "How long a user name stays locked out (default 1min)")
        ->type_name("TIME");
    app.add_option("--device-id", server.deviceId,
                   "The array's device ID; all WWNs derive from it (default: as database or seed say, else 210000000001)")
        ->type_name("ID");
    app.add_option("--pool", flags.pools, "A storage pool; may be repeated (default 0:pool0:1024)")
        ->type_name("ID:NAME:GIB")
        ->take_all();
    app.add_option("--iscsi-initiator", server.iscsiInitiators,
                   "A free iSCSI initiator that exists from the start; may be repeated")
        ->type_name("IQN")
        ->take_all();
    app.add_option("--settle", server.settleReads,
                   "So many reads of a new LUN, group, host or view answer 1077949006, not readable yet")
        ->type_name("N")
        ->capture_default_str();
    app.add_flag("--log-requests", flags.options.logRequests, "Print a line for each request");
}

void addStateFlags(CLI::App& app, Flags& flags)
{
    static const std::map<std::string, ChainFormat> kFormats{
        {"text", ChainFormat::kText}, {"json", ChainFormat::kJson}, {"dot", ChainFormat::kDot}};
    app.add_option("--db", flags.options.server.database,
                   "File that keeps the array's state; made if it is not there (default: the state lives in memory)")
        ->type_name("FILE");
    app.add_option("--seed", flags.options.server.seed, "Inventory file (JSON) with which a new array begins")
        ->type_name("FILE");
    app.add_flag("--dump", flags.dump, "Do not serve: write the inventory of --db or --seed as JSON, as --seed reads it");
    app.add_flag("--chain", flags.chain, "Do not serve: write the mapping chain of --db or --seed: who sees which volume");
    app.add_option("--format", flags.options.chainFormat, "Form of the chain: text; json; dot, for Graphviz")
        ->type_name("text|json|dot")
        ->transform(CLI::CheckedTransformer(kFormats).description(""))
        ->default_str("text");
    app.add_option("--output", flags.options.output, "File into which --dump and --chain write (default: standard output)")
        ->type_name("FILE");
}

void addExposureFlags(CLI::App& app, Flags& flags)
{
    static const std::map<std::string, Exposure> kDrivers{
        {"none", Exposure::kNone}, {"lio", Exposure::kLio}, {"tree", Exposure::kTree}};
    ServerOptions& server = flags.options.server;
    app.add_option("--exposure", server.exposure,
                   "How mapped volumes leave the array: none; lio: disks of the kernel's iSCSI target (needs "
                   "root and configfs); tree: lists in files")
        ->type_name("none|lio|tree")
        ->transform(CLI::CheckedTransformer(kDrivers).description(""))
        ->default_str("none");
    app.add_option("--lio-portal", server.lioPortal, "lio: where the iSCSI target listens")
        ->type_name("ADDRESS:PORT")
        ->capture_default_str();
    app.add_option("--lio-target", server.lioTarget, "lio: name of the iSCSI target (default: made from the device ID)")
        ->type_name("IQN");
    app.add_option("--volume-directory", server.volumeDirectory, "lio: where the volumes are, a sparse file each")
        ->type_name("DIR");
    app.add_option("--tree-directory", server.treeDirectory, "tree: where the lists are, a file for each initiator")
        ->type_name("DIR");
}

void addTestFlags(CLI::App& app, Flags& flags)
{
    ServerOptions& server = flags.options.server;
    app.add_option("--control-port", server.controlPort,
                   "Port on 127.0.0.1 for faults, journal, link and chain over plain HTTP; 0: one that the system chooses")
        ->type_name("PORT");
    app.add_option("--latency", flags.latency, "Added to every answer, such as 5ms")->type_name("TIME");
    app.add_option("--bandwidth", flags.bandwidth, "What all answers share, such as 1MB/s")->type_name("RATE");
    app.add_option("--journal", server.journalFile, "File to which every request is added, a line of JSON each")
        ->type_name("FILE");
    app.add_option("--journal-entries", server.journalEntries, "So many requests are remembered for the control port")
        ->type_name("N")
        ->check(CLI::Range(0, 1000000).description(""))
        ->capture_default_str();
    app.add_option("--max-connections", server.limits.connections, "Further connections are answered 503")
        ->type_name("N")
        ->check(CLI::Range(1, 100000).description(""))
        ->capture_default_str();
    app.add_option("--connection-idle", flags.connectionIdle, "A silent connection is closed after this time (default 2min)")
        ->type_name("TIME");
}

/// Puts the text's value into `target`; without a text it stays as it is.
template <typename Target, typename Read>
void setAmount(Target& target, const std::string& flag, const std::string& text, Read read, const char* wanted)
{
    if (text.empty()) {
        return;
    }
    const auto value = read(text);
    if (!value) {
        throw CLI::ValidationError(flag, inQuotes(text) + " is not " + wanted);
    }
    target = std::chrono::duration_cast<Target>(*value);
}

void readAmounts(Flags& flags)
{
    constexpr const char* kTime = "a time of at most an hour, such as 5ms or 2s";
    ServerOptions& server = flags.options.server;
    setAmount(server.latency, "--latency", flags.latency, readDuration, kTime);
    setAmount(server.sessionIdle, "--session-idle", flags.sessionIdle, readDuration, kTime);
    setAmount(server.lockoutTime, "--lockout-time", flags.lockoutTime, readDuration, kTime);
    setAmount(server.limits.idle, "--connection-idle", flags.connectionIdle, readDuration, kTime);
    if (server.limits.idle.count() == 0) {
        throw CLI::ValidationError("--connection-idle", "must be at least 1ms");
    }
    const std::optional<std::uint64_t> rate = readRate(flags.bandwidth.empty() ? "unlimited" : flags.bandwidth);
    if (!rate) {
        throw CLI::ValidationError("--bandwidth", inQuotes(flags.bandwidth) + " is not a rate such as 500kB/s or 1MB/s");
    }
    server.bandwidth = *rate;
}

void requireDirectory(bool needed, const std::string& directory, const char* flag)
{
    if (needed && directory.empty()) {
        throw CLI::RequiredError(flag);
    }
}

void exclude(bool both, const char* first, const char* second)
{
    if (both) {
        throw CLI::ExcludesError(first, second);
    }
}

void readTask(const CLI::App& app, Flags& flags)
{
    ProgramOptions& options = flags.options;
    exclude(flags.dump && flags.chain, "--dump", "--chain");
    exclude(app.count("--seed") != 0 && app.count("--pool") != 0, "--seed", "--pool");
    options.task = flags.dump ? Task::kDump : flags.chain ? Task::kChain : Task::kServe;
    const bool offline = options.task != Task::kServe;
    if (app.count("--format") != 0 && !flags.chain) {
        throw CLI::RequiresError("--format", "--chain");
    }
    if (app.count("--output") != 0 && !offline) {
        throw CLI::RequiresError("--output", "--dump or --chain");
    }
    if (offline && app.count("--db") + app.count("--seed") != 1) {
        throw CLI::RequiresError(flags.dump ? "--dump" : "--chain", "either --db or --seed");
    }
    if (app.count("--db") != 0 && (options.server.database.empty() || options.server.database.front() == ':')) {
        throw CLI::ValidationError("--db", "a file is wanted");
    }
}

ProgramOptions checked(const CLI::App& app, Flags flags)
{
    readTask(app, flags);
    if (flags.options.task != Task::kServe) {
        return std::move(flags.options);
    }
    ServerOptions& server = flags.options.server;
    readAmounts(flags);
    requireDirectory(server.exposure == Exposure::kLio, server.volumeDirectory, "--volume-directory");
    requireDirectory(server.exposure == Exposure::kTree, server.treeDirectory, "--tree-directory");
    if (!flags.pools.empty()) {
        server.pools.clear();
        for (const std::string& pool : flags.pools) {
            server.pools.push_back(poolOption(pool));
        }
    }
    server.password = password(flags.passwordFile);
    if (server.password.empty()) {
        throw std::runtime_error(std::string("no password: give --password-file FILE or set ") + kPasswordVariable);
    }
    return std::move(flags.options);
}

}  // namespace

std::optional<ProgramOptions> readCommandLine(int argc, const char* const* argv, int& exitStatus, std::ostream& output,
                                              std::ostream& errors)
{
    CLI::App app(kDescription, "brevan-array-sim");
    Flags flags;
    app.set_version_flag("--version", std::string("brevan-array-sim ") + BREVAN_SIMULATOR_VERSION);
    addNetworkFlags(app, flags);
    addArrayFlags(app, flags);
    addStateFlags(app, flags);
    addExposureFlags(app, flags);
    addTestFlags(app, flags);
    try {
        app.parse(argc, argv);
        return checked(app, std::move(flags));
    } catch (const CLI::Success& end) {
        exitStatus = app.exit(end, output, errors);
    } catch (const std::exception& error) {
        errors << "brevan-array-sim: " << error.what() << " (--help explains all flags)" << std::endl;
        exitStatus = kUsageError;
    }
    return std::nullopt;
}

}  // namespace brevan::sim
