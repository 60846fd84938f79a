#include "scanner/DiskScannerHandlerImpl.h"

// The scans stand in LunScan.cpp and SnapshotScan.cpp, the search in DiskSearch.cpp.

CDiskScannerHandlerImpl::CDiskScannerHandlerImpl(CDeviceManagerImpl* manager) : m_deviceManager(manager)
{
    m_lock.initOncePerProcess();
}
