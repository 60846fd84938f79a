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
#include "handlers/ResourceOperation.h"
#include "handlers/SnapshotHandlerImpl.h"
#include "scanner/DiskScannerHandlerImpl.h"
#include "support/SdkTest.h"

#include <climits>

namespace brevan::test {
namespace {

template <class Interface, class Implementation>
bool isKind(CHandler* handler)
{
    return dynamic_cast<Interface*>(handler) != nullptr && dynamic_cast<Implementation*>(handler) != nullptr;
}

struct Kind {
    int type;
    bool (*matches)(CHandler* handler);
};

class HandlerFactory : public SdkTest, public testing::WithParamInterface<Kind> {};

TEST_P(HandlerFactory, MakesTheHandlerOfItsTypeOnceAndKeepsIt)
{
    const auto type = static_cast<HANDLERTYPE>(GetParam().type);
    CHandler* handler = manager.getHandler(type);
    EXPECT_TRUE(GetParam().matches(handler));
    EXPECT_EQ(manager.getHandler(type), handler);
    CDeviceManagerImpl other;
    EXPECT_NE(other.getHandler(type), handler);
}

INSTANTIATE_TEST_SUITE_P(Kinds, HandlerFactory,
                         testing::Values(Kind{2, isKind<CLunHandler, CLunHandlerImpl>},
                                         Kind{3, isKind<CLunGroupHandler, CLunGroupHandlerImpl>},
                                         Kind{4, isKind<CHostHandler, CHostHandlerImpl>},
                                         Kind{5, isKind<CHostGroupHandler, CHostGroupHandlerImpl>},
                                         Kind{6, isKind<CMappingViewHandler, CMappingViewHandlerImpl>},
                                         Kind{7, isKind<CIscsiInitiatorHandler, CIscsiInitiatorHandlerImpl>},
                                         Kind{8, isKind<CSnapshotHandler, CSnapshotHandlerImpl>},
                                         Kind{9, isKind<CDiskAttachHandler, CDiskAttachHandlerImpl>},
                                         Kind{10, isKind<CDiskScannerHandler, CDiskScannerHandlerImpl>},
                                         Kind{11, isKind<CFCInitiatorHandler, CFCInitiatorHandlerImpl>},
                                         Kind{12, isKind<CETHPortHandler, CEthPortHandlerImpl>},
                                         Kind{13, isKind<CFCPortHandler, CFCPortHandlerImpl>},
                                         Kind{14, isKind<CFCoEPortHandler, CFCoEPortHandlerImpl>}),
                         [](const auto& tested) { return "Type" + std::to_string(tested.param.type); });

class UnknownHandler : public SdkTest {};

TEST_F(UnknownHandler, IsNull)
{
    for (const int type : {0, 1, 15, 16, 1000, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(manager.getHandler(static_cast<HANDLERTYPE>(type)), nullptr) << type;
    }
}

class KnownHandler : public SdkTest {};

TEST_F(KnownHandler, SendsUnderTheSessionOfItsDeviceManager)
{
    expect("GET /lun/7", answer(""));
    static_cast<CLunHandler*>(manager.getHandler(HANDLER_LUN))->getLun("7");
    EXPECT_EQ(recorder.handles(), std::vector<unsigned int>{sessionHandle(&manager)});
}

}  // namespace
}  // namespace brevan::test
