#include "ArrayServer.h"

#include "Array.h"
#include "ControlPort.h"
#include "Files.h"
#include "HttpServer.h"
#include "Link.h"
#include "Mapping.h"
#include "RequestPipeline.h"
#include "Text.h"

#include <filesystem>
#include <stdexcept>

namespace brevan::sim {

namespace {

constexpr const char* kLoopback = "127.0.0.1";

/// What clients talk to: the array at the end of its link.
class ClientPort : public HttpService {
public:
    ClientPort(RequestPipeline& pipeline, Link& link) : m_pipeline(pipeline), m_link(link) {}

    WireReply answer(const WireRequest& request) override
    {
        WireReply reply = m_pipeline.handle(request);
        reply.delivery.wait += m_link.carry(reply.body.size(), Link::Clock::now());
        return reply;
    }
    WireReply refuse(const Refusal& refusal) override { return m_pipeline.refuse(refusal); }

private:
    RequestPipeline& m_pipeline;
    Link& m_link;
};

}  // namespace

class ArrayServer::Implementation {
public:
    explicit Implementation(ServerOptions options)
        : array(std::move(options)), pipeline(array), client(pipeline, link), control(pipeline, link)
    {
        link.set({array.options.latency, array.options.bandwidth});
        if (!array.options.journalFile.empty()) {
            pipeline.journal().writeTo(array.options.journalFile);
        }
    }

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
        controlServer.reset();
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
            id = nlohmann::json::parse(match.route->handler(context).data).at("ID").get<std::string>();
        });
        return id;
    }

    Array array;
    RequestPipeline pipeline;
    Link link;
    ClientPort client;
    ControlPort control;
    std::string caFile;
    std::uint16_t port = 0;
    std::uint16_t controlPort = 0;

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
        if (array.options.controlPort) {
            controlServer = std::make_unique<HttpServer>(control, HttpLimits(), 1, std::nullopt);
            controlPort = controlServer->start(kLoopback, *array.options.controlPort);
        }
        server = std::make_unique<HttpServer>(client, array.options.limits, array.options.threads, identity);
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

    std::unique_ptr<HttpServer> server;
    std::unique_ptr<HttpServer> controlServer;
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

std::uint16_t ArrayServer::controlPort() const
{
    return m_implementation->controlPort;
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
    m_implementation->pipeline.faults().add({{operation, {{FaultKind::kError, code, text}}}});
}

void ArrayServer::addFaults(const std::string& script)
{
    m_implementation->pipeline.faults().add(readFaultScript(script, m_implementation->pipeline.router()));
}

std::size_t ArrayServer::faultsLeft() const
{
    return m_implementation->pipeline.faults().left();
}

FaultReport ArrayServer::faultReport() const
{
    return m_implementation->pipeline.faults().report();
}

void ArrayServer::clearFaults()
{
    m_implementation->pipeline.faults().clear();
}

void ArrayServer::setLink(std::chrono::microseconds latency, std::uint64_t bytesPerSecond)
{
    m_implementation->link.set({latency, bytesPerSecond});
}

}  // namespace brevan::sim
