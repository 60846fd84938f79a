#ifndef BREVAN_HANDLERS_CHAPSETTINGS_H
#define BREVAN_HANDLERS_CHAPSETTINGS_H

#include <brevan/InitiatorRecords.h>

class RestRequest;

namespace brevan {

class Operation;

/// The CHAP part of a create. Names and secrets that are missing are reported in the logs and left to the array to refuse.
void addChapOfNew(Operation& operation, RestRequest& body, const IscsiInitiatorMO& wanted);

/// The CHAP part of a change: a secret only where there is a new one, with the old one only where the array holds one.
void addChapOfChange(RestRequest& body, const IscsiInitiatorMO& wanted, const IscsiInitiatorMO& current);

}  // namespace brevan

#endif
