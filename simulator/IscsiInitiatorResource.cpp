#include "ApiError.h"
#include "Initiators.h"
#include "Records.h"
#include "Secrets.h"
#include "Text.h"

#include <algorithm>
#include <array>

namespace brevan::sim {

namespace {

/// One of the two directions in which CHAP can verify: keys of the body, columns of the table.
struct ChapSide {
    const char* nameKey;
    const char* secretKey;
    const char* oldSecretKey;
    const char* nameColumn;
    const char* secretColumn;
    const char* verifies;
};

constexpr ChapSide kInitiatorSide{"CHAPNAME",  "CHAPPASSWORD", "CHAPOLDPASSWORD",
                                  "chap_name", "chap_secret",  "the initiator"};
constexpr ChapSide kTargetSide{"CHAPNAMEINITATORVERTARGET",
                               "CHAPPASSWORDINITATORVERTARGET",
                               "CHAPOLDPASSWORDINITATORVERTARGET",
                               "target_chap_name",
                               "target_chap_secret",
                               "the target"};

std::string column(Database& database, const char* name, const Value& id)
{
    return database.text(std::string("SELECT ") + name + " FROM iscsi_initiator WHERE id = ?", {id});
}

void setColumn(Database& database, const char* name, const Value& value, const Value& id)
{
    database.execute(std::string("UPDATE iscsi_initiator SET ") + name + " = ? WHERE id = ?", {value, id});
}

std::string mode(const RequestContext& context, const char* key)
{
    std::string text = context.body.has(key) ? context.body.text(key, 8) : "0";
    if (text != "0" && text != "1" && text != "2") {
        throw ApiError(kBadChap, std::string(key) + " must be \"0\" (no CHAP), \"1\" (one-way) or \"2\" (mutual).");
    }
    return text;
}

/// A secret that is there is only changed by who knows it.
void setSecret(RequestContext& context, const ChapSide& side, const Value& id)
{
    Database& database = context.database();
    const std::string secret = context.body.text(side.secretKey);
    const std::string name = context.body.text(side.nameKey);
    const std::string known = column(database, side.secretColumn, id);
    if (!name.empty()) {
        setColumn(database, side.nameColumn, name, id);
    }
    if (!secret.empty()) {
        if (!known.empty() && !opens(known, context.body.text(side.oldSecretKey))) {
            throw ApiError(kWrongOldSecret,
                           std::string("The old secret that verifies ") + side.verifies + " is wrong or missing.");
        }
        setColumn(database, side.secretColumn, sealed(secret), id);
    }
    if (column(database, side.nameColumn, id).empty() || column(database, side.secretColumn, id).empty()) {
        throw ApiError(kBadChap, std::string("The CHAP that verifies ") + side.verifies + " needs " + side.nameKey +
                                     " and " + side.secretKey + ".");
    }
}

void clearSide(Database& database, const ChapSide& side, const Value& id)
{
    setColumn(database, side.nameColumn, std::string(), id);
    setColumn(database, side.secretColumn, std::string(), id);
}

void setChap(RequestContext& context, const Value& id)
{
    Database& database = context.database();
    const bool wanted = context.body.flag("USECHAP");
    const std::string normal = wanted ? mode(context, "NORMALVERMODE") : "0";
    const std::string discovery = wanted ? mode(context, "DISCOVERYVERMODE") : "0";
    const bool mutual = normal == "2" || discovery == "2";
    const bool any = normal != "0" || discovery != "0";
    if (wanted && !any) {
        throw ApiError(kBadChap, "USECHAP is \"true\", but NORMALVERMODE and DISCOVERYVERMODE are both \"0\".");
    }
    any ? setSecret(context, kInitiatorSide, id) : clearSide(database, kInitiatorSide, id);
    mutual ? setSecret(context, kTargetSide, id) : clearSide(database, kTargetSide, id);
    setColumn(database, "use_chap", std::int64_t{any ? 1 : 0}, id);
    setColumn(database, "normal_mode", normal, id);
    setColumn(database, "discovery_mode", discovery, id);
}

Answer createInitiator(RequestContext& context)
{
    const std::string id = context.body.requireText("ID");
    if (!isIscsiName(id)) {
        throw ApiError(kBadParameter, "The ID " + inQuotes(id) +
                                          " is not an iSCSI name: it begins with \"iqn.\", \"eui.\" or \"naa.\" and holds"
                                          " letters, digits, \".\", \":\", \"-\" and \"_\".");
    }
    requireNewInitiator(context, iscsiInitiatorKind(), id);
    context.database().insert("iscsi_initiator", {{"id", id}, {"name", initiatorName(context)}});
    bindToParent(context, iscsiInitiatorKind(), id);
    setChap(context, id);
    context.exposureChanged = true;
    return recordAnswer(context, iscsiInitiatorKind(), id);
}

Answer modifyInitiator(RequestContext& context)
{
    const Value id = existingId(context.database(), iscsiInitiatorKind(), context.body.requireText("ID"));
    const std::string name = initiatorName(context);
    if (!name.empty()) {
        setColumn(context.database(), "name", name, id);
    }
    // Naming the host that the initiator has already is no change of host.
    if (context.body.text("PARENTID") != column(context.database(), "host_id", id)) {
        bindToParent(context, iscsiInitiatorKind(), id);
    }
    if (context.body.has("USECHAP")) {
        setChap(context, id);
    }
    return recordAnswer(context, iscsiInitiatorKind(), id);
}

}  // namespace

const ResourceKind& iscsiInitiatorKind()
{
    static const ResourceKind kKind{"iSCSI initiator",
                                    "iscsi_initiator",
                                    ObjectType::kNone,
                                    kUnknownIscsiInitiator,
                                    false,
                                    false,
                                    "1",
                                    {
                                        {"ID", "id", Form::kText, Match::kText},
                                        {"NAME", "name", Form::kText, Match::kText},
                                        {"PARENTTYPE", "iif(host_id IS NULL, NULL, 21)"},
                                        {"PARENTID", "host_id", Form::kText, Match::kNumber},
                                        {"PARENTNAME", "(SELECT name FROM host WHERE id = iscsi_initiator.host_id)"},
                                        {"HEALTHSTATUS", "health", Form::kText, Match::kNumber},
                                        {"RUNNINGSTATUS", "running", Form::kText, Match::kNumber},
                                        {"ISFREE", "iif(host_id IS NULL, 'true', 'false')", Form::kText, Match::kFlag},
                                        {"USECHAP", "iif(use_chap = 1, 'true', 'false')"},
                                        {"NORMALVERMODE", "normal_mode"},
                                        {"DISCOVERYVERMODE", "discovery_mode"},
                                        {"CHAPNAME", "iif(chap_name = '', NULL, chap_name)"},
                                        {"CHAPNAMEINITATORVERTARGET", "iif(target_chap_name = '', NULL, target_chap_name)"},
                                    },
                                    {{ObjectType::kHost, "host_id = ?"}}};
    return kKind;
}

void addIscsiInitiatorRoutes(Router& router)
{
    addReadRoutes(router, iscsiInitiatorKind(), "/iscsi_initiator", "/iscsi_initiator");
    router.add({"POST", "/iscsi_initiator", createInitiator});
    router.add({"PUT", "/iscsi_initiator", modifyInitiator});
    router.add({"PUT", "/iscsi_initiator/remove_iscsi_from_host",
                [](RequestContext& context) { return unbindInitiator(context, iscsiInitiatorKind()); }});
    router.add({"PUT", "/iscsi_initiator/{id}",
                [](RequestContext& context) { return bindInitiator(context, iscsiInitiatorKind()); }});
    router.add({"DELETE", "/iscsi_initiator/{id}",
                [](RequestContext& context) { return removeInitiator(context, iscsiInitiatorKind()); }});
}

}  // namespace brevan::sim
