#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

struct InitiatorPath {
    const char* path;
    const char* unbind;
    const char* id;
    int unknown;
};

/// The two kinds of initiators obey the same rules under different paths.
class Initiators : public ::testing::TestWithParam<InitiatorPath> {
protected:
    Reply bind(const std::string& host)
    {
        return m_array.client.put(std::string(GetParam().path) + "/" + GetParam().id,
                                  {{"PARENTTYPE", 21}, {"PARENTID", host}});
    }
    Reply read() { return m_array.client.get(std::string(GetParam().path) + "/" + GetParam().id); }
    ArrayFixture m_array;
    std::string m_host = m_array.client.make("/host", {{"NAME", "h"}, {"OPERATIONSYSTEM", 0}});
    std::string m_id = m_array.client.make(GetParam().path, {{"ID", GetParam().id}, {"NAME", "some name"}});
};

INSTANTIATE_TEST_SUITE_P(Kinds, Initiators,
                         ::testing::Values(InitiatorPath{"/iscsi_initiator", "/iscsi_initiator/remove_iscsi_from_host",
                                                         "iqn.2020-01.lab:host", kUnknownIscsiInitiator},
                                           InitiatorPath{"/fc_initiator", "/fc_initiator/remove_fc_from_host",
                                                         "20000000000000ff", kUnknownFcInitiator}));

}  // namespace

TEST_P(Initiators, AreFreeAfterTheirCreation)
{
    EXPECT_EQ(m_id, GetParam().id);
    EXPECT_EQ(read().text("ISFREE"), "true");
    EXPECT_EQ(read().text("NAME"), "some name");
    EXPECT_FALSE(read().data.contains("PARENTID"));
}

TEST_P(Initiators, AreBoundToOneHostAtTheMost)
{
    EXPECT_EQ(bind(m_host).code, 0);
    EXPECT_EQ(read().text("ISFREE"), "false");
    EXPECT_EQ(read().text("PARENTID"), m_host);
    EXPECT_EQ(read().text("PARENTNAME"), "h");
    const std::string second = m_array.client.make("/host", {{"NAME", "h2"}, {"OPERATIONSYSTEM", 0}});
    EXPECT_EQ(bind(second).code, kInitiatorBound);
    EXPECT_EQ(bind(m_host).code, kInitiatorBound);
    EXPECT_EQ(read().text("PARENTID"), m_host);
}

TEST_P(Initiators, AreUnboundByTheIdInTheBody)
{
    EXPECT_EQ(m_array.client.put(GetParam().unbind, {{"ID", m_id}}).code, kInitiatorNotBound);
    bind(m_host);
    EXPECT_EQ(m_array.client.put(GetParam().unbind, {{"ID", m_id}}).code, 0);
    EXPECT_EQ(read().text("ISFREE"), "true");
    EXPECT_EQ(m_array.client.put(GetParam().unbind, Fields()).code, kMissingParameter);
}

TEST_P(Initiators, RefuseHostsThatDoNotExistAndParentsThatAreNone)
{
    EXPECT_EQ(bind("777").code, kUnknownHost);
    const std::string path = std::string(GetParam().path) + "/" + GetParam().id;
    EXPECT_EQ(m_array.client.put(path, {{"PARENTTYPE", 14}, {"PARENTID", m_host}}).code, kBadParameter);
    EXPECT_EQ(m_array.client.put(path, {{"PARENTID", m_host}}).code, kMissingParameter);
    EXPECT_EQ(m_array.client.put(path, {{"PARENTTYPE", 21}}).code, kMissingParameter);
}

TEST_P(Initiators, CanBeRemovedOnlyWhileTheyAreFree)
{
    const std::string path = std::string(GetParam().path) + "/" + GetParam().id;
    bind(m_host);
    EXPECT_EQ(m_array.client.remove(path).code, kInitiatorBound);
    m_array.client.put(GetParam().unbind, {{"ID", m_id}});
    EXPECT_EQ(m_array.client.remove(path).code, 0);
    EXPECT_EQ(read().code, GetParam().unknown);
}

TEST_P(Initiators, ExistOnce)
{
    EXPECT_EQ(m_array.client.post(GetParam().path, {{"ID", GetParam().id}}).code, kIdTaken);
}
