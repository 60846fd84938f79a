#include "attach/DiskAttachHandlerImpl.h"

#include "foundation/Clock.h"
#include "foundation/RunLog.h"

#include <brevan/MappingViewHandler.h>

// The flows stand in AttachFlow.cpp and DetachFlow.cpp.

std::string CDiskAttachHandlerImpl::getBuildedName(const std::string& prefix)
{
    return prefix + "_" + std::to_string(brevan::theClock().now().tv_sec);
}

void CDiskAttachHandlerImpl::addMappingView(const std::string& lunGroupID, const std::string& hostGroupID,
                                            const std::string& mappingViewID, CMappingViewHandler& mappingViewHandler,
                                            const std::string& operationName)
{
    try {
        mappingViewHandler.addHostGroupToMappingView(hostGroupID, mappingViewID);
        mappingViewHandler.addLunGroupToMappingView(lunGroupID, mappingViewID);
    } catch (...) {
        COMMLOG(OS_LOG_ERROR, "MappingView add HostGroup or add LunGroup fail! %s", operationName.c_str());
        // The only step that is undone; groups and host stay.
        mappingViewHandler.deleteMappingView(mappingViewID);
    }
}
