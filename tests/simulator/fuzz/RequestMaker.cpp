#include "RequestMaker.h"

namespace brevan::sim::test {

namespace {

struct Template {
    const char* method;
    const char* path;
    std::vector<const char*> query;
    std::vector<std::pair<const char*, const char*>> body;
};

// "#" and a letter stand for the ID of such an object, "@" for a name, "%" for an initiator, "$" for a port name, "*" for a number.
const std::vector<Template>& templates()
{
    static const std::vector<Template> kTemplates{
        {"POST",
         "/lun",
         {},
         {{"NAME", "\"@\""},
          {"PARENTID", "\"0\""},
          {"CAPACITY", "*"},
          {"ALLOCTYPE", "1"},
          {"INITIALALLOCCAPACITY", "0"},
          {"DESCRIPTION", "\"d\""},
          {"WRITEPOLICY", "1"}}},
        {"POST",
         "/snapshot",
         {},
         {{"NAME", "\"@\""}, {"PARENTTYPE", "11"}, {"PARENTID", "\"#l\""}, {"DESCRIPTION", "\"\""}}},
        {"POST", "/lungroup/", {}, {{"TYPE", "256"}, {"NAME", "\"@\""}, {"APPTYPE", "0"}, {"GROUPTYPE", "0"}}},
        {"POST", "/host", {}, {{"TYPE", "21"}, {"NAME", "\"@\""}, {"OPERATIONSYSTEM", "0"}, {"IP", "\"127.0.0.1\""}}},
        {"POST", "/hostgroup", {}, {{"TYPE", "14"}, {"NAME", "\"@\""}}},
        {"POST", "/mappingview", {}, {{"TYPE", "245"}, {"NAME", "\"@\""}, {"ENABLEINBANDCOMMAND", "false"}}},
        {"POST",
         "/iscsi_initiator",
         {},
         {{"ID", "\"%\""},
          {"NAME", "\"@\""},
          {"USECHAP", "\"true\""},
          {"NORMALVERMODE", "\"1\""},
          {"CHAPNAME", "\"c\""},
          {"CHAPPASSWORD", "\"0123456789ab\""}}},
        {"PUT", "/iscsi_initiator", {}, {{"ID", "\"%\""}, {"NAME", "\"@\""}}},
        {"PUT", "/iscsi_initiator/%", {}, {{"PARENTTYPE", "21"}, {"PARENTID", "\"#h\""}}},
        {"PUT", "/iscsi_initiator/remove_iscsi_from_host", {}, {{"ID", "\"%\""}}},
        {"POST", "/fc_initiator", {}, {{"ID", "\"$\""}, {"NAME", "\"@\""}}},
        {"PUT", "/fc_initiator/$", {}, {{"PARENTTYPE", "21"}, {"PARENTID", "\"#h\""}}},
        {"PUT", "/fc_initiator/remove_fc_from_host", {}, {{"ID", "\"$\""}}},
        {"POST", "/lungroup/associate", {}, {{"ID", "\"#g\""}, {"ASSOCIATEOBJTYPE", "11"}, {"ASSOCIATEOBJID", "\"#l\""}}},
        {"POST", "/lungroup/associate", {}, {{"ID", "\"#g\""}, {"ASSOCIATEOBJTYPE", "27"}, {"ASSOCIATEOBJID", "\"#s\""}}},
        {"POST", "/hostgroup/associate", {}, {{"ID", "\"#k\""}, {"ASSOCIATEOBJTYPE", "21"}, {"ASSOCIATEOBJID", "\"#h\""}}},
        {"PUT",
         "/mappingview/create_associate",
         {},
         {{"TYPE", "245"}, {"ID", "\"#v\""}, {"ASSOCIATEOBJTYPE", "14"}, {"ASSOCIATEOBJID", "\"#k\""}}},
        {"PUT",
         "/mappingview/create_associate",
         {},
         {{"TYPE", "245"}, {"ID", "\"#v\""}, {"ASSOCIATEOBJTYPE", "256"}, {"ASSOCIATEOBJID", "\"#g\""}}},
        {"PUT",
         "/mappingview/remove_associate",
         {},
         {{"TYPE", "245"}, {"ID", "\"#v\""}, {"ASSOCIATEOBJTYPE", "256"}, {"ASSOCIATEOBJID", "\"#g\""}}},
        {"DELETE", "/lungroup/associate", {"ID=#g", "ASSOCIATEOBJTYPE=11", "ASSOCIATEOBJID=#l"}, {}},
        {"DELETE", "/host/associate", {"ID=#k", "ASSOCIATEOBJTYPE=21", "ASSOCIATEOBJID=#h"}, {}},
        {"GET", "/server/logininfo", {}, {}},
        {"POST", "/sessions", {}, {{"username", "\"admin\""}, {"password", "\"secret\""}, {"scope", "0"}}},
        {"DELETE", "/sessions", {}, {}},
        {"GET", "/FC_PORT", {"filter=ID:1", "range=[0-10]"}, {}},
        {"GET", "/ETH_PORT/#a", {}, {}},
        {"GET", "/FCoE_PORT", {"range=[0-10]"}, {}},
        {"GET", "/iscsi_initiator/%", {}, {}},
        {"GET", "/fc_initiator/$", {}, {}},
        {"DELETE", "/iscsi_initiator/%", {}, {}},
        {"DELETE", "/fc_initiator/$", {}, {}},
        {"GET", "/SNAPSHOT/#s", {}, {}},
    };
    return kTemplates;
}

// Kinds with their paths and with the IDs that requestsToFurnish() gives their first objects: seven ports stand before them.
struct Kind {
    char letter;
    const char* path;
    std::size_t first;
    std::size_t count;
};
constexpr Kind kKinds[] = {{'l', "/lun", 8, 6},        {'s', "/snapshot", 14, 3},  {'g', "/lungroup", 17, 3},
                           {'h', "/host", 20, 3},      {'k', "/hostgroup", 23, 3}, {'v', "/mappingview", 26, 3},
                           {'p', "/storagepool", 0, 1}};
constexpr std::size_t kIds = 50;
constexpr const char* kTypes[] = {"11", "14", "21", "27", "216", "245", "256"};
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
std::string initiator(Dice& dice)
{
    return "iqn.lab:" + std::to_string(dice.below(6));
}

/// Mostly an object of that kind, sometimes any.
std::string id(char letter, Dice& dice)
{
    for (const Kind& kind : kKinds) {
        if (kind.letter == letter && !dice.oneIn(6)) {
            return std::to_string(kind.first + dice.below(kind.count));
        }
    }
    return std::to_string(dice.below(kIds));
}

std::string filled(const std::string& text, Dice& dice)
{
    std::string made;
    for (std::size_t index = 0; index < text.size(); ++index) {
        switch (text[index]) {
            case '#':
                made += id(text[++index], dice);
                break;
            case '@':
                made += "name" + std::to_string(dice.below(kIds));
                break;
            case '%':
                made += initiator(dice);
                break;
            case '$':
                made += "500000000000000" + std::to_string(dice.below(6));
                break;
            case '*':
                made += std::to_string(dice.below(100000));
                break;
            default:
                made += text[index];
        }
    }
    return made;
}

/// A read of any kind: one object, a list, a count, or what belongs to another object.
Pieces rightRead(Dice& dice)
{
    const Kind& kind = dice.from(kKinds);
    Pieces pieces{"GET", kind.path, {}, {}, {}};
    const std::string owner = "ASSOCIATEOBJTYPE=" + std::string(dice.from(kTypes));
    switch (dice.below(5)) {
        case 0:
            pieces.path += "/" + id(kind.letter, dice);
            break;
        case 1:
            pieces.query = {filled("filter=NAME:@", dice), "range=[0-5]"};
            break;
        case 2:
            pieces.path += "/count";
            pieces.query = {filled("filter=ID:#a", dice)};
            break;
        case 3:
            pieces.path += "/associate";
            pieces.query = {owner, filled("ASSOCIATEOBJID=#a", dice), "range=[0-100]"};
            break;
        default:
            pieces.query = {owner, filled("ASSOCIATEOBJID=#a", dice)};
    }
    return pieces;
}

Pieces rightRemoval(Dice& dice)
{
    const Kind& kind = dice.from(kKinds);
    return {"DELETE", std::string(kind.path) + "/" + std::to_string(dice.below(kIds)), {}, {}, {}};
}

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

std::vector<Pieces> requestsToFurnish()
{
    std::vector<Pieces> requests;
    const auto create = [&requests](const char* path, std::vector<std::pair<std::string, std::string>> body) {
        body.emplace_back("NAME", "\"first" + std::to_string(requests.size()) + "\"");
        requests.push_back({"POST", path, {}, std::move(body), {}});
    };
    for (const Kind& kind : kKinds) {
        const std::string path = kind.path == std::string("/lungroup") ? "/lungroup/" : kind.path;
        for (std::size_t index = 0; index < kind.count && kind.letter != 'p'; ++index) {
            const char* parent = kind.letter == 's' ? "\"8\"" : "\"0\"";
            create(path.c_str(),
                   {{kind.letter == 'h' ? "LOCATION" : "PARENTID", parent}, {"CAPACITY", "2048"}, {"OPERATIONSYSTEM", "0"}});
        }
    }
    return requests;
}

Pieces rightRequest(Dice& dice)
{
    if (dice.oneIn(4)) {
        return rightRead(dice);
    }
    if (dice.oneIn(20)) {
        return rightRemoval(dice);
    }
    const Template& form = dice.from(templates());
    Pieces pieces{form.method, filled(form.path, dice), {}, {}, {}};
    for (const char* parameter : form.query) {
        pieces.query.push_back(filled(parameter, dice));
    }
    for (const auto& [key, value] : form.body) {
        pieces.body.emplace_back(key, filled(value, dice));
    }
    return pieces;
}

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
