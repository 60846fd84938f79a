#include "SendResults.h"

#include <openssl/x509_vfy.h>

#include <algorithm>
#include <iterator>
#include <system_error>

namespace brevan {

namespace {

constexpr std::size_t kLongestPath = 300;
constexpr const char* kLost = "the array closed the connection before it replied";

struct Advice {
    REST_SEND_RESULT_E result;
    const char* text;
};

constexpr Advice kAdvices[] = {
    {REST_UNKNOWN_SESSION, "Log in first; nothing was sent."},
    {REST_AMBIGUOUS_SESSION, "Log out of one of the two sessions or use one device manager; nothing was sent."},
    {REST_BAD_PATH, "Correct the argument that the request was made from; nothing was sent."},
    {REST_BAD_SETTINGS, "Correct the transport settings named above and log in again; nothing was sent."},
    {REST_NO_CONNECTION, "Check address, port, network and that the array is running; nothing was sent."},
    {REST_NOT_TRUSTED,
     "Set ca_file, server_name or pin_sha256 in transport.ini to what the array's certificate needs; nothing was sent."},
    {REST_TIMED_OUT,
     "Look at the array before doing it again, because it may have been done; request_seconds in transport.ini sets the "
     "limit."},
    {REST_CONNECTION_LOST, "Look at the array before doing it again, because it may have been done."},
    {REST_UNUSABLE_REPLY,
     "Check that address and port are the array's REST interface; the request may have been carried out."},
    {REST_REPLY_TOO_LARGE, "Ask for less at once, or raise reply_megabytes in transport.ini."},
};

bool isTrustFailure(const Delivery& delivery)
{
    constexpr CURLcode kTrustFailures[] = {CURLE_PEER_FAILED_VERIFICATION, CURLE_SSL_PINNEDPUBKEYNOTMATCH,
                                           CURLE_SSL_ISSUER_ERROR, CURLE_SSL_INVALIDCERTSTATUS, CURLE_SSL_CACERT_BADFILE};
    return delivery.trustFault != 0 ||
           std::find(std::begin(kTrustFailures), std::end(kTrustFailures), delivery.result) != std::end(kTrustFailures);
}

}  // namespace

REST_SEND_RESULT_E resultOf(const Delivery& delivery)
{
    if (delivery.result == CURLE_OK) {
        // libcurl takes a connection that ends among the headers for the end of a reply without a body.
        return delivery.hasReplyHead ? REST_ANSWERED : REST_CONNECTION_LOST;
    }
    if (delivery.isTooLarge || delivery.result == CURLE_FILESIZE_EXCEEDED) {
        return REST_REPLY_TOO_LARGE;
    }
    if (delivery.timesSent == 0) {
        return isTrustFailure(delivery) ? REST_NOT_TRUSTED : REST_NO_CONNECTION;
    }
    if (delivery.result == CURLE_OPERATION_TIMEDOUT) {
        return REST_TIMED_OUT;
    }
    const bool isNoHttp = delivery.result == CURLE_UNSUPPORTED_PROTOCOL || delivery.result == CURLE_WEIRD_SERVER_REPLY;
    return delivery.hasReplyHead || isNoHttp ? REST_UNUSABLE_REPLY : REST_CONNECTION_LOST;
}

std::string reasonOf(const Delivery& delivery, const char* text)
{
    if (delivery.isTooLarge) {
        return "the reply is larger than the limit";
    }
    // These two come from our own callbacks, which do not let libcurl send a second time.
    const bool isRefusedRepetition =
        delivery.result == CURLE_ABORTED_BY_CALLBACK || delivery.result == CURLE_COULDNT_CONNECT;
    if (delivery.timesSent > 0 && isRefusedRepetition) {
        return kLost;
    }
    if (delivery.result == CURLE_OK && !delivery.hasReplyHead) {
        return kLost;
    }
    if (delivery.trustFault != 0) {
        return std::string("certificate not accepted: ") + X509_verify_cert_error_string(delivery.trustFault);
    }
    const bool hasSystemError = delivery.timesSent == 0 && delivery.systemError != 0;
    return hasSystemError ? text + (" (" + std::generic_category().message(static_cast<int>(delivery.systemError)) + ")")
                          : text;
}

const char* adviceFor(REST_SEND_RESULT_E result)
{
    const auto isMeant = [result](const Advice& advice) { return advice.result == result; };
    const auto* advice = std::find_if(std::begin(kAdvices), std::end(kAdvices), isMeant);
    return advice == std::end(kAdvices) ? "" : advice->text;
}

std::string failureLine(REST_REQUEST_MODE_E mode, const std::string& path, const std::string& server,
                        REST_SEND_RESULT_E result, const std::string& reason)
{
    constexpr const char* kModes[] = {"GET", "POST", "PUT", "DELETE"};
    const bool isKnown = mode >= REST_GET && mode <= REST_DELETE;
    std::string line = isKnown ? kModes[mode] : "Request of unknown mode " + std::to_string(static_cast<int>(mode));
    line += " " + path.substr(0, kLongestPath) + (path.size() > kLongestPath ? "..." : "");
    line += server.empty() ? "" : " to " + server;
    return line + " failed: " + reason + ". " + adviceFor(result);
}

}  // namespace brevan
