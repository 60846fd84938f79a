#include "ReadBack.h"

namespace brevan::contract {

Operation readsBack(const ReadBack& its)
{
    const Steps notYet = failed(its.read, sendRefused(its.request, its.read, kNotYetReadable), kNotYetReadable);
    const Steps again = {"info: " + its.retryLine, "sleep: 70000"};
    const std::string notReadable = exception(kNotYetReadable, refusedText(its.read, kNotYetReadable));
    return Operation(its.create)
        .row("not yet readable twice, then readable", its.call,
             done(its.create, {its.created, notYet, again, notYet, again, its.found}), its.result)
        .withRetries(2, 70000)
        .row("never readable: retryTimes + 1 reads", its.call,
             failed(its.create, {its.created, notYet, again, notYet}, kNotYetReadable), notReadable)
        .withRetries(1, 70000)
        .row("no retries", its.call, failed(its.create, {its.created, notYet}, kNotYetReadable), notReadable)
        .withRetries(0, 70000);
}

}  // namespace brevan::contract
