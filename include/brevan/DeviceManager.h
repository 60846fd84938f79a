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
/// Threads: one thread at a time calls the operations of one device manager; its handlers, once fetched, may be used from
/// several. Different device managers are independent. Do not call useConnection, loginDevice or logoutDevice while another
/// thread runs requests.
///
/// The session operations never throw; brevan::lastFailure() says why one of them did not return 1.
class BREVAN_API CDeviceManager {
public:
    virtual ~CDeviceManager();

    /// Opens a session. `ip`: an IPv4 or IPv6 literal (no name); `port`: 1 to 65535. A second successful login replaces the
    /// session of the first. Returns 1: open; 0: not (a parameter, the network, the array's refusal, a reply without a
    /// session cookie). One request.
    virtual int loginDevice(const std::string& ip, const unsigned int& port, const std::string& userName,
                            const std::string& password, const USERTYPE& scope) = 0;

    /// Ends the session on the array. Returns 1: ended, 0: not (a request failed or the array refused; the session stays
    /// registered). One request.
    virtual int logoutDevice() = 0;

    /// Tells the array that the session is in use. Returns 1: the array still knows it, 0: not. Writes no interface record.
    virtual int keepAlive() = 0;

    /// The handler of that type, made on first request and kept: the same object every time. Null for any other number.
    virtual CHandler* getHandler(HANDLERTYPE type) = 0;

    /// Adopts a session that somebody else opened: its device ID, token and cookie as the login reply gave them. Sends
    /// nothing; the port is not checked. Returns 1: adopted, 0: a parameter is empty or `ip` is no address.
    virtual int useConnection(const std::string& ip, const unsigned int& port, const std::string& deviceId,
                              const std::string& token, const std::string& cookie) = 0;

    /// A new device manager without a session; end it with releaseInstance.
    /// `retryTimes`: how often an object that was just created is read again while the array cannot give it yet, and how
    /// often a refused membership change of a LUN group is repeated. `trySleepTimeMs`: the pause between, in MICROSECONDS
    /// despite its name (500000: half a second). Both count only for the first device manager of a process and hold until
    /// the last one is released.
    static CDeviceManager* getInstance(unsigned int retryTimes = 1, unsigned int trySleepTimeMs = 500000);

    /// Forgets the session (without ending it on the array: that is logoutDevice's work), deletes the handlers and the
    /// device manager. Null is allowed.
    static void releaseInstance(CDeviceManager* manager);
};

#endif
