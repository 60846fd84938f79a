#ifndef BREVAN_TESTS_SUPPORT_SDKTEST_H
#define BREVAN_TESTS_SUPPORT_SDKTEST_H

#include "session/DeviceManagerImpl.h"
#include "support/FakeClock.h"
#include "support/FakeDevices.h"
#include "support/Recorder.h"

#include <brevan/brevan.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brevan::test {

using Lines = std::vector<std::string>;

/// A test of the SDK on the recorder, with a clock and devices of its own. The process-wide state of the scanner and the retry
/// settings (1 retry, a pause of 0.5 s) are fresh. What was expected and did not come fails the test.
class SdkTest : public testing::Test {
protected:
    SdkTest();
    ~SdkTest() override;

    Recorder& recorder = Recorder::instance();
    FakeClock fakeClock;
    FakeDevices devices;
    CDeviceManagerImpl manager;

    /// What has been logged since the last call.
    Lines newLog();

    void expect(const std::string& line, Answer with) { recorder.expectRequest(line, std::move(with)); }

    /// Sets the retry settings of the process until the end of the test.
    void useRetries(unsigned int times, unsigned int pauseMicroseconds);

private:
    std::size_t m_seen = 0;
    bool m_initialised = false;
};

/// The lines of an operation that goes well, without what is between.
Lines entered(const std::string& operation, const Lines& between = {}, int code = 0);

/// The lines of an operation that fails with one line and a record.
Lines failed(const std::string& operation, const std::string& line, int code);

/// What the public exceptions carry: "what() / code", "what()" for the type without a code, and their types told apart.
std::string thrownBy(const std::function<void()>& call);

}  // namespace brevan::test

#endif
