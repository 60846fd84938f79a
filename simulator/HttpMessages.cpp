#include "HttpMessages.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/http/status.hpp>

namespace brevan::sim {

namespace http = boost::beast::http;

void limit(RequestParser& parser, const HttpLimits& limits)
{
    parser.header_limit(limits.headerBytes);
    parser.body_limit(limits.bodyBytes);
}

WireRequest wireRequest(RequestParser& parser, std::uint64_t connection)
{
    const auto text = [](const auto& view) { return std::string(view.data(), view.size()); };
    auto& message = parser.get();
    return {text(message.method_string()),    text(message.target()),
            text(message["iBaseToken"]),      text(message[http::field::cookie]),
            std::move(message.body()),        connection,
            text(message[http::field::host]), text(message[http::field::accept])};
}

std::optional<Refusal> refusalOf(const boost::beast::error_code& error, const HttpLimits& limits)
{
    if (error == http::error::body_limit) {
        return Refusal{413, "The request body is larger than " + std::to_string(limits.bodyBytes) + " bytes."};
    }
    if (error == http::error::header_limit) {
        return Refusal{431, "The request headers are larger than " + std::to_string(limits.headerBytes) + " bytes."};
    }
    const bool ended = error == http::error::end_of_stream || error == http::error::partial_message;
    if (error.category() != http::make_error_code(http::error::bad_method).category() || ended) {
        return std::nullopt;
    }
    return Refusal{400, "This is no HTTP request: " + error.message() + "."};
}

ReplyBytes replyBytes(const WireReply& reply, bool keepAlive, bool headersOnly)
{
    const auto reason = http::obsolete_reason(http::int_to_status(reply.status));
    std::string text = "HTTP/1.1 " + std::to_string(reply.status) + " ";
    text.append(reason.data(), reason.size());
    text.append("\r\nContent-Type: ").append(reply.contentType).append("\r\nCache-Control: no-store\r\n");
    for (const auto& [name, value] : reply.headers) {
        text.append(name).append(": ").append(value).append("\r\n");
    }
    if (!keepAlive) {
        text += "Connection: close\r\n";
    }
    const std::size_t size = headersOnly ? 0 : reply.body.size();
    text.append("Content-Length: ").append(std::to_string(reply.body.size())).append("\r\n\r\n");
    const std::size_t begin = text.size();
    text.append(reply.body, 0, size);
    return {std::move(text), begin};
}

std::string exchange(HttpService& service, const HttpLimits& limits, std::string_view bytes)
{
    RequestParser parser;
    limit(parser, limits);
    parser.eager(true);
    boost::beast::error_code error;
    while (!error && !parser.is_done()) {
        const std::size_t used = parser.put(boost::asio::buffer(bytes.data(), bytes.size()), error);
        bytes.remove_prefix(used);
        if (error == http::error::need_more || (!error && used == 0)) {
            return {};
        }
    }
    if (!error) {
        return replyBytes(service.answer(wireRequest(parser, 0)), true, false).text;
    }
    const std::optional<Refusal> refusal = refusalOf(error, limits);
    return refusal ? replyBytes(service.refuse(*refusal), false, false).text : std::string();
}

}  // namespace brevan::sim
