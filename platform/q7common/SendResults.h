#ifndef BREVAN_Q7COMMON_SENDRESULTS_H
#define BREVAN_Q7COMMON_SENDRESULTS_H

#include "Connection.h"

#include "RestRequest.h"

#include <string>

namespace brevan {

/// What a finished transfer amounts to; REST_ANSWERED where a reply is complete and waits to be read.
REST_SEND_RESULT_E resultOf(const Delivery& delivery);

/// Why a transfer failed, in words; `text` is what libcurl says.
std::string reasonOf(const Delivery& delivery, const char* text);

/// What whoever reads the run log should do about a failure.
const char* adviceFor(REST_SEND_RESULT_E result);

/// A request that failed, as one line for the run log: "GET /lun/1 to https://192.0.2.1:8088 failed: reason. advice".
/// `path` is encoded already; a long one is cut.
std::string failureLine(REST_REQUEST_MODE_E mode, const std::string& path, const std::string& server,
                        REST_SEND_RESULT_E result, const std::string& reason);

}  // namespace brevan

#endif
