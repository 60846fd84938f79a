#include "RequestMaker.h"

namespace brevan::sim::test {

namespace {

constexpr const char* kNastyJson[] = {"null",
                                      "true",
                                      "-1",
                                      "1.5e300",
                                      "18446744073709551615",
                                      "18446744073709551616",
                                      "9223372036854775808",
                                      "1e999",
                                      "\"\"",
                                      "\"18446744073709551615\"",
                                      "\"-1\"",
                                      "\" 1\"",
                                      "\"1 \"",
                                      "{}",
                                      "[]",
                                      "[[[[]]]]",
                                      "{\"a\":{}}",
                                      "\"\\u0000\"",
                                      "\"\\ud800\"",
                                      "\"\xff\xfe\"",
                                      "\"a\\nb\"",
                                      "\"%s%n\"",
                                      "\"'; DROP TABLE volume; --\"",
                                      "\"../../etc\"",
                                      "\"\\\\\"",
                                      "\"\x7f\"",
                                      "\"",
                                      "nul",
                                      "0x10",
                                      "\"*\"",
                                      "\"\xc3\xa9\"",
                                      "00",
                                      "\"0\"",
                                      "0"};
constexpr const char* kNastyText[] = {"",
                                      "%",
                                      "%0",
                                      "%00",
                                      "%2f",
                                      "%zz",
                                      "%ff",
                                      "..",
                                      "//",
                                      "[",
                                      "]",
                                      "[0-",
                                      "[5-3]",
                                      "[0-18446744073709551616]",
                                      "*",
                                      "'",
                                      "\"",
                                      ";",
                                      "18446744073709551616",
                                      "-1",
                                      "a b",
                                      "NAME",
                                      "NAME:",
                                      ":",
                                      "NAME:a and",
                                      "NAME::a",
                                      "ID:1 and ID:1",
                                      "&",
                                      "=",
                                      "?",
                                      "#",
                                      "\\",
                                      "\x80",
                                      "ISADD2LUNGROUP:2",
                                      "WWN:x' OR '1'='1",
                                      "filter=",
                                      "range=",
                                      "{id}"};
constexpr const char* kMethods[] = {"GET",     "POST",  "PUT",     "DELETE", "HEAD", "PATCH",
                                    "OPTIONS", "TRACE", "CONNECT", "get",    "X"};
constexpr const char* kNastyHeaders[] = {"Content-Length: 5",
                                         "Content-Length: -1",
                                         "Content-Length: 99999999999999999999",
                                         "Transfer-Encoding: chunked",
                                         "Transfer-Encoding: gzip",
                                         "Expect: 100-continue",
                                         "Connection: close",
                                         "Upgrade: websocket",
                                         "iBaseToken: x",
                                         "Cookie: session=",
                                         "Cookie: ; ;session=x; session=y",
                                         "X: \x01",
                                         ": x",
                                         "NoColon",
                                         "Host:"};

void mutateBody(Pieces& pieces, Dice& dice)
{
    if (pieces.body.empty()) {
        pieces.body.emplace_back("ID", dice.from(kNastyJson));
        return;
    }
    auto& member = pieces.body[dice.below(pieces.body.size())];
    switch (dice.below(5)) {
        case 0:
            member = pieces.body.back();
            pieces.body.pop_back();
            break;
        case 1:
            pieces.body.push_back(member);
            break;
        case 2:
            member.first = dice.from(kNastyText);
            break;
        case 3:
            member.second = "\"" + std::string(dice.below(400), 'x') + "\"";
            break;
        default:
            member.second = dice.from(kNastyJson);
    }
}

void mutateQuery(Pieces& pieces, Dice& dice)
{
    constexpr const char* kParameters[] = {
        "filter=", "range=", "TYPE=", "ASSOCIATEOBJTYPE=", "ASSOCIATEOBJID=", "ID=", "X="};
    const std::string parameter = std::string(dice.from(kParameters)) + dice.from(kNastyText);
    if (pieces.query.empty() || dice.oneIn(3)) {
        pieces.query.push_back(parameter);
    } else {
        pieces.query[dice.below(pieces.query.size())] = parameter;
    }
}

void mutatePath(Pieces& pieces, Dice& dice)
{
    const std::size_t place = dice.below(pieces.path.size() + 1);
    pieces.path.insert(place, dice.from(kNastyText));
}

}  // namespace

void mutate(Pieces& pieces, Dice& dice)
{
    switch (dice.below(12)) {
        case 0:
            mutateQuery(pieces, dice);
            break;
        case 1:
            mutatePath(pieces, dice);
            break;
        case 2:
            pieces.method = dice.from(kMethods);
            break;
        case 3:
            pieces.headers.emplace_back(dice.from(kNastyHeaders));
            break;
        case 4:
        case 5:
            mutateBody(pieces, dice);
            break;
        default:
            break;
    }
}

std::string requestBytes(const Pieces& pieces, Dice& dice)
{
    std::string body;
    for (const auto& [key, value] : pieces.body) {
        body += (body.empty() ? "{\"" : ",\"") + key + "\":" + value;
    }
    body += body.empty() ? "" : "}";
    std::string query;
    for (const std::string& parameter : pieces.query) {
        query += (query.empty() ? "?" : "&") + parameter;
    }
    std::string bytes = pieces.method + " " + pieces.path + query + " HTTP/1.1\r\nHost: 127.0.0.1\r\n";
    for (const std::string& header : pieces.headers) {
        bytes += header + "\r\n";
    }
    // Without its length a body is no body; now and then that is tried, too.
    if (!body.empty() && !dice.oneIn(50)) {
        bytes += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    }
    return bytes + "\r\n" + body;
}

void mutate(std::string& bytes, Dice& dice)
{
    for (std::size_t count = 1 + dice.below(4); count > 0 && !bytes.empty(); --count) {
        const std::size_t place = dice.below(bytes.size());
        switch (dice.below(4)) {
            case 0:
                bytes[place] = static_cast<char>(dice.below(256));
                break;
            case 1:
                bytes.insert(place, 1, static_cast<char>(dice.below(256)));
                break;
            case 2:
                bytes.erase(place, 1 + dice.below(8));
                break;
            default:
                bytes.insert(place, bytes.substr(place, 1 + dice.below(40)));
        }
    }
}

}  // namespace brevan::sim::test
