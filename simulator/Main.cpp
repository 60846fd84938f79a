#include "ArrayServer.h"
#include "CommandLine.h"
#include "Database.h"
#include "Files.h"
#include "Identity.h"
#include "Inventory.h"

#include <algorithm>
#include <csignal>
#include <iostream>
#include <memory>
#include <mutex>

#include <pthread.h>
#include <sys/resource.h>

namespace {

using namespace brevan::sim;

/// Blocks the signals that end the program, so that it can wait for them; before any thread starts, as threads inherit this.
sigset_t blockedEndSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return signals;
}

std::string url(const ArrayServer& server)
{
    const std::string address = server.address();
    const bool bracketed = address.find(':') != std::string::npos;
    return "https://" + (bracketed ? "[" + address + "]" : address) + ":" + std::to_string(server.port());
}

void logTo(std::ostream& stream, ServerOptions& options)
{
    const auto mutex = std::make_shared<std::mutex>();
    options.requestLog = [mutex, &stream](const std::string& line) {
        const std::lock_guard<std::mutex> lock(*mutex);
        stream << line << std::endl;
    };
}

/// Each connection takes a descriptor, and many systems begin with 1024 of them.
void allowDescriptors(unsigned connections)
{
    constexpr rlim_t kOthers = 256;
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < connections + kOthers) {
        limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, connections + kOthers);
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

/// What is in the database or in the seed, without an array that runs.
std::unique_ptr<Database> stateOf(const ServerOptions& options)
{
    if (options.seed.empty()) {
        std::unique_ptr<Database> known = Database::existing(options.database);
        if (identityOf(*known).empty()) {
            throw std::runtime_error(options.database + " has no array yet");
        }
        return known;
    }
    auto database = std::make_unique<Database>(":memory:");
    Transaction transaction(*database);
    loadInventoryFile(*database, options.seed, options.deviceId);
    transaction.commit();
    return database;
}

int show(const ProgramOptions& options)
{
    const std::unique_ptr<Database> database = stateOf(options.server);
    const Transaction oneMoment(*database);
    const std::string text =
        options.task == Task::kDump ? writeInventory(*database) : written(readChain(*database), options.chainFormat);
    if (!options.output.empty()) {
        writeFileAtomically(options.output, text);
    } else if (!(std::cout << text << std::flush)) {
        throw std::runtime_error("standard output takes no more");
    }
    return 0;
}

int serve(ProgramOptions options)
{
    sigset_t signals = blockedEndSignals();
    allowDescriptors(options.server.limits.connections);
    if (options.logRequests) {
        logTo(std::cout, options.server);
    }
    ArrayServer server(options.server);
    server.start();
    if (server.controlPort() != 0) {
        std::cout << "control port http://127.0.0.1:" << server.controlPort() << "\n";
    }
    std::cout << "certificate authority " << server.caFile() << "\nlistening on " << url(server) << std::endl;
    // Last, so that who waits for this file finds all of the above.
    if (!options.portFile.empty()) {
        writeFileAtomically(options.portFile, std::to_string(server.port()) + "\n");
    }
    int signal = 0;
    sigwait(&signals, &signal);
    server.stop();
    std::cout << "ended by signal " << signal << std::endl;
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    int exitStatus = 0;
    const std::optional<ProgramOptions> options = readCommandLine(argc, argv, exitStatus, std::cout, std::cerr);
    if (!options) {
        return exitStatus;
    }
    try {
        return options->task == Task::kServe ? serve(*options) : show(*options);
    } catch (const std::invalid_argument& error) {
        std::cerr << "brevan-array-sim: " << error.what() << " (--help explains all flags)" << std::endl;
        return kUsageError;
    } catch (const std::exception& error) {
        std::cerr << "brevan-array-sim: " << error.what() << std::endl;
        return 1;
    }
}
