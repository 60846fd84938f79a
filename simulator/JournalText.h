#ifndef BREVAN_SIMULATOR_JOURNALTEXT_H
#define BREVAN_SIMULATOR_JOURNALTEXT_H

#include "Journal.h"

namespace brevan::sim {

/// A request's body as it may be kept: values whose key speaks of a password, secret or token are "***", all else stays, in
/// its order. Of what is no flat JSON object only the size is told, because nobody can say where in it a secret stands.
std::string maskedBody(const std::string& body);

/// The entry as one JSON object on one line, without the line's end.
std::string journalLine(const JournalEntry& entry);

/// "2026-11-21T09:15:57.123456Z"
std::string timeText(std::chrono::system_clock::time_point time);

}  // namespace brevan::sim

#endif
