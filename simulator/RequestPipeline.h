#ifndef BREVAN_SIMULATOR_REQUESTPIPELINE_H
#define BREVAN_SIMULATOR_REQUESTPIPELINE_H

#include "FaultScript.h"
#include "HttpService.h"
#include "Journal.h"
#include "Router.h"

#include <functional>
#include <mutex>
#include <string_view>

namespace brevan::sim {

/// The one way that every request takes, whatever carried it: route, fault, session, transaction, operation, exposure,
/// journal. Any thread; the array works on one request at a time.
class RequestPipeline {
public:
    explicit RequestPipeline(Array& array);

    /// Never throws: what goes wrong is an error reply.
    WireReply handle(const WireRequest& request);

    /// The reply to what is no request, and its place in the journal.
    WireReply refuse(const Refusal& refusal);

    /// Runs `work` as an operation runs: alone, in a transaction, and what it maps is exposed. Exceptions undo it and pass.
    void perform(const std::function<void(RequestContext&)>& work);

    /// Runs `work` alone, outside a transaction.
    void alone(const std::function<void(Array&)>& work);

    /// Makes what the associations say true outside, after a start.
    void exposeAll();

    FaultScript& faults();
    Journal& journal();
    const Router& router() const;

private:
    /// What is known of a request on its way.
    struct Passage {
        JournalEntry entry;
        std::vector<std::pair<std::string, std::string>> headers;
        std::optional<Fault> fault;
    };
    Passage begin(std::uint64_t connection);
    void end(Passage& passage, const WireReply& reply, std::chrono::steady_clock::time_point begin);
    Answer answer(const WireRequest& request, Passage& passage);
    Answer faultInstead(const WireRequest& request, const Fault& fault);
    Answer run(const Handler& handler, RequestContext& context);
    Answer runAll(const Handler& handler, RequestContext& context, std::unique_lock<std::mutex>& lock);
    void followExposure(Database& database);

    std::mutex m_mutex;
    Array& m_array;
    Router m_router;
    FaultScript m_faults;
    Journal m_journal;
};

/// A reply that carries only an error, for what cannot even be a request.
WireReply errorReply(unsigned status, int code, const std::string& text);

}  // namespace brevan::sim

#endif
