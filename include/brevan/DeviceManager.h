#ifndef BREVAN_DEVICEMANAGER_H
#define BREVAN_DEVICEMANAGER_H

#include <brevan/Export.h>
#include <brevan/Handler.h>

#include <string>

/// Scope of the login user, sent to the array as a number. Other numbers of the array's may be cast to this type.
enum USERTYPE : int {
    USERTYPE_LOCAL = 0,  ///< a user of the array itself
    USERTYPE_LDAP = 1    ///< a user of the directory server that the array asks
};

/// One array: a session and the handlers that work under it. The first device manager of a process starts the logs and sets
/// the retry settings for all, the last one to be released stops the logs.
///
/// Threads: handlers may be fetched and used by several threads at once. One thread at a time calls the other operations of
/// one device manager, and useConnection, loginDevice and logoutDevice while no other thread runs requests. Different
/// device managers are independent.
///
/// The four session operations never throw; brevan::lastFailure() says why one of them did not return 1. Each sends at most
/// one request and blocks for it: at most the transport's connect and request limits (10 s and 60 s unless set otherwise).
/// They write lines of their own to the run log instead of "enter" and "leave", and one record each to the interface log,
/// keepAlive none.
class BREVAN_API CDeviceManager {
public:
    virtual ~CDeviceManager();

    /// Opens a session. `ip`: an IPv4 or IPv6 literal (no name); `port`: 1 to 65535. A second successful login replaces the
    /// session of the first, which stays open on the array until it expires. Returns 1: open; 0: not (an empty address,
    /// user or password, a wrong port, the network, the array's refusal, a reply without a session cookie). Where `ip` is
    /// no literal it returns what the transport library's check of addresses gave: 0 with ours, never 1. May be repeated.
    virtual int loginDevice(const std::string& ip, const unsigned int& port, const std::string& userName,
                            const std::string& password, const USERTYPE& scope) = 0;

    /// Ends the session on the array. Returns 1: ended, 0: not (there was no login, the request failed or the array
    /// refused; the session stays registered and this may be repeated).
    virtual int logoutDevice() = 0;

    /// Tells the array that the session is in use. Returns 1: the array still knows it, 0: it does not, or the request
    /// failed. May be repeated.
    virtual int keepAlive() = 0;

    /// The handler of that type, made on first request and kept: the same object every time. Null for any other number. Any
    /// thread. Throws std::bad_alloc when memory is exhausted, and nothing else.
    virtual CHandler* getHandler(HANDLERTYPE type) = 0;

    /// Adopts a session that somebody else opened: its device ID, token and cookie as the login reply gave them. Sends
    /// nothing, so it does not learn whether the array knows it; the port is not checked. Returns 1: adopted, 0: a text is
    /// empty; for an `ip` that is no literal as loginDevice does.
    virtual int useConnection(const std::string& ip, const unsigned int& port, const std::string& deviceId,
                              const std::string& token, const std::string& cookie) = 0;

    /// A new device manager without a session; end it with releaseInstance. `retryTimes`: how often an object that was just
    /// created is read again while the array cannot give it yet, and how often a refused membership change of a LUN group
    /// is repeated. `trySleepTimeMs`: the pause between, in MICROSECONDS despite its name (500000: half a second). Both
    /// count only for the first device manager of a process and hold until the last one is released. Any thread. Logs that
    /// cannot be started are no failure: it works without. Throws std::bad_alloc when memory is exhausted, and nothing
    /// else.
    static CDeviceManager* getInstance(unsigned int retryTimes = 1, unsigned int trySleepTimeMs = 500000);

    /// Forgets the session (without ending it on the array: that is logoutDevice's work), deletes the handlers and the
    /// device manager. Null is allowed. Any thread, once no other uses the device manager or its handlers.
    static void releaseInstance(CDeviceManager* manager);
};

#endif
