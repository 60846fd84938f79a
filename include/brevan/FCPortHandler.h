#ifndef BREVAN_FCPORTHANDLER_H
#define BREVAN_FCPORTHANDLER_H

#include <brevan/Handler.h>
#include <brevan/PortRecords.h>

#include <string>
#include <vector>

/// The array's Fibre Channel ports: read. See CHandler for what holds for every operation.
class BREVAN_API CFCPortHandler : public CHandler {
public:
    ~CFCPortHandler() override;

    /// The port with that ID; a default record where the array answers without one. Throws "fcPortID is empty! ".
    virtual FCPortMO getFCPort(const std::string& id) = 0;

    /// The ports that meet the query's condition (ID, NAME, LOGICTYPE unless 100). One request, whatever their number.
    virtual std::vector<FCPortMO> getFCPortBatch(FCPortQuery& query) = 0;
};

#endif
