#ifndef BREVAN_SIMULATOR_FAULTREPORT_H
#define BREVAN_SIMULATOR_FAULTREPORT_H

#include <cstdint>
#include <string>
#include <vector>

namespace brevan::sim {

struct FiredFault {
    std::string operation;
    std::string fault;          ///< as it stood in the script
    std::uint64_t request = 0;  ///< its number in the journal
};

struct WaitingFaults {
    std::string operation;
    std::vector<std::string> faults;
};

/// What has become of the faults that were asked for.
struct FaultReport {
    std::vector<FiredFault> fired;  ///< in their order, at most the latest 10000
    std::vector<WaitingFaults> waiting;
};

}  // namespace brevan::sim

#endif
