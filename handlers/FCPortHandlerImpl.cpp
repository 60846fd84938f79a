#include "handlers/FCPortHandlerImpl.h"

#include "handlers/PortReads.h"

using namespace brevan;

namespace {

constexpr Field<FCPortMO> kFields[] = {
    text<&FCPortMO::ID>("ID"),
    text<&FCPortMO::NAME>("NAME"),
    text<&FCPortMO::LOCATION>("LOCATION"),
    number32<&FCPortMO::HEALTHSTATUS>("HEALTHSTATUS"),
    number32<&FCPortMO::RUNNINGSTATUS>("RUNNINGSTATUS"),
    number32<&FCPortMO::LOGICTYPE>("LOGICTYPE"),
    signedNumber<&FCPortMO::RUNSPEED>("RUNSPEED"),
    number64<&FCPortMO::CONFSPEED>("CONFSPEED"),
    text<&FCPortMO::WWN>("WWN"),
    number32<&FCPortMO::INIORTGT>("INIORTGT"),
    number32<&FCPortMO::FCRUNMODE>("FCRUNMODE"),
    number64<&FCPortMO::LOSTSIGNALS>("LOSTSIGNALS"),
    number64<&FCPortMO::BADCHARNUMBER>("BADCHARNUMBER"),
    number64<&FCPortMO::LOSTSYNC>("LOSTSYNC"),
    number64<&FCPortMO::LINKFAIL>("LINKFAIL"),
    number64<&FCPortMO::STARTTIME>("STARTTIME"),
    number64<&FCPortMO::FLOGINDELAYTIMES>("FLOGINDELAYTIMES"),
    number64<&FCPortMO::MAXSUPPORTSPEED>("MAXSUPPORTSPEED"),
};

}  // namespace

FCPortMO CFCPortHandlerImpl::getFCPort(const std::string& id)
{
    return readPort(ResourceOperation("getFCPort", m_deviceManager), "/FC_PORT/", id, "fcPortID is empty! ", kFields);
}

std::vector<FCPortMO> CFCPortHandlerImpl::getFCPortBatch(FCPortQuery& query)
{
    return readPorts(ResourceOperation("getFCPortBatch", m_deviceManager), "/FC_PORT?", query, kFields);
}
