#ifndef BREVAN_SCANNER_DISKSCANNERHANDLERIMPL_H
#define BREVAN_SCANNER_DISKSCANNERHANDLERIMPL_H

#include "scanner/UpRescanLock.h"

#include <brevan/DiskScannerHandler.h>

class CDeviceManagerImpl;

class CDiskScannerHandlerImpl : public CDiskScannerHandler {
public:
    /// Without a device manager, and without the lock: every scan fails.
    CDiskScannerHandlerImpl() = default;
    explicit CDiskScannerHandlerImpl(CDeviceManagerImpl* manager);

    std::string scanLunAfterAttach(std::string& lunId) override;
    std::string scanSnapshotAfterAttach(std::string& snapshotId) override;
    void scanLunBeforeDetach(std::string& lunId) override;
    void scanSnapshotBeforeDetach(std::string& snapshotId) override;
    std::string GetDiskPath(std::string& id, std::string& wwn, MOType type) override;

    /// A snapshot's disk without a rescan of its own: where multipath software is installed and another thread rescans or
    /// has rescanned, after that. Empty: rescan.
    std::string ScanSnapshotPreare(std::string snapshotId, const std::string& wwn);

    /// The search where multipath software is installed: only among disks that are named after `wwn`. Empty: not found.
    std::string GetDiskPathForWWN(const std::string& wwn);

    // Identification of one disk (DeviceIdentification.cpp). 0: done, -1: not.

    static constexpr unsigned int kPageSize = 256;

    /// The identity of a disk from the first designator of its page 0x83 (SPC-5, 7.7.6), whatever kind that is: `wwnOut`
    /// gets its bytes in lower-case hexadecimal, `lunIdOut` the page's bytes 20 to 23 (the last four of a designator of 16
    /// bytes) as a decimal number. Fails where the disk cannot be opened or read, or the designator is longer than 31 bytes.
    static int GetDisk83Page(std::string& device, std::string& wwnOut, std::string& lunIdOut);

    /// Reads a vital product data page with one INQUIRY (SPC-5, 6.6, EVPD set), at most 255 bytes of the kPageSize of
    /// `buffer`, within 60 s. How much the device really sent is not looked at: the rest of the buffer stays as it was.
    static int GetDiskPage(int fd, unsigned char pageCode, unsigned char* buffer);

    // Conversions between a designator's bytes and text (HexConversion.cpp). 0: done, -1: not; null arguments are logged.

    /// `count` bytes from `bytes + offset` on as lower-case hexadecimal. `hexBufferSize` must be greater than 2 * count.
    static int BinaryToAscii(char* hexBuffer, int hexBufferSize, unsigned char* bytes, int offset, int count);

    /// The first length / 2 bytes of `lunId` as hexadecimal: callers pass 9 for four bytes. `asciiSize` must be greater than
    /// `length`.
    static int ConvertLUNIDtoAscii(unsigned char* asciiLunId, int asciiSize, unsigned char* lunId, int length);

    /// Hexadecimal text as decimal text of a signed number of 32 bits; more than that wraps. A character that is no digit
    /// leaves `decStr` untouched.
    static int HextoDec(char* decStr, char* hexStr, int decSize);

    /// Adds the value of one of the digits A to F, at `position` counted from the right, to `accumulator`.
    static int HexEncode(char digit, int position, int& accumulator);

    /// 16 to the power `exponent` in 32 bits; 1 where that is 0 or less.
    static int CalStep(int exponent);

private:
    CDeviceManagerImpl* m_deviceManager = nullptr;
    UpRescanLock m_lock;
};

#endif
