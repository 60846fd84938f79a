#ifndef BREVAN_TESTS_SCANNER_SNAPSHOTSCANFIXTURE_H
#define BREVAN_TESTS_SCANNER_SNAPSHOTSCANFIXTURE_H

#include "scanner/ScanFixture.h"

#include <string>

namespace brevan::test {

// What the search without a rescan logs, by its outcome.
inline const Lines kNoShortcut = {"info: enter ScanSnapshotPreare successfully!", "error: Tendrix is not installed."};
inline const Lines kNeedsScan = {"info: enter ScanSnapshotPreare successfully!", "info: need scan snapshot!"};
inline const Lines kWaited = {"info: enter ScanSnapshotPreare successfully!", "info: wait the scaning ...",
                              "info: running the upRescan end"};
inline const Lines kShortcutFailed = {"info: The target lun is not found.", "info: exit ScanSnapshotPreare successfully!"};

/// All that a scan of a snapshot logs around its rescan and its search.
inline Lines scanned(const Lines& shortcut, const Lines& rescan, const Lines& rest)
{
    return entered("scanSnapshotAfterAttach",
                   entered("getSnapshot") + shortcut + Lines{kRescanStart} + rescan + Lines{kRescanEnd} + rest);
}

class SnapshotScan : public ScanTest {
protected:
    std::string scan() { return handler.scanSnapshotAfterAttach(id); }

    void expectSnapshot() { expectRecord("/SNAPSHOT/", id, wwn); }
};

}  // namespace brevan::test

#endif
