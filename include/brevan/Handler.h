#ifndef BREVAN_HANDLER_H
#define BREVAN_HANDLER_H

#include <brevan/Export.h>

/// Which handler CDeviceManager::getHandler returns. Any other number selects none.
enum HANDLERTYPE : int {
    HANDLER_LUN = 2,              ///< CLunHandler
    HANDLER_LUNGROUP = 3,         ///< CLunGroupHandler
    HANDLER_HOST = 4,             ///< CHostHandler
    HANDLER_HOSTGROUP = 5,        ///< CHostGroupHandler
    HANDLER_MAPPINGVIEW = 6,      ///< CMappingViewHandler
    HANDLER_ISCSI_INITIATOR = 7,  ///< CIscsiInitiatorHandler
    HANDLER_SNAPSHOT = 8,         ///< CSnapshotHandler
    HANDLER_DISK_ATTACH = 9,      ///< CDiskAttachHandler
    HANDLER_DISK_SCANNER = 10,    ///< CDiskScannerHandler
    HANDLER_FC_INITIATOR = 11,    ///< CFCInitiatorHandler
    HANDLER_ETH_PORT = 12,        ///< CETHPortHandler
    HANDLER_FC_PORT = 13,         ///< CFCPortHandler
    HANDLER_FCOE_PORT = 14        ///< CFCoEPortHandler
};

/// Base of all handlers. A handler belongs to the device manager that handed it out, lives as long as that, and must not be
/// deleted by the caller. Convert it with static_cast to the interface named at its HANDLERTYPE.
///
/// What holds for every operation of every handler, save where it says otherwise:
///   - It runs on the caller's thread and blocks for its requests: each at most the transport's connect and request
///     limits (10 s and 60 s unless set otherwise). Handlers may be used from several threads at once.
///   - It throws PlimAPIException for a parameter that is missing (before anything is sent) and for a request that got
///     no usable reply, PlimAPIExceptionWithErrCode with the array's code for an error answer (Errors.h). Nothing else.
///   - It writes "enter NAME successfully!" and, when it went well, "leave NAME successfully!" to the run log (info),
///     failures as errors, and one record with start, end and code (0, 1 for a parameter, else the failure's) to the
///     interface log. Operations that it calls on its way write theirs between; one that fails gives its code to the
///     records of those around it.
///   - Reads may be repeated. A create or a change that ended in a timeout or a lost connection may have been carried
///     out: read before repeating it. Nothing but a read is ever sent twice by the library.
///   - A read of one object that the array answers without a record gives a default record with an empty ID, no
///     exception.
///   - Batch reads cost one request for the list and one for each record; use rangeStart and rangeCount to bound them.
class BREVAN_API CHandler {
public:
    virtual ~CHandler();
};

#endif
