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

}  // namespace brevan::sim::test
