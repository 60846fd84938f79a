#include "TransportFixture.h"

#include "platform/q7common/Settings.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace brevan::test {

namespace {

/// Made before the first test and kept to the end: the library finds its settings through the environment.
const TemporaryFolder& settingsFolder()
{
    static const TemporaryFolder folder;
    static const int isNamed = setenv("BREVAN_TRANSPORT_CONFIG", folder.file("transport.ini").c_str(), 1);
    static_cast<void>(isNamed);
    return folder;
}

}  // namespace

TemporaryFolder::TemporaryFolder()
{
    std::string pattern = std::filesystem::temp_directory_path() / "q7common-XXXXXX";
    m_path = mkdtemp(pattern.data());
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& text) const
{
    std::ofstream(file(name), std::ios::binary) << text;
    return file(name);
}

const Identity& authority()
{
    static const Identity made = makeAuthority();
    return made;
}

const Identity& identity()
{
    static const Identity made = makeIdentity(authority());
    return made;
}

void writeSettings(const std::string& text)
{
    settingsFolder().write("transport.ini", text);
}

void useSettings(const std::string& tls, const std::string& more)
{
    static const std::string caFile = settingsFolder().write("ca.pem", authority().pem());
    writeSettings("[tls]\nca_file = " + caFile + "\n" + tls + "\n" + more);
    EXPECT_THAT(refreshedSettings()->problems, ::testing::IsEmpty());
}

int Sent::code()
{
    std::string description;
    return response.getResponseCode(description);
}

std::string Sent::id()
{
    return response.count() == 0 ? "" : response[0]["ID"].asString();
}

Sent send(const std::string& url, REST_REQUEST_MODE_E mode, const std::string& path)
{
    Sent sent;
    RestRequest request;
    request.SetServerUrl(url);
    if (mode == REST_POST || mode == REST_PUT) {
        request.BodyAddProperty("NAME", "x");
    }
    sent.result = request.SendRequest(path, mode, sent.response, sent.headerLines, true);
    return sent;
}

void TransportTest::SetUp()
{
    useSettings();
    RunLogRecorder::clear();
}

}  // namespace brevan::test
