// The simulated array with each of its faults at each operation whose request or reply holds a secret.
#include "Failures.h"

#include "simulator/ArrayServer.h"

#include <iostream>
#include <vector>

namespace brevan::test {
namespace {

const std::vector<std::string> kFaults = {"error 1077936859", "status 503",  "stall 3s", "reset before",
                                          "reset after",      "cut 1",       "cut 40",   "garbage",
                                          "wrong types",      "session gone"};

class FaultyArray {
public:
    explicit FaultyArray(const std::string& folder) : m_array(options(folder))
    {
        m_array.start();
        useSettings(folder, m_array.caFile());
    }

    int login(const std::string& password = kPassword)
    {
        return m_manager->loginDevice(m_array.address(), m_array.port(), "admin", password, USERTYPE_LOCAL);
    }

    /// The operation with each fault; a new session before each, because some faults end it.
    int meet(const std::string& request, const std::function<void()>& operation)
    {
        int missing = 0;
        for (const std::string& fault : kFaults) {
            openSession();
            m_array.addFaults(R"({"operation": ")" + request + R"(", "do": [")" + fault + "\"]}");
            tell(request + ", " + fault, operation);
            if (m_array.faultsLeft() != 0) {
                ++missing;
                std::cerr << "secrets_failures: the fault was not used: " << request << ", " << fault << "\n";
            }
            m_array.clearFaults();
        }
        return missing;
    }

    /// A fault before may have closed the connection while a login was on its way; a login is never sent twice by itself.
    void openSession()
    {
        for (int tries = 0; tries < 5 && login() != 1; ++tries) {
        }
    }

    /// Everything that goes well, and what the array refuses by itself.
    int meetNoFault()
    {
        const bool wrongPassword = tell("wrong password", [this] { login("Canary7Q-wrong"); });
        const bool good = login() == 1;
        const bool unknownSession = tell("unknown session", [this] {
            m_manager->useConnection(m_array.address(), m_array.port(), m_array.deviceId(), kToken, kCookie);
            m_manager->keepAlive();
        });
        const bool newSession = login() == 1;
        const bool created = !tell("initiator", [this] { create("iqn.2020-01.lab:good"); });
        const bool refused = tell("initiator again", [this] { create("iqn.2020-01.lab:good"); });
        const bool wrongOld = tell("wrong old secret", [this] { modify("iqn.2020-01.lab:good"); });
        const bool isAll = wrongPassword && good && unknownSession && newSession && created && refused && wrongOld;
        std::cerr << (isAll ? "" : "secrets_failures: the array did not answer as it should without faults\n");
        return isAll ? 0 : 1;
    }

    void create(const std::string& name)
    {
        auto initiator = initiatorWithSecrets(name);
        initiators(*m_manager).createIscsiInitiator(initiator);
    }

    void modify(const std::string& name)
    {
        auto initiator = initiatorWithSecrets(name);
        initiators(*m_manager).modifyIscsiInitiator(initiator);
    }

    CDeviceManager& manager() { return *m_manager; }

private:
    static sim::ServerOptions options(const std::string& folder)
    {
        sim::ServerOptions options;
        options.password = kPassword;
        options.caFile = folder + "/array-ca.pem";
        return options;
    }

    sim::ArrayServer m_array;
    Manager m_manager{CDeviceManager::getInstance(0, 1)};
};

}  // namespace

int meetFaultyArray(const std::string& folder)
{
    FaultyArray array(folder);
    int number = 0;
    int missing = array.meetNoFault();
    missing += array.meet("POST /sessions", [&] { array.login(); });
    missing += array.meet("GET /server/logininfo", [&] { array.manager().keepAlive(); });
    missing += array.meet("DELETE /sessions", [&] { array.manager().logoutDevice(); });
    missing += array.meet("POST /iscsi_initiator", [&] { array.create("iqn.2020-01.lab:" + std::to_string(++number)); });
    missing += array.meet("PUT /iscsi_initiator", [&] { array.modify("iqn.2020-01.lab:good"); });
    missing += array.meet("GET /iscsi_initiator/{id}", [&] { array.modify("iqn.2020-01.lab:good"); });
    return missing;
}

}  // namespace brevan::test
