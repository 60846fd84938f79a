// The smallest user of the SDK: one login at a port where nobody listens. Exit status 0 where it failed as it should.
#include <brevan/brevan.h>

#include <iostream>

int main()
{
    CDeviceManager* manager = CDeviceManager::getInstance();
    const int opened = manager->loginDevice("127.0.0.1", 1, "user", "password", USERTYPE_LOCAL);
    const brevan::Failure failure = brevan::lastFailure();
    std::cout << failure.operation << ": " << failure.text << " (" << failure.code << ")\n";
    CDeviceManager::releaseInstance(manager);
    return opened == 0 && failure.code == brevan::FAILURE_NO_CONNECTION ? 0 : 1;
}
