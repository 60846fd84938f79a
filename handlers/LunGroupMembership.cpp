// Filling and emptying a LUN group: changes that may be repeated, and that end with a result instead of an exception.
#include "handlers/BatchPath.h"
#include "handlers/LunGroupHandlerImpl.h"
#include "handlers/ResourceOperation.h"

using namespace brevan;

namespace brevan {

/// What the four public changes differ in.
struct MembershipChange {
    const char* name;
    const char* objectIdMissing;
    MOType objectType;
    int (CLunGroupHandlerImpl::*tryOnce)(const std::string&, const std::string&, MOType, const std::string&);
    bool (*retries)(int result, unsigned int triesLeft);
    const char* retryLine;
    const char* failedLine;
};

}  // namespace brevan

namespace {

constexpr int kSessionGone = -401;
constexpr int kAlreadyMember = 1077936862;
constexpr int kAlreadyMemberOfGroup = 1077948997;
constexpr int kNotAMember = 1077948996;

/// Adding a LUN is repeated whatever the failure was, unlike the other three changes: meant.
bool retriesAnyFailure(int result, unsigned int triesLeft)
{
    return result != 0 && triesLeft != 0;
}

constexpr MembershipChange kAddLun = {"addLunToLunGroup",
                                      "lunID is empty! ",
                                      MOTYPE_LUN,
                                      &CLunGroupHandlerImpl::addObjToLunGroup,
                                      retriesAnyFailure,
                                      "retry addObjToLunGroup: ",
                                      "addObjToLunGroup failed."};
constexpr MembershipChange kAddSnapshot = {"addSnapshotToLunGroup",
                                           "snapshotID is empty! ",
                                           MOTYPE_SNAPSHOT,
                                           &CLunGroupHandlerImpl::addObjToLunGroup,
                                           CLunGroupHandlerImpl::IsNeedRetry,
                                           "retry addObjToLunGroup: ",
                                           "leave addObjToLunGroup failed."};
constexpr MembershipChange kRemoveLun = {"removeLunFromLunGroup",
                                         "lunID is empty! ",
                                         MOTYPE_LUN,
                                         &CLunGroupHandlerImpl::removeObjFromLunGroup,
                                         CLunGroupHandlerImpl::IsNeedRetry,
                                         "retry removeObjFromLunGroup: ",
                                         "leave removeLunFromLunGroup failed."};
constexpr MembershipChange kRemoveSnapshot = {"removeSnapshotFromLunGroup",
                                              "snapshotID is empty! ",
                                              MOTYPE_SNAPSHOT,
                                              &CLunGroupHandlerImpl::removeObjFromLunGroup,
                                              CLunGroupHandlerImpl::IsNeedRetry,
                                              "retry removeObjFromLunGroup: ",
                                              "leave removeSnapshotFromLunGroup failed."};

/// What the two workers differ in.
struct MembershipTry {
    const char* what;       ///< with the object's kind behind it
    const char* direction;  ///< between the object and the group
    const char* toleratedLine;
    int tolerated[2];
    const char* refusedPrefix;
};

constexpr MembershipTry kAddTry = {"add ",
                                   ") to lun group(",
                                   "the object was already in the lun group, ignore it.",
                                   {kAlreadyMember, kAlreadyMemberOfGroup},
                                   "add obj("};
constexpr MembershipTry kRemoveTry = {
    "remove ", ") from lun group(", "the obj was not in the lun group", {kNotAMember, kNotAMember}, "remove obj ("};

std::string sentence(const MembershipTry& kind, MOType objType, const std::string& objID, const std::string& lunGroupID,
                     const char* outcome)
{
    const char* object = objType == MOTYPE_LUN ? "lun (" : "snapshot (";
    return std::string(kind.what) + object + objID + kind.direction + lunGroupID + outcome;
}

/// One try: the request, and what its outcome means.
template <class Request>
int tryMembership(ResourceOperation&& operation, const MembershipTry& kind, MOType objType, const std::string& objID,
                  const std::string& lunGroupID, Request request)
{
    return perform(operation, [&](ResourceOperation& entered) {
        try {
            request(entered);
            COMMLOG(OS_LOG_INFO, "%s", sentence(kind, objType, objID, lunGroupID, ") success ").c_str());
            return 0;
        } catch (PlimAPIExceptionWithErrCode& refusal) {
            const int code = refusal.getErrCode();
            if (code == kind.tolerated[0] || code == kind.tolerated[1]) {
                COMMLOG(OS_LOG_WARN, "%s", kind.toleratedLine);
                return 0;
            }
            COMMLOG(OS_LOG_WARN, "%s%s) to lungroup(%s) failed., errCode: %d", kind.refusedPrefix, objID.c_str(),
                    lunGroupID.c_str(), code);
            return code;
        } catch (...) {
            COMMLOG(OS_LOG_WARN, "%s", sentence(kind, objType, objID, lunGroupID, ") failed ").c_str());
            return -1;
        }
    });
}

}  // namespace

bool CLunGroupHandlerImpl::IsNeedRetry(int result, unsigned int triesLeft)
{
    return result != 0 && result != kSessionGone && result != kNotAMember && triesLeft != 0;
}

int CLunGroupHandlerImpl::changeMembership(const MembershipChange& change, const std::string& objID,
                                           const std::string& lunGroupID)
{
    return perform(ResourceOperation(change.name, m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!objID.empty(), change.objectIdMissing);
        operation.require(!lunGroupID.empty(), "LunGroup id is empty! ");
        m_retry.refresh(m_deviceManager);
        const FailureMark before;
        unsigned int triesLeft = m_retry.times();
        int result = -1;
        while (true) {
            result = (this->*change.tryOnce)(objID, lunGroupID, change.objectType, change.name);
            if (!change.retries(result, triesLeft)) {
                break;
            }
            before.forgive();  // what counts is how the last try ends
            COMMLOG(OS_LOG_INFO, "%s%u", change.retryLine, triesLeft);
            theClock().sleepMicroseconds(m_retry.pauseMicroseconds());
            --triesLeft;
        }
        if (result == 0) {
            before.forgive();
        } else {
            operation.endFailed(result, change.failedLine);
        }
        return result;
    });
}

void CLunGroupHandlerImpl::addLunToLunGroup(const std::string& lunID, const std::string& lunGroupID)
{
    changeMembership(kAddLun, lunID, lunGroupID);
}

int CLunGroupHandlerImpl::addSnapshotToLunGroup(const std::string& snapshotID, const std::string& lunGroupID)
{
    return changeMembership(kAddSnapshot, snapshotID, lunGroupID);
}

void CLunGroupHandlerImpl::removeLunFromLunGroup(const std::string& lunID, const std::string& lunGroupID)
{
    changeMembership(kRemoveLun, lunID, lunGroupID);
}

int CLunGroupHandlerImpl::removeSnapshotFromLunGroup(const std::string& snapshotID, const std::string& lunGroupID)
{
    return changeMembership(kRemoveSnapshot, snapshotID, lunGroupID);
}

int CLunGroupHandlerImpl::addObjToLunGroup(const std::string& objID, const std::string& lunGroupID, MOType objType,
                                           const std::string& /*callerName*/)
{
    return tryMembership(ResourceOperation("addObjToLunGroup", m_deviceManager), kAddTry, objType, objID, lunGroupID,
                         [&](ResourceOperation& operation) {
                             RestRequest body;
                             body.BodyAddProperty("ID", lunGroupID);
                             body.BodyAddProperty("ASSOCIATEOBJTYPE", objType);
                             body.BodyAddProperty("ASSOCIATEOBJID", objID);
                             operation.post("/lungroup/associate", body);
                         });
}

int CLunGroupHandlerImpl::removeObjFromLunGroup(const std::string& objID, const std::string& lunGroupID, MOType objType,
                                                const std::string& /*callerName*/)
{
    return tryMembership(ResourceOperation("removeObjFromLunGroup", m_deviceManager), kRemoveTry, objType, objID, lunGroupID,
                         [&](ResourceOperation& operation) {
                             operation.remove("/lungroup/associate?ID=" + lunGroupID + "&" + associatedWith(objType, objID));
                         });
}
