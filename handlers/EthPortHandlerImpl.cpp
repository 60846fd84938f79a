#include "handlers/EthPortHandlerImpl.h"

#include "handlers/PortReads.h"

using namespace brevan;

namespace {

constexpr Field<ETHPortMO> kFields[] = {
    text<&ETHPortMO::ID>("ID"),
    text<&ETHPortMO::NAME>("NAME"),
    text<&ETHPortMO::LOCATION>("LOCATION"),
    number32<&ETHPortMO::HEALTHSTATUS>("HEALTHSTATUS"),
    number32<&ETHPortMO::RUNNINGSTATUS>("RUNNINGSTATUS"),
    number32<&ETHPortMO::LOGICTYPE>("LOGICTYPE"),
    text<&ETHPortMO::MACADDRESS>("MACADDRESS"),
    number32<&ETHPortMO::INIORTGT>("INIORTGT"),
    number64<&ETHPortMO::MTU>("MTU"),
    text<&ETHPortMO::ISCSITCPPORT>("ISCSITCPPORT"),
    text<&ETHPortMO::ISCSINAME>("ISCSINAME"),
    number64<&ETHPortMO::ERRORPACKETS>("ERRORPACKETS"),
    number64<&ETHPortMO::LOSTPACKETS>("LOSTPACKETS"),
    number64<&ETHPortMO::OVERFLOWEDPACKETS>("OVERFLOWEDPACKETS"),
    number64<&ETHPortMO::STARTTIME>("STARTTIME"),
    number64<&ETHPortMO::SPEED>("SPEED"),
    text<&ETHPortMO::IPV4MASK>("IPV4MASK"),
    text<&ETHPortMO::IPV4ADDRESS>("IPV4ADDRESS"),
    text<&ETHPortMO::IPV6MASK>("IPV6MASK"),
    text<&ETHPortMO::IPV6ADDRESS>("IPV6ADDRESS"),
};

}  // namespace

ETHPortMO CEthPortHandlerImpl::getETHPort(const std::string& id)
{
    return readPort(ResourceOperation("getETHPort", m_deviceManager), "/ETH_PORT/", id, "ethPortID is empty! ", kFields);
}

std::vector<ETHPortMO> CEthPortHandlerImpl::getETHPortBatch(ETHPortQuery& query)
{
    return readPorts(ResourceOperation("getETHPortBatch", m_deviceManager), "/ETH_PORT?", query, kFields);
}
