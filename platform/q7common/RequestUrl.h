#ifndef BREVAN_Q7COMMON_REQUESTURL_H
#define BREVAN_Q7COMMON_REQUESTURL_H

#include "Url.h"

#include <curl/curl.h>

#include <memory>
#include <string>
#include <string_view>

namespace brevan {

/// The URL of one connection's requests in its parts, so that libcurl neither takes a text apart for each request nor puts
/// one together: that took a tenth of a read's instructions. Server and scheme stay, the path changes.
class RequestUrl {
public:
    /// `name` stands in for the host unless it is empty. Throws std::bad_alloc, or std::runtime_error where libcurl does not
    /// take the address.
    RequestUrl(const Server& server, std::string_view name);

    /// A path with its query, encoded. Throws as the constructor does.
    void setPath(const std::string& path);

    CURLU* handle() const { return m_url.get(); }

private:
    struct Closer {
        void operator()(CURLU* url) const noexcept { curl_url_cleanup(url); }
    };

    void set(CURLUPart part, const char* text);

    std::unique_ptr<CURLU, Closer> m_url;
};

}  // namespace brevan

#endif
