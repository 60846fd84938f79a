#ifndef BREVAN_BREVAN_H
#define BREVAN_BREVAN_H

// The whole public interface. Start with DeviceManager.h.
#include <brevan/DeviceManager.h>
#include <brevan/DiskAttachHandler.h>
#include <brevan/DiskScannerHandler.h>
#include <brevan/ETHPortHandler.h>
#include <brevan/Errors.h>
#include <brevan/FCInitiatorHandler.h>
#include <brevan/FCPortHandler.h>
#include <brevan/FCoEPortHandler.h>
#include <brevan/Handler.h>
#include <brevan/HostGroupHandler.h>
#include <brevan/HostHandler.h>
#include <brevan/InitiatorRecords.h>
#include <brevan/IscsiInitiatorHandler.h>
#include <brevan/LastFailure.h>
#include <brevan/LunGroupHandler.h>
#include <brevan/LunHandler.h>
#include <brevan/MappingViewHandler.h>
#include <brevan/PortRecords.h>
#include <brevan/SnapshotHandler.h>
#include <brevan/StorageRecords.h>

#endif
