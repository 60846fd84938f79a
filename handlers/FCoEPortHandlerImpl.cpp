#include "handlers/FCoEPortHandlerImpl.h"

#include "handlers/PortReads.h"

using namespace brevan;

namespace {

constexpr Field<FCoEPortMO> kFields[] = {
    text<&FCoEPortMO::ID>("ID"),
    text<&FCoEPortMO::NAME>("NAME"),
    text<&FCoEPortMO::LOCATION>("LOCATION"),
    number32<&FCoEPortMO::HEALTHSTATUS>("HEALTHSTATUS"),
    number32<&FCoEPortMO::RUNNINGSTATUS>("RUNNINGSTATUS"),
    number32<&FCoEPortMO::LOGICTYPE>("LOGICTYPE"),
    signedNumber<&FCoEPortMO::RUNSPEED>("RUNSPEED"),
    text<&FCoEPortMO::WWN>("WWN"),
    number32<&FCoEPortMO::INIORTGT>("INIORTGT"),
    number64<&FCoEPortMO::ERRORPACKETS>("ERRORPACKETS"),
    number64<&FCoEPortMO::LOSTPACKETS>("LOSTPACKETS"),
    number64<&FCoEPortMO::OVERFLOWEDPACKETS>("OVERFLOWEDPACKETS"),
    number64<&FCoEPortMO::STARTTIME>("STARTTIME"),
    text<&FCoEPortMO::VLANID>("VLANID"),
};

}  // namespace

FCoEPortMO CFCoEPortHandlerImpl::getFCoEPort(const std::string& id)
{
    return readPort(ResourceOperation("getFCoEPort", m_deviceManager), "/FCoE_PORT/", id, "fcoePortID is empty! ", kFields);
}

std::vector<FCoEPortMO> CFCoEPortHandlerImpl::getFCoEPortBatch(FCoEPortQuery& query)
{
    return readPorts(ResourceOperation("getFCoEPortBatch", m_deviceManager), "/FCoE_PORT?", query, kFields);
}
