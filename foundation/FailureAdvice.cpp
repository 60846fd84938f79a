#include "foundation/FailureState.h"

#include <brevan/LastFailure.h>

#include <RestRequest.h>

namespace brevan {
namespace {

static_assert(static_cast<int>(FAILURE_UNKNOWN_SESSION) == REST_UNKNOWN_SESSION);
static_assert(static_cast<int>(FAILURE_AMBIGUOUS_SESSION) == REST_AMBIGUOUS_SESSION);
static_assert(static_cast<int>(FAILURE_BAD_PATH) == REST_BAD_PATH);
static_assert(static_cast<int>(FAILURE_BAD_SETTINGS) == REST_BAD_SETTINGS);
static_assert(static_cast<int>(FAILURE_NO_CONNECTION) == REST_NO_CONNECTION);
static_assert(static_cast<int>(FAILURE_NOT_TRUSTED) == REST_NOT_TRUSTED);
static_assert(static_cast<int>(FAILURE_TIMED_OUT) == REST_TIMED_OUT);
static_assert(static_cast<int>(FAILURE_CONNECTION_LOST) == REST_CONNECTION_LOST);
static_assert(static_cast<int>(FAILURE_UNUSABLE_REPLY) == REST_UNUSABLE_REPLY);
static_assert(static_cast<int>(FAILURE_REPLY_TOO_LARGE) == REST_REPLY_TOO_LARGE);

struct Advice {
    int code;
    const char* text;
};

constexpr Advice kAdvice[] = {
    {FAILURE_UNKNOWN_SESSION, "Log in first, or again."},
    {FAILURE_AMBIGUOUS_SESSION, "Release one of the device managers and get a new one."},
    {FAILURE_BAD_PATH,
     "Use texts in UTF-8, and IDs and names without control characters and without \"..\" between slashes."},
    {FAILURE_BAD_SETTINGS, "Correct transport.ini; the run log names the file, the setting and what it may be."},
    {FAILURE_NO_CONNECTION, "Check the array's address and port, and that it is running and reachable from this host."},
    {FAILURE_NOT_TRUSTED,
     "Set ca_file, server_name or a pin in transport.ini so that the array's certificate can be verified."},
    {FAILURE_TIMED_OUT, "Check the network and the array's load; read what is there before repeating a change."},
    {FAILURE_CONNECTION_LOST, "Read what is there before repeating a change."},
    {FAILURE_UNUSABLE_REPLY, "Check that address and port are those of the array's management interface."},
    {FAILURE_REPLY_TOO_LARGE, "Ask for fewer records (rangeCount), or raise the reply limit in transport.ini."},
    {FAILURE_SESSION_EXPIRED, "Log in again."},
    {1077949006, "The object was just created; read it again in a moment."},
};

}  // namespace

const char* failureAdvice(int code) noexcept
{
    for (const Advice& advice : kAdvice) {
        if (advice.code == code) {
            return advice.text;
        }
    }
    return "";
}

}  // namespace brevan
