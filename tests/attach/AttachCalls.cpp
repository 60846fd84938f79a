#include "attach/AttachCalls.h"

namespace brevan::test {
namespace {

const std::string kNow = "_1614834367";

std::string record(const std::string& id)
{
    return R"({"ID":")" + id + R"("})";
}

std::string list(const Ids& ids)
{
    std::string text;
    for (const std::string& id : ids) {
        text += (text.empty() ? "" : ",") + record(id);
    }
    return "[" + text + "]";
}

/// A create and the read back.
Call created(const std::string& create, const std::string& post, const std::string& read, const std::string& path,
             const std::string& id)
{
    return {{{create}, "POST " + post, record(id)}, {{create, read}, "GET " + path + id, record(id)}};
}

/// A batch read: the list, then each record.
Call listed(const std::vector<std::string>& within, const std::string& path, const std::string& read,
            const std::string& readPath, const Ids& ids)
{
    Call call = {{within, "GET " + path, list(ids)}};
    std::vector<std::string> deeper = within;
    deeper.push_back(read);
    for (const std::string& id : ids) {
        call.push_back({deeper, "GET " + readPath + id, record(id)});
    }
    return call;
}

Call viewsOf(const std::string& operation, int type, const std::string& groupId, const Ids& found)
{
    return listed({operation, "getMappingViewByCondition"},
                  "/mappingview/associate?TYPE=245&ASSOCIATEOBJTYPE=" + std::to_string(type) + "&ASSOCIATEOBJID=" + groupId,
                  "getMappingView", "/mappingview/", found);
}

Call volumesAt(const VolumeKind& kind, const std::string& place, int type, const std::string& id, const Ids& found)
{
    const std::string get = "get" + kind.capital();
    return listed({get + "By" + place, get + "ByCondition"},
                  "/" + std::string(kind.word) + "/associate?filter=ID:7&TYPE=" + std::to_string(kind.type) +
                      "&ASSOCIATEOBJTYPE=" + std::to_string(type) + "&ASSOCIATEOBJID=" + id + "&range=[0-65535]",
                  get, kind.readPath, found);
}

Call join(const std::string& operation, const std::string& type, const std::string& id)
{
    return {{{operation, "associateWithMaskingView"},
             R"(PUT /mappingview/create_associate {"TYPE":245,"ID":"50","ASSOCIATEOBJTYPE":)" + type +
                 R"(ul,"ASSOCIATEOBJID":")" + id + R"("})",
             ""}};
}

}  // namespace

Call readVolume(const VolumeKind& kind)
{
    return {{{kind.read}, std::string("GET ") + kind.readPath + "7", record("7")}};
}

Call readInitiator(const std::string& hostId)
{
    return {{{"getIscsiInitiator"}, "GET /iscsi_initiator/iqn", R"({"ID":"iqn","PARENTID":")" + hostId + R"("})"}};
}

Call readHost()
{
    return {{{"getHost"}, "GET /host/21", record("21")}};
}

Call newHost()
{
    return created("createHost", R"(/host {"TYPE":21,"NAME":"host)" + kNow + R"(","OPERATIONSYSTEM":0,"IP":"10.0.0.5"})",
                   "getHost", "/host/", "21");
}

Call bindInitiator()
{
    return {{{"addIscsiInitiatorToHost"}, R"(PUT /iscsi_initiator/iqn {"PARENTTYPE":21,"PARENTID":"21"})", ""}};
}

Call volumesOnHost(const VolumeKind& kind, const Ids& found)
{
    return volumesAt(kind, "Host", MOTYPE_HOST, "21", found);
}

Call newLunGroup()
{
    return created("createLunGroup",
                   R"(/lungroup/ {"TYPE":256,"NAME":"lungroup)" + kNow + R"(","APPTYPE":0,"GROUPTYPE":0ul})", "getLunGroup",
                   "/lungroup/", "30");
}

Call addVolume(const VolumeKind& kind)
{
    return {{{"add" + kind.capital() + "ToLunGroup", "addObjToLunGroup"},
             R"(POST /lungroup/associate {"ID":"30","ASSOCIATEOBJTYPE":)" + std::to_string(kind.type) +
                 R"(,"ASSOCIATEOBJID":"7"})",
             "",
             {std::string("info: add ") + kind.word + " (7) to lun group(30) success "}}};
}

Call newHostGroup()
{
    return created("createHostGroup", R"(/hostgroup {"TYPE":14,"NAME":"hostgroup)" + kNow + R"("})", "getHostGroup",
                   "/hostgroup/", "40");
}

Call addHost()
{
    return {{{"addHostToHostGroup"},
             R"(POST /hostgroup/associate {"ID":"40","ASSOCIATEOBJTYPE":21,"ASSOCIATEOBJID":"21"})",
             ""}};
}

Call newView()
{
    return created("createMappingView",
                   R"(/mappingview {"TYPE":245,"NAME":"mappingview)" + kNow + R"(","ENABLEINBANDCOMMAND":false})",
                   "getMappingView", "/mappingview/", "50");
}

Call joinHostGroup()
{
    return join("addHostGroupToMappingView", "14", "40");
}

Call joinLunGroup()
{
    return join("addLunGroupToMappingView", "256", "30");
}

Flow chain(const VolumeKind& kind)
{
    const Flow forVolume = {newLunGroup(), addVolume(kind)};
    const Flow forHost = {newHostGroup(), addHost()};
    const Flow forView = {newView(), joinHostGroup(), joinLunGroup()};
    return (kind.isLun() ? forVolume + forHost : forHost + forVolume) + forView;
}

Flow wholeAttach(const VolumeKind& kind)
{
    return Flow{readVolume(kind), readInitiator(""), newHost(), bindInitiator(), volumesOnHost(kind, {})} + chain(kind);
}

Call lunGroupsOf(const VolumeKind& kind, const Ids& found)
{
    return listed({"getLunGroupBy" + kind.capital(), "getLunGroupByObjList"},
                  "/lungroup/associate?TYPE=256&ASSOCIATEOBJTYPE=" + std::to_string(kind.type) + "&ASSOCIATEOBJID=7",
                  "getLunGroup", "/lungroup/", found);
}

Call takeOut(const VolumeKind& kind, const std::string& groupId)
{
    return {
        {{"remove" + kind.capital() + "FromLunGroup", "removeObjFromLunGroup"},
         "DELETE /lungroup/associate?ID=" + groupId + "&ASSOCIATEOBJTYPE=" + std::to_string(kind.type) + "&ASSOCIATEOBJID=7",
         "",
         {std::string("info: remove ") + kind.word + " (7) from lun group(" + groupId + ") success "}}};
}

Call countIn(const std::string& groupId, int luns, int snapshots)
{
    const std::vector<std::string> within = {"getObjNOFromLunGroup", "getCountByAssociate"};
    const std::string path = "/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + groupId;
    return {{within, "GET /lun" + path, R"({"COUNT":")" + std::to_string(luns) + R"("})"},
            {within, "GET /snapshot" + path, R"({"COUNT":")" + std::to_string(snapshots) + R"("})"}};
}

Call viewsOfLunGroup(const std::string& groupId, const Ids& found)
{
    return viewsOf("getMappingViewByLunGroup", MOTYPE_LUNGROUP, groupId, found);
}

Call unjoin(const std::string& groupId, const std::string& viewId)
{
    return {{{"removeLunGroupFromMappingView", "removeAssociateFromMappingView"},
             R"(PUT /mappingview/remove_associate {"ID":")" + viewId +
                 R"(","TYPE":245,"ASSOCIATEOBJTYPE":256ul,"ASSOCIATEOBJID":")" + groupId + R"("})",
             ""}};
}

Call deleteLunGroup(const std::string& groupId)
{
    return {{{"deleteLunGroup"}, "DELETE /lungroup/" + groupId, ""}};
}

Call hostGroups(const Ids& found)
{
    return listed({"getHostGroupByHost"}, "/hostgroup/associate?TYPE=14&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=21",
                  "getHostGroup", "/hostgroup/", found);
}

Call viewsOfHostGroup(const std::string& groupId, const Ids& found)
{
    return viewsOf("getMappingViewByHostGroup", MOTYPE_HOSTGROUP, groupId, found);
}

Call lunGroupOfView(const std::string& viewId, const Ids& found)
{
    return listed({"getLunGroupByMappingView"}, "/lungroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=" + viewId,
                  "getLunGroup", "/lungroup/", found);
}

Call volumesIn(const VolumeKind& kind, const std::string& groupId, const Ids& found)
{
    return volumesAt(kind, "LunGroup", MOTYPE_LUNGROUP, groupId, found);
}

Flow operator+(Flow left, const Flow& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

}  // namespace brevan::test
