#ifndef BREVAN_EXAMPLES_ARRAYSESSION_H
#define BREVAN_EXAMPLES_ARRAYSESSION_H

// What the example programs share on the side of the array: the session, its options and why something failed. Copy it together
// with them and Console.h.

#include "Console.h"

#include <brevan/brevan.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace example {

/// What went wrong and what to do, from the library.
inline Trouble failure(int status, const std::string& what)
{
    const brevan::Failure why = brevan::lastFailure();
    std::string text = what;
    if (!why.empty()) {
        text += ": " + why.text + (why.advice.empty() ? "" : ". " + why.advice);
    }
    return Trouble{status, text};
}

/// Where the array is and who logs in.
struct Connection {
    std::string address;
    unsigned int port = 8088;
    std::string user = "admin";
    int scope = USERTYPE_LOCAL;
};

/// "admin at 192.0.2.10:8088"
inline std::string nameOf(const Connection& connection)
{
    return connection.user + " at " + connection.address + ":" + std::to_string(connection.port);
}

/// --address, --port, --user and --scope.
inline std::vector<Option> connectionOptions(Connection& connection)
{
    return {textOption("address", connection.address),
            {"port", false, [&](const std::string& value) { connection.port = number("--port", value, 65535); }},
            textOption("user", connection.user),
            {"scope", false,
             [&](const std::string& value) { connection.scope = static_cast<int>(number("--scope", value, 1000)); }}};
}

/// The exit status of a login that failed.
inline int loginStatus(int code)
{
    switch (code) {
        case brevan::FAILURE_NOT_TRUSTED:
            return kNotTrusted;
        case brevan::FAILURE_NO_CONNECTION:
        case brevan::FAILURE_TIMED_OUT:
        case brevan::FAILURE_CONNECTION_LOST:
        case brevan::FAILURE_UNUSABLE_REPLY:
            return kArrayNotThere;
        case brevan::FAILURE_REFUSED:
            return kUsage;
        case brevan::FAILURE_BAD_SETTINGS:
            return kOtherFailure;
        default:
            return kLoginRefused;
    }
}

/// The device manager, released whatever happens; a session that was opened is ended before.
class ArraySession {
public:
    ArraySession() : m_manager(CDeviceManager::getInstance()) {}
    ~ArraySession()
    {
        if (m_loggedIn) {
            m_manager->logoutDevice();
        }
        CDeviceManager::releaseInstance(m_manager);
    }
    ArraySession(const ArraySession&) = delete;
    ArraySession& operator=(const ArraySession&) = delete;

    /// Takes the password from BREVAN_PASSWORD or asks for it.
    void login(const Connection& connection)
    {
        const int result = m_manager->loginDevice(connection.address, connection.port, connection.user,
                                                  password(connection.user), static_cast<USERTYPE>(connection.scope));
        if (result != 1) {
            throw failure(loginStatus(brevan::lastFailure().code),
                          "cannot log in to " + connection.address + ":" + std::to_string(connection.port));
        }
        m_loggedIn = true;
    }

    void logout()
    {
        m_loggedIn = false;
        if (m_manager->logoutDevice() != 1) {
            throw failure(kOtherFailure, "cannot log out");
        }
    }

    CDeviceManager& manager() { return *m_manager; }

    template <class Handler>
    Handler& get(HANDLERTYPE type)
    {
        return *static_cast<Handler*>(m_manager->getHandler(type));
    }

private:
    CDeviceManager* m_manager;
    bool m_loggedIn = false;
};

/// Runs a program's work; troubles become its one line on standard error and its exit status.
template <class Work>
int runProgram(const char* name, Work work)
{
    try {
        work();
        return kDone;
    } catch (const Trouble& trouble) {
        std::cerr << name << ": " << trouble.text << "\n";
        return trouble.status;
    } catch (const std::exception&) {
        std::cerr << name << ": " << failure(kOtherFailure, "failed").text << "\n";
        return kOtherFailure;
    }
}

}  // namespace example

#endif
