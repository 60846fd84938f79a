#ifndef BREVAN_SIMULATOR_FAULTSCRIPT_H
#define BREVAN_SIMULATOR_FAULTSCRIPT_H

#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace brevan::sim {

/// What happens to one request instead of its operation.
struct Fault {
    int code = 0;
    std::string text;
};

/// Faults by operation ("POST /lungroup"), each used once, in the order in which they were added. Any thread.
class FaultScript {
public:
    void add(const std::string& operation, Fault fault);
    /// The fault for the next request of this operation; nothing where it is to go through.
    std::optional<Fault> take(const std::string& operation);
    /// How many have not been used.
    std::size_t left() const;

private:
    mutable std::mutex m_mutex;
    std::map<std::string, std::deque<Fault>> m_faults;
};

}  // namespace brevan::sim

#endif
