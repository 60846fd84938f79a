#ifndef BREVAN_TESTS_SECRETS_FAILURES_H
#define BREVAN_TESTS_SECRETS_FAILURES_H

#include <brevan/brevan.h>

#include <functional>
#include <memory>
#include <string>

namespace brevan::test {

// All secrets hold the same word, so that one search finds any of them, also in part.
constexpr const char* kPassword = "Canary7Q-password";
constexpr const char* kToken = "Canary7Q-token";
constexpr const char* kCookie = "session=Canary7Q-cookie";
constexpr const char* kChapSecret = "Canary7Qchap1";
constexpr const char* kTargetSecret = "Canary7Qchap2";
constexpr const char* kOldSecret = "Canary7Qchap3";

struct Release {
    void operator()(CDeviceManager* manager) const { CDeviceManager::releaseInstance(manager); }
};
using Manager = std::unique_ptr<CDeviceManager, Release>;

/// Runs an operation and prints, for the test to search it, what an application gets to see of it: exception and last failure.
/// Returns whether it failed.
bool tell(const std::string& what, const std::function<void()>& operation);

/// An initiator with all secrets that a record can hold.
IscsiInitiatorMO initiatorWithSecrets(const std::string& name);

CIscsiInitiatorHandler& initiators(CDeviceManager& manager);

/// These return how many of their cases did not come about, each told on standard error.
int meetBadReplies(const std::string& folder);
int meetBadServers(const std::string& folder);
int meetFaultyArray(const std::string& folder);

/// Writes transport.ini into the folder and has it used: the authority's file, and what comes behind it.
void useSettings(const std::string& folder, const std::string& authority,
                 const std::string& more = "[time]\nrequest_seconds = 2\n[limits]\nreply_megabytes = 1\n");

/// The body of a reply to a login.
std::string loginBody();

}  // namespace brevan::test

#endif
