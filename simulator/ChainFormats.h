#ifndef BREVAN_SIMULATOR_CHAINFORMATS_H
#define BREVAN_SIMULATOR_CHAINFORMATS_H

#include "Chain.h"

namespace brevan::sim {

std::string chainText(const MappingChain& chain);
std::string chainJson(const MappingChain& chain);
std::string chainDot(const MappingChain& chain);

}  // namespace brevan::sim

#endif
