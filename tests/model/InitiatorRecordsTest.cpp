#include <brevan/InitiatorRecords.h>

#include <gtest/gtest.h>

namespace brevan::test {
namespace {

constexpr std::string IscsiInitiatorMO::*kIscsiTexts[] = {&IscsiInitiatorMO::ID,
                                                          &IscsiInitiatorMO::NAME,
                                                          &IscsiInitiatorMO::PARENTID,
                                                          &IscsiInitiatorMO::PARENTNAME,
                                                          &IscsiInitiatorMO::CHAPNAME,
                                                          &IscsiInitiatorMO::CHAPPASSWORD,
                                                          &IscsiInitiatorMO::CHAPOLDPASSWORD,
                                                          &IscsiInitiatorMO::CHAPNAMEINITATORVERTARGET,
                                                          &IscsiInitiatorMO::CHAPPASSWORDINITATORVERTARGET,
                                                          &IscsiInitiatorMO::CHAPOLDPASSWORDINITATORVERTARGET};
constexpr std::string IscsiInitiatorMO::*kIscsiModes[] = {&IscsiInitiatorMO::NORMALVERMODE,
                                                          &IscsiInitiatorMO::DISCOVERYVERMODE};
constexpr std::string FCInitiatorMO::*kFcTexts[] = {&FCInitiatorMO::ID, &FCInitiatorMO::NAME, &FCInitiatorMO::PARENTID,
                                                    &FCInitiatorMO::PARENTNAME};

TEST(IscsiInitiatorRecord, AsksForNoChapWhenFresh)
{
    const IscsiInitiatorMO fresh;
    for (const auto text : kIscsiTexts) {
        EXPECT_EQ(fresh.*text, "");
    }
    for (const auto mode : kIscsiModes) {
        EXPECT_EQ(fresh.*mode, "0");
    }
    EXPECT_EQ(fresh.PARENTTYPE, 0);
    EXPECT_EQ(fresh.HEALTHSTATUS, 0U);
    EXPECT_EQ(fresh.RUNNINGSTATUS, 0U);
    EXPECT_EQ(fresh.ISFREE, 0);
    EXPECT_EQ(fresh.USECHAP, 0);
}

TEST(IscsiInitiatorRecord, IsIndependentOfItsCopy)
{
    IscsiInitiatorMO source;
    for (const auto text : kIscsiTexts) {
        source.*text = "a";
    }
    source.USECHAP = 1;
    IscsiInitiatorMO copy = source;
    for (const auto text : kIscsiTexts) {
        copy.*text += "changed";
        EXPECT_EQ(source.*text, "a");
    }
    source = copy;
    EXPECT_EQ(source.CHAPNAME, "achanged");
    EXPECT_EQ(source.USECHAP, 1);
}

TEST(FCInitiatorRecord, IsEmptyWhenFreshAndIndependentOfItsCopy)
{
    FCInitiatorMO source;
    FCInitiatorMO copy = source;
    for (const auto text : kFcTexts) {
        EXPECT_EQ(source.*text, "");
        copy.*text = "changed";
        EXPECT_EQ(source.*text, "");
    }
    EXPECT_EQ(source.HEALTHSTATUS, 0U);
    EXPECT_EQ(source.RUNNINGSTATUS, 0U);
    EXPECT_EQ(source.ISFREE, 0);
}

}  // namespace
}  // namespace brevan::test
