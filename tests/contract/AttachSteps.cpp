#include "AttachSteps.h"

namespace brevan::contract {

std::string idRecord(const std::string& id)
{
    return R"({"ID":")" + id + R"("})";
}

Steps listed(const std::string& request, const std::string& read, const std::string& readPath,
             const std::vector<std::string>& ids)
{
    std::string list;
    Steps reads;
    for (const std::string& id : ids) {
        list += (list.empty() ? "" : ",") + idRecord(id);
        reads += done(read, send("GET " + readPath + id, idRecord(id)));
    }
    return {send(request, "[" + list + "]"), reads};
}

Steps readVolume(const Volume& volume)
{
    return done(volume.read(), send("GET " + volume.readPath + "7", idRecord("7")));
}

Steps readInitiator(const std::string& hostId)
{
    return done("getIscsiInitiator", send("GET /iscsi_initiator/iqn", R"({"ID":"iqn","PARENTID":")" + hostId + R"("})"));
}

Steps readHost()
{
    return done("getHost", send("GET /host/21", idRecord("21")));
}

std::string volumesRequest(const Volume& volume, const std::string& associateType, const std::string& id)
{
    return "GET /" + volume.word + "/associate?filter=ID:7&TYPE=" + volume.type + "&ASSOCIATEOBJTYPE=" + associateType +
           "&ASSOCIATEOBJID=" + id + "&range=[0-65535]";
}

Steps volumesOf(const Volume& volume, const std::string& place, const std::string& associateType, const std::string& id,
                const std::vector<std::string>& found)
{
    return done(volume.read() + "By" + place,
                done(volume.read() + "ByCondition",
                     listed(volumesRequest(volume, associateType, id), volume.read(), volume.readPath, found)));
}

Steps closing(const std::string& operation)
{
    return {leave(operation), record(operation, 0)};
}

Steps caught(const std::string& operation)
{
    return {record(operation, 1), closing(operation)};
}

}  // namespace brevan::contract
