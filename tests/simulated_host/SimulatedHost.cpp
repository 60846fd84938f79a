#include "SimulatedHost.h"

#include <filesystem>

namespace brevan::test {

std::unique_ptr<sim::ArrayServer> SimulatedHost::array;
std::unique_ptr<HostClient> SimulatedHost::client;
std::unique_ptr<LunMO> SimulatedHost::lun;
std::string SimulatedHost::path;
std::string SimulatedHost::device;

void SimulatedHost::SetUpTestSuite()
{
    auto options = arrayOptions("/tmp/array");
    options.exposure = sim::Exposure::kTree;
    options.treeDirectory = "/run/simulated-host/tree";
    options.iscsiInitiators = {hostInitiator()};
    array = std::make_unique<sim::ArrayServer>(options);
    array->start();
    std::filesystem::create_directory_symlink(options.treeDirectory, "/run/simulated-host/session");
    trust(*array);
    client = std::make_unique<HostClient>(hostInitiator());
    ASSERT_EQ(client->login(*array), 1) << lastFailure().text;
    lun = std::make_unique<LunMO>(client->createLun());
    waitForNewSecond();
    ASSERT_EQ(client->attach(lun->ID), 0);
    ASSERT_TRUE(lastFailure().empty()) << lastFailure().text;
    path = scan();
    ASSERT_NE(path, "") << lastFailure().text;
    device = path.substr(path.rfind('/') + 1);
}

void SimulatedHost::TearDownTestSuite()
{
    client.reset();
    array.reset();
    std::filesystem::remove("/run/simulated-host/session");
}

}  // namespace brevan::test
