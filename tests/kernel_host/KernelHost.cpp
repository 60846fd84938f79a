#include "KernelHost.h"

#include <cstdio>
#include <sstream>
#include <stdexcept>

namespace brevan::test {

std::string run(const std::string& command)
{
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(("exec 2>&1; " + command).c_str(), "r"), pclose);
    std::string output;
    for (int c = 0; (c = std::fgetc(pipe.get())) != EOF;) {
        output += static_cast<char>(c);
    }
    if (pclose(pipe.release()) != 0) {
        throw std::runtime_error(command + " failed: " + output);
    }
    return output;
}

std::string readFile(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream file(path, std::ios::binary);
    if (!(file << text).flush()) {
        throw std::runtime_error("cannot write " + path);
    }
}

bool eventually(const std::function<bool()>& condition)
{
    for (int i = 0; i < 1200; ++i) {
        if (condition()) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
}

std::string ownInitiator()
{
    const std::string line = readFile("/etc/iscsi/initiatorname.iscsi");
    const auto name = line.find('=') + 1;
    return line.substr(name, line.find('\n') - name);
}

sim::ServerOptions lioOptions(const std::string& folder)
{
    auto options = arrayOptions(folder);
    options.volumeDirectory = folder + "/volumes";
    options.iscsiInitiators = {ownInitiator(), kOtherInitiator};
    options.exposure = sim::Exposure::kLio;
    options.journalEntries = 100;  // the array shares our process: what it keeps would look like a leak
    return options;
}

void loginInitiator()
{
    run("iscsiadm -m discovery -t st -p 127.0.0.1 && iscsiadm -m node --login");
}

void logoutInitiator()
{
    run("iscsiadm -m session -u");
}

ArrayConsole::ArrayConsole(sim::ArrayServer& array) : m_array(array)
{
    const sim::WireReply reply =
        array.handle({"POST", "/deviceManager/rest/xxxx/sessions", "", "",
                      std::string(R"({"username":"admin","scope":0,"password":")") + kHostPassword + "\"}"});
    const std::string key = "\"iBaseToken\":\"";
    const auto token = reply.body.find(key);
    if (token == std::string::npos) {
        throw std::runtime_error("no session: " + reply.body);
    }
    const auto begin = token + key.size();
    m_token = reply.body.substr(begin, reply.body.find('"', begin) - begin);
    const std::string& cookie = reply.headers.at(0).second;
    m_cookie = cookie.substr(0, cookie.find(';'));
}

std::string ArrayConsole::send(const std::string& method, const std::string& path, const std::string& body)
{
    const std::string base = "/deviceManager/rest/" + m_array.deviceId();
    const sim::WireReply reply = m_array.handle({method, base + path, m_token, m_cookie, body});
    if (reply.body.find("\"code\":0,") == std::string::npos) {
        throw std::runtime_error(method + " " + path + ": " + reply.body);
    }
    return reply.body;
}

int ArrayConsole::count(const std::string& kind)
{
    const std::string reply = send("GET", kind + "/count?");
    return std::stoi(reply.substr(reply.find("\"COUNT\":\"") + 9));
}

void ArrayConsole::remove(const std::string& path)
{
    send("DELETE", path);
}

std::unique_ptr<sim::ArrayServer> KernelHost::array;

void KernelHost::SetUpTestSuite()
{
    array = std::make_unique<sim::ArrayServer>(lioOptions("/tmp/array"));
    array->start();
    loginInitiator();
}

void KernelHost::TearDownTestSuite()
{
    logoutInitiator();
    array.reset();
}

void KernelHost::SetUp()
{
    trust(*array);
    ASSERT_EQ(client.login(*array), 1) << lastFailure().text;
}

unsigned KernelHost::lunNumber(const std::string& wwn)
{
    auto plan = array->exposed();
    for (const auto& [number, volume] : plan[ownInitiator()]) {
        if (volume.wwn == wwn) {
            return number;
        }
    }
    return 0;
}

LunMO KernelHost::attachedLun()
{
    LunMO lun = client.createLun();
    waitForNewSecond();
    EXPECT_EQ(client.attach(lun.ID), 0);
    EXPECT_TRUE(lastFailure().empty()) << lastFailure().text;
    return lun;
}

LunMO KernelHost::attachedDisk(std::string& path)
{
    LunMO lun = attachedLun();
    path = client.scan(lun.ID);
    EXPECT_NE(path, "") << lastFailure().text;
    return lun;
}

}  // namespace brevan::test
