#include "Objects.h"

#include "ApiError.h"
#include "Records.h"
#include "Text.h"

#include <algorithm>

namespace brevan::sim {

namespace {

// IDs that clients choose stay far below the largest one, so that the array never runs out of higher ones.
constexpr std::uint64_t kLargestChosenId = 999999999;

/// A new object may be unreadable for some reads; the answer says so without undoing that this was one of them.
Answer readOne(RequestContext& context, const ResourceKind& kind)
{
    const Value id = existingId(context.database(), kind, context.id);
    if (kind.settles) {
        const std::string table = kind.table;
        if (context.database().number("SELECT unsettled FROM " + table + " WHERE id = ?", {id}) > 0) {
            context.database().execute("UPDATE " + table + " SET unsettled = unsettled - 1 WHERE id = ?", {id});
            return {kNotReadableYet, described(kind, context.id) + " was just created and cannot be read yet.", "{}"};
        }
    }
    return recordAnswer(context, kind, id);
}

Answer readMany(RequestContext& context, const ResourceKind& kind)
{
    return {kDone, "0", readRecords(context.database(), kind, context.query)};
}

Answer readAssociated(RequestContext& context, const ResourceKind& kind)
{
    context.query.require("ASSOCIATEOBJTYPE");
    context.query.require("ASSOCIATEOBJID");
    return readMany(context, kind);
}

Answer readCount(RequestContext& context, const ResourceKind& kind)
{
    const std::int64_t count = countRecords(context.database(), kind, context.query);
    return {kDone, "0", R"({"COUNT":")" + std::to_string(count) + "\"}"};
}

std::string checkedName(const RequestContext& context)
{
    std::string name = context.body.requireText("NAME");
    if (!isObjectName(name)) {
        throw ApiError(kBadName,
                       "The name " + inQuotes(name) + " is not allowed: 1 to 31 letters, digits, \"_\", \"-\" and \".\".");
    }
    return name;
}

std::int64_t newId(RequestContext& context)
{
    const std::string wanted = context.body.text("ID");
    if (wanted.empty()) {
        return context.database().next("object");
    }
    const auto number = decimal(wanted);
    if (!number || *number > kLargestChosenId || std::to_string(*number) != wanted) {
        throw ApiError(kBadParameter, "The ID " + inQuotes(wanted) + " is not a number from 0 to " +
                                          std::to_string(kLargestChosenId) + ".");
    }
    const auto id = static_cast<std::int64_t>(*number);
    if (context.database().execute("UPDATE counter SET next = ? + 1 WHERE name = 'object' AND next <= ?", {id, id}) != 1) {
        throw ApiError(kIdTaken, "The ID " + inQuotes(wanted) +
                                     " is or was taken: IDs never come back. Leave it out to get a free one.");
    }
    return id;
}

AssociationRequest association(RequestContext& context, const ResourceKind& owner, std::initializer_list<ObjectType> types,
                               std::uint64_t type, const std::string& ownerId, const std::string& memberId)
{
    const auto wanted = std::find_if(types.begin(), types.end(),
                                     [type](ObjectType candidate) { return static_cast<std::uint64_t>(candidate) == type; });
    if (wanted == types.end()) {
        throw ApiError(kBadParameter,
                       "Objects of type " + std::to_string(type) + " cannot be associated with a " + owner.name + ".");
    }
    AssociationRequest request;
    request.owner = existingId(context.database(), owner, ownerId);
    request.ownerText = ownerId;
    request.type = *wanted;
    request.memberKind = kindOfType(*wanted);
    request.member = existingId(context.database(), *request.memberKind, memberId);
    request.memberText = memberId;
    return request;
}

}  // namespace

void addReadRoutes(Router& router, const ResourceKind& kind, const std::string& collection, const std::string& single)
{
    const auto bound = [&kind](Answer (*function)(RequestContext&, const ResourceKind&)) {
        return [&kind, function](RequestContext& context) { return function(context, kind); };
    };
    router.add({"GET", collection, bound(readMany)});
    router.add({"GET", collection + "/count", bound(readCount)});
    if (!kind.associations.empty()) {
        router.add({"GET", collection + "/associate", bound(readAssociated)});
    }
    router.add({"GET", single + "/{id}", bound(readOne)});
}

NewObject beginObject(RequestContext& context, const ResourceKind& kind)
{
    checkBodyType(context, kind);
    const std::string name = checkedName(context);
    if (context.database().exists(std::string("SELECT 1 FROM ") + kind.table + " WHERE name = ?", {name})) {
        throw ApiError(kNameTaken, "A " + std::string(kind.name) + " with the name " + inQuotes(name) + " exists already.");
    }
    return {newId(context), name};
}

void checkBodyType(const RequestContext& context, const ResourceKind& kind)
{
    const auto type = context.body.number("TYPE", 65535);
    if (type && *type != static_cast<std::uint64_t>(kind.type)) {
        throw ApiError(kBadParameter, "TYPE " + std::to_string(*type) + " is not the type of a " + kind.name + ".");
    }
}

Answer recordAnswer(RequestContext& context, const ResourceKind& kind, const Value& id)
{
    return {kDone, "0", readRecord(context.database(), kind, id)};
}

Answer removeObject(RequestContext& context, const ResourceKind& kind, std::initializer_list<Obstacle> obstacles)
{
    const Value id = existingId(context.database(), kind, context.id);
    for (const Obstacle& obstacle : obstacles) {
        if (context.database().exists(obstacle.sql, {id})) {
            throw ApiError(obstacle.code, described(kind, context.id) + " " + obstacle.text);
        }
    }
    context.database().execute(std::string("DELETE FROM ") + kind.table + " WHERE id = ?", {id});
    context.exposureChanged = true;
    return {};
}

AssociationRequest associationFromBody(RequestContext& context, const ResourceKind& owner,
                                       std::initializer_list<ObjectType> types)
{
    checkBodyType(context, owner);
    const std::string ownerId = context.body.requireText("ID");
    const std::uint64_t type = context.body.requireNumber("ASSOCIATEOBJTYPE", 65535);
    return association(context, owner, types, type, ownerId, context.body.requireText("ASSOCIATEOBJID"));
}

AssociationRequest associationFromQuery(RequestContext& context, const ResourceKind& owner,
                                        std::initializer_list<ObjectType> types)
{
    const std::string ownerId = context.query.require("ID");
    const std::string type = context.query.require("ASSOCIATEOBJTYPE");
    return association(context, owner, types, decimal(type).value_or(0), ownerId, context.query.require("ASSOCIATEOBJID"));
}

std::string described(const ResourceKind& kind, const std::string& id)
{
    return "The " + std::string(kind.name) + " " + inQuotes(id);
}

const ResourceKind* kindOfType(ObjectType type)
{
    for (const ResourceKind* kind :
         {&lunKind(), &snapshotKind(), &lunGroupKind(), &hostKind(), &hostGroupKind(), &mappingViewKind(), &poolKind()}) {
        if (kind->type == type) {
            return kind;
        }
    }
    return nullptr;
}

}  // namespace brevan::sim
