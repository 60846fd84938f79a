#include "ControlPort.h"

#include "Array.h"
#include "Chain.h"
#include "JournalText.h"
#include "Link.h"
#include "RequestPipeline.h"
#include "Text.h"

#include <algorithm>
#include <stdexcept>

namespace brevan::sim {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

struct Call {
    RequestPipeline& pipeline;
    Link& link;
    const WireRequest& request;
    std::string query;
};

struct ControlRoute {
    const char* method;
    const char* path;
    WireReply (*handler)(const Call& call);
    const char* help;
};

WireReply jsonReply(const ordered_json& body)
{
    return {200, body.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n", {}};
}

WireReply failure(unsigned status, const std::string& text)
{
    WireReply reply = jsonReply({{"error", text}});
    reply.status = status;
    return reply;
}

WireReply textReply(const std::string& text, const std::string& type)
{
    WireReply reply{200, text, {}};
    reply.contentType = type;
    return reply;
}

/// The value of the one parameter that a path may have; empty where it is not given.
std::string parameter(const Call& call, const std::string& name)
{
    if (!call.query.empty() && !startsWith(call.query, name + "=")) {
        throw std::invalid_argument("The parameters " + inQuotes(call.query) + " are not of the form " + name + "=VALUE.");
    }
    return call.query.empty() ? std::string() : call.query.substr(name.size() + 1);
}

WireReply tellFaults(const Call& call)
{
    const FaultReport report = call.pipeline.faults().report();
    std::size_t left = 0;
    ordered_json fired = ordered_json::array();
    ordered_json waiting = ordered_json::array();
    for (const FiredFault& fault : report.fired) {
        fired.push_back({{"operation", fault.operation}, {"fault", fault.fault}, {"request", fault.request}});
    }
    for (const WaitingFaults& faults : report.waiting) {
        left += faults.faults.size();
        waiting.push_back({{"operation", faults.operation}, {"do", faults.faults}});
    }
    return jsonReply({{"left", left}, {"fired", fired}, {"waiting", waiting}});
}

WireReply addFaults(const Call& call)
{
    call.pipeline.faults().add(readFaultScript(call.request.body, call.pipeline.router()));
    return tellFaults(call);
}

WireReply clearFaults(const Call& call)
{
    call.pipeline.faults().clear();
    return tellFaults(call);
}

WireReply tellJournal(const Call& call)
{
    const std::string after = parameter(call, "after");
    const std::optional<std::uint64_t> number = after.empty() ? 0 : decimal(after);
    if (!number) {
        throw std::invalid_argument("The value of after is not the number of a request: " + inQuotes(after) + ".");
    }
    std::string text = "{\"requests\": " + std::to_string(call.pipeline.journal().count()) + ", \"entries\": [";
    const char* separator = "\n";
    for (const JournalEntry& entry : call.pipeline.journal().entries(*number)) {
        text += separator + journalLine(entry);
        separator = ",\n";
    }
    return {200, text + "\n]}\n", {}};
}

WireReply clearJournal(const Call& call)
{
    call.pipeline.journal().clear();
    return tellJournal(call);
}

WireReply tellLink(const Call& call)
{
    const Link::Speed speed = call.link.speed();
    return jsonReply({{"latency", durationText(speed.latency)}, {"bandwidth", rateText(speed.bytesPerSecond)}});
}

void setPart(Link::Speed& speed, const std::string& key, const json& value)
{
    const std::string text = value.is_string() ? value.get<std::string>() : "(no text)";
    const auto latency = key == "latency" ? readDuration(text) : std::nullopt;
    const auto rate = key == "bandwidth" ? readRate(text) : std::nullopt;
    if (!latency && !rate) {
        throw std::invalid_argument(
            "The link has no " + inQuotes(key) + " of " + inQuotes(text) +
            R"(: "latency" is a time such as "5ms", "bandwidth" a rate such as "1MB/s" or "unlimited".)");
    }
    speed.latency = latency.value_or(speed.latency);
    speed.bytesPerSecond = rate.value_or(speed.bytesPerSecond);
}

WireReply setLink(const Call& call)
{
    const json body = json::parse(call.request.body, nullptr, false);
    if (!body.is_object()) {
        throw std::invalid_argument(R"(The body must be a JSON object, such as {"latency": "5ms"}.)");
    }
    Link::Speed speed = call.link.speed();
    for (const auto& [key, value] : body.items()) {
        setPart(speed, key, value);
    }
    call.link.set(speed);
    return tellLink(call);
}

struct ChainAs {
    const char* name;
    const char* type;
    ChainFormat format;
};

constexpr ChainAs kChainFormats[] = {{"text", "text/plain", ChainFormat::kText},
                                     {"json", "application/json", ChainFormat::kJson},
                                     {"dot", "text/vnd.graphviz", ChainFormat::kDot}};

/// What the parameter names, else what the Accept header names, else text.
const ChainAs& chainFormat(const Call& call)
{
    const std::string name = parameter(call, "format");
    for (const ChainAs& format : kChainFormats) {
        const bool accepted = call.request.accept.find(format.type) != std::string::npos;
        if (name.empty() ? accepted : name == format.name) {
            return format;
        }
    }
    if (!name.empty()) {
        throw std::invalid_argument("The chain's format is text, json or dot, not " + inQuotes(name) + ".");
    }
    return kChainFormats[0];
}

WireReply tellChain(const Call& call)
{
    const ChainAs& format = chainFormat(call);
    MappingChain chain;
    call.pipeline.alone([&chain](Array& array) { chain = readChain(array.database); });
    return textReply(written(chain, format.format), std::string(format.type) + "; charset=utf-8");
}

WireReply tellRoutes(const Call& call);

constexpr ControlRoute kRoutes[] = {
    {"GET", "/", tellRoutes, "this list"},
    {"GET", "/faults", tellFaults, "which faults have fired and which are left"},
    {"POST", "/faults", addFaults, "add a fault script"},
    {"DELETE", "/faults", clearFaults, "forget all faults"},
    {"GET", "/journal", tellJournal, "the latest requests; ?after=NUMBER: only those after that one"},
    {"DELETE", "/journal", clearJournal, "forget them; numbers begin at 1 again"},
    {"GET", "/link", tellLink, "latency and bandwidth"},
    {"PUT", "/link", setLink, R"(change them: {"latency": "5ms", "bandwidth": "1MB/s"})"},
    {"GET", "/chain", tellChain, "the mapping chain; ?format=text|json|dot"},
};

WireReply tellRoutes(const Call&)
{
    std::string text;
    for (const ControlRoute& route : kRoutes) {
        const std::string name = std::string(route.method) + " " + route.path;
        text += name + std::string(18 - name.size(), ' ') + route.help + "\n";
    }
    return textReply(text, "text/plain; charset=utf-8");
}

/// A page in a browser of this machine can reach loopback under a name of its own; such a name stands in its requests.
bool isMeantForLoopback(const std::string& host)
{
    const std::string name = host.substr(0, host.rfind(':'));
    return name == "127.0.0.1" || name == "localhost";
}

WireReply routed(const Call& call, const std::string& path)
{
    std::string methods;
    for (const ControlRoute& route : kRoutes) {
        if (path == route.path && call.request.method == route.method) {
            return route.handler(call);
        }
        if (path == route.path) {
            methods += std::string(methods.empty() ? "" : ", ") + route.method;
        }
    }
    if (methods.empty()) {
        return failure(404, "The control port has no path " + inQuotes(path) + ": GET / lists what there is.");
    }
    WireReply reply = failure(405, inQuotes(path) + " takes " + methods + ".");
    reply.headers.emplace_back("Allow", methods);
    return reply;
}

}  // namespace

ControlPort::ControlPort(RequestPipeline& pipeline, Link& link) : m_pipeline(pipeline), m_link(link) {}

WireReply ControlPort::answer(const WireRequest& request)
{
    if (!isMeantForLoopback(request.host)) {
        return failure(403, "The control port is for this machine: call it 127.0.0.1 or localhost.");
    }
    const std::size_t question = std::min(request.target.find('?'), request.target.size());
    const std::string query = question < request.target.size() ? request.target.substr(question + 1) : std::string();
    try {
        return routed({m_pipeline, m_link, request, query}, request.target.substr(0, question));
    } catch (const std::invalid_argument& error) {
        return failure(400, error.what());
    } catch (const std::exception& error) {
        return failure(500, error.what());
    }
}

WireReply ControlPort::refuse(const Refusal& refusal)
{
    return failure(refusal.status, refusal.text);
}

}  // namespace brevan::sim
