#ifndef BREVAN_Q7COMMON_COMMANDCATALOGUE_H
#define BREVAN_Q7COMMON_COMMANDCATALOGUE_H

#include "RestToMgr.h"

namespace brevan {

/// Whether this is one of the commands that the SDK defines: number, type and command line as it defines them, to the
/// letter. Nothing else runs: a command line that came from elsewhere must not reach a shell, least of all through sudo.
bool isKnownCommand(const RunShellCmdInfo& command);

}  // namespace brevan

#endif
