// A snapshot is a copy that may take long; meanwhile the array works on what else it is asked.
#include "simulator/ErrorCodes.h"
#include "simulator/RequestPipeline.h"

#include "ArrayClient.h"

#include <gtest/gtest.h>

#include <future>
#include <stdexcept>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

/// A driver whose copies take until the test lets them end.
class SlowDriver : public NoExposure {
public:
    void copyVolume(const ExposedVolume&, const ExposedVolume&) override
    {
        m_begun.set_value();
        if (!m_end.get_future().get()) {
            throw std::runtime_error("no space left");
        }
    }
    void removeVolume(const ExposedVolume& volume) override { m_removed.push_back(volume.wwn); }

    std::promise<void> m_begun;
    std::promise<bool> m_end;
    std::vector<std::string> m_removed;
};

/// An array in which a snapshot of the LUN "l" is being copied.
class LongCopy : public ::testing::Test {
protected:
    LongCopy()
    {
        auto owned = std::make_unique<SlowDriver>();
        m_driver = owned.get();
        m_array.exposure = std::move(owned);
        m_credentials = m_array.sessions.open("admin", 0);
        m_lun = send("POST", "/lun", R"({"NAME":"l","PARENTID":"0","CAPACITY":8})").at("data").at("ID").text();
        m_copy = std::async(std::launch::async, [this] { return snapshot("s"); });
        m_driver->m_begun.get_future().get();
    }
    Data send(const std::string& method, const std::string& path, const std::string& body = "")
    {
        WireRequest request;
        request.method = method;
        request.target = "/deviceManager/rest/210000000001" + path;
        request.token = m_credentials.token;
        request.cookie = m_credentials.cookie;
        request.body = body;
        return Data::parse(m_pipeline.handle(request).body);
    }
    Data snapshot(const std::string& name)
    {
        return send("POST", "/snapshot", R"({"NAME":")" + name + R"(","PARENTID":")" + m_lun + "\"}");
    }
    int code(const Data& reply) { return reply.at("error").at("code").number(); }

    Array m_array{testOptions()};
    RequestPipeline m_pipeline{m_array};
    SessionStore::Credentials m_credentials;
    SlowDriver* m_driver = nullptr;
    std::string m_lun;
    std::future<Data> m_copy;
};

}  // namespace

TEST_F(LongCopy, StopsNoOtherRequestAndIsNotSeenBeforeItIsDone)
{
    EXPECT_EQ(code(send("POST", "/lun", R"({"NAME":"other","PARENTID":"0","CAPACITY":8})")), 0);
    EXPECT_FALSE(send("GET", "/snapshot").contains("data"));
    m_driver->m_end.set_value(true);
    const Data reply = m_copy.get();
    EXPECT_EQ(reply.at("data").at("NAME"), "s");
    EXPECT_EQ(send("GET", "/snapshot").at("data").size(), 1u);
}

TEST_F(LongCopy, HoldsItsNameAndItsLun)
{
    EXPECT_EQ(code(snapshot("s")), kNameTaken);
    EXPECT_EQ(code(send("DELETE", "/lun/" + m_lun)), kLunHasSnapshots);
    EXPECT_EQ(code(send("GET", "/lun/" + m_lun)), 0);
    m_driver->m_end.set_value(true);
    m_copy.get();
    EXPECT_EQ(code(send("DELETE", "/lun/" + m_lun)), kLunHasSnapshots);
}

TEST_F(LongCopy, LeavesNothingWhereItFails)
{
    m_driver->m_end.set_value(false);
    const Data reply = m_copy.get();
    EXPECT_EQ(code(reply), kInternal);
    EXPECT_EQ(reply.at("error").at("description"), "The array could not do it: no space left");
    EXPECT_EQ(m_driver->m_removed.size(), 1u);
    EXPECT_FALSE(send("GET", "/snapshot").contains("data"));
    EXPECT_EQ(code(send("DELETE", "/lun/" + m_lun)), 0);
}
