#include "FaultScript.h"

namespace brevan::sim {

void FaultScript::add(const std::string& operation, Fault fault)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_faults[operation].push_back(std::move(fault));
}

std::optional<Fault> FaultScript::take(const std::string& operation)
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
    return fault;
}

std::size_t FaultScript::left() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t count = 0;
    for (const auto& [operation, faults] : m_faults) {
        count += faults.size();
    }
    return count;
}

}  // namespace brevan::sim
