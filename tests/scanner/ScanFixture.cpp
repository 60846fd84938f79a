#include "scanner/ScanFixture.h"

#include "scanner/ScanState.h"

#include <dirent.h>

#include <future>
#include <memory>
#include <utility>

namespace brevan::test {

const char* const kWwn = "6001405abcdef0123456789a0000010a";
const char* const kOtherWwn = "6001405abcdef0123456789affffffff";

std::string diskPath(const std::string& device)
{
    return "/dev/disk/by-id/../../" + device;
}

std::string listed(const std::string& name, const std::string& device)
{
    return "lrwxrwxrwx 1 root root   9 Jan  1 00:00 " + name + " -> ../../" + device;
}

Lines operator+(Lines left, const Lines& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

CommandResult commandFailure(const std::string& errorText)
{
    return {1, {}, errorText, {}};
}

CommandResult printing(std::vector<std::string> text)
{
    return {0, std::move(text), "", {}};
}

CommandResult doing(std::function<void()> action, CommandResult result)
{
    result.before = std::move(action);
    return result;
}

bool mutexIsFree()
{
    return std::async(std::launch::async,
                      [] {
                          const std::unique_lock<std::mutex> lock(g_scanLunMutex, std::try_to_lock);
                          return lock.owns_lock();
                      })
        .get();
}

void wakeAllWaiters()
{
    SetScanState(UPRESCAN_ENDED);
    const std::lock_guard<std::mutex> lock(g_scanLunMutex);
    g_scanlunEndCond.notify_all();
}

std::size_t threadCount()
{
    const std::unique_ptr<DIR, int (*)(DIR*)> tasks(opendir("/proc/self/task"), closedir);
    std::size_t count = 0;
    while (const dirent* entry = readdir(tasks.get())) {
        count += entry->d_name[0] != '.' ? 1U : 0U;
    }
    return count;
}

void ScanTest::expectRescan(CommandResult result)
{
    recorder.expectCommand("100003/1/0 [sudo /opt/root_tool/common/security_sudo_v3.sh do_uprescan]", std::move(result));
}

void ScanTest::expectBusyProbe(CommandResult result)
{
    recorder.expectCommand("100007/1/0 [lsscsi | grep tmp-block]", std::move(result));
}

void ScanTest::expectListing(CommandResult result)
{
    recorder.expectCommand("100009/0/0 [ls -al /dev/disk/by-id | grep -v part | grep scsi-]", std::move(result));
}

void ScanTest::expectListing(const std::string& of, CommandResult result)
{
    recorder.expectCommand("100008/0/0 [ ls -al /dev/disk/by-id | grep ? | grep -v part | grep scsi-] (" + of + ")",
                           std::move(result));
}

void ScanTest::expectDeviceRescan(const std::string& device, CommandResult result)
{
    recorder.expectCommand("100004/1/0 [sudo /opt/root_tool/common/security_sudo_v3.sh dev_rescan '?'] (" + device + ")",
                           std::move(result));
}

void ScanTest::expectRecord(const std::string& path, const std::string& recordId, const std::string& recordWwn)
{
    expect("GET " + path + recordId, answer(R"({"ID":")" + recordId + R"(","WWN":")" + recordWwn + R"("})"));
}

Lines ScanTest::expectSearch(const std::string& type, bool found)
{
    const std::string line = listed("scsi-3" + wwn, "sdc");
    devices.addDisk(diskPath("sdc"), found ? kWwn : kOtherWwn);
    expectListing(printing({line}));
    Lines log = {kNoMultipath, "info: strLine [" + line + "]", "info: =========================================\n",
                 "info: strDiskPath [" + diskPath("sdc") + "]", "info: Target " + type + " ID [" + id + "]"};
    if (found) {
        expectDeviceRescan("sdc");
        log = log + Lines{"record: GetDiskPath 0", "info: ---------GetDiskPath successfully---------!"};
    }
    return log;
}

Lines ScanTest::expectMultipathSearch(const std::string& of, const std::string& device, bool found)
{
    devices.addDisk(diskPath(device), found ? of : std::string(32, '0'));
    expectListing(of, printing({listed("scsi-3" + of, device)}));
    if (found) {
        expectDeviceRescan(device);
    }
    const unsigned int number = found ? static_cast<unsigned int>(std::stoul(of.substr(24), nullptr, 16)) : 0;
    return {"info: disk info [" + diskPath(device) + "]", "info: strDiskPath [" + diskPath(device) + "]",
            "info: strSnapshotID [" + std::to_string(static_cast<int>(number)) + "]", "record: GetDiskPathForWWN 0"};
}

}  // namespace brevan::test
