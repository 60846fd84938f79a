// secrets_failures FOLDER: everything that can go wrong between the library and an array, with secrets that can be searched for.
// On standard output stands what an application gets to see. Exit status 1 where a case did not come about.
#include "Failures.h"

#include <cstdlib>
#include <fstream>
#include <iostream>

namespace brevan::test {

bool tell(const std::string& what, const std::function<void()>& operation)
{
    std::string thrown = "-";
    try {
        operation();
    } catch (const std::exception& failure) {
        thrown = failure.what();
    }
    const Failure last = lastFailure();
    std::cout << what << ": " << thrown << " | " << last.operation << " " << last.code << " " << last.text << " | "
              << last.advice << "\n";
    return thrown != "-" || !last.empty();
}

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

void useSettings(const std::string& folder, const std::string& authority)
{
    const std::string file = folder + "/transport.ini";
    std::ofstream(file) << "[tls]\nca_file = " << authority
                        << "\n[time]\nrequest_seconds = 2\n[limits]\nreply_megabytes = 1\n";
    setenv("BREVAN_TRANSPORT_CONFIG", file.c_str(), 1);
}

}  // namespace brevan::test

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "secrets_failures: the only argument is a folder\n";
        return 2;
    }
    const int missing = brevan::test::meetBadReplies(argv[1]) + brevan::test::meetFaultyArray(argv[1]);
    return missing == 0 ? 0 : 1;
}
