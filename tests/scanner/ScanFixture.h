#ifndef BREVAN_TESTS_SCANNER_SCANFIXTURE_H
#define BREVAN_TESTS_SCANNER_SCANFIXTURE_H

#include "scanner/DiskScannerHandlerImpl.h"
#include "scanner/Semaphores.h"
#include "support/SdkTest.h"

#include <string>
#include <vector>

namespace brevan::test {

/// A volume's identity, whose last four bytes are the number 266, and another one.
extern const char* const kWwn;
extern const char* const kOtherWwn;

/// Where the SDK sees a disk.
std::string diskPath(const std::string& device);

/// A line of the listing: a disk by its name.
std::string listed(const std::string& name, const std::string& device);

Lines operator+(Lines left, const Lines& right);

constexpr const char* kRescanStart = "info: =============upRescan start============";
constexpr const char* kRescanEnd = "info: ============Rescan -r success=============\n";
constexpr const char* kNoMultipath = "error: Tendrix is not installed";

/// The command fails with that text.
CommandResult commandFailure(const std::string& errorText);
CommandResult printing(std::vector<std::string> text);

/// The command does something while it runs.
CommandResult doing(std::function<void()> action, CommandResult result = {});

/// Whether a thread that waits for the end of a rescan could take the mutex now.
bool mutexIsFree();

/// Announces the end of a rescan, so that after a failed test nobody waits for ever.
void wakeAllWaiters();

/// How many threads this process has.
std::size_t threadCount();

/// A scanner whose lock was just made, on a host without disks.
class ScanTest : public SdkTest {
private:
    struct NoSemaphore {
        NoSemaphore() { removeSemaphore(); }
    } m_noSemaphore;

protected:
    ScanTest() { newLog(); }

    CDiskScannerHandlerImpl handler{&manager};
    std::string id = "7";
    std::string wwn = kWwn;

    void expectRescan(CommandResult result = {});
    void expectBusyProbe(CommandResult result);
    void expectListing(CommandResult result);
    void expectListing(const std::string& of, CommandResult result);
    void expectDeviceRescan(const std::string& device, CommandResult result = {});
    void expectRecord(const std::string& path, const std::string& recordId, const std::string& recordWwn);

    /// The general search for volume `id`, with one disk on the host, sdc. Returns what it logs.
    Lines expectSearch(const std::string& type, bool found);

    /// The same with multipath software.
    Lines expectMultipathSearch(const std::string& of, const std::string& device, bool found);
};

}  // namespace brevan::test

#endif
