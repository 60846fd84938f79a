#include "Reply.h"
#include "RestResponse.h"

#include <charconv>
#include <utility>

// Copying a record costs about as much as half of reading the reply, and most callers read each record once. So a record is
// handed out without a copy the first time. When one is asked for again, the reply is read once more and copies are made
// from then on.
struct RestResponse::Impl {
    brevan::Reply reply;
    brevan::SecretBytes text;
    unsigned int count = 0;
    bool handsOut = true;

    Json::Value& place(unsigned int index) { return reply.data.isArray() ? reply.data[index] : reply.data; }

    Json::Value record(unsigned int index)
    {
        if (handsOut && place(index).isNull()) {
            brevan::Reply again;
            brevan::parseReply(brevan::viewOf(text), again);
            reply.data.swap(again.data);
            handsOut = false;
        }
        if (!handsOut) {
            return place(index);
        }
        Json::Value handedOut;
        handedOut.swap(place(index));
        return handedOut;
    }
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
    return m_impl == nullptr ? 0 : m_impl->count;
}

Json::Value RestResponse::operator[](unsigned int index) const
{
    return index < count() ? m_impl->record(index) : Json::Value();
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

void RestResponseAccess::fill(RestResponse& response, brevan::Reply&& reply, brevan::SecretBytes&& text)
{
    auto impl = std::make_unique<RestResponse::Impl>();
    impl->reply = std::move(reply);
    impl->text = std::move(text);
    impl->count = impl->reply.data.isObject() ? 1 : impl->reply.data.size();
    response.m_impl = std::move(impl);
}

void RestResponseAccess::clear(RestResponse& response) noexcept
{
    response.m_impl.reset();
}
