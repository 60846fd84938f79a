#ifndef BREVAN_Q7COMMON_SETTINGS_H
#define BREVAN_Q7COMMON_SETTINGS_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace brevan {

/// How the array's certificate is checked.
struct TlsSettings {
    bool verify = true;
    std::string caFile;      ///< empty: the system's trust store
    std::string pin;         ///< as libcurl wants it ("sha256//..."), empty: none
    std::string serverName;  ///< the name in the certificate, empty: the address
};

/// One reading of transport.ini. Never changed after it was made, so that any thread may hold it.
struct Settings {
    TlsSettings tls;
    std::map<std::string, TlsSettings> tlsOfHost;  ///< arrays with a [tls ADDRESS] section
    std::chrono::milliseconds connectTime{};
    std::chrono::milliseconds requestTime{};
    std::chrono::milliseconds commandTime{};
    std::size_t replyBytes = 0;
    std::size_t commandOutputBytes = 0;
    std::string proxy;  ///< empty: none, whatever the environment says

    std::string file;                   ///< where they come from, empty: nowhere, all defaults
    std::string source;                 ///< what was read; equal sources give equal settings
    std::vector<std::string> problems;  ///< not empty: these settings must not be used; a line each, for the run log
    std::uint64_t generation = 0;       ///< differs between readings that differ

    const TlsSettings& tlsFor(const std::string& host) const;
    bool isUsable() const { return problems.empty(); }
};

using SettingsPointer = std::shared_ptr<const Settings>;

/// The settings in force. They are read when they are first needed, and until they are usable at every call. Never null;
/// throws std::bad_alloc only.
SettingsPointer currentSettings();

/// Reads the file again, which happens at each login. Settings that are not usable are returned, but do not replace usable
/// ones: sessions that are open go on under those.
SettingsPointer refreshedSettings();

/// Writes the problems to the run log, one line each.
void logProblems(const Settings& settings);

/// Taken and given back around a fork, so that the child finds the store consistent.
void lockSettingsForFork();
void unlockSettingsAfterFork();

}  // namespace brevan

#endif
