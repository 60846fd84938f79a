#include "handlers/RetrySettings.h"

#include "handlers/HostGroupHandlerImpl.h"
#include "handlers/HostHandlerImpl.h"
#include "handlers/LunGroupHandlerImpl.h"
#include "handlers/LunHandlerImpl.h"
#include "handlers/MappingViewHandlerImpl.h"
#include "support/SdkTest.h"

namespace brevan::test {
namespace {

using Pauses = std::vector<std::uint64_t>;

class ReadBackOf : public SdkTest {
protected:
    RetrySettings settings{1};
    std::vector<int> outcomes;  ///< of the reads: a code to throw, 0 to succeed
    std::size_t reads = 0;

    std::string readAll(const ReadBack& policy)
    {
        return readBack(policy, settings, &manager, [this] {
            const int code = outcomes.at(reads++);
            if (code != 0) {
                throw PlimAPIExceptionWithErrCode(code, "refused");
            }
            return std::string("record");
        });
    }
};

constexpr ReadBack kPolicy = {"retry get it!", {11, 22}, 200, false};

TEST_F(ReadBackOf, AnObjectThatIsThereIsOneRead)
{
    outcomes = {0};
    EXPECT_EQ(readAll(kPolicy), "record");
    EXPECT_EQ(fakeClock.sleeps(), Pauses{200});
    EXPECT_EQ(newLog(), Lines{});
}

TEST_F(ReadBackOf, AnObjectThatIsNotThereYetIsRepeatedForEachOfItsCodes)
{
    useRetries(3, 70);
    outcomes = {11, 22, 11, 0};
    EXPECT_EQ(readAll(kPolicy), "record");
    EXPECT_EQ(fakeClock.sleeps(), (Pauses{200, 70, 70, 70}));
    EXPECT_EQ(newLog(), (Lines{"info: retry get it!", "info: retry get it!", "info: retry get it!"}));
}

TEST_F(ReadBackOf, AnObjectThatNeverComesEndsAfterItsRetries)
{
    useRetries(2, 70);
    outcomes = {11, 11, 22, 0};
    EXPECT_EQ(thrownBy([&] { readAll(kPolicy); }), "Exception:refused / 22");
    EXPECT_EQ(reads, 3U);
    EXPECT_EQ(fakeClock.sleeps(), (Pauses{200, 70, 70}));
}

TEST_F(ReadBackOf, AnObjectWithoutRetriesIsOneRead)
{
    useRetries(0, 70);
    outcomes = {11};
    EXPECT_EQ(thrownBy([&] { readAll(kPolicy); }), "Exception:refused / 11");
    EXPECT_EQ(fakeClock.sleeps(), Pauses{200});
}

TEST_F(ReadBackOf, AnObjectWithAnotherFailureIsNotRepeated)
{
    useRetries(5, 70);
    outcomes = {11, 33};
    EXPECT_EQ(thrownBy([&] { readAll({"retry get it!", {11, 0}}); }), "Exception:refused / 33");
    EXPECT_EQ(fakeClock.sleeps(), Pauses{70});
}

TEST_F(ReadBackOf, AnObjectMayEndWithADefaultRecord)
{
    outcomes = {11, 11};
    EXPECT_EQ(readAll({"retry get it!", {11, 0}, 0, true}), "");
    outcomes = {33};
    reads = 0;
    EXPECT_EQ(readAll({"retry get it!", {11, 0}, 0, true}), "");
}

TEST_F(ReadBackOf, AnObjectPassesEveryOtherExceptionOn)
{
    const auto fail = []() -> std::string { throw PlimAPIException("url error"); };
    EXPECT_EQ(thrownBy([&] { readBack({"", {11, 0}, 0, true}, settings, &manager, fail); }), "Exception:url error");
    EXPECT_TRUE(fakeClock.sleeps().empty());
}

TEST_F(ReadBackOf, AnObjectTakesTheSettingsAfterTheFirstPause)
{
    fakeClock.onSleep([this] {
        if (reads == 0) {
            CDeviceManagerImpl::initial(2, 70);
        }
    });
    outcomes = {11, 11, 0};
    readAll(kPolicy);
    fakeClock.onSleep(nullptr);
    CDeviceManagerImpl::uninitial();
    useRetries(1, 500000);
    EXPECT_EQ(fakeClock.sleeps(), (Pauses{200, 70, 70}));
}

TEST_F(ReadBackOf, WithoutADeviceManagerTheSettingsStay)
{
    useRetries(5, 70);
    RetrySettings own(3);
    EXPECT_EQ(own.times(), 3U);
    EXPECT_EQ(own.pauseMicroseconds(), 500000U);
    own.refresh(nullptr);
    EXPECT_EQ(own.times(), 3U);
    own.refresh(&manager);
    EXPECT_EQ(own.times(), 5U);
    EXPECT_EQ(own.pauseMicroseconds(), 70U);
}

/// The five creates that read back what they made.
struct Create {
    const char* name;
    std::string request;
    const char* readName;
    std::string read;
    std::string retryLine;
    Pauses firstPause;
    std::vector<int> notYet;
    std::uint32_t ownRetries;  ///< of a handler without a device manager
    bool givesUpQuietly;
    std::function<std::string(CDeviceManagerImpl*)> call;  ///< returns the new ID
};

template <class Handler, class Record, class Set>
auto creating(Record (Handler::*create)(Record&), Set set)
{
    return [create, set](CDeviceManagerImpl* manager) {
        Handler handler(manager);
        Record wanted;
        wanted.NAME = "a";
        set(wanted);
        return (handler.*create)(wanted).ID;
    };
}

const std::vector<Create> kCreates = {
    {"createLun",
     R"(POST /lun {"TYPE":11,"NAME":"a","PARENTTYPE":216,"PARENTID":"0","CAPACITY":1ull,"ALLOCTYPE":0,"MIRRORPOLICY":1ul,)"
     R"("WRITEPOLICY":1ul,"PREFETCHPOLICY":3ul,"DATATRANSFERPOLICY":0ul,"INITIALDISTRIBUTEPOLICY":0ul})",
     "getLun",
     "GET /lun/7",
     "retry get lun!",
     {200000},
     {1077949006},
     1,
     true,
     creating(&CLunHandlerImpl::createLun,
              [](LunMO& lun) {
                  lun.PARENTID = "0";
                  lun.CAPACITY = 512;
              })},
    {"createLunGroup",
     R"(POST /lungroup/ {"TYPE":256,"NAME":"a","APPTYPE":0,"GROUPTYPE":0ul})",
     "getLunGroup",
     "GET /lungroup/7",
     "retry get lun group!",
     {},
     {1077949006, 1077949001},
     1,
     false,
     creating(&CLunGroupHandlerImpl::createLunGroup, [](LunGroupMO&) {})},
    {"createHost",
     R"(POST /host {"TYPE":21,"NAME":"a","OPERATIONSYSTEM":0})",
     "getHost",
     "GET /host/7",
     "retry get host!",
     {},
     {1077949006},
     0,
     false,
     creating(&CHostHandlerImpl::createHost, [](HostMO& host) { host.OPERATIONSYSTEM = 0; })},
    {"createHostGroup",
     R"(POST /hostgroup {"TYPE":14,"NAME":"a"})",
     "getHostGroup",
     "GET /hostgroup/7",
     "retry get host group!",
     {},
     {1077949006},
     0,
     false,
     creating(&CHostGroupHandlerImpl::createHostGroup, [](HostGroupMO&) {})},
    {"createMappingView",
     R"(POST /mappingview {"TYPE":245,"NAME":"a","ENABLEINBANDCOMMAND":false})",
     "getMappingView",
     "GET /mappingview/7",
     "retry get mapping view!",
     {},
     {1077949006},
     0,
     false,
     creating(&CMappingViewHandlerImpl::createMappingView, [](MappingViewMO&) {})},
};

class CreateReadBack : public SdkTest, public testing::WithParamInterface<Create> {
protected:
    const Create& create = GetParam();

    /// Expects the request and then one read for each answer.
    void script(const std::vector<Answer>& readAnswers)
    {
        expect(create.request, answer(R"({"ID":"7"})"));
        for (const Answer& next : readAnswers) {
            expect(create.read, next);
        }
    }
    Pauses pauses(std::size_t retries, std::uint64_t pause) const
    {
        Pauses all = create.firstPause;
        all.insert(all.end(), retries, pause);
        return all;
    }
    std::string text(int code) const
    {
        return "get error response, error code:" + std::to_string(code) + ", description:50%s\n " + create.readName;
    }
    Lines failedRead(int code, bool retried) const
    {
        Lines lines = failed(create.readName, text(code), code);
        if (retried) {
            lines.push_back("info: " + create.retryLine);
        }
        return lines;
    }
    static Lines joined(const std::vector<Lines>& parts)
    {
        Lines all;
        for (const Lines& part : parts) {
            all.insert(all.end(), part.begin(), part.end());
        }
        return all;
    }
    /// The create ends with that failure of its last read, as its policy says.
    void expectGivenUp(int code, const Lines& reads)
    {
        std::string id = "not returned";
        const std::string thrown = thrownBy([&] { id = create.call(&manager); });
        EXPECT_EQ(thrown, create.givesUpQuietly ? "nothing" : "Exception:" + text(code) + " / " + std::to_string(code));
        EXPECT_EQ(id, create.givesUpQuietly ? "" : "not returned");
        EXPECT_EQ(newLog(), entered(create.name, reads, create.givesUpQuietly ? 0 : code));
        EXPECT_EQ(lastFailure().operation, create.readName);
    }
};

TEST_P(CreateReadBack, IsOneReadOfTheNewId)
{
    script({answer(R"({"ID":"8"})")});
    EXPECT_EQ(create.call(&manager), "8");
    EXPECT_EQ(newLog(), entered(create.name, entered(create.readName)));
    EXPECT_EQ(fakeClock.sleeps(), pauses(0, 0));
    EXPECT_TRUE(lastFailure().empty());
}

TEST_P(CreateReadBack, IsRepeatedUntilTheObjectIsThere)
{
    useRetries(2, 300);
    for (const int code : create.notYet) {
        script({refusal(code, "50%s\n"), refusal(code, "50%s\n"), answer(R"({"ID":"7"})")});
        EXPECT_EQ(create.call(&manager), "7");
        const Lines again = failedRead(code, true);
        EXPECT_EQ(newLog(), entered(create.name, joined({again, again, entered(create.readName)})));
        EXPECT_TRUE(lastFailure().empty());
    }
    Pauses expected;
    for (std::size_t i = 0; i < create.notYet.size(); ++i) {
        const Pauses once = pauses(2, 300);
        expected.insert(expected.end(), once.begin(), once.end());
    }
    EXPECT_EQ(fakeClock.sleeps(), expected);
}

TEST_P(CreateReadBack, IsTriedOnceMoreThanItMayBeRepeated)
{
    script({refusal(1077949006, "50%s\n"), refusal(1077949006, "50%s\n")});
    expectGivenUp(1077949006, joined({failedRead(1077949006, true), failedRead(1077949006, false)}));
    EXPECT_EQ(lastFailure().code, 1077949006);
    EXPECT_EQ(fakeClock.sleeps(), pauses(1, 500000));
}

TEST_P(CreateReadBack, IsNotRepeatedAfterAnotherRefusal)
{
    useRetries(5, 300);
    script({refusal(1077949006, "50%s\n"), refusal(-401, "50%s\n")});
    expectGivenUp(-401, joined({failedRead(1077949006, true), failedRead(-401, false)}));
    EXPECT_EQ(lastFailure().code, -401);  // of several tries the last one counts
    EXPECT_EQ(fakeClock.sleeps(), pauses(1, 300));
}

TEST_P(CreateReadBack, TakesTheSecondCodeOnlyForALunGroup)
{
    if (create.notYet.size() == 1) {
        script({refusal(1077949001, "50%s\n")});
        expectGivenUp(1077949001, failedRead(1077949001, false));
        EXPECT_EQ(fakeClock.sleeps(), pauses(0, 0));
    } else {
        script({refusal(1077949001, "50%s\n"), refusal(1077949001, "50%s\n")});
        expectGivenUp(1077949001, joined({failedRead(1077949001, true), failedRead(1077949001, false)}));
    }
}

TEST_P(CreateReadBack, FailsWhereNoReplyComes)
{
    script({sendFailure(1007)});
    const std::string line = std::string("url error or internet error ") + create.readName;
    EXPECT_EQ(thrownBy([&] { create.call(&manager); }), "Exception:" + line);
    EXPECT_EQ(newLog(), entered(create.name, failed(create.readName, line, 1007), 1007));
    EXPECT_EQ(fakeClock.sleeps(), pauses(0, 0));
}

TEST_P(CreateReadBack, WithoutADeviceManagerIsRepeatedAsTheHandlerWasMade)
{
    std::vector<Answer> answers(create.ownRetries, refusal(1077949006, ""));
    answers.push_back(sendFailure(1001));
    script(answers);
    thrownBy([&] { create.call(nullptr); });
    EXPECT_EQ(fakeClock.sleeps(), pauses(create.ownRetries, 500000));
    if (create.ownRetries == 0) {
        script({refusal(1077949006, "")});
        EXPECT_NE(thrownBy([&] { create.call(nullptr); }), "nothing");
    }
}

INSTANTIATE_TEST_SUITE_P(Creates, CreateReadBack, testing::ValuesIn(kCreates),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
}  // namespace brevan::test
