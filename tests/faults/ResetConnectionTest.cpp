// Connections that the array resets before or after it has carried a request out. What became of it is read from the array itself.
#include "simulator/ArrayClient.h"
#include "simulator/ScriptedFaults.h"

#include <brevan/brevan.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace brevan::test {
namespace {

using sim::JournalEntry;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

constexpr unsigned int kNoPauseUs = 1;

struct Release {
    void operator()(CDeviceManager* manager) const { CDeviceManager::releaseInstance(manager); }
};

struct StartedArray : sim::ArrayServer {
    explicit StartedArray(sim::ServerOptions options) : ArrayServer(std::move(options)) { start(); }
};

/// A device manager that is logged in, and has so one warm connection, and a client that needs no network.
class ResetConnection : public testing::Test {
protected:
    ResetConnection()
    {
        const std::string settings = folder + "/transport.ini";
        std::ofstream(settings) << "[tls]\nca_file = " << array.caFile() << "\n";
        setenv("BREVAN_TRANSPORT_CONFIG", settings.c_str(), 1);
        EXPECT_EQ(manager->loginDevice(array.address(), array.port(), "admin", "secret", USERTYPE_LOCAL), 1)
            << lastFailure().text;
        array.clearJournal();
    }
    ~ResetConnection() override { std::filesystem::remove_all(folder); }

    /// The operation fails as one must whose request may have been carried out.
    template <class Operation>
    void expectLost(Operation operation)
    {
        EXPECT_THROW(operation(), PlimAPIException);
        EXPECT_EQ(lastFailure().code, FAILURE_CONNECTION_LOST) << lastFailure().text;
        EXPECT_THAT(lastFailure().advice, HasSubstr("before repeating a change"));
    }

    std::vector<JournalEntry> journalOf(const std::string& operation) const
    {
        std::vector<JournalEntry> found;
        for (const JournalEntry& entry : array.journal()) {
            if (entry.operation == operation && entry.connection != 0) {
                found.push_back(entry);
            }
        }
        return found;
    }

    std::string onArray(const std::string& resource) { return client.get("/" + resource + "/count?").text("COUNT"); }

    std::string makeGroup()
    {
        return client.make("/lungroup/", {{"TYPE", 256}, {"NAME", "group"}, {"APPTYPE", 0}, {"GROUPTYPE", 0}});
    }

    std::string folder = makeFolder();
    StartedArray array{options(folder)};
    sim::test::ArrayClient client{array};
    std::unique_ptr<CDeviceManager, Release> manager{CDeviceManager::getInstance(1, kNoPauseUs)};

private:
    static std::string makeFolder()
    {
        std::string pattern = testing::TempDir() + "brevan-faults-XXXXXX";
        return mkdtemp(pattern.data());
    }
    static sim::ServerOptions options(const std::string& folder)
    {
        sim::ServerOptions made = sim::test::testOptions();
        made.caFile = folder + "/ca.pem";
        return made;
    }
};

/// An operation that creates an object of this resource.
struct Creation {
    const char* resource;
    const char* request;
    void (*create)(CDeviceManager& manager, const std::string& name);
};

void PrintTo(const Creation& creation, std::ostream* out)
{
    *out << creation.resource;
}

template <class Handler>
Handler& handlerOf(CDeviceManager& manager, HANDLERTYPE type)
{
    return *static_cast<Handler*>(manager.getHandler(type));
}

void createLun(CDeviceManager& manager, const std::string& name)
{
    LunMO lun;
    lun.NAME = name;
    lun.PARENTID = "0";
    lun.CAPACITY = 1ULL << 30;
    lun.ALLOCTYPE = 1;
    lun.ALLOCCAPACITY = 1ULL << 20;
    handlerOf<CLunHandler>(manager, HANDLER_LUN).createLun(lun);
}

void createLunGroup(CDeviceManager& manager, const std::string& name)
{
    LunGroupMO group;
    group.NAME = name;
    handlerOf<CLunGroupHandler>(manager, HANDLER_LUNGROUP).createLunGroup(group);
}

void createHost(CDeviceManager& manager, const std::string& name)
{
    HostMO host;
    host.NAME = name;
    host.OPERATIONSYSTEM = 0;
    handlerOf<CHostHandler>(manager, HANDLER_HOST).createHost(host);
}

void createMappingView(CDeviceManager& manager, const std::string& name)
{
    MappingViewMO view;
    view.NAME = name;
    handlerOf<CMappingViewHandler>(manager, HANDLER_MAPPINGVIEW).createMappingView(view);
}

constexpr Creation kCreations[] = {
    {"lun", "POST /lun", createLun},
    {"lungroup", "POST /lungroup", createLunGroup},
    {"host", "POST /host", createHost},
    {"mappingview", "POST /mappingview", createMappingView},
};

class ResetCreation : public ResetConnection, public testing::WithParamInterface<Creation> {
protected:
    void expectLostTwice(const std::string& fault)
    {
        const Creation& creation = GetParam();
        const sim::test::ScriptedFaults faults(array, R"({"operation": ")" + std::string(creation.request) +
                                                          R"(", "do": [")" + fault + "\", \"" + fault + "\"]}");
        expectLost([&] { creation.create(*manager, "warm"); });
        expectLost([&] { creation.create(*manager, "fresh"); });
    }
};

// The first creation goes over the login's connection, the second over a new one, because the first was reset.
TEST_P(ResetCreation, ThatWasCarriedOutIsDoneOnceAndFails)
{
    expectLostTwice("reset after");
    EXPECT_EQ(onArray(GetParam().resource), "2") << "one by each request";
    const auto requests = journalOf(GetParam().request);
    ASSERT_THAT(requests, SizeIs(2));
    EXPECT_NE(requests[0].connection, requests[1].connection);
    EXPECT_THAT(requests[0].body, HasSubstr("\"warm\""));
    EXPECT_THAT(requests[1].body, HasSubstr("\"fresh\""));
}

TEST_P(ResetCreation, ThatWasNotCarriedOutIsNotRepeatedEither)
{
    expectLostTwice("reset before");
    EXPECT_EQ(onArray(GetParam().resource), "0");
    EXPECT_THAT(journalOf(GetParam().request), SizeIs(2));
}

TEST_P(ResetCreation, ThatIsDoneAgainByTheCallerFindsTheNameTaken)
{
    const Creation& creation = GetParam();
    const sim::test::ScriptedFaults faults(
        array, R"({"operation": ")" + std::string(creation.request) + R"(", "do": ["reset after"]})");
    expectLost([&] { creation.create(*manager, "same"); });
    EXPECT_THROW(creation.create(*manager, "same"), PlimAPIExceptionWithErrCode);
    EXPECT_EQ(onArray(creation.resource), "1");
}

INSTANTIATE_TEST_SUITE_P(Faults, ResetCreation, testing::ValuesIn(kCreations),
                         [](const auto& creation) { return std::string(creation.param.resource); });

TEST_F(ResetConnection, LetsADeletionFailThatWasCarriedOut)
{
    const std::string id = makeGroup();
    const sim::test::ScriptedFaults faults(array, R"({"operation": "DELETE /lungroup/{id}", "do": ["reset after"]})");
    expectLost([&] { handlerOf<CLunGroupHandler>(*manager, HANDLER_LUNGROUP).deleteLunGroup(id); });
    EXPECT_EQ(onArray("lungroup"), "0");
    EXPECT_THAT(journalOf("DELETE /lungroup/{id}"), SizeIs(1));
}

TEST_F(ResetConnection, LetsALoginFailThatWasCarriedOut)
{
    const sim::test::ScriptedFaults faults(array, R"({"operation": "POST /sessions", "do": ["reset after"]})");
    EXPECT_EQ(manager->loginDevice(array.address(), array.port(), "admin", "secret", USERTYPE_LOCAL), 0);
    EXPECT_EQ(lastFailure().code, FAILURE_CONNECTION_LOST);
    EXPECT_THAT(journalOf("POST /sessions"), SizeIs(1));
    EXPECT_EQ(manager->keepAlive(), 1) << "the session until now is still there";
}

// The transport does not repeat it; the operation does, because an object that is in its group already counts as done.
TEST_F(ResetConnection, LetsAChangeOfMembersBeDoneAgainByTheOperation)
{
    const std::string lun = client.makeLun("volume");
    const std::string group =
        client.make("/lungroup/", {{"TYPE", 256}, {"NAME", "group"}, {"APPTYPE", 0}, {"GROUPTYPE", 0}});
    const sim::test::ScriptedFaults faults(array, R"({"operation": "POST /lungroup/associate", "do": ["reset after"]})");
    auto& groups = handlerOf<CLunGroupHandler>(*manager, HANDLER_LUNGROUP);
    groups.addLunToLunGroup(lun, group);
    EXPECT_TRUE(lastFailure().empty()) << lastFailure().text;
    EXPECT_EQ(groups.getObjNOFromLunGroup(group), 1U);
    EXPECT_THAT(journalOf("POST /lungroup/associate"), SizeIs(2));
}

std::vector<std::string> faultsOf(const std::vector<JournalEntry>& entries)
{
    std::vector<std::string> faults;
    for (const JournalEntry& entry : entries) {
        faults.push_back(entry.fault);
    }
    return faults;
}

// Over a connection that was used before, a reset may mean that the array had closed it: a read is tried once more.
TEST_F(ResetConnection, LetsAReadBeRepeatedOverANewConnection)
{
    const std::string id = client.makeLun("volume");
    const sim::test::ScriptedFaults faults(array, R"({"operation": "GET /lun/{id}", "do": ["reset before"]})");
    EXPECT_EQ(handlerOf<CLunHandler>(*manager, HANDLER_LUN).getLun(id).NAME, "volume");
    const auto requests = journalOf("GET /lun/{id}");
    ASSERT_THAT(faultsOf(requests), ElementsAre("reset before", ""));
    EXPECT_NE(requests[0].connection, requests[1].connection);
}

TEST_F(ResetConnection, LetsAReadFailThatNewConnectionsDoNotHelp)
{
    const std::string id = client.makeLun("volume");
    const sim::test::ScriptedFaults faults(
        array, R"({"operation": "GET /lun/{id}", "do": ["reset before", "reset after", "reset before", "pass"]})");
    auto& luns = handlerOf<CLunHandler>(*manager, HANDLER_LUN);
    expectLost([&] { luns.getLun(id); });
    EXPECT_THAT(faultsOf(journalOf("GET /lun/{id}")), ElementsAre("reset before", "reset after"));
    expectLost([&] { luns.getLun(id); });  // over a new connection from the start: once only
    EXPECT_THAT(journalOf("GET /lun/{id}"), SizeIs(3));
    EXPECT_EQ(luns.getLun(id).NAME, "volume");
}

}  // namespace
}  // namespace brevan::test
