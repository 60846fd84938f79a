#ifndef BREVAN_SIMULATOR_INITIATORS_H
#define BREVAN_SIMULATOR_INITIATORS_H

#include "Objects.h"

namespace brevan::sim {

/// What iSCSI and FC initiators have in common: made under an ID that the client knows, bound to one host at the most.

/// PUT "/X/ID": binds a free initiator to a host.
Answer bindInitiator(RequestContext& context, const ResourceKind& kind);

/// Binds it to the host that the body names in "PARENTID"; nothing where it names none.
void bindToParent(RequestContext& context, const ResourceKind& kind, const Value& id);

/// PUT "/X/remove_..._from_host" with the initiator's "ID" in the body.
Answer unbindInitiator(RequestContext& context, const ResourceKind& kind);

/// DELETE of an initiator that no host has.
Answer removeInitiator(RequestContext& context, const ResourceKind& kind);

/// An ApiError (kIdTaken) where there is such an initiator already.
void requireNewInitiator(RequestContext& context, const ResourceKind& kind, const std::string& id);

/// "NAME" of the body: any text, not unique, and empty where the client gives none.
std::string initiatorName(const RequestContext& context);

}  // namespace brevan::sim

#endif
