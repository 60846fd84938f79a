// Secrets in records and settings, for every program here.
#include "Failures.h"

#include <cstdlib>
#include <fstream>

namespace brevan::test {

IscsiInitiatorMO initiatorWithSecrets(const std::string& name)
{
    IscsiInitiatorMO initiator;
    initiator.ID = name;
    initiator.USECHAP = 1;
    initiator.NORMALVERMODE = "2";
    initiator.DISCOVERYVERMODE = "2";
    initiator.CHAPNAME = "initiator";
    initiator.CHAPPASSWORD = kChapSecret;
    initiator.CHAPOLDPASSWORD = kOldSecret;
    initiator.CHAPNAMEINITATORVERTARGET = "target";
    initiator.CHAPPASSWORDINITATORVERTARGET = kTargetSecret;
    initiator.CHAPOLDPASSWORDINITATORVERTARGET = kOldSecret;
    return initiator;
}

CIscsiInitiatorHandler& initiators(CDeviceManager& manager)
{
    return *static_cast<CIscsiInitiatorHandler*>(manager.getHandler(HANDLER_ISCSI_INITIATOR));
}

void useSettings(const std::string& folder, const std::string& authority, const std::string& more)
{
    const std::string file = folder + "/transport.ini";
    std::ofstream(file) << "[tls]\nca_file = " << authority << "\n" << more;
    setenv("BREVAN_TRANSPORT_CONFIG", file.c_str(), 1);
}

std::string loginBody()
{
    return std::string(R"({"data":{"deviceid":"1","iBaseToken":")") + kToken + R"("},"error":{"code":0,"description":"0"}})";
}

}  // namespace brevan::test
