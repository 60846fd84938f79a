#include "handlers/ReplyText.h"

#include "foundation/JsonText.h"
#include "foundation/Operation.h"

#include <RestResponse.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>
#include <utility>

namespace brevan {
namespace {

bool isDecimal(const std::string& text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string usable(std::optional<std::string>&& text)
{
    if (!text) {
        throw UnusableReply();
    }
    return *std::move(text);
}

}  // namespace

std::string replyText(const ReplyRecord& record, const char* key)
{
    const Json::Value* value = record.find(key);
    return value == nullptr ? std::string() : usable(textOf(*value));
}

std::uint32_t replyNumber32(const ReplyRecord& record, const char* key)
{
    return static_cast<std::uint32_t>(RestResponse::str2ul(replyText(record, key)));
}

std::uint64_t replyNumber64(const ReplyRecord& record, const char* key)
{
    return RestResponse::str2ull(replyText(record, key));
}

std::int64_t replySigned(const ReplyRecord& record, const char* key)
{
    const long long value = std::strtoll(replyText(record, key).c_str(), nullptr, 10);
    constexpr long long kLowest = std::numeric_limits<int>::min();
    constexpr long long kHighest = std::numeric_limits<int>::max();
    return std::clamp(value, kLowest, kHighest);
}

std::uint32_t replyType(const ReplyRecord& record, const char* key)
{
    const std::string text = replyText(record, key);
    const Json::Value* value = record.find(key);
    if (value != nullptr && value->isNumeric()) {
        return value->isUInt() ? value->asUInt() : value->isInt() ? static_cast<std::uint32_t>(value->asInt()) : 0;
    }
    return static_cast<std::uint32_t>(RestResponse::str2ul(text));
}

std::uint64_t replySize(const ReplyRecord& record, const char* key)
{
    const std::string text = replyText(record, key);
    if (text.empty()) {
        return 0;
    }
    const std::uint64_t size = RestResponse::str2ull(text);
    // The conversion gives 0 for everything that it cannot hold; a size of zeros is the only text that may give it.
    const bool isZero = text.find_first_not_of('0') == std::string::npos;
    if (!isDecimal(text) || (size == 0 && !isZero)) {
        throw UnusableReply();
    }
    return size;
}

std::int32_t replyFlag(const ReplyRecord& record, const char* key)
{
    return replyText(record, key) == "true" ? 1 : 0;
}

std::string idOf(const Json::Value& record)
{
    return usable(textOf(record, "ID"));
}

std::string firstId(const RestResponse& reply)
{
    return reply.count() == 0 ? std::string() : idOf(reply[0]);
}

}  // namespace brevan
