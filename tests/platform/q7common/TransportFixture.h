#ifndef BREVAN_Q7COMMON_TESTS_TRANSPORTFIXTURE_H
#define BREVAN_Q7COMMON_TESTS_TRANSPORTFIXTURE_H

#include "Certificates.h"
#include "RunLogRecorder.h"
#include "TlsServer.h"

#include "RestRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brevan::test {

/// A folder that goes with the test.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string file(const std::string& name) const { return m_path + "/" + name; }
    /// Writes a file and returns its path.
    std::string write(const std::string& name, const std::string& text) const;

private:
    std::string m_path;
};

/// Writes transport.ini where the library looks for it, with "[tls] ca_file" set to the tests' authority and short time
/// limits, and puts it into force. `tls` are further lines of that section, `more` further sections.
void useSettings(const std::string& tls = "", const std::string& more = "[time]\nrequest_seconds = 5\n");
/// The file as it stands, nothing added.
void writeSettings(const std::string& text);

/// The authority that useSettings trusts, and a server identity that it signed.
const Identity& authority();
const Identity& identity();

struct Sent {
    int result = -1;
    RestResponse response;
    std::vector<std::string> headerLines;

    int code();
    std::string id();
};

/// Sends a request without a body (or with {"NAME":"x"} for POST and PUT) to `url`.
Sent send(const std::string& url, REST_REQUEST_MODE_E mode, const std::string& path = "/deviceManager/rest/1/lun");
inline Sent get(const std::string& url)
{
    return send(url, REST_GET);
}

/// A test over the whole transport: default settings, empty log.
class TransportTest : public ::testing::Test {
protected:
    void SetUp() override;
};

}  // namespace brevan::test

#endif
