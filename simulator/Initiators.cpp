#include "Initiators.h"

#include "ApiError.h"
#include "Records.h"
#include "Text.h"

namespace brevan::sim {

namespace {

constexpr std::uint64_t kHostType = static_cast<std::uint64_t>(ObjectType::kHost);

}  // namespace

void bindToParent(RequestContext& context, const ResourceKind& kind, const Value& id)
{
    const std::uint64_t type = context.body.number("PARENTTYPE", 65535).value_or(0);
    const std::string parent = context.body.text("PARENTID");
    if (type != 0 && type != kHostType) {
        throw ApiError(kBadParameter, "The parent of a " + std::string(kind.name) + " is a host: PARENTTYPE must be 21.");
    }
    if (parent.empty()) {
        return;
    }
    const Value host = existingId(context.database(), hostKind(), parent);
    const std::string table = kind.table;
    const std::string bound = context.database().text("SELECT host_id FROM " + table + " WHERE id = ?", {id});
    if (!bound.empty()) {
        throw ApiError(kInitiatorBound, "The " + std::string(kind.name) + " is bound to the host " + inQuotes(bound) +
                                            " already: remove it there first.");
    }
    context.database().execute("UPDATE " + table + " SET host_id = ? WHERE id = ?", {host, id});
    context.exposureChanged = true;
}

Answer bindInitiator(RequestContext& context, const ResourceKind& kind)
{
    const Value id = existingId(context.database(), kind, context.id);
    context.body.requireNumber("PARENTTYPE", 65535);
    context.body.requireText("PARENTID");
    bindToParent(context, kind, id);
    return recordAnswer(context, kind, id);
}

Answer unbindInitiator(RequestContext& context, const ResourceKind& kind)
{
    const std::string text = context.body.requireText("ID");
    const Value id = existingId(context.database(), kind, text);
    const std::string sql = std::string("UPDATE ") + kind.table + " SET host_id = NULL WHERE id = ? AND host_id IS NOT NULL";
    if (context.database().execute(sql, {id}) != 1) {
        throw ApiError(kInitiatorNotBound, described(kind, text) + " is not bound to a host.");
    }
    context.exposureChanged = true;
    return {};
}

Answer removeInitiator(RequestContext& context, const ResourceKind& kind)
{
    const std::string bound = std::string("SELECT 1 FROM ") + kind.table + " WHERE id = ? AND host_id IS NOT NULL";
    return removeObject(context, kind, {{bound.c_str(), kInitiatorBound, "is bound to a host: remove it there first."}});
}

void requireNewInitiator(RequestContext& context, const ResourceKind& kind, const std::string& id)
{
    if (context.database().exists(std::string("SELECT 1 FROM ") + kind.table + " WHERE id = ?", {id})) {
        throw ApiError(kIdTaken, described(kind, id) + " exists already.");
    }
}

std::string initiatorName(const RequestContext& context)
{
    return context.body.text("NAME", 127);
}

}  // namespace brevan::sim
