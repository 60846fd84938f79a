#include "RequestUrl.h"

#include <new>
#include <stdexcept>

namespace brevan {

RequestUrl::RequestUrl(const Server& server, std::string_view name) : m_url(curl_url())
{
    if (m_url == nullptr) {
        throw std::bad_alloc();
    }
    set(CURLUPART_SCHEME, "https");
    set(CURLUPART_HOST, urlHost(name.empty() ? std::string_view(server.host) : name).c_str());
    set(CURLUPART_PORT, server.port.c_str());
}

void RequestUrl::setPath(const std::string& path)
{
    const std::size_t mark = path.find('?');
    if (mark == std::string::npos) {
        set(CURLUPART_PATH, path.c_str());
        set(CURLUPART_QUERY, nullptr);
    } else {
        set(CURLUPART_PATH, path.substr(0, mark).c_str());
        set(CURLUPART_QUERY, path.c_str() + mark + 1);
    }
}

void RequestUrl::set(CURLUPart part, const char* text)
{
    const CURLUcode result = curl_url_set(m_url.get(), part, text, 0);
    if (result == CURLUE_OUT_OF_MEMORY) {
        throw std::bad_alloc();
    }
    if (result != CURLUE_OK) {
        throw std::runtime_error(std::string("libcurl does not take a part of the URL: ") + curl_url_strerror(result));
    }
}

}  // namespace brevan
