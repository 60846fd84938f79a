#ifndef BREVAN_SIMULATOR_FAULTSCRIPT_H
#define BREVAN_SIMULATOR_FAULTSCRIPT_H

#include "Fault.h"
#include "FaultReport.h"

#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace brevan::sim {

class Router;

/// What is to happen to the next requests of one operation ("POST /lungroup").
struct OperationFaults {
    std::string operation;
    std::vector<Fault> faults;
};

/// The script as clients write it: {"operation": "POST /lungroup", "do": ["error 1077949006", "pass"]}, or a list of these.
/// Whatever is wrong in any place of it is a std::invalid_argument that says what and where.
std::vector<OperationFaults> readFaultScript(const std::string& text, const Router& router);

/// Faults by operation, each used once, in the order in which they were added. Any thread.
class FaultScript {
public:
    /// All or nothing: more than can be kept are a std::invalid_argument.
    void add(const std::vector<OperationFaults>& script);
    /// The fault for this request of this operation; nothing where it is to go through.
    std::optional<Fault> take(const std::string& operation, std::uint64_t request);
    /// How many have not been used.
    std::size_t left() const;
    FaultReport report() const;
    /// Forgets those that are left and those that have fired.
    void clear();

private:
    std::size_t count() const;

    mutable std::mutex m_mutex;
    std::map<std::string, std::deque<Fault>> m_faults;
    std::deque<FiredFault> m_fired;
};

}  // namespace brevan::sim

#endif
