#ifndef BREVAN_SIMULATOR_HTTPMESSAGES_H
#define BREVAN_SIMULATOR_HTTPMESSAGES_H

#include "HttpService.h"

#include <boost/beast/core/error.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

#include <optional>

namespace brevan::sim {

using RequestParser = boost::beast::http::request_parser<boost::beast::http::string_body>;

void limit(RequestParser& parser, const HttpLimits& limits);

/// The request that a parser has read to its end; its body is moved out.
WireRequest wireRequest(RequestParser& parser, std::uint64_t connection);

/// What to say to bytes that are no request; nothing where the connection simply ended.
std::optional<Refusal> refusalOf(const boost::beast::error_code& error, const HttpLimits& limits);

struct ReplyBytes {
    std::string text;
    std::size_t bodyBegin = 0;
};

/// The reply as it goes over the wire. `headersOnly`: an answer to HEAD.
ReplyBytes replyBytes(const WireReply& reply, bool keepAlive, bool headersOnly);

}  // namespace brevan::sim

#endif
