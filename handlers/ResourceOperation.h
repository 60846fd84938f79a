#ifndef BREVAN_HANDLERS_RESOURCEOPERATION_H
#define BREVAN_HANDLERS_RESOURCEOPERATION_H

#include "foundation/Operation.h"

#include <RestRequest.h>

#include <string>

class CDeviceManagerImpl;

namespace brevan {

/// An operation of a resource handler: it sends requests under the session of its device manager. A request that gets no
/// usable reply, or the array's refusal, ends the operation with its exception.
class ResourceOperation : public Operation {
public:
    ResourceOperation(const OperationStyle& style, const CDeviceManagerImpl* manager);
    ResourceOperation(const char* name, const CDeviceManagerImpl* manager);

    /// Paths are relative to the device, IDs and conditions in them raw: the transport encodes.
    RestResponse get(const std::string& path);
    RestResponse post(const std::string& path, RestRequest& body);
    RestResponse put(const std::string& path, RestRequest& body);
    RestResponse remove(const std::string& path);

private:
    RestResponse send(REST_REQUEST_MODE_E mode, const std::string& path, RestRequest& request);

    const CDeviceManagerImpl* m_manager;
};

/// The handle under which the transport knows the session of a device manager: its address, cut to 32 bits.
unsigned int sessionHandle(const CDeviceManagerImpl* manager);

}  // namespace brevan

#endif
