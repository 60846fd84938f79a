#ifndef BREVAN_FCOEPORTHANDLER_H
#define BREVAN_FCOEPORTHANDLER_H

#include <brevan/Handler.h>
#include <brevan/PortRecords.h>

#include <string>
#include <vector>

/// The array's FCoE ports: read. See CHandler for what holds for every operation.
class BREVAN_API CFCoEPortHandler : public CHandler {
public:
    ~CFCoEPortHandler() override;

    /// The port with that ID; a default record where the array answers without one. Throws "fcoePortID is empty! ".
    virtual FCoEPortMO getFCoEPort(const std::string& id) = 0;

    /// The ports that meet the query's condition (ID, NAME, LOGICTYPE unless 100). One request, whatever their number.
    virtual std::vector<FCoEPortMO> getFCoEPortBatch(FCoEPortQuery& query) = 0;
};

#endif
