#include "platform/plimlog/InterfaceRecord.h"

#include "platform/plimlog/LineText.h"

#include <charconv>
#include <ctime>
#include <string_view>

namespace brevan::plimlog {
namespace {

constexpr char kSeparator = '\t';
constexpr std::string_view kTimeShape = "dddd-dd-dd dd:dd:dd ddd";

std::string_view textOf(const char* text)
{
    return text != nullptr ? std::string_view(text) : std::string_view();
}

bool hasTimeShape(std::string_view text)
{
    if (text.size() != kTimeShape.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (kTimeShape[i] == 'd' ? !digit : text[i] != kTimeShape[i]) {
            return false;
        }
    }
    return true;
}

int numberAt(std::string_view text, std::size_t at, std::size_t length)
{
    int number = 0;
    std::from_chars(text.data() + at, text.data() + at + length, number);
    return number;
}

std::optional<long long> milliseconds(std::string_view text)
{
    if (!hasTimeShape(text)) {
        return std::nullopt;
    }
    std::tm parts{};
    parts.tm_year = numberAt(text, 0, 4) - 1900;
    parts.tm_mon = numberAt(text, 5, 2) - 1;
    parts.tm_mday = numberAt(text, 8, 2);
    parts.tm_hour = numberAt(text, 11, 2);
    parts.tm_min = numberAt(text, 14, 2);
    parts.tm_sec = numberAt(text, 17, 2);
    return static_cast<long long>(timegm(&parts)) * 1000 + numberAt(text, 20, 3);
}

}  // namespace

std::optional<long long> durationMs(const char* start, const char* end)
{
    const auto from = milliseconds(textOf(start));
    const auto to = milliseconds(textOf(end));
    return from && to && *to >= *from ? std::optional(*to - *from) : std::nullopt;
}

std::string interfaceRecord(const InterfaceCall& call, bool succeeded, pid_t process, pid_t thread)
{
    const auto duration = durationMs(call.start, call.end);
    const std::string durationText = duration ? std::to_string(*duration) : "-";
    const std::string processText = std::to_string(process);
    const std::string threadText = std::to_string(thread);
    const std::string_view fields[] = {textOf(call.start),
                                       textOf(call.end),
                                       durationText,
                                       succeeded ? "INFO" : "ERROR",
                                       textOf(call.code),
                                       textOf(call.operation),
                                       textOf(call.interfaceType),
                                       processText,
                                       threadText,
                                       textOf(call.tag),
                                       textOf(call.reserved3),
                                       textOf(call.reserved5),
                                       textOf(call.reserved6),
                                       textOf(call.reserved7),
                                       textOf(call.reserved11)};
    std::string record;
    for (const std::string_view& field : fields) {
        record += LineText(field).view();
        record += kSeparator;
    }
    record.pop_back();
    return record;
}

}  // namespace brevan::plimlog
