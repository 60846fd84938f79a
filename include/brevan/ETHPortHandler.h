#ifndef BREVAN_ETHPORTHANDLER_H
#define BREVAN_ETHPORTHANDLER_H

#include <brevan/Handler.h>
#include <brevan/PortRecords.h>

#include <string>
#include <vector>

/// The array's Ethernet ports: read. See CHandler for what holds for every operation.
class BREVAN_API CETHPortHandler : public CHandler {
public:
    ~CETHPortHandler() override;

    /// The port with that ID; a default record where the array answers without one. Throws "ethPortID is empty! ".
    virtual ETHPortMO getETHPort(const std::string& id) = 0;

    /// The ports that meet the query's condition (ID, NAME, LOGICTYPE unless 100). One request, whatever their number.
    virtual std::vector<ETHPortMO> getETHPortBatch(ETHPortQuery& query) = 0;
};

#endif
