#include "handlers/ChapSettings.h"

#include "foundation/Operation.h"

#include <RestRequest.h>

namespace brevan {
namespace {

constexpr const char* kNoChap = "0";
constexpr const char* kMutualChap = "2";

bool asksForChap(const IscsiInitiatorMO& initiator)
{
    return initiator.NORMALVERMODE != kNoChap || initiator.DISCOVERYVERMODE != kNoChap;
}

bool isMutual(const IscsiInitiatorMO& initiator)
{
    return initiator.NORMALVERMODE == kMutualChap || initiator.DISCOVERYVERMODE == kMutualChap;
}

void addModes(RestRequest& body, const IscsiInitiatorMO& initiator)
{
    body.BodyAddProperty("USECHAP", "true");
    body.BodyAddProperty("NORMALVERMODE", initiator.NORMALVERMODE);
    body.BodyAddProperty("DISCOVERYVERMODE", initiator.DISCOVERYVERMODE);
}

void addNameAndSecret(RestRequest& body, const IscsiInitiatorMO& initiator)
{
    body.BodyAddProperty("CHAPNAME", initiator.CHAPNAME);
    body.BodyAddProperty("CHAPPASSWORD", initiator.CHAPPASSWORD);
}

void addMutualNameAndSecret(RestRequest& body, const IscsiInitiatorMO& initiator)
{
    body.BodyAddProperty("CHAPNAMEINITATORVERTARGET", initiator.CHAPNAMEINITATORVERTARGET);
    body.BodyAddProperty("CHAPPASSWORDINITATORVERTARGET", initiator.CHAPPASSWORDINITATORVERTARGET);
}

void reportIfEmpty(Operation& operation, const std::string& value, const char* message)
{
    if (value.empty()) {
        operation.report(message);
    }
}

}  // namespace

void addChapOfNew(Operation& operation, RestRequest& body, const IscsiInitiatorMO& wanted)
{
    if (wanted.USECHAP == 0) {
        body.BodyAddProperty("USECHAP", "false");
        return;
    }
    if (asksForChap(wanted)) {
        reportIfEmpty(operation, wanted.CHAPNAME, "ChapName is empty! ");
        reportIfEmpty(operation, wanted.CHAPPASSWORD, "ChapPassword is empty! ");
        addModes(body, wanted);
        addNameAndSecret(body, wanted);
    } else {
        body.BodyAddProperty("USECHAP", "false");
    }
    if (isMutual(wanted)) {
        reportIfEmpty(operation, wanted.CHAPNAMEINITATORVERTARGET, "ChapNameTarget is empty! ");
        reportIfEmpty(operation, wanted.CHAPPASSWORDINITATORVERTARGET, "ChapPasswordTarget is empty! ");
        addMutualNameAndSecret(body, wanted);
    }
}

void addChapOfChange(RestRequest& body, const IscsiInitiatorMO& wanted, const IscsiInitiatorMO& current)
{
    if (wanted.USECHAP == 0 || !asksForChap(wanted)) {
        body.BodyAddProperty("USECHAP", "false");
        return;
    }
    addModes(body, wanted);
    const bool chapInForce = current.USECHAP != 0;
    if (!wanted.CHAPPASSWORD.empty()) {
        addNameAndSecret(body, wanted);
        if (chapInForce) {
            body.BodyAddProperty("CHAPOLDPASSWORD", wanted.CHAPOLDPASSWORD);
        }
    }
    if (isMutual(wanted) && !wanted.CHAPPASSWORDINITATORVERTARGET.empty()) {
        addMutualNameAndSecret(body, wanted);
        if (chapInForce && isMutual(current)) {
            body.BodyAddProperty("CHAPOLDPASSWORDINITATORVERTARGET", wanted.CHAPOLDPASSWORDINITATORVERTARGET);
        }
    }
}

}  // namespace brevan
