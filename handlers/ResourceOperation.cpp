#include "handlers/ResourceOperation.h"

#include <cstdint>
#include <vector>

namespace brevan {

ResourceOperation::ResourceOperation(const OperationStyle& style, const CDeviceManagerImpl* manager)
    : Operation(style), m_manager(manager)
{
}

ResourceOperation::ResourceOperation(const char* name, const CDeviceManagerImpl* manager)
    : Operation(name), m_manager(manager)
{
}

unsigned int sessionHandle(const CDeviceManagerImpl* manager)
{
    return static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(manager));
}

RestResponse ResourceOperation::get(const std::string& path)
{
    RestRequest request;
    return send(REST_GET, path, request);
}

RestResponse ResourceOperation::post(const std::string& path, RestRequest& body)
{
    return send(REST_POST, path, body);
}

RestResponse ResourceOperation::put(const std::string& path, RestRequest& body)
{
    return send(REST_PUT, path, body);
}

RestResponse ResourceOperation::remove(const std::string& path)
{
    RestRequest request;
    return send(REST_DELETE, path, request);
}

// What the transport throws ends the operation here: those that swallow failures would else end as if nothing had happened.
RestResponse ResourceOperation::send(REST_REQUEST_MODE_E mode, const std::string& path, RestRequest& request)
try {
    RestResponse response;
    std::vector<std::string> headerLines;
    const int sent = request.SendRequest(sessionHandle(m_manager), path, mode, response, headerLines, true);
    if (sent != REST_ANSWERED) {
        failTransport(sent);
    }
    std::string description;
    const int code = response.getResponseCode(description);
    if (code != 0) {
        failResponse(code, description);
    }
    return response;
} catch (...) {
    passOn();
}

}  // namespace brevan
