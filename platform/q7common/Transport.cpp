#include "Transport.h"

#include "ConnectionPool.h"
#include "ForkGuard.h"
#include "HeaderList.h"
#include "Reply.h"
#include "SendResults.h"
#include "Settings.h"
#include "TransportLog.h"

#include <string_view>

namespace brevan {

namespace {

constexpr std::string_view kLoginPathEnd = "/sessions";

struct Outcome {
    REST_SEND_RESULT_E result;
    std::string reason;
};

bool isLogin(const Order& order)
{
    const std::string_view path = order.path;
    return order.mode == REST_POST && path.size() >= kLoginPathEnd.size() &&
           path.substr(path.size() - kLoginPathEnd.size()) == kLoginPathEnd;
}

/// What can be said without a connection; REST_ANSWERED where nothing speaks against the request.
Outcome check(const Order& order)
{
    const PathFault fault = checkPath(order.path);
    if (fault != PathFault::None) {
        return {REST_BAD_PATH, describe(fault)};
    }
    if (order.mode < REST_GET || order.mode > REST_DELETE) {
        return {REST_BAD_PATH, "there is no such request mode"};
    }
    if (!order.isTextValid) {
        return {REST_BAD_PATH, "token or cookie hold a control character, or a text of the body is not UTF-8"};
    }
    if (!order.server.has_value()) {
        return {REST_NO_CONNECTION, "this is no address of an array with a port from 1 to 65535"};
    }
    return {REST_ANSWERED, {}};
}

SettingsPointer settingsFor(const Order& order)
{
    SettingsPointer settings = isLogin(order) ? refreshedSettings() : currentSettings();
    logProblems(*settings);
    if (isLogin(order) && settings->isUsable() && !settings->tlsFor(order.server->host).verify) {
        const bool hasPin = !settings->tlsFor(order.server->host).pin.empty();
        logWarning("TLS verification is off for " + baseUrl(*order.server) + " ([tls] verify in " + settings->file + "): " +
                   (hasPin ? "only the public key is checked."
                           : "anybody on the network can read the password. Set ca_file instead."));
    }
    return settings;
}

bool hasBody(const Order& order)
{
    return order.mode == REST_POST || order.mode == REST_PUT || !order.body->isEmpty();
}

Outcome parse(SecretBytes&& text, long httpStatus, RestResponse& response)
{
    Reply reply;
    const char* fault = parseReply(viewOf(text), reply);
    const bool isSuccess = httpStatus >= 200 && httpStatus < 300;
    if (fault != nullptr || (!isSuccess && reply.code == 0)) {
        const char* reason = fault != nullptr ? fault : "it carries no error of the array";
        return {REST_UNUSABLE_REPLY, "the reply (HTTP status " + std::to_string(httpStatus) + ") is not usable: " + reason};
    }
    RestResponseAccess::fill(response, std::move(reply), std::move(text));
    return {REST_ANSWERED, {}};
}

// From here on the array may have acted: running out of memory must not be mistaken for "nothing was sent".

Outcome failed(REST_SEND_RESULT_E result, const Delivery& delivery, const char* text) noexcept
{
    try {
        return {result, reasonOf(delivery, text)};
    } catch (const std::bad_alloc&) {
        return {result, {}};
    }
}

Outcome readReply(SecretBytes&& text, long httpStatus, RestResponse& response)
{
    try {
        return parse(std::move(text), httpStatus, response);
    } catch (const std::bad_alloc&) {
        return {REST_UNUSABLE_REPLY, "no memory left"};
    }
}

Outcome exchange(const Order& order, const Settings& settings, RestResponse& response, std::vector<std::string>* headerLines)
{
    HeaderList headers;
    headers.add("Accept: application/json");
    if (hasBody(order)) {
        headers.add("Content-Type: application/json");
        headers.add("Expect:");  // not asking before a large body saves a second where the server does not answer that
    }
    headers.add(order.token);
    headers.add(order.cookie);
    const std::string path = encodePath(order.path);
    const SecretBytes body = hasBody(order) ? order.body->json() : SecretBytes();
    ConnectionPool::Lease connection = ConnectionPool::instance().take(*order.server, settings);
    const Delivery delivery =
        connection->perform({order.mode, &path, headers.list(), hasBody(order) ? &body : nullptr, headerLines});
    const REST_SEND_RESULT_E result = resultOf(delivery);
    if (result != REST_ANSWERED) {
        return failed(result, delivery, connection->failureText());
    }
    connection.keep();
    return readReply(connection->takeReply(), delivery.httpStatus, response);
}

Outcome carryOut(const Order& order, RestResponse& response, std::vector<std::string>* headerLines)
{
    Outcome outcome = check(order);
    if (outcome.result != REST_ANSWERED) {
        return outcome;
    }
    const SettingsPointer settings = settingsFor(order);
    if (!settings->isUsable()) {
        return {REST_BAD_SETTINGS, "the transport settings in " + settings->file + " are wrong"};
    }
    return exchange(order, *settings, response, headerLines);
}

}  // namespace

REST_SEND_RESULT_E transact(const Order& order, RestResponse& response, std::vector<std::string>* headerLines)
{
    guardForks();
    const Outcome outcome = carryOut(order, response, headerLines);
    if (outcome.result != REST_ANSWERED) {
        logFailure(order, outcome.result, outcome.reason);
    }
    return outcome.result;
}

void logFailure(const Order& order, REST_SEND_RESULT_E result, const std::string& reason) noexcept
{
    try {
        logError(failureLine(order.mode, encodePath(order.path), order.address, result, reason));
    } catch (const std::exception&) {
        // No memory for the line: the result alone must do.
    }
}

}  // namespace brevan
