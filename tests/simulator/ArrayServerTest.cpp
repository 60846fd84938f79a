#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"
#include "simulator/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

using namespace brevan::sim;
using namespace brevan::sim::test;

TEST(ArrayServer, EndsAllSessionsAtOnce)
{
    ArrayFixture array;
    ArrayClient second(array.server);
    array.server.endAllSessions();
    EXPECT_EQ(array.client.get("/lun").code, kNoSession);
    EXPECT_EQ(second.get("/lun").code, kNoSession);
    second.logIn();
    EXPECT_EQ(second.get("/lun").code, 0);
}

TEST(ArrayServer, MakesObjectsBehindTheClientsBacks)
{
    ArrayFixture array;
    EXPECT_EQ(array.server.addPool("9", "extra", 1), "9");
    const std::string lun = array.server.addLun("l", "9", 1048576);
    EXPECT_EQ(array.client.get("/lun/" + lun).text("CAPACITY"), "2048");
    EXPECT_EQ(array.client.get("/lun/" + lun).text("PARENTNAME"), "extra");
    EXPECT_EQ(array.client.get("/SNAPSHOT/" + array.server.addSnapshot("s", lun)).text("PARENTID"), lun);
    EXPECT_EQ(array.server.volumeWwn("777"), "");
}

TEST(ArrayServer, RefusesThemByTheRulesOfTheArray)
{
    ArrayFixture array;
    EXPECT_THROW(array.server.addPool("0", "other", 1), std::invalid_argument);
    EXPECT_THROW(array.server.addPool("x", "other", 1), std::invalid_argument);
    EXPECT_THROW(array.server.addPool("1", "other", 0), std::invalid_argument);
    EXPECT_THROW(array.server.addLun("a b", "0", 512), std::runtime_error);
    EXPECT_THROW(array.server.addLun("l", "7", 512), std::runtime_error);
    EXPECT_THROW(array.server.addIscsiInitiator("x"), std::runtime_error);
}

TEST(ArrayServer, RefusesOptionsThatDoNotDo)
{
    const auto refused = [](const std::function<void(ServerOptions&)>& change) {
        ServerOptions options = testOptions();
        change(options);
        EXPECT_THROW(ArrayServer{options}, std::invalid_argument);
    };
    refused([](ServerOptions& options) { options.password.clear(); });
    refused([](ServerOptions& options) { options.deviceId = "a/b"; });
    refused([](ServerOptions& options) { options.address = "localhost"; });
    refused([](ServerOptions& options) { options.serverName = "a,IP:1.2.3.4"; });
    refused([](ServerOptions& options) { options.pools = {{"0", "a", 1}, {"0", "b", 1}}; });
    refused([](ServerOptions& options) { options.iscsiInitiators = {"host"}; });
    refused([](ServerOptions& options) { options.exposure = Exposure::kTree; });
    refused([](ServerOptions& options) { options.exposure = Exposure::kLio; });
}

TEST(ArrayServer, KeepsItsStateInAFile)
{
    ServerOptions options = testOptions();
    const std::string directory = makePrivateDirectory();
    options.database = directory + "/array.db";
    options.iscsiInitiators = {"iqn.2020-01.lab:host"};
    std::string lun;
    std::string wwn;
    {
        ArrayFixture array(options);
        lun = array.client.makeLun("kept");
        wwn = array.server.volumeWwn(lun);
    }
    {
        ArrayFixture array(options);
        EXPECT_EQ(array.client.get("/lun/" + lun).text("WWN"), wwn);
        EXPECT_EQ(array.client.get("/storagepool").data.size(), 1u);
        EXPECT_NE(array.server.volumeWwn(array.client.makeLun("new")), wwn);
    }
    std::filesystem::remove_all(directory);
}

TEST(ArrayServer, RemovesItsOwnCaFileAtTheEndAndLeavesOneThatWasAskedFor)
{
    const std::string directory = makePrivateDirectory();
    std::string own;
    ServerOptions options = testOptions();
    {
        ArrayServer server(options);
        server.start();
        own = server.caFile();
        EXPECT_TRUE(std::filesystem::exists(own));
        options.caFile = directory + "/ca.pem";
        ArrayServer second(options);
        second.start();
        EXPECT_EQ(second.caFile(), options.caFile);
    }
    EXPECT_FALSE(std::filesystem::exists(own));
    EXPECT_TRUE(std::filesystem::exists(options.caFile));
    std::filesystem::remove_all(directory);
}

TEST(ArrayServer, SaysThatAPortIsTakenAndLeavesNothingRunning)
{
    ServerOptions options = testOptions();
    ArrayServer first(options);
    first.start();
    EXPECT_GT(first.port(), 0);
    options.port = first.port();
    ArrayServer second(options);
    EXPECT_THROW(second.start(), std::exception);
    first.stop();
    first.stop();
}
