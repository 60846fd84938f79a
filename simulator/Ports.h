#ifndef BREVAN_SIMULATOR_PORTS_H
#define BREVAN_SIMULATOR_PORTS_H

#include "Array.h"

namespace brevan::sim {

/// The ports with which an array is delivered: two Fibre Channel, two FCoE and three Ethernet ports, one of these down.
void addFactoryPorts(Array& array);

/// The name of the array's iSCSI target.
std::string targetName(const ServerOptions& options);

}  // namespace brevan::sim

#endif
