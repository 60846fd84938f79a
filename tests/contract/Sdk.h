#ifndef BREVAN_TESTS_CONTRACT_SDK_H
#define BREVAN_TESTS_CONTRACT_SDK_H

#include <brevan/brevan.h>

namespace brevan::contract {

/// A device manager and its handlers, as an application has them.
struct Sdk {
    CDeviceManager& manager;

    template <class Handler>
    Handler& handler(HANDLERTYPE type)
    {
        return static_cast<Handler&>(*manager.getHandler(type));
    }

    CLunHandler& lun() { return handler<CLunHandler>(HANDLER_LUN); }
    CLunGroupHandler& lunGroup() { return handler<CLunGroupHandler>(HANDLER_LUNGROUP); }
    CHostHandler& host() { return handler<CHostHandler>(HANDLER_HOST); }
    CHostGroupHandler& hostGroup() { return handler<CHostGroupHandler>(HANDLER_HOSTGROUP); }
    CMappingViewHandler& view() { return handler<CMappingViewHandler>(HANDLER_MAPPINGVIEW); }
    CIscsiInitiatorHandler& iscsi() { return handler<CIscsiInitiatorHandler>(HANDLER_ISCSI_INITIATOR); }
    CSnapshotHandler& snapshot() { return handler<CSnapshotHandler>(HANDLER_SNAPSHOT); }
    CDiskAttachHandler& attach() { return handler<CDiskAttachHandler>(HANDLER_DISK_ATTACH); }
    CDiskScannerHandler& scanner() { return handler<CDiskScannerHandler>(HANDLER_DISK_SCANNER); }
    CFCInitiatorHandler& fc() { return handler<CFCInitiatorHandler>(HANDLER_FC_INITIATOR); }
    CETHPortHandler& ethPort() { return handler<CETHPortHandler>(HANDLER_ETH_PORT); }
    CFCPortHandler& fcPort() { return handler<CFCPortHandler>(HANDLER_FC_PORT); }
    CFCoEPortHandler& fcoePort() { return handler<CFCoEPortHandler>(HANDLER_FCOE_PORT); }
};

}  // namespace brevan::contract

#endif
