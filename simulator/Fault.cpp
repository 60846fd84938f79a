#include "Fault.h"

#include "Amounts.h"
#include "Text.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <locale>
#include <stdexcept>

namespace brevan::sim {

namespace {

using nlohmann::json;

constexpr const char* kAllFaults =
    "\"error CODE\", \"status N\", \"stall TIME\", \"reset before\", \"reset after\", \"cut BYTES\", \"garbage\", "
    "\"wrong types\", \"upper case\", \"session gone\" or \"pass\"";
constexpr const char* kErrorText = "Asked for by the fault script.";
constexpr std::int64_t kLargestCut = 1 << 30;

struct Word {
    const char* text;
    FaultKind kind;
    bool takesMore;
};

constexpr Word kWords[] = {
    {"error ", FaultKind::kError, true},
    {"status ", FaultKind::kStatus, true},
    {"stall ", FaultKind::kStall, true},
    {"cut ", FaultKind::kCut, true},
    {"reset before", FaultKind::kResetBefore, false},
    {"reset after", FaultKind::kResetAfter, false},
    {"garbage", FaultKind::kGarbage, false},
    {"wrong types", FaultKind::kWrongTypes, false},
    {"upper case", FaultKind::kUpperCase, false},
    {"session gone", FaultKind::kSessionGone, false},
    {"pass", FaultKind::kPass, false},
};

[[noreturn]] void refuse(const std::string& line, const std::string& reason)
{
    throw std::invalid_argument("the fault " + inQuotes(line) + " " + reason);
}

std::int64_t number(const std::string& line, std::string_view text, std::int64_t least, std::int64_t most)
{
    std::int64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size() || value < least ||
        value > most) {
        refuse(line, "needs a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return value;
}

Fault readError(const std::string& line, std::string_view more)
{
    const std::size_t blank = std::min(more.find(' '), more.size());
    const std::int64_t code =
        number(line, more.substr(0, blank), std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    if (code == 0) {
        refuse(line, "needs a code that is not 0: 0 would tell the client that it was done");
    }
    return {FaultKind::kError, code, blank < more.size() ? std::string(more.substr(blank + 1)) : kErrorText};
}

Fault readStatus(const std::string& line, std::string_view more)
{
    constexpr std::int64_t kNotModified = 304;  // has no body by definition, so clients would wait for nothing
    const std::int64_t status = number(line, more, 300, 599);
    if (status == kNotModified) {
        refuse(line, "is about caches, which the array has nothing to do with");
    }
    return {FaultKind::kStatus, status, {}};
}

Fault readStall(const std::string& line, std::string_view more)
{
    const std::optional<Microseconds> time = readDuration(more);
    if (!time) {
        refuse(line, "needs a time of at most an hour, such as 500ms or 2s");
    }
    return {FaultKind::kStall, time->count(), {}};
}

void spoilTypes(json& record)
{
    for (json& value : record) {
        value = value.is_string() ? json::array({value}) : json("of the wrong type");
    }
}

void raiseCase(json& record)
{
    for (json& value : record) {
        if (value.is_string()) {
            boost::algorithm::to_upper(value.get_ref<std::string&>(), std::locale::classic());
        }
    }
}

/// One record, or each of a list of them.
template <class Change>
void changeRecords(json& data, Change change)
{
    if (data.is_array()) {
        std::for_each(data.begin(), data.end(), change);
    } else {
        change(data);
    }
}

/// Every value becomes one that cannot be taken for what was meant; a reply without values gets a text for a record.
std::string wrongTypes(const std::string& body)
{
    json reply = json::parse(body);
    json& data = reply["data"];
    if (data.empty()) {
        data = "of the wrong type";
    } else {
        changeRecords(data, spoilTypes);
    }
    return reply.dump();
}

std::string upperCase(const std::string& body)
{
    json reply = json::parse(body);
    if (const auto data = reply.find("data"); data != reply.end()) {
        changeRecords(*data, raiseCase);
    }
    return reply.dump();
}

WireReply page(unsigned status)
{
    const std::string title = std::to_string(status) + " by the fault script";
    WireReply reply{status, "<html><head><title>" + title + "</title></head><body>" + title + "</body></html>\n", {}};
    reply.contentType = "text/html";
    if (status < 400) {
        reply.headers.emplace_back("Location", "/elsewhere");
    }
    return reply;
}

}  // namespace

Fault readFault(const std::string& line)
{
    const Word* word = std::find_if(std::begin(kWords), std::end(kWords), [&line](const Word& candidate) {
        return candidate.takesMore ? startsWith(line, candidate.text) : line == candidate.text;
    });
    if (word == std::end(kWords) || hasControlCharacter(line)) {
        refuse(line, std::string("is none of ") + kAllFaults);
    }
    const std::string_view more = std::string_view(line).substr(std::string_view(word->text).size());
    switch (word->kind) {
        case FaultKind::kError:
            return readError(line, more);
        case FaultKind::kStatus:
            return readStatus(line, more);
        case FaultKind::kStall:
            return readStall(line, more);
        case FaultKind::kCut:
            return {FaultKind::kCut, number(line, more, 0, kLargestCut), {}};
        default:
            return {word->kind, 0, {}};
    }
}

std::string faultText(const Fault& fault)
{
    const Word* word = std::find_if(std::begin(kWords), std::end(kWords),
                                    [&fault](const Word& candidate) { return candidate.kind == fault.kind; });
    if (!word->takesMore) {
        return word->text;
    }
    if (fault.kind == FaultKind::kStall) {
        return word->text + durationText(Microseconds(fault.amount));
    }
    const bool ownText = !fault.text.empty() && fault.text != kErrorText;
    return word->text + std::to_string(fault.amount) + (ownText ? " " + fault.text : "");
}

bool happensInstead(FaultKind kind)
{
    return kind < FaultKind::kPass;
}

WireReply spoiled(WireReply reply, const Fault& fault)
{
    switch (fault.kind) {
        case FaultKind::kStatus:
            return page(static_cast<unsigned>(fault.amount));
        case FaultKind::kStall:
            reply.delivery.wait += Microseconds(fault.amount);
            return reply;
        case FaultKind::kResetBefore:
        case FaultKind::kResetAfter:
            reply = {0, {}, {}};
            reply.delivery.reset = true;
            return reply;
        case FaultKind::kCut:
            reply.delivery.cutAfter = static_cast<std::size_t>(fault.amount);
            return reply;
        case FaultKind::kGarbage:
            reply.body = "]]{\"data\": \xff\xfe <this is not JSON>";
            return reply;
        case FaultKind::kWrongTypes:
            reply.body = wrongTypes(reply.body);
            return reply;
        case FaultKind::kUpperCase:
            reply.body = upperCase(reply.body);
            return reply;
        default:
            return reply;
    }
}

}  // namespace brevan::sim
