#include "ArrayServer.h"

#include "Array.h"
#include "Files.h"
#include "HttpsServer.h"
#include "Mapping.h"
#include "RequestPipeline.h"
#include "Text.h"

#include <filesystem>
#include <stdexcept>

namespace brevan::sim {

class ArrayServer::Implementation {
public:
    explicit Implementation(ServerOptions options) : array(std::move(options)), pipeline(array) { furnish(array); }

    ~Implementation()
    {
        try {
            stop();
        } catch (const std::exception&) {
            // Nobody is left to hear of it; who wants to know calls stop().
        }
    }

    void start()
    {
        if (started) {
            throw std::logic_error("an array server is started once only");
        }
        started = true;
        try {
            array.exposure->start();
            pipeline.exposeAll();
            startServer();
        } catch (...) {
            stopQuietly();
            throw;
        }
    }

    void stop()
    {
        server.reset();
        if (!ownDirectory.empty()) {
            std::error_code ignored;
            std::filesystem::remove_all(ownDirectory, ignored);
            ownDirectory.clear();
        }
        if (started && !stopped) {
            stopped = true;
            pipeline.alone([](Array& inner) { inner.exposure->stop(); });
        }
    }

    /// Runs one operation as a client's request would be run, without a session; the new object's ID.
    std::string create(const std::string& path, const nlohmann::json& body)
    {
        const RouteMatch match = pipeline.router().find("POST", path);
        std::string id;
        pipeline.perform([&](RequestContext& context) {
            context.body = RequestBody(body.dump());
            id = match.route->handler(context).data.at("ID").get<std::string>();
        });
        return id;
    }

    Array array;
    RequestPipeline pipeline;
    std::string caFile;
    std::uint16_t port = 0;

private:
    void startServer()
    {
        std::vector<std::string> names{array.options.address, "127.0.0.1", "::1", "localhost"};
        if (!array.options.serverName.empty()) {
            names.push_back(array.options.serverName);
        }
        const ServerIdentity identity = makeServerIdentity(names);
        if (array.options.caFile.empty()) {
            ownDirectory = makePrivateDirectory();
        }
        caFile = array.options.caFile.empty() ? ownDirectory + "/ca.pem" : array.options.caFile;
        writeFileAtomically(caFile, identity.caCertificate);
        server = std::make_unique<HttpsServer>(identity, array.options.threads,
                                               [this](const WireRequest& request) { return pipeline.handle(request); });
        port = server->start(array.options.address, array.options.port);
    }

    void stopQuietly()
    {
        try {
            stop();
        } catch (const std::exception&) {
            // The failure that led here says more than this one.
        }
    }

    std::unique_ptr<HttpsServer> server;
    std::string ownDirectory;
    bool started = false;
    bool stopped = false;
};

ArrayServer::ArrayServer(ServerOptions options) : m_implementation(std::make_unique<Implementation>(std::move(options))) {}

ArrayServer::~ArrayServer() = default;

void ArrayServer::start()
{
    m_implementation->start();
}

void ArrayServer::stop()
{
    m_implementation->stop();
}

std::string ArrayServer::address() const
{
    return m_implementation->array.options.address;
}

std::uint16_t ArrayServer::port() const
{
    return m_implementation->port;
}

std::string ArrayServer::caFile() const
{
    return m_implementation->caFile;
}

std::string ArrayServer::deviceId() const
{
    return m_implementation->array.options.deviceId;
}

WireReply ArrayServer::handle(const WireRequest& request)
{
    return m_implementation->pipeline.handle(request);
}

void ArrayServer::endAllSessions()
{
    m_implementation->pipeline.alone([](Array& array) { array.sessions.closeAll(); });
}

std::string ArrayServer::addPool(const std::string& id, const std::string& name, std::uint64_t gib)
{
    m_implementation->pipeline.perform([&](RequestContext& context) { sim::addPool(context.array, {id, name, gib}); });
    return id;
}

std::string ArrayServer::addLun(const std::string& name, const std::string& poolId, std::uint64_t bytes)
{
    constexpr std::uint64_t kSectorBytes = 512;
    return m_implementation->create(
        "/lun", {{"NAME", name}, {"PARENTID", poolId}, {"CAPACITY", bytes / kSectorBytes}, {"ALLOCTYPE", 1}});
}

std::string ArrayServer::addSnapshot(const std::string& name, const std::string& lunId)
{
    return m_implementation->create("/snapshot", {{"NAME", name}, {"PARENTID", lunId}});
}

std::string ArrayServer::addIscsiInitiator(const std::string& name)
{
    return m_implementation->create("/iscsi_initiator", {{"ID", name}});
}

std::string ArrayServer::addFcInitiator(const std::string& portName)
{
    return m_implementation->create("/fc_initiator", {{"ID", portName}});
}

std::string ArrayServer::volumeWwn(const std::string& id)
{
    std::string wwn;
    m_implementation->pipeline.alone([&](Array& array) {
        const auto number = decimal(id);
        wwn = number ? array.database.text("SELECT wwn FROM volume WHERE id = ?", {static_cast<std::int64_t>(*number)}) : "";
    });
    return wwn;
}

ExposurePlan ArrayServer::exposed()
{
    ExposurePlan plan;
    m_implementation->pipeline.alone([&plan](Array& array) { plan = readExposurePlan(array.database); });
    return plan;
}

std::uint64_t ArrayServer::requestCount() const
{
    return m_implementation->pipeline.journal().count();
}

std::vector<JournalEntry> ArrayServer::journal() const
{
    return m_implementation->pipeline.journal().entries();
}

void ArrayServer::clearJournal()
{
    m_implementation->pipeline.journal().clear();
}

void ArrayServer::failNext(const std::string& operation, int code, const std::string& text)
{
    if (!m_implementation->pipeline.router().hasOperation(operation)) {
        throw std::invalid_argument("the array has no operation " + inQuotes(operation));
    }
    m_implementation->pipeline.faults().add(operation, {code, text});
}

std::size_t ArrayServer::faultsLeft() const
{
    return m_implementation->pipeline.faults().left();
}

}  // namespace brevan::sim
