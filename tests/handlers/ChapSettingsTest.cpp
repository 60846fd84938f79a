#include "handlers/ChapSettings.h"

#include "handlers/ResourceOperation.h"
#include "support/SdkTest.h"

namespace brevan::test {
namespace {

IscsiInitiatorMO chap(const char* normal, const char* discovery, bool use = true)
{
    IscsiInitiatorMO initiator;
    initiator.USECHAP = use ? 1 : 0;
    initiator.NORMALVERMODE = normal;
    initiator.DISCOVERYVERMODE = discovery;
    initiator.CHAPNAME = "c";
    initiator.CHAPPASSWORD = "s";
    initiator.CHAPOLDPASSWORD = "so";
    initiator.CHAPNAMEINITATORVERTARGET = "m";
    initiator.CHAPPASSWORDINITATORVERTARGET = "t";
    initiator.CHAPOLDPASSWORDINITATORVERTARGET = "to";
    return initiator;
}

IscsiInitiatorMO without(IscsiInitiatorMO initiator, std::string IscsiInitiatorMO::*member)
{
    (initiator.*member).clear();
    return initiator;
}

const std::string kFalse = R"("USECHAP":"false")";
const std::string kNames = R"(,"CHAPNAME":"c","CHAPPASSWORD":"s")";
const std::string kMutual = R"(,"CHAPNAMEINITATORVERTARGET":"m","CHAPPASSWORDINITATORVERTARGET":"t")";
const std::string kOld = R"(,"CHAPOLDPASSWORD":"so")";
const std::string kMutualOld = R"(,"CHAPOLDPASSWORDINITATORVERTARGET":"to")";

std::string modes(const std::string& normal, const std::string& discovery)
{
    return R"("USECHAP":"true","NORMALVERMODE":")" + normal + R"(","DISCOVERYVERMODE":")" + discovery + "\"";
}

struct Row {
    IscsiInitiatorMO wanted;
    IscsiInitiatorMO current;  ///< for a change only
    std::string body;
    std::vector<const char*> reported = {};
};

class ChapBody : public SdkTest, public testing::WithParamInterface<Row> {
protected:
    /// Sends what `fill` writes and compares the log with what the row reports.
    template <class Fill>
    void send(Fill fill)
    {
        expect("POST /a {" + GetParam().body + "}", answer(""));
        perform(ResourceOperation("create", &manager), [&](ResourceOperation& operation) {
            RestRequest request;
            fill(operation, request);
            operation.post("/a", request);
        });
        Lines lines;
        for (const char* missing : GetParam().reported) {
            lines.push_back(std::string("error: ") + missing + " is empty! create");
            lines.emplace_back("record: create 1");
        }
        EXPECT_EQ(newLog(), entered("create", lines));
    }
};

class ChapOfNew : public ChapBody {};

TEST_P(ChapOfNew, IsSentAndWhatIsMissingReported)
{
    send([](ResourceOperation& operation, RestRequest& request) { addChapOfNew(operation, request, GetParam().wanted); });
}

const std::vector<Row> kNew = {
    {chap("1", "1", false), {}, kFalse},
    {chap("0", "0"), {}, kFalse},
    {chap("1", "0"), {}, modes("1", "0") + kNames},
    {chap("0", "1"), {}, modes("0", "1") + kNames},
    {chap("2", "0"), {}, modes("2", "0") + kNames + kMutual},
    {chap("1", "2"), {}, modes("1", "2") + kNames + kMutual},
    {chap("", "0"), {}, modes("", "0") + kNames},
    {without(chap("1", "0"), &IscsiInitiatorMO::CHAPNAME),
     {},
     modes("1", "0") + R"(,"CHAPNAME":"","CHAPPASSWORD":"s")",
     {"ChapName"}},
    {without(chap("1", "0"), &IscsiInitiatorMO::CHAPPASSWORD),
     {},
     modes("1", "0") + R"(,"CHAPNAME":"c","CHAPPASSWORD":"")",
     {"ChapPassword"}},
    {without(chap("0", "2"), &IscsiInitiatorMO::CHAPNAMEINITATORVERTARGET),
     {},
     modes("0", "2") + kNames + R"(,"CHAPNAMEINITATORVERTARGET":"","CHAPPASSWORDINITATORVERTARGET":"t")",
     {"ChapNameTarget"}},
    {without(chap("2", "2"), &IscsiInitiatorMO::CHAPPASSWORDINITATORVERTARGET),
     {},
     modes("2", "2") + kNames + R"(,"CHAPNAMEINITATORVERTARGET":"m","CHAPPASSWORDINITATORVERTARGET":"")",
     {"ChapPasswordTarget"}},
    {without(chap("1", "0"), &IscsiInitiatorMO::CHAPNAMEINITATORVERTARGET), {}, modes("1", "0") + kNames},
};

const auto nameOfIndex = [](const auto& tested) { return "Row" + std::to_string(tested.index); };
INSTANTIATE_TEST_SUITE_P(Rows, ChapOfNew, testing::ValuesIn(kNew), nameOfIndex);

class ChapOfChange : public ChapBody {};

TEST_P(ChapOfChange, SendsSecretsOnlyWhereTheyAreNewAndOldOnesOnlyWhereTheArrayHoldsThem)
{
    send([](ResourceOperation&, RestRequest& request) { addChapOfChange(request, GetParam().wanted, GetParam().current); });
}

const std::vector<Row> kChange = {
    {chap("2", "2", false), chap("2", "2"), kFalse},
    {chap("0", "0"), chap("2", "2"), kFalse},
    {chap("1", "0"), chap("1", "0", false), modes("1", "0") + kNames},
    {chap("1", "0"), chap("1", "0"), modes("1", "0") + kNames + kOld},
    {chap("0", "1"), chap("0", "0"), modes("0", "1") + kNames + kOld},
    {without(chap("1", "0"), &IscsiInitiatorMO::CHAPPASSWORD), chap("1", "0"), modes("1", "0")},
    {without(chap("1", "0"), &IscsiInitiatorMO::CHAPNAME), chap("1", "0", false),
     modes("1", "0") + R"(,"CHAPNAME":"","CHAPPASSWORD":"s")"},
    {chap("2", "0"), chap("2", "0", false), modes("2", "0") + kNames + kMutual},
    {chap("2", "0"), chap("1", "1"), modes("2", "0") + kNames + kOld + kMutual},
    {chap("2", "0"), chap("1", "2"), modes("2", "0") + kNames + kOld + kMutual + kMutualOld},
    {chap("1", "2"), chap("2", "0"), modes("1", "2") + kNames + kOld + kMutual + kMutualOld},
    {without(chap("2", "0"), &IscsiInitiatorMO::CHAPPASSWORD), chap("2", "0"), modes("2", "0") + kMutual + kMutualOld},
    {without(chap("2", "0"), &IscsiInitiatorMO::CHAPPASSWORDINITATORVERTARGET), chap("2", "0"),
     modes("2", "0") + kNames + kOld},
    {chap("1", "0"), chap("2", "2"), modes("1", "0") + kNames + kOld},
};
INSTANTIATE_TEST_SUITE_P(Rows, ChapOfChange, testing::ValuesIn(kChange), nameOfIndex);

class ChapSecrets : public SdkTest {};

TEST_F(ChapSecrets, ReachNoLogAndNoLastFailure)
{
    IscsiInitiatorMO wanted = chap("2", "2");
    wanted.ID = "iqn.a";
    wanted.CHAPPASSWORD = wanted.CHAPPASSWORDINITATORVERTARGET = "h1dd3n";
    auto* handler = static_cast<CIscsiInitiatorHandler*>(manager.getHandler(HANDLER_ISCSI_INITIATOR));
    expect(R"(POST /iscsi_initiator {"ID":"iqn.a",)" + modes("2", "2") +
               R"(,"CHAPNAME":"c","CHAPPASSWORD":"h1dd3n","CHAPNAMEINITATORVERTARGET":"m",)"
               R"("CHAPPASSWORDINITATORVERTARGET":"h1dd3n"})",
           sendFailure(1008));
    EXPECT_THAT(thrownBy([&] { handler->createIscsiInitiator(wanted); }), testing::Not(testing::HasSubstr("h1dd3n")));
    EXPECT_THAT(newLog(), testing::Each(testing::Not(testing::HasSubstr("h1dd3n"))));
    EXPECT_THAT(lastFailure().text, testing::Not(testing::HasSubstr("h1dd3n")));
}

}  // namespace
}  // namespace brevan::test
