// The composition root: the only source that knows every implementation.
#include "attach/DiskAttachHandlerImpl.h"
#include "handlers/EthPortHandlerImpl.h"
#include "handlers/FCInitiatorHandlerImpl.h"
#include "handlers/FCPortHandlerImpl.h"
#include "handlers/FCoEPortHandlerImpl.h"
#include "handlers/HostGroupHandlerImpl.h"
#include "handlers/HostHandlerImpl.h"
#include "handlers/IscsiInitiatorHandlerImpl.h"
#include "handlers/LunGroupHandlerImpl.h"
#include "handlers/LunHandlerImpl.h"
#include "handlers/MappingViewHandlerImpl.h"
#include "handlers/SnapshotHandlerImpl.h"
#include "scanner/DiskScannerHandlerImpl.h"
#include "session/DeviceManagerImpl.h"

namespace {

struct Kind {
    HANDLERTYPE type;
    std::unique_ptr<CHandler> (*make)(CDeviceManagerImpl* manager);
};

template <class Implementation>
std::unique_ptr<CHandler> make(CDeviceManagerImpl* manager)
{
    return std::make_unique<Implementation>(manager);
}

// In the order in which a device manager deletes them.
constexpr Kind kKinds[CDeviceManagerImpl::kHandlerCount] = {
    {HANDLER_LUN, make<CLunHandlerImpl>},
    {HANDLER_LUNGROUP, make<CLunGroupHandlerImpl>},
    {HANDLER_ISCSI_INITIATOR, make<CIscsiInitiatorHandlerImpl>},
    {HANDLER_HOST, make<CHostHandlerImpl>},
    {HANDLER_HOSTGROUP, make<CHostGroupHandlerImpl>},
    {HANDLER_MAPPINGVIEW, make<CMappingViewHandlerImpl>},
    {HANDLER_DISK_ATTACH, make<CDiskAttachHandlerImpl>},
    {HANDLER_SNAPSHOT, make<CSnapshotHandlerImpl>},
    {HANDLER_FC_INITIATOR, make<CFCInitiatorHandlerImpl>},
    {HANDLER_ETH_PORT, make<CEthPortHandlerImpl>},
    {HANDLER_FC_PORT, make<CFCPortHandlerImpl>},
    {HANDLER_FCOE_PORT, make<CFCoEPortHandlerImpl>},
    {HANDLER_DISK_SCANNER, make<CDiskScannerHandlerImpl>},
};

/// The handler of this place, made where there is none. No lock: of threads that make one at once, one keeps its own.
CHandler* keptIn(std::atomic<CHandler*>& place, const Kind& kind, CDeviceManagerImpl* manager)
{
    CHandler* kept = place.load(std::memory_order_acquire);
    if (kept == nullptr) {
        std::unique_ptr<CHandler> made = kind.make(manager);
        if (place.compare_exchange_strong(kept, made.get(), std::memory_order_acq_rel)) {
            kept = made.release();
        }
    }
    return kept;
}

}  // namespace

CHandler* CDeviceManagerImpl::getHandler(HANDLERTYPE type)
{
    for (std::size_t index = 0; index < kHandlerCount; ++index) {
        if (kKinds[index].type == type) {
            return keptIn(m_handlers[index], kKinds[index], this);
        }
    }
    return nullptr;
}
