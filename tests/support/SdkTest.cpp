#include "support/SdkTest.h"

#include "scanner/ScanState.h"
#include "scanner/UpRescanLock.h"

namespace brevan::test {

SdkTest::SdkTest()
{
    recorder.reset();
    SetScanState(UPRESCAN_NONE);
    g_multipathInstalled.store(false);
    g_lockInitialised = 0;
}

SdkTest::~SdkTest()
{
    if (m_initialised) {
        CDeviceManagerImpl::uninitial();
        CDeviceManagerImpl::initial(1, 500000);  // the settings outlive the last device manager
        CDeviceManagerImpl::uninitial();
    }
    recorder.verify();
}

Lines SdkTest::newLog()
{
    const Lines all = recorder.log();
    Lines fresh(all.begin() + static_cast<std::ptrdiff_t>(m_seen), all.end());
    m_seen = all.size();
    return fresh;
}

void SdkTest::useRetries(unsigned int times, unsigned int pauseMicroseconds)
{
    CDeviceManagerImpl::initial(times, pauseMicroseconds);
    m_initialised = true;
    newLog();
}

Lines entered(const std::string& operation, const Lines& between, int code)
{
    Lines lines = {"info: enter " + operation + " successfully!"};
    lines.insert(lines.end(), between.begin(), between.end());
    lines.push_back("record: " + operation + " " + std::to_string(code));
    if (code == 0) {
        lines.push_back("info: leave " + operation + " successfully!");
    }
    return lines;
}

Lines failed(const std::string& operation, const std::string& line, int code)
{
    return entered(operation, {"error: " + line}, code);
}

std::string thrownBy(const std::function<void()>& call)
{
    try {
        call();
    } catch (PlimAPIExceptionWithErrCode& refusal) {
        return std::string(refusal.what()) + " / " + std::to_string(refusal.getErrCode());
    } catch (const PlimAPIException& failure) {
        return failure.what();
    } catch (const std::exception& foreign) {
        return std::string("a foreign exception: ") + foreign.what();
    }
    return "nothing";
}

}  // namespace brevan::test
