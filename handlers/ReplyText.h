#ifndef BREVAN_HANDLERS_REPLYTEXT_H
#define BREVAN_HANDLERS_REPLYTEXT_H

#include "handlers/ReplyRecord.h"

#include <cstdint>
#include <string>

class RestResponse;

// How values of a reply become values of a record. The array writes most numbers as decimal text. An absent key reads as
// empty text and as 0. A list or an object where a value belongs makes the whole reply unusable (UnusableReply is thrown).

namespace brevan {

std::string replyText(const ReplyRecord& record, const char* key);

/// A number of 32 or 64 bits from its text; text that is none gives 0.
std::uint32_t replyNumber32(const ReplyRecord& record, const char* key);
std::uint64_t replyNumber64(const ReplyRecord& record, const char* key);

/// The C library's atoi of the text, without its undefined range: what does not fit is cut to the limits of 32 bits.
std::int64_t replySigned(const ReplyRecord& record, const char* key);

/// A type number that some resources send as a JSON number and others as text.
std::uint32_t replyType(const ReplyRecord& record, const char* key);

/// A size. Unlike a status it is never guessed: text that is no number of 64 bits makes the reply unusable.
std::uint64_t replySize(const ReplyRecord& record, const char* key);

/// 1 where the text is exactly "true", 0 for anything else.
std::int32_t replyFlag(const ReplyRecord& record, const char* key);

/// "ID" of a record that is not read any further.
std::string idOf(const Json::Value& record);

/// "ID" of the first record, empty where the reply has none.
std::string firstId(const RestResponse& reply);

}  // namespace brevan

#endif
