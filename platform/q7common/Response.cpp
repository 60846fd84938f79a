#include "Reply.h"
#include "RestResponse.h"

#include <charconv>
#include <utility>

struct RestResponse::Impl {
    brevan::Reply reply;
};

namespace {

template <typename Number>
Number toNumber(const std::string& text)
{
    Number number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, number);
    return fault == std::errc() && stop == end ? number : 0;
}

}  // namespace

RestResponse::RestResponse() = default;
RestResponse::RestResponse(RestResponse&& other) noexcept = default;
RestResponse& RestResponse::operator=(RestResponse&& other) noexcept = default;
RestResponse::~RestResponse() = default;

unsigned int RestResponse::count() const
{
    if (m_impl == nullptr || m_impl->reply.data.isNull()) {
        return 0;
    }
    const Json::Value& data = m_impl->reply.data;
    return data.isArray() ? data.size() : 1;
}

Json::Value RestResponse::operator[](unsigned int index) const
{
    if (index >= count()) {
        return Json::Value();
    }
    const Json::Value& data = m_impl->reply.data;
    return data.isArray() ? data[index] : data;
}

int RestResponse::getResponseCode(std::string& description) const
{
    if (m_impl == nullptr) {
        description.clear();
        return 0;
    }
    description = m_impl->reply.description;
    return m_impl->reply.code;
}

unsigned long RestResponse::str2ul(const std::string& text)
{
    return toNumber<unsigned long>(text);
}

unsigned long long RestResponse::str2ull(const std::string& text)
{
    return toNumber<unsigned long long>(text);
}

void RestResponseAccess::fill(RestResponse& response, brevan::Reply&& reply)
{
    if (response.m_impl == nullptr) {
        response.m_impl = std::make_unique<RestResponse::Impl>();
    }
    response.m_impl->reply = std::move(reply);
}

void RestResponseAccess::clear(RestResponse& response) noexcept
{
    response.m_impl.reset();
}
