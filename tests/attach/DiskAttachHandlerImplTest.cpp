#include "attach/DiskAttachHandlerImpl.h"

#include "attach/AttachCalls.h"
#include "handlers/MappingViewHandlerImpl.h"

namespace brevan::test {
namespace {

class DiskAttachHandler : public SdkTest {
protected:
    CMappingViewHandlerImpl views{&manager};
    const std::string joinHosts = joinHostGroup()[0].request;
    const std::string joinLuns = joinLunGroup()[0].request;

    void join() { CDiskAttachHandlerImpl::addMappingView("30", "40", "50", views, "someAttach"); }
};

const char* const kFailed = "error: MappingView add HostGroup or add LunGroup fail! someAttach";

TEST_F(DiskAttachHandler, NamesObjectsByPrefixAndWholeSeconds)
{
    const struct {
        timeval now;
        const char* prefix;
        const char* name;
    } cases[] = {{{1700000000, 999999}, "host", "host_1700000000"},
                 {{5, 0}, "lungroup", "lungroup_5"},
                 {{0, 0}, "", "_0"},
                 {{99999999999, 0}, "mappingview", "mappingview_99999999999"}};
    for (const auto& [now, prefix, name] : cases) {
        fakeClock.set(now);
        EXPECT_EQ(CDiskAttachHandlerImpl::getBuildedName(prefix), name);
    }
    EXPECT_EQ(CDiskAttachHandlerImpl::getBuildedName(std::string(5000, 'p')).size(), 5012U);
}

TEST_F(DiskAttachHandler, IsWhatTheDeviceManagerHandsOut)
{
    auto* handler = static_cast<CDiskAttachHandler*>(manager.getHandler(HANDLER_DISK_ATTACH));
    EXPECT_NE(dynamic_cast<CDiskAttachHandlerImpl*>(handler), nullptr);
    EXPECT_EQ(handler, manager.getHandler(HANDLER_DISK_ATTACH));
    EXPECT_EQ(thrownBy([&] { handler->detachLunFromHost("", ""); }), "Exception:lunID is empty! detachLunFromHost");
}

TEST_F(DiskAttachHandler, JoinsTheHostGroupThenTheLunGroup)
{
    expect(joinHosts, answer(""));
    expect(joinLuns, answer(""));
    join();
    EXPECT_EQ(newLog(), joined({logOf(joinHostGroup()), logOf(joinLunGroup())}));
}

TEST_F(DiskAttachHandler, DeletesTheViewThatItCannotFill)
{
    for (const Answer& failure : {refusal(1077937501, "in"), sendFailure(1005)}) {
        expect(joinHosts, answer(""));
        expect(joinLuns, failure);
        expect("DELETE /mappingview/50", answer(""));
        EXPECT_NO_THROW(join());
        const Lines log = newLog();
        EXPECT_THAT(log, testing::Contains(kFailed));
        EXPECT_EQ(log.back(), "info: leave deleteMappingView successfully!");
        recorder.verify();
    }
}

TEST_F(DiskAttachHandler, DeletesTheViewAfterAnExceptionOfAnyType)
{
    class Throwing final : public CMappingViewHandlerImpl {
    public:
        using CMappingViewHandlerImpl::CMappingViewHandlerImpl;
        void addHostGroupToMappingView(const std::string&, const std::string&) override { throw 1; }
    };
    Throwing throwing(&manager);
    expect("DELETE /mappingview/50", answer(""));
    EXPECT_NO_THROW(CDiskAttachHandlerImpl::addMappingView("30", "40", "50", throwing, "someAttach"));
    EXPECT_EQ(newLog(), joined({{kFailed}, entered("deleteMappingView")}));
}

TEST_F(DiskAttachHandler, PassesOnThatTheViewCouldNotBeDeleted)
{
    expect(joinHosts, sendFailure(1005));
    expect("DELETE /mappingview/50", refusal(5, "in use"));
    EXPECT_EQ(thrownBy([&] { join(); }),
              "Exception:get error response, error code:5, description:in use deleteMappingView / 5");
}

TEST_F(DiskAttachHandler, WritesAPercentSignOfANameAsItIs)
{
    expect(joinHosts, sendFailure(1005));
    expect("DELETE /mappingview/50", answer(""));
    CDiskAttachHandlerImpl::addMappingView("30", "40", "50", views, "%s%n");
    EXPECT_THAT(newLog(), testing::Contains("error: MappingView add HostGroup or add LunGroup fail! %s%n"));
}

}  // namespace
}  // namespace brevan::test
