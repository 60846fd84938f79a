#ifndef BREVAN_PLATFORM_RESTREQUEST_H
#define BREVAN_PLATFORM_RESTREQUEST_H

#include "RestResponse.h"

#include <memory>
#include <string>
#include <vector>

enum REST_REQUEST_MODE_E : int { REST_GET = 0, REST_POST = 1, REST_PUT = 2, REST_DELETE = 3 };

enum HTTP_HEADER_E : int { HTTP_HEADER_COOKIE = 8, HTTP_HEADER_TOKEN = 47 };

/// What SendRequest returns. Everything but REST_ANSWERED means that there is no usable reply.
enum REST_SEND_RESULT_E : int {
    REST_ANSWERED = 0,            ///< a reply is there; its response code says whether the array did what was asked
    REST_UNKNOWN_SESSION = 1001,  ///< no session is registered under this handle; nothing was sent
    REST_AMBIGUOUS_SESSION,       ///< two live sessions share this handle; nothing was sent
    REST_BAD_PATH,                ///< the path holds control characters or a ".." segment, a header control characters,
                                  ///< or a text of the body is not UTF-8; nothing was sent
    REST_BAD_SETTINGS,            ///< the transport's settings are wrong; nothing was sent
    REST_NO_CONNECTION,           ///< the array could not be reached; nothing was sent
    REST_NOT_TRUSTED,             ///< the array's certificate or name was not accepted; nothing was sent
    REST_TIMED_OUT,               ///< no complete reply in time; the array may have done what was asked
    REST_CONNECTION_LOST,         ///< the connection ended before the reply did; the array may have done what was asked
    REST_UNUSABLE_REPLY,          ///< the reply was no JSON, or of the wrong shape
    REST_REPLY_TOO_LARGE          ///< the reply was larger than the limit
};

/// One request: built, sent once, thrown away. One thread at a time.
class __attribute__((visibility("default"))) RestRequest {
public:
    RestRequest();
    RestRequest(const RestRequest&) = delete;
    RestRequest& operator=(const RestRequest&) = delete;
    ~RestRequest();

    /// Server for the form of SendRequest without a session: "https://" host ":" port. An IPv6 literal may come without
    /// brackets.
    void SetServerUrl(const std::string& url);

    /// Adds a header: HTTP_HEADER_TOKEN travels as "iBaseToken", HTTP_HEADER_COOKIE as "Cookie". Other types are ignored.
    void HeaderAddProperty(HTTP_HEADER_E type, const std::string& value);

    /// Adds a member to the body, one JSON object whose keys go out in the order of these calls. A GET or DELETE without
    /// members has no body. The overload for const char* keeps a literal text from becoming a bool.
    void BodyAddProperty(const std::string& key, const std::string& value);
    void BodyAddProperty(const std::string& key, const char* value);
    void BodyAddProperty(const std::string& key, int value);
    void BodyAddProperty(const std::string& key, bool value);
    void BodyAddProperty(const std::string& key, unsigned long value);
    void BodyAddProperty(const std::string& key, unsigned long long value);

    /// Sends to the server of SetServerUrl; `path` is absolute. Blocks until the reply is there or a time limit ran out.
    /// `headerLines` gets the reply's header lines when `wantHeaderLines` is set, one a string with canonical names
    /// ("Set-Cookie: session=abc; path=/"). Returns a REST_SEND_RESULT_E. Does not throw.
    int SendRequest(const std::string& path, REST_REQUEST_MODE_E mode, RestResponse& response,
                    std::vector<std::string>& headerLines, bool wantHeaderLines);

    /// The same under a registered session: `sessionHandle` is the lower 32 bits of the key of
    /// CUserManager::RegisterSession, `path` follows "/deviceManager/rest/" + device ID. Server, token and cookie are the
    /// session's.
    int SendRequest(unsigned int sessionHandle, const std::string& path, REST_REQUEST_MODE_E mode, RestResponse& response,
                    std::vector<std::string>& headerLines, bool wantHeaderLines);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

#endif
