#ifndef BREVAN_SIMULATOR_OBJECTS_H
#define BREVAN_SIMULATOR_OBJECTS_H

#include "ResourceKind.h"
#include "Router.h"

#include <initializer_list>
#include <string>

namespace brevan::sim {

/// What creating, reading and removing have in common for all kinds of objects.

/// GET of one object, of a list, of the objects associated with another one, and of counts. `collection`: "/lun".
/// `single`: the path before the ID, which is not always the collection's own ("/SNAPSHOT").
void addReadRoutes(Router& router, const ResourceKind& kind, const std::string& collection, const std::string& single);

/// ID and name for a new object, from a create request. The name is free, the ID never belonged to another object.
struct NewObject {
    std::int64_t id = 0;
    std::string name;
};
NewObject beginObject(RequestContext& context, const ResourceKind& kind);

/// An ApiError (kBadParameter) unless the body's "TYPE" is absent or the kind's own.
void checkBodyType(const RequestContext& context, const ResourceKind& kind);

/// The whole record as the answer.
Answer recordAnswer(RequestContext& context, const ResourceKind& kind, const Value& id);

/// Something that keeps an object from being removed: a query with the object's ID as its parameter that has a row.
struct Obstacle {
    const char* sql;
    int code;
    const char* text;  ///< behind "The LUN 7 "
};
Answer removeObject(RequestContext& context, const ResourceKind& kind, std::initializer_list<Obstacle> obstacles);

/// A member and the object that it belongs to or shall belong to: "ID", "ASSOCIATEOBJTYPE" and "ASSOCIATEOBJID".
struct AssociationRequest {
    Value owner;
    std::string ownerText;
    ObjectType type = ObjectType::kNone;
    const ResourceKind* memberKind = nullptr;
    Value member;
    std::string memberText;
};
/// Both objects exist, and the member is of one of the `types`; otherwise an ApiError.
AssociationRequest associationFromBody(RequestContext& context, const ResourceKind& owner,
                                       std::initializer_list<ObjectType> types);
AssociationRequest associationFromQuery(RequestContext& context, const ResourceKind& owner,
                                        std::initializer_list<ObjectType> types);

/// "The LUN '7'", for texts.
std::string described(const ResourceKind& kind, const std::string& id);

void addSessionRoutes(Router& router);
void addPoolRoutes(Router& router);
void addLunRoutes(Router& router);
void addSnapshotRoutes(Router& router);
void addLunGroupRoutes(Router& router);
void addHostRoutes(Router& router);
void addHostGroupRoutes(Router& router);
void addMappingViewRoutes(Router& router);
void addIscsiInitiatorRoutes(Router& router);
void addFcInitiatorRoutes(Router& router);
void addPortRoutes(Router& router);

}  // namespace brevan::sim

#endif
