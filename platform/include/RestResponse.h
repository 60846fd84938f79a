#ifndef BREVAN_PLATFORM_RESTRESPONSE_H
#define BREVAN_PLATFORM_RESTRESPONSE_H

#include <json/value.h>

#include <memory>
#include <string>

/// The array's reply to one request. Filled by RestRequest::SendRequest; before that, and after a send that failed, it
/// holds no record and response code 0. Moving leaves such an empty reply behind. One thread at a time.
class __attribute__((visibility("default"))) RestResponse {
public:
    RestResponse();
    RestResponse(RestResponse&& other) noexcept;
    RestResponse& operator=(RestResponse&& other) noexcept;
    ~RestResponse();

    /// How many records the reply holds: 0 where "data" is absent or an empty object, 1 for one object, else the list's
    /// length.
    unsigned int count() const;

    /// Record `index`, an object; null where there is no such record. A copy: throws std::bad_alloc when memory is
    /// exhausted, and nothing else.
    Json::Value operator[](unsigned int index) const;

    /// The array's code (0: it did what was asked; may be negative) and its text as received.
    int getResponseCode(std::string& description) const;

    /// Decimal text as a number of 64 bits. Text that is no decimal number, or one that does not fit, gives 0.
    static unsigned long str2ul(const std::string& text);
    static unsigned long long str2ull(const std::string& text);

private:
    friend struct RestResponseAccess;  // how the implementation fills a reply; each implementation defines its own
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

#endif
