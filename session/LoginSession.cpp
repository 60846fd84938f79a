#include "session/DeviceManagerImpl.h"

#include "foundation/JsonText.h"
#include "foundation/Operation.h"
#include "foundation/RunLog.h"
#include "session/SessionCookie.h"

#include <brevan/LastFailure.h>

#include <PlimTool.h>
#include <RestRequest.h>
#include <UserManager.h>

#include <optional>
#include <vector>

using brevan::FAILURE_REFUSED;
using brevan::Operation;
using brevan::OperationStyle;
using brevan::performQuietly;

namespace {

constexpr unsigned int kHighestPort = 65535;
constexpr int kFailed = 0;
constexpr int kDone = 1;

constexpr OperationStyle kLogin = {"loginDevice", "Login device start...", "Login device OK", nullptr, true, true};
constexpr OperationStyle kAdopt = {
    "useConnection", "Use existed connection start...", "Use existed connection successfully!", nullptr, true, true};
constexpr OperationStyle kLogout = {"logoutDevice", "Logout device start...", "Logout device OK", nullptr, true, true};
constexpr OperationStyle kKeepAlive = {"keepAlive", "Keep alive start...", nullptr, nullptr, true, false};

int fail(Operation& operation, int code, const std::string& line)
{
    operation.endFailed(code, line);
    return kFailed;
}

/// How a request of the session ended. Texts of the array may hold anything: they are appended, never formatted.
struct Exchange {
    const char* unsentLine;
    const char* refusedPrefix;
};

/// Sends; where that failed, ends the operation with its lines and returns false.
template <class Send>
bool exchange(Operation& operation, const Exchange& texts, RestResponse& response, Send send)
{
    const int sent = send();
    if (sent != REST_ANSWERED) {
        operation.endFailed(sent, texts.unsentLine);
        return false;
    }
    std::string description;
    const int code = response.getResponseCode(description);
    if (code != 0) {
        operation.endFailed(code, texts.refusedPrefix + description);
        return false;
    }
    return true;
}

constexpr Exchange kLoginTexts = {"Login device fail, please check network or device is OK", "Login device fail,err msg:"};
constexpr Exchange kLogoutTexts = {"Logout device fail", "Logout device fail err msg:"};
constexpr Exchange kKeepAliveTexts = {"Keep alive fail!", "Keep alive fail err msg:"};

/// What a login and an adoption refuse before anything is sent or stored; nothing where the arguments will do. The result of the
/// address check is passed on as it is.
std::optional<int> refusedArguments(Operation& operation, bool complete, const std::string& ip)
{
    if (!complete) {
        return fail(operation, FAILURE_REFUSED, "Invalid Parameter!");
    }
    const int ipCheck = PlimTool::CheckIPValid(ip);
    if (ipCheck != 1) {
        operation.endFailed(FAILURE_REFUSED, "Invalid ip address!");
        return ipCheck;
    }
    return std::nullopt;
}

}  // namespace

int CDeviceManagerImpl::loginDevice(const std::string& ip, const unsigned int& port, const std::string& userName,
                                    const std::string& password, const USERTYPE& scope)
{
    return performQuietly(Operation(kLogin), kFailed, [&](Operation& operation) {
        const bool complete = !ip.empty() && !userName.empty() && !password.empty();
        if (const auto refused = refusedArguments(operation, complete, ip)) {
            return *refused;
        }
        if (port == 0 || port > kHighestPort) {
            return fail(operation, FAILURE_REFUSED, "Invalid port!");
        }
        RestRequest request;
        RestResponse response;
        std::vector<std::string> headerLines;
        request.SetServerUrl("https://" + ip + ":" + std::to_string(port));
        request.BodyAddProperty("username", userName);
        request.BodyAddProperty("password", password);
        request.BodyAddProperty("scope", static_cast<int>(scope));
        const bool answered = exchange(operation, kLoginTexts, response, [&] {
            // "xxxx" stands where the device ID will be: the array tells it only in its reply.
            return request.SendRequest("/deviceManager/rest/xxxx/sessions", REST_POST, response, headerLines, true);
        });
        if (!answered) {
            return kFailed;
        }
        const Json::Value record = response[0];
        const auto deviceId = brevan::textOf(record, "deviceid");
        const auto token = brevan::textOf(record, "iBaseToken");
        if (!deviceId || !token) {
            return fail(operation, REST_UNUSABLE_REPLY, kLoginTexts.unsentLine);
        }
        const auto cookie = brevan::sessionCookie(headerLines);
        if (!cookie) {
            return fail(operation, FAILURE_REFUSED, "Get cookie Err");
        }
        openSession(ip, port, *deviceId, *token, *cookie, true);
        return kDone;
    });
}

int CDeviceManagerImpl::useConnection(const std::string& ip, const unsigned int& port, const std::string& deviceId,
                                      const std::string& token, const std::string& cookie)
{
    return performQuietly(Operation(kAdopt), kFailed, [&](Operation& operation) {
        const bool complete = !ip.empty() && !deviceId.empty() && !token.empty() && !cookie.empty();
        if (const auto refused = refusedArguments(operation, complete, ip)) {
            return *refused;
        }
        openSession(ip, port, deviceId, token, cookie, false);
        return kDone;
    });
}

int CDeviceManagerImpl::keepAlive()
{
    return performQuietly(Operation(kKeepAlive), kFailed, [&](Operation& operation) {
        RestRequest request;
        RestResponse response;
        std::vector<std::string> unused;
        addSessionHeaders(request);
        const bool answered = exchange(operation, kKeepAliveTexts, response, [&] {
            return request.SendRequest(devicePath("/server/logininfo"), REST_GET, response, unused, false);
        });
        operation.endSilently();  // a call that applications make every minute closes without a line
        return answered ? kDone : kFailed;
    });
}

int CDeviceManagerImpl::logoutDevice()
{
    return performQuietly(Operation(kLogout), kFailed, [&](Operation& operation) {
        RestRequest request;
        RestResponse response;
        std::vector<std::string> unused;
        addSessionHeaders(request);
        const bool answered = exchange(operation, kLogoutTexts, response, [&] {
            return request.SendRequest(devicePath("/sessions"), REST_DELETE, response, unused, false);
        });
        if (!answered) {
            return kFailed;
        }
        CUserManager::getInstance().RemoveSession(this);
        return kDone;
    });
}

std::string CDeviceManagerImpl::serverUrl() const
{
    return "https://" + m_ip + ":" + std::to_string(m_port);
}

std::string CDeviceManagerImpl::devicePath(const char* resource) const
{
    return "/deviceManager/rest/" + m_deviceId + resource;
}

void CDeviceManagerImpl::addSessionHeaders(RestRequest& request) const
{
    request.HeaderAddProperty(HTTP_HEADER_TOKEN, m_token);
    request.HeaderAddProperty(HTTP_HEADER_COOKIE, m_cookie);
    request.SetServerUrl(serverUrl());
}

void CDeviceManagerImpl::openSession(const std::string& ip, unsigned int port, const std::string& deviceId,
                                     const std::string& token, const std::string& cookie, bool openedHere)
{
    // Copied before anything changes: where memory runs out, the session until now stays whole.
    std::string texts[] = {ip, token, cookie, deviceId};
    CUserManager::getInstance().RegisterSession(this, deviceId, ip, port, token, cookie, openedHere);
    m_ip.swap(texts[0]);
    m_port = port;
    m_token.swap(texts[1]);
    m_cookie.swap(texts[2]);
    m_deviceId.swap(texts[3]);
}
