#ifndef BREVAN_SIMULATOR_CONTROLPORT_H
#define BREVAN_SIMULATOR_CONTROLPORT_H

#include "HttpService.h"

namespace brevan::sim {

class Link;
class RequestPipeline;

/// The operator's view of the array over plain HTTP, meant for loopback: faults, journal, link and chain. Any thread.
class ControlPort : public HttpService {
public:
    /// Both must live longer.
    ControlPort(RequestPipeline& pipeline, Link& link);

    WireReply answer(const WireRequest& request) override;
    WireReply refuse(const Refusal& refusal) override;

private:
    RequestPipeline& m_pipeline;
    Link& m_link;
};

}  // namespace brevan::sim

#endif
