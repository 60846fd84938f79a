#ifndef BREVAN_SIMULATOR_ARRAYSERVER_H
#define BREVAN_SIMULATOR_ARRAYSERVER_H

#include "ExposureDriver.h"
#include "FaultReport.h"
#include "Journal.h"
#include "ServerOptions.h"
#include "Wire.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace brevan::sim {

/// The simulated array. All operations may be called by any thread, also while clients are served.
///
/// What a test does behind the clients' backs (addPool and so on) obeys the same rules as a request: what the array refuses
/// is a std::runtime_error with the text that a client would get.
class ArrayServer {
public:
    /// An option that does not do is a std::invalid_argument; a database that cannot be opened a std::runtime_error.
    explicit ArrayServer(ServerOptions options);
    /// Stops.
    ~ArrayServer();
    ArrayServer(const ArrayServer&) = delete;
    ArrayServer& operator=(const ArrayServer&) = delete;

    /// Starts the exposure driver, writes the CA file and listens. Returns when clients can connect. A failure is a
    /// std::exception, and nothing is left running. Once only.
    void start();
    /// Ends all connections and takes back what is exposed. May be repeated.
    void stop();

    /// Valid from start() on.
    std::string address() const;
    std::uint16_t port() const;
    std::uint16_t controlPort() const;  ///< 0: off
    std::string caFile() const;
    std::string deviceId() const;

    /// One request without a network, exactly as if it had come over one. Needs no start().
    WireReply handle(const WireRequest& request);

    /// Every session is gone: the next request of each client is answered -401.
    void endAllSessions();

    /// These return the new object's ID.
    std::string addPool(const std::string& id, const std::string& name, std::uint64_t gib);
    std::string addLun(const std::string& name, const std::string& poolId, std::uint64_t bytes);
    std::string addSnapshot(const std::string& name, const std::string& lunId);
    std::string addIscsiInitiator(const std::string& name);
    std::string addFcInitiator(const std::string& portName);

    /// The WWN of a LUN or a snapshot (their IDs never coincide); empty where there is none of this ID.
    std::string volumeWwn(const std::string& id);
    /// What iSCSI initiators see now.
    ExposurePlan exposed();

    /// Requests so far, and the latest of them.
    std::uint64_t requestCount() const;
    std::vector<JournalEntry> journal() const;
    void clearJournal();

    /// The next request of this operation is not carried out but answered with this code and text. Several for the same
    /// operation are used in their order, each once. `operation`: method and path, such as "POST /lungroup" or "GET
    /// /lun/{id}"; one that the array does not have is a std::invalid_argument.
    void failNext(const std::string& operation, int code, const std::string& text = "Asked for by the test.");
    /// Faults of all kinds, as text: {"operation": "POST /lungroup", "do": ["stall 2s", "reset after", "pass"]}, or a list of
    /// these; docs/simulator.md lists the kinds. A script that does not do is a std::invalid_argument, and nothing of it is kept.
    void addFaults(const std::string& script);
    /// How many of these have not been used.
    std::size_t faultsLeft() const;
    FaultReport faultReport() const;
    void clearFaults();

    /// Every answer over the network takes so much longer, and all together so many bytes a second; 0: unlimited.
    void setLink(std::chrono::microseconds latency, std::uint64_t bytesPerSecond = 0);

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

}  // namespace brevan::sim

#endif
