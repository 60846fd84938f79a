#include "RequestPipeline.h"

#include "ApiError.h"
#include "JournalText.h"
#include "Mapping.h"
#include "Objects.h"
#include "Text.h"

#include <chrono>

namespace brevan::sim {

namespace {

constexpr std::string_view kBase = "/deviceManager/rest/";
// Stands for the device ID where a client cannot know it yet: in the login.
constexpr std::string_view kAnyDevice = "xxxx";

struct Target {
    std::string_view device;
    std::string_view path;  ///< relative to the device, begins with "/"; empty where the target is not under the base
    std::string_view query;
};

Target parseTarget(std::string_view text)
{
    Target target;
    const std::size_t question = text.find('?');
    if (question != std::string_view::npos) {
        target.query = text.substr(question + 1);
    }
    const std::string_view path = text.substr(0, question);
    const std::size_t end = startsWith(path, kBase) ? path.find('/', kBase.size()) : std::string_view::npos;
    if (end != std::string_view::npos) {
        target.device = path.substr(kBase.size(), end - kBase.size());
        target.path = path.substr(end);
    }
    return target;
}

std::string journalPath(const Target& target)
{
    std::string path(target.path);
    if (!target.query.empty()) {
        path += "?" + std::string(target.query);
    }
    return percentDecoded(path).value_or(path);
}

Router allRoutes()
{
    Router router;
    for (const auto add :
         {addSessionRoutes, addPoolRoutes, addLunRoutes, addSnapshotRoutes, addLunGroupRoutes, addHostRoutes,
          addHostGroupRoutes, addMappingViewRoutes, addIscsiInitiatorRoutes, addFcInitiatorRoutes, addPortRoutes}) {
        add(router);
    }
    return router;
}

WireReply wireReply(unsigned status, const Answer& answer)
{
    // A description may quote bytes of the client that are no UTF-8.
    const std::string text = nlohmann::json(answer.text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    const std::string error = "\"error\":{\"code\":" + std::to_string(answer.code) + ",\"description\":" + text + "}}";
    std::string body = "{";
    if (!answer.data.empty()) {
        body.reserve(answer.data.size() + error.size() + 16);
        body.append("\"data\":").append(answer.data).append(",");
    }
    body += error;
    return {status, std::move(body), {}};
}

std::string logLine(const JournalEntry& entry)
{
    return entry.method + " " + entry.path + " -> " + std::to_string(entry.code) + " (" +
           std::to_string(entry.duration.count()) + " us)" + (entry.fault.empty() ? "" : " fault: " + entry.fault);
}

ApiError noSession()
{
    return {kNoSession, "The session is unknown or has expired: log in again."};
}

/// What the client wrote into a log line must not begin a line of its own.
std::string oneLine(std::string text)
{
    for (char& character : text) {
        if (hasControlCharacter(std::string_view(&character, 1))) {
            character = '?';
        }
    }
    return text;
}

}  // namespace

WireReply errorReply(unsigned status, int code, const std::string& text)
{
    return wireReply(status, {code, text, "{}"});
}

RequestPipeline::RequestPipeline(Array& array)
    : m_array(array), m_router(allRoutes()), m_journal(array.options.journalEntries)
{
}

WireReply RequestPipeline::handle(const WireRequest& request)
{
    const auto started = std::chrono::steady_clock::now();
    Passage passage = begin(request.connection);
    passage.entry.method = request.method;
    passage.entry.body = maskedBody(request.body);
    Answer result;
    try {
        result = answer(request, passage);
    } catch (const ApiError& error) {
        result = {error.code(), error.what(), "{}"};
    } catch (const std::exception& error) {
        result = {kInternal, std::string("The array could not do it: ") + error.what(), "{}"};
    }
    passage.entry.code = result.code;
    WireReply reply = wireReply(result.code == kUnknownOperation ? 404 : 200, result);
    reply.headers = std::move(passage.headers);
    if (passage.fault) {
        reply = spoiled(std::move(reply), *passage.fault);
    }
    end(passage, reply, started);
    return reply;
}

WireReply RequestPipeline::refuse(const Refusal& refusal)
{
    const auto started = std::chrono::steady_clock::now();
    constexpr unsigned kUnavailable = 503;
    Passage passage = begin(refusal.connection);
    passage.entry.code = refusal.status == kUnavailable ? kOverloaded : kBadHttp;
    WireReply reply = errorReply(refusal.status, passage.entry.code, refusal.text);
    end(passage, reply, started);
    return reply;
}

RequestPipeline::Passage RequestPipeline::begin(std::uint64_t connection)
{
    Passage passage;
    passage.entry.number = m_journal.arrive();
    passage.entry.time = std::chrono::system_clock::now();
    passage.entry.connection = connection;
    return passage;
}

void RequestPipeline::end(Passage& passage, const WireReply& reply, std::chrono::steady_clock::time_point begin)
{
    JournalEntry& entry = passage.entry;
    entry.status = reply.status;
    entry.duration = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin);
    if (m_array.options.requestLog) {
        m_array.options.requestLog(oneLine(logLine(entry)));
    }
    m_journal.add(std::move(entry));
}

Answer RequestPipeline::answer(const WireRequest& request, Passage& passage)
{
    JournalEntry& entry = passage.entry;
    const Target target = parseTarget(request.target);
    entry.path = target.path.empty() ? request.target : journalPath(target);
    const RouteMatch match = m_router.find(request.method, target.path);
    if (match.route == nullptr) {
        throw ApiError(kUnknownOperation, "The array has no operation " + request.method + " " + inQuotes(entry.path) + ".");
    }
    entry.operation = match.route->operation();
    passage.fault = m_faults.take(entry.operation, entry.number);
    std::unique_lock<std::mutex> lock(m_mutex);
    const SessionStore::Session* session = m_array.sessions.find(request.token, request.cookie);
    entry.session = session == nullptr ? 0 : session->number;
    if (passage.fault) {
        entry.fault = faultText(*passage.fault);
        if (happensInstead(passage.fault->kind)) {
            return faultInstead(request, *passage.fault);
        }
    }
    if (match.route->needsSession && session == nullptr) {
        throw noSession();
    }
    if (target.device != m_array.options.deviceId && (match.route->needsSession || target.device != kAnyDevice)) {
        throw ApiError(kUnknownDevice, "The device " + inQuotes(target.device) + " is not this array.");
    }
    RequestContext context{
        m_array, request, RequestQuery(target.query), RequestBody(request.body), match.id, {}, false, {}, entry.session, {}};
    Answer result = runAll(match.route->handler, context, lock);
    entry.session = context.session;
    passage.headers = std::move(context.replyHeaders);
    return result;
}

/// What the client gets to see of an HTTP status or a reset, no answer of the array knows.
Answer RequestPipeline::faultInstead(const WireRequest& request, const Fault& fault)
{
    if (fault.kind == FaultKind::kError) {
        throw ApiError(static_cast<int>(fault.amount), fault.text);
    }
    if (fault.kind == FaultKind::kSessionGone) {
        m_array.sessions.close(request.token, request.cookie);
        throw noSession();
    }
    return {};
}

Answer RequestPipeline::run(const Handler& handler, RequestContext& context)
{
    bool driverTouched = false;
    try {
        Transaction transaction(m_array.database);
        Answer result = handler(context);
        if (context.exposureChanged) {
            updateLunNumbers(m_array.database);
            driverTouched = true;
            followExposure(m_array.database);
        }
        transaction.commit();
        driverTouched = false;
        for (const auto& step : context.afterwards) {
            step();
        }
        return result;
    } catch (...) {
        // The database is back at what it was before; what is exposed must follow it.
        if (driverTouched) {
            try {
                followExposure(m_array.database);
            } catch (const std::exception&) {
                // The client gets the first failure; the driver tries again with the next change.
            }
        }
        throw;
    }
}

Answer RequestPipeline::runAll(const Handler& handler, RequestContext& context, std::unique_lock<std::mutex>& lock)
{
    Answer result = run(handler, context);
    if (!context.longWork) {
        return result;
    }
    const LongWork longWork = *context.longWork;
    context.afterwards.clear();
    std::exception_ptr failure;
    lock.unlock();
    try {
        longWork.work();
    } catch (...) {
        failure = std::current_exception();
    }
    lock.lock();
    return run([&](RequestContext& inner) { return longWork.finish(inner, failure); }, context);
}

void RequestPipeline::followExposure(Database& database)
{
    try {
        m_array.exposure->apply(readExposurePlan(database));
    } catch (const std::exception& error) {
        throw ApiError(kExposureFailed, std::string("The volumes could not be exposed: ") + error.what());
    }
}

void RequestPipeline::perform(const std::function<void(RequestContext&)>& work)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const WireRequest none;
    RequestContext context{m_array, none, {}, {}, {}, {}, false, {}, 0, {}};
    runAll(
        [&work](RequestContext& inner) {
            work(inner);
            return Answer();
        },
        context, lock);
}

void RequestPipeline::alone(const std::function<void(Array&)>& work)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    work(m_array);
}

void RequestPipeline::exposeAll()
{
    alone([this](Array& array) { followExposure(array.database); });
}

FaultScript& RequestPipeline::faults()
{
    return m_faults;
}

Journal& RequestPipeline::journal()
{
    return m_journal;
}

const Router& RequestPipeline::router() const
{
    return m_router;
}

}  // namespace brevan::sim
