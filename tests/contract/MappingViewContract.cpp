#include "ReadBack.h"

namespace brevan::contract {
namespace {

const char* const kRecord = R"({"ID":"50"})";
const char* const kCreate = R"(POST /mappingview {"TYPE":245,"NAME":"v","ENABLEINBANDCOMMAND":false})";

MappingViewMO create(Sdk& sdk, const std::string& name)
{
    MappingViewMO view;
    view.NAME = name;
    return sdk.view().createMappingView(view);
}

const Call kCreateView = [](Sdk& sdk) { return create(sdk, "v"); };
const Steps kFound = done("getMappingView", send("GET /mappingview/50", kRecord));

Operation createMappingView()
{
    return Operation("createMappingView")
        .succeeds("read back at once", kCreateView, done("createMappingView", {send(kCreate, kRecord), kFound}), "ID:50")
        .failsAt(kCreate, {"createMappingView"})
        .failsAt("GET /mappingview/50", {"createMappingView", "getMappingView"})
        .succeeds(
            "every key that is optional",
            [](Sdk& sdk) {
                MappingViewMO view;
                view.ID = "50";
                view.NAME = "v";
                view.DESCRIPTION = "d";
                view.ENABLEINBANDCOMMAND = 1;
                return sdk.view().createMappingView(view);
            },
            done("createMappingView",
                 {send(R"(POST /mappingview {"ID":"50","TYPE":245,"NAME":"v","ENABLEINBANDCOMMAND":true,"DESCRIPTION":"d"})",
                       kRecord),
                  kFound}),
            "ID:50")
        .refuses("MappingView name is empty! ", [](Sdk& sdk) { return create(sdk, ""); });
}

Operation createMappingViewReadsBack()
{
    return readsBack({"createMappingView", kCreateView, send(kCreate, kRecord), "getMappingView", "GET /mappingview/50",
                      kFound, "retry get mapping view!", "ID:50"});
}

Operation deleteMappingView()
{
    return Operation("deleteMappingView")
        .succeeds(
            "one request", [](Sdk& sdk) { sdk.view().deleteMappingView("50"); },
            done("deleteMappingView", send("DELETE /mappingview/50")))
        .failsAt("DELETE /mappingview/50", {"deleteMappingView"})
        .refuses("mappingViewID is empty! ", [](Sdk& sdk) { sdk.view().deleteMappingView(""); });
}

Operation getMappingView()
{
    const Call get = [](Sdk& sdk) { return sdk.view().getMappingView("50"); };
    return Operation("getMappingView")
        .succeeds("every field", get,
                  done("getMappingView", send("GET /mappingview/50",
                                              R"({"ID":"50","NAME":"v","DESCRIPTION":"d","ENABLEINBANDCOMMAND":"true"})")),
                  "ID:50 NAME:v DESCRIPTION:d ENABLEINBANDCOMMAND:1")
        .failsAt("GET /mappingview/50", {"getMappingView"})
        .succeeds("no record", get, done("getMappingView", send("GET /mappingview/50")), "")
        .succeeds("a record without ID", get, done("getMappingView", send("GET /mappingview/50", R"({"NAME":"v"})")), "")
        .refuses("mappingViewID is empty! ", [](Sdk& sdk) { return sdk.view().getMappingView(""); });
}

using Association = void (CMappingViewHandler::*)(const std::string&, const std::string&);

/// Both changes are a PUT, not a POST and a DELETE.
Operation add(const std::string& name, const std::string& message, const std::string& type, Association call)
{
    const std::string request = R"(PUT /mappingview/create_associate {"TYPE":245,"ID":"50","ASSOCIATEOBJTYPE":)" + type +
                                R"(ul,"ASSOCIATEOBJID":"3"})";
    return Operation(name)
        .succeeds(
            "one request", [call](Sdk& sdk) { (sdk.view().*call)("3", "50"); },
            done(name, done("associateWithMaskingView", send(request))))
        .failsAt(request, {name, "associateWithMaskingView"})
        .refuses(message, [call](Sdk& sdk) { (sdk.view().*call)("", "50"); })
        .refuses("mappingViewID is empty! ", [call](Sdk& sdk) { (sdk.view().*call)("3", ""); });
}

/// "ID" comes before "TYPE" here. The worker's enter and leave lines have another name than its record and its messages.
Operation remove(const std::string& name, const std::string& message, const std::string& type, Association call)
{
    const std::string request = R"(PUT /mappingview/remove_associate {"ID":"50","TYPE":245,"ASSOCIATEOBJTYPE":)" + type +
                                R"(ul,"ASSOCIATEOBJID":"3"})";
    return Operation(name)
        .succeeds(
            "one request", [call](Sdk& sdk) { (sdk.view().*call)("3", "50"); },
            done(name,
                 {"info: enter removeAssociateFromMaskingView successfully!", send(request),
                  "record: removeAssociateFromMappingView 0", "info: leave removeAssociateFromMaskingView successfully!"}))
        .failsAt(request, {name, "removeAssociateFromMappingView"})
        .refuses(message, [call](Sdk& sdk) { (sdk.view().*call)("", "50"); })
        .refuses("mappingViewID is empty! ", [call](Sdk& sdk) { (sdk.view().*call)("3", ""); });
}

Operation batch(const std::string& name, const std::string& message, const std::string& type,
                std::vector<MappingViewMO> (CMappingViewHandler::*get)(const std::string&, MappingViewQuery&))
{
    MappingViewMO condition;
    condition.ID = "50";
    condition.NAME = "v";
    const auto with = [get](const char* id, MappingViewQuery query) {
        return [=](Sdk& sdk) mutable { return (sdk.view().*get)(id, query); };
    };
    const std::string associate = "TYPE=245&ASSOCIATEOBJTYPE=" + type + "&ASSOCIATEOBJID=3";
    const std::string all = "GET /mappingview/associate?" + associate;
    return Operation(name)
        .succeeds(
            "all, one read for each", with("3", MappingViewQuery()),
            done(name, done("getMappingViewByCondition", {send(all, R"([{"ID":"50"},{"NAME":"without ID"}])"), kFound})),
            "[ID:50]")
        .failsAt(all, {name, "getMappingViewByCondition"})
        .failsAt("GET /mappingview/50", {name, "getMappingViewByCondition", "getMappingView"})
        .succeeds("with every condition and a range", with("3", MappingViewQuery(condition, 10, 5)),
                  done(name, done("getMappingViewByCondition", send("GET /mappingview/associate?filter=ID:50 and NAME:v&" +
                                                                    associate + "&range=[10-15]"))))
        .refuses(message, with("", MappingViewQuery()));
}

}  // namespace

Table mappingViewContract()
{
    const char* const kNoLunGroup = "LunGroup id is empty! ";
    const char* const kNoHostGroup = "HostGroupID is empty";  // no blank at its end
    return {
        createMappingView(),
        createMappingViewReadsBack(),
        deleteMappingView(),
        getMappingView(),
        add("addLunGroupToMappingView", kNoLunGroup, "256", &CMappingViewHandler::addLunGroupToMappingView),
        add("addHostGroupToMappingView", kNoHostGroup, "14", &CMappingViewHandler::addHostGroupToMappingView),
        remove("removeLunGroupFromMappingView", kNoLunGroup, "256", &CMappingViewHandler::removeLunGroupFromMappingView),
        remove("removeHostGroupFromMappingView", kNoHostGroup, "14", &CMappingViewHandler::removeHostGroupFromMappingView),
        batch("getMappingViewByLunGroup", kNoLunGroup, "256", &CMappingViewHandler::getMappingViewByLunGroup),
        batch("getMappingViewByHostGroup", kNoHostGroup, "14", &CMappingViewHandler::getMappingViewByHostGroup)};
}

BREVAN_CONTRACT(MappingView, rowsOf(mappingViewContract()));

}  // namespace brevan::contract
