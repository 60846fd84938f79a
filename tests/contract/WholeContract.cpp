#include "Contract.h"

namespace brevan::contract {

Table wholeContract()
{
    Table whole;
    for (const Table& table :
         {lunContract(), lunGroupContract(), lunGroupMembershipContract(), snapshotContract(), hostContract(),
          hostGroupContract(), mappingViewContract(), iscsiInitiatorContract(), fcInitiatorContract(), portContract(),
          sessionContract(), handlerContract(), attachContract(), detachContract(), lunScanContract(),
          snapshotScanContract(), sharedRescanContract(), diskPathContract()}) {
        whole.insert(whole.end(), table.begin(), table.end());
    }
    return whole;
}

}  // namespace brevan::contract
