#include "attach/AttachHandlers.h"

#include "support/ManagerWithout.h"
#include "support/SdkTest.h"

#include <stdexcept>

namespace brevan::test {
namespace {

class AttachHandlersTest : public SdkTest {
protected:
    Operation operation{attachStyle("someAttach")};
};

TEST_F(AttachHandlersTest, KeepsEachHandlerInItsPlace)
{
    constexpr HandlerFetch kAll[] = {kFetchMappingView, kFetchLun,  kFetchSnapshot, kFetchLunGroup,
                                     kFetchInitiator,   kFetchHost, kFetchHostGroup};
    const AttachHandlers all = fetchHandlers(operation, manager, kAll);
    EXPECT_EQ(all.lun, manager.getHandler(HANDLER_LUN));
    EXPECT_EQ(all.snapshot, manager.getHandler(HANDLER_SNAPSHOT));
    EXPECT_EQ(all.lunGroup, manager.getHandler(HANDLER_LUNGROUP));
    EXPECT_EQ(all.initiator, manager.getHandler(HANDLER_ISCSI_INITIATOR));
    EXPECT_EQ(all.host, manager.getHandler(HANDLER_HOST));
    EXPECT_EQ(all.hostGroup, manager.getHandler(HANDLER_HOSTGROUP));
    EXPECT_EQ(all.mappingView, manager.getHandler(HANDLER_MAPPINGVIEW));
}

TEST_F(AttachHandlersTest, LeavesAHandlerThatIsNotFetchedNull)
{
    constexpr HandlerFetch kOne[] = {kFetchLun};
    const AttachHandlers handlers = fetchHandlers(operation, manager, kOne);
    EXPECT_NE(handlers.lun, nullptr);
    EXPECT_EQ(handlers.snapshot, nullptr);
    EXPECT_EQ(handlers.mappingView, nullptr);
}

TEST_F(AttachHandlersTest, AsksForNoMoreHandlersAfterTheFirstThatIsMissing)
{
    ManagerWithout lacking(HANDLER_HOST);
    constexpr HandlerFetch kThree[] = {kFetchLun, kFetchHost, kFetchLunGroup};
    EXPECT_EQ(thrownBy([&] { fetchHandlers(operation, lacking, kThree); }), "Exception:get HostHandler fail! someAttach");
    EXPECT_THAT(lacking.asked, testing::ElementsAre(HANDLER_LUN, HANDLER_HOST));
}

TEST_F(AttachHandlersTest, GuardsNothingWhereTheWorkGoesWell)
{
    EXPECT_EQ(guarded(operation, [] { return 5; }), 5);
    EXPECT_THAT(newLog(), testing::IsEmpty());
}

TEST_F(AttachHandlersTest, RecordsAFailureOfEitherPublicTypeAndGivesZero)
{
    EXPECT_EQ(guarded(operation, []() -> int { throw PlimAPIException("a"); }), 0);
    EXPECT_EQ(guarded(operation, []() -> int { throw PlimAPIExceptionWithErrCode(1077949006, "b"); }), 0);
    EXPECT_THAT(newLog(), testing::ElementsAre("record: someAttach 1", "record: someAttach 1"));
}

TEST_F(AttachHandlersTest, LetsExceptionsOfOtherTypesPass)
{
    EXPECT_THROW(guarded(operation, []() -> int { throw std::runtime_error("c"); }), std::runtime_error);
    EXPECT_THAT(newLog(), testing::IsEmpty());
}

TEST_F(AttachHandlersTest, SaysLeaveBeforeTheRecord)
{
    operation.enter();
    operation.succeed();
    EXPECT_THAT(newLog(), testing::ElementsAre("info: enter someAttach successfully!",
                                               "info: leave someAttach successfully!", "record: someAttach 0"));
}

}  // namespace
}  // namespace brevan::test
