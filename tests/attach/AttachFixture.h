#ifndef BREVAN_TESTS_ATTACH_ATTACHFIXTURE_H
#define BREVAN_TESTS_ATTACH_ATTACHFIXTURE_H

#include "attach/DiskAttachHandlerImpl.h"
#include "support/SdkTest.h"

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <set>
#include <string>
#include <vector>

namespace brevan::test {

/// One request, and within which operations of the handlers it is sent, the outermost first.
struct Step {
    std::vector<std::string> within;
    std::string request;
    std::string data;  ///< of the answer
    Lines says = {};   ///< what the innermost operation logs after the answer
};

/// The requests of one operation of a handler. A request that does not stand deeper than the one before begins its innermost
/// operation anew.
using Call = std::vector<Step>;

/// What an attach or a detach does to the array.
using Flow = std::vector<Call>;

/// A way in which a request fails.
struct Failing {
    Answer answer;
    int code;

    std::string line(const std::string& operation) const;
};

/// An array that is busy, and one that does not answer.
std::vector<Failing> failures();

/// What a call logs; with `failing`, up to the failure of that step, which every operation around it passes on.
Lines logOf(const Call& call);
Lines logOf(const Call& call, std::size_t failingStep, const Failing& failing);

Lines joined(std::initializer_list<Lines> parts);

/// How an attach or detach closes: after all went well, after a failure that its result hides, and early.
Lines closed(const std::string& operation, const Lines& between);
Lines closedAfterFailure(const std::string& operation, const Lines& between);
Lines endedEarly(const std::string& operation, const Lines& between, const std::string& error);

/// What differs between the flows for LUNs and for snapshots.
struct VolumeKind {
    const char* word;  ///< in paths and operation names
    int type;
    const char* read;
    const char* readPath;
    const char* attach;
    const char* detach;
    const char* idMissing;
    const char* idInvalid;
    std::vector<HANDLERTYPE> attachHandlers;
    std::vector<HANDLERTYPE> detachHandlers;

    bool isLun() const { return type == MOTYPE_LUN; }
    std::string capital() const { return isLun() ? "Lun" : "Snapshot"; }
};

const VolumeKind& lunKind();
const VolumeKind& snapshotKind();
const char* missingHandlerText(HANDLERTYPE type);

/// An attach or detach of LUN or snapshot 7 through the real handlers.
class FlowTest : public SdkTest, public testing::WithParamInterface<VolumeKind> {
protected:
    const VolumeKind& kind = GetParam();
    CDiskAttachHandlerImpl handler{&manager};

    /// Scripts the calls and returns what they log.
    Lines script(const Flow& flow);

    /// The same, but the given step of the given call fails and nothing comes after it.
    Lines scriptUpTo(const Flow& flow, std::size_t call, std::size_t step, const Failing& failing);

    int attach(const std::string& id = "7", const std::string& initiator = "iqn", const std::string& ip = "10.0.0.5");
    int detach(const std::string& initiator, const std::string& id = "7");

    /// Runs `flow` once for each way in which each of its requests can fail, save those of the `tolerated` operations: the
    /// result is 0 all the same, the failure stands in logs and lastFailure().
    void failEachStep(const std::string& operation, const Flow& flow, const std::set<std::string>& tolerated,
                      const std::function<int()>& run);

private:
    void checkFailure(const std::string& operation, const Lines& log, const Step& step, const Failing& failing);
};

}  // namespace brevan::test

#endif
