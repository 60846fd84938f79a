#include "ProgramFixture.h"

using namespace brevan::sim;
using namespace brevan::sim::test;

TEST_F(Program, ServesUntilItIsAskedToEnd)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        std::filesystem::remove(file("port"));
        start({"--port-file", file("port"), "--ca-file", file("ca.pem"), "--log-requests"});
        const std::string number = port();
        HttpsClient client("https://127.0.0.1:" + number, file("ca.pem"));
        EXPECT_EQ(client.send("GET", "/deviceManager/rest/x/lun").status, 200);
        kill(m_pid, signal);
        EXPECT_EQ(exitStatus(), 0);
        EXPECT_NE(content("output").find("listening on https://127.0.0.1:" + number + "\n"), std::string::npos);
        EXPECT_NE(content("output").find("GET /lun -> -401"), std::string::npos) << content("output");
        EXPECT_EQ(content("errors"), "");
    }
}

TEST_F(Program, HasAControlPortAndWritesItsJournal)
{
    start({"--port-file", file("port"), "--ca-file", file("ca.pem"), "--control-port", "0", "--journal", file("journal")});
    HttpsClient client("https://127.0.0.1:" + port(), file("ca.pem"));
    EXPECT_EQ(client.send("GET", "/deviceManager/rest/x/lun").status, 200);
    const std::string output = content("output");
    const std::size_t begin = output.find("control port http://") + 13;
    HttpsClient control(output.substr(begin, output.find('\n', begin) - begin), "");
    EXPECT_NE(control.send("GET", "/journal").body.find("\"path\":\"/lun\""), std::string::npos);
    EXPECT_NE(content("journal").find("\"path\":\"/lun\""), std::string::npos);
    kill(m_pid, SIGTERM);
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(Program, EndsWithStatus2ForFlagsThatDoNotDo)
{
    for (const char* flag : {"--nosuch", "--device-id=a/b", "--exposure=lio"}) {
        start({flag});
        EXPECT_EQ(exitStatus(), 2) << flag;
        EXPECT_EQ(content("errors").find("brevan-array-sim: "), 0u) << content("errors");
    }
}

TEST_F(Program, EndsWithStatus1WhereItCannotStart)
{
    start({"--ca-file", file("none/ca.pem")});
    EXPECT_EQ(exitStatus(), 1);
    EXPECT_NE(content("errors").find("cannot write " + file("none/ca.pem")), std::string::npos) << content("errors");
}
