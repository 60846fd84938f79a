#ifndef BREVAN_LASTFAILURE_H
#define BREVAN_LASTFAILURE_H

#include <brevan/Export.h>

#include <string>

namespace brevan {

/// Codes of Failure that do not come from the array. Numbers from 1001 on are the transport's.
enum FailureCode : int {
    FAILURE_NONE = 0,
    FAILURE_REFUSED = 1,             ///< a parameter, a missing object or a step on this host; the text says which
    FAILURE_UNKNOWN_SESSION = 1001,  ///< not logged in
    FAILURE_AMBIGUOUS_SESSION = 1002,
    FAILURE_BAD_PATH = 1003,         ///< an ID or name that cannot stand in a URL, or a text that is not UTF-8
    FAILURE_BAD_SETTINGS = 1004,     ///< transport.ini is wrong; the run log names file and line
    FAILURE_NO_CONNECTION = 1005,    ///< the array cannot be reached
    FAILURE_NOT_TRUSTED = 1006,      ///< the array's certificate or name was not accepted
    FAILURE_TIMED_OUT = 1007,        ///< no complete reply in time; the array may have done what was asked
    FAILURE_CONNECTION_LOST = 1008,  ///< the connection ended early; the array may have done what was asked
    FAILURE_UNUSABLE_REPLY = 1009,   ///< what answered does not speak the array's language
    FAILURE_REPLY_TOO_LARGE = 1010,
    FAILURE_SESSION_EXPIRED = -401  ///< the array's own code for a session that is unknown or has expired
};

/// Why something failed. Holds no secret: neither password, token nor cookie.
struct BREVAN_API Failure {
    std::string operation;  ///< the operation in which it went wrong, e.g. "createHost" within attachLunToHost
    int code = 0;           ///< a FailureCode, else the array's code
    std::string text;       ///< what went wrong, as the run log has it or in more words
    std::string advice;     ///< what to do about it, one sentence; empty where nothing general can be said

    bool empty() const { return operation.empty(); }
};

/// What went wrong in the newest outermost operation of the calling thread (an operation that the application called
/// itself, not one that another operation called). Empty when it went well. Tells also of failures that the operation's
/// result hides: an attach that returns 0, a membership change that was refused, an empty disk path. Where several things
/// went wrong it is the first, which is mostly the cause of the others; of several tries of one request it is the last.
/// Each thread has its own. Does not throw save for lack of memory.
BREVAN_API Failure lastFailure();

}  // namespace brevan

#endif
