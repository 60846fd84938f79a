#include "FaultScript.h"

#include "Router.h"
#include "Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <stdexcept>

namespace brevan::sim {

namespace {

using nlohmann::json;

constexpr std::size_t kMostFaults = 10000;

/// The operation of the array that is meant; a concrete path is not one, but tells which one was meant.
std::string checkedOperation(const std::string& operation, const Router& router)
{
    if (router.hasOperation(operation)) {
        return operation;
    }
    const std::size_t blank = std::min(operation.find(' '), operation.size());
    const std::string path = blank < operation.size() ? operation.substr(blank + 1) : std::string();
    const RouteMatch match = router.find(operation.substr(0, blank), path);
    const std::string hint = match.route == nullptr ? " (an operation is a method and a path, such as GET /lun/{id})"
                                                    : ": write " + inQuotes(match.route->operation());
    throw std::invalid_argument("the array has no operation " + inQuotes(operation) + hint);
}

const json& member(const json& step, const char* key, bool rightType)
{
    if (!rightType) {
        throw std::invalid_argument(
            std::string("a step needs the member ") + key +
            R"(: "operation" is text such as "POST /lungroup", "do" a list of texts that is not empty)");
    }
    return step.at(key);
}

OperationFaults readStep(const json& step, const Router& router)
{
    if (!step.is_object()) {
        throw std::invalid_argument(R"(a step must be an object with "operation" and "do")");
    }
    for (const auto& item : step.items()) {
        if (item.key() != "operation" && item.key() != "do") {
            throw std::invalid_argument("a step has no member " + inQuotes(item.key()) + R"(, only "operation" and "do")");
        }
    }
    const bool named = step.contains("operation") && step["operation"].is_string();
    OperationFaults read{checkedOperation(member(step, "operation", named), router), {}};
    const bool listed = step.contains("do") && step["do"].is_array() && !step["do"].empty();
    for (const json& line : member(step, "do", listed)) {
        read.faults.push_back(readFault(line.is_string() ? line.get<std::string>() : "(no text)"));
    }
    return read;
}

json parsed(const std::string& text)
{
    try {
        return json::parse(text);
    } catch (const json::parse_error& error) {
        throw std::invalid_argument("it is not JSON at byte " + std::to_string(error.byte));
    }
}

}  // namespace

std::vector<OperationFaults> readFaultScript(const std::string& text, const Router& router)
{
    std::vector<OperationFaults> script;
    std::size_t step = 1;
    try {
        const json document = parsed(text);
        if (!document.is_array()) {
            return {readStep(document, router)};
        }
        for (const json& item : document) {
            script.push_back(readStep(item, router));
            ++step;
        }
    } catch (const std::invalid_argument& error) {
        throw std::invalid_argument("The fault script is refused, at step " + std::to_string(step) + ": " + error.what() +
                                    ".");
    }
    return script;
}

void FaultScript::add(const std::vector<OperationFaults>& script)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t all = count();
    for (const OperationFaults& step : script) {
        all += step.faults.size();
    }
    if (all > kMostFaults) {
        throw std::invalid_argument("The fault script is refused: more than " + std::to_string(kMostFaults) +
                                    " faults would be waiting.");
    }
    for (const OperationFaults& step : script) {
        if (step.faults.empty()) {
            continue;
        }
        std::deque<Fault>& faults = m_faults[step.operation];
        faults.insert(faults.end(), step.faults.begin(), step.faults.end());
    }
}

std::optional<Fault> FaultScript::take(const std::string& operation, std::uint64_t request)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_faults.find(operation);
    if (found == m_faults.end()) {
        return std::nullopt;
    }
    Fault fault = std::move(found->second.front());
    found->second.pop_front();
    if (found->second.empty()) {
        m_faults.erase(found);
    }
    m_fired.push_back({operation, faultText(fault), request});
    if (m_fired.size() > kMostFaults) {
        m_fired.pop_front();
    }
    return fault;
}

std::size_t FaultScript::left() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return count();
}

std::size_t FaultScript::count() const
{
    std::size_t count = 0;
    for (const auto& [operation, faults] : m_faults) {
        count += faults.size();
    }
    return count;
}

FaultReport FaultScript::report() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    FaultReport report{{m_fired.begin(), m_fired.end()}, {}};
    for (const auto& [operation, faults] : m_faults) {
        WaitingFaults waiting{operation, {}};
        for (const Fault& fault : faults) {
            waiting.faults.push_back(faultText(fault));
        }
        report.waiting.push_back(std::move(waiting));
    }
    return report;
}

void FaultScript::clear()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_faults.clear();
    m_fired.clear();
}

}  // namespace brevan::sim
