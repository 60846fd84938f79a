#include "RestRequest.h"

#include "Body.h"
#include "HeaderList.h"
#include "LastWords.h"
#include "Reply.h"
#include "SessionHeaders.h"
#include "SessionStore.h"
#include "Transport.h"

#include <new>
#include <utility>

struct RestRequest::Impl {
    std::string serverUrl;
    brevan::SecretHeader token;
    brevan::SecretHeader cookie;
    brevan::Body body;
    bool hasGoodHeaders = true;
    bool isComplete = true;  // false where memory ran out while the request was built
};

namespace {

using brevan::Order;

/// Runs what builds a request. A request that lacks a part must not be sent.
template <typename Impl, typename Step>
void build(const std::unique_ptr<Impl>& impl, Step step) noexcept
{
    if (impl == nullptr) {
        return;
    }
    try {
        step(*impl);
    } catch (const std::exception&) {
        impl->isComplete = false;
    }
}

template <typename Impl>
Order orderOf(Impl& impl, const std::string& path, REST_REQUEST_MODE_E mode)
{
    Order order;
    order.mode = mode;
    order.path = path;
    order.body = &impl.body;
    order.isTextValid = impl.body.isValid();
    return order;
}

/// Prepares the outputs, runs `send`, and lets no exception out.
template <typename Impl, typename Send>
int guarded(const std::unique_ptr<Impl>& impl, RestResponse& response, std::vector<std::string>& headerLines,
            bool wantHeaderLines, Send send) noexcept
{
    RestResponseAccess::clear(response);
    headerLines.clear();
    if (impl == nullptr || !impl->isComplete) {
        brevan::logLastWords("A request was not sent, because memory is exhausted.");
        return REST_NO_CONNECTION;
    }
    try {
        const REST_SEND_RESULT_E result = send(wantHeaderLines ? &headerLines : nullptr);
        if (result != REST_ANSWERED) {
            headerLines.clear();
        }
        return result;
    } catch (const std::exception& failure) {
        brevan::logLastWords(failure.what());
        return REST_NO_CONNECTION;
    }
}

/// A handle that stands for no session, or for two.
REST_SEND_RESULT_E refuse(const Order& order, brevan::SessionStore::Finding finding)
{
    if (finding == brevan::SessionStore::Finding::Unknown) {
        brevan::logFailure(order, REST_UNKNOWN_SESSION, "no session is open under this handle");
        return REST_UNKNOWN_SESSION;
    }
    brevan::logFailure(
        order, REST_AMBIGUOUS_SESSION,
        "two open sessions share the lower 32 bits of their keys, so that the handle does not tell which array is meant");
    return REST_AMBIGUOUS_SESSION;
}

REST_SEND_RESULT_E sendUnder(const brevan::Session& session, Order order, RestResponse& response,
                             std::vector<std::string>* headerLines)
{
    order.path = "/deviceManager/rest/" + session.deviceId + order.path;
    order.server = session.server;
    order.address = session.address;
    order.token = session.token.line();
    order.cookie = session.cookie.line();
    order.isTextValid = order.isTextValid && session.isSendable;
    return brevan::transact(order, response, headerLines);
}

}  // namespace

RestRequest::RestRequest() : m_impl(new (std::nothrow) Impl) {}

RestRequest::~RestRequest() = default;

void RestRequest::SetServerUrl(const std::string& url)
{
    build(m_impl, [&](Impl& impl) { impl.serverUrl = url; });
}

void RestRequest::HeaderAddProperty(HTTP_HEADER_E type, const std::string& value)
{
    build(m_impl, [&](Impl& impl) {
        if (type == HTTP_HEADER_TOKEN) {
            impl.hasGoodHeaders = impl.token.set(brevan::kTokenHeader, value) && impl.hasGoodHeaders;
        } else if (type == HTTP_HEADER_COOKIE) {
            impl.hasGoodHeaders = impl.cookie.set(brevan::kCookieHeader, value) && impl.hasGoodHeaders;
        }
    });
}

void RestRequest::BodyAddProperty(const std::string& key, const std::string& value)
{
    build(m_impl, [&](Impl& impl) { impl.body.addText(key, value); });
}

void RestRequest::BodyAddProperty(const std::string& key, const char* value)
{
    build(m_impl, [&](Impl& impl) { impl.body.addText(key, value == nullptr ? "" : value); });
}

void RestRequest::BodyAddProperty(const std::string& key, int value)
{
    build(m_impl, [&](Impl& impl) { impl.body.addLiteral(key, std::to_string(value)); });
}

void RestRequest::BodyAddProperty(const std::string& key, bool value)
{
    build(m_impl, [&](Impl& impl) { impl.body.addLiteral(key, value ? "true" : "false"); });
}

void RestRequest::BodyAddProperty(const std::string& key, unsigned long value)
{
    build(m_impl, [&](Impl& impl) { impl.body.addLiteral(key, std::to_string(value)); });
}

void RestRequest::BodyAddProperty(const std::string& key, unsigned long long value)
{
    build(m_impl, [&](Impl& impl) { impl.body.addLiteral(key, std::to_string(value)); });
}

int RestRequest::SendRequest(const std::string& path, REST_REQUEST_MODE_E mode, RestResponse& response,
                             std::vector<std::string>& headerLines, bool wantHeaderLines)
{
    return guarded(m_impl, response, headerLines, wantHeaderLines, [&](std::vector<std::string>* lines) {
        Order order = orderOf(*m_impl, path, mode);
        order.server = brevan::parseServer(m_impl->serverUrl);
        order.address = m_impl->serverUrl;
        order.token = m_impl->token.line();
        order.cookie = m_impl->cookie.line();
        order.isTextValid = order.isTextValid && m_impl->hasGoodHeaders;
        return brevan::transact(order, response, lines);
    });
}

int RestRequest::SendRequest(unsigned int sessionHandle, const std::string& path, REST_REQUEST_MODE_E mode,
                             RestResponse& response, std::vector<std::string>& headerLines, bool wantHeaderLines)
{
    return guarded(m_impl, response, headerLines, wantHeaderLines, [&](std::vector<std::string>* lines) {
        Order order = orderOf(*m_impl, path, mode);
        const auto [finding, session] = brevan::SessionStore::instance().find(sessionHandle);
        return session == nullptr ? refuse(order, finding) : sendUnder(*session, std::move(order), response, lines);
    });
}
