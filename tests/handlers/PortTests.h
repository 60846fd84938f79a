#ifndef BREVAN_TESTS_HANDLERS_PORTTESTS_H
#define BREVAN_TESTS_HANDLERS_PORTTESTS_H

#include "RecordTests.h"

namespace brevan::test {

/// What the handlers of the three kinds of ports differ in.
template <class Handler, class Port, class Query>
struct PortKind {
    using PortRecord = Port;
    using PortQuery = Query;

    const char* readName;
    const char* batchName;
    std::string path;  ///< of the list, up to and including its "?" exclusive
    const char* idMissing;
    const char* record;
    Port (Handler::*read)(const std::string& id);
    std::vector<Port> (Handler::*readBatch)(Query& query);

    RequestRow readRow(const std::string& id = "7") const
    {
        const auto member = read;
        return {readName, {}, "GET " + path + "/" + id, on<Handler>([member, id](auto& handler) { (handler.*member)(id); })};
    }

    RequestRow batchRow(const std::string& query, const Query& asked) const
    {
        const auto member = readBatch;
        return {batchName, {}, "GET " + path + "?" + query, on<Handler>([member, asked](auto& handler) {
                    Query copy = asked;
                    (handler.*member)(copy);
                })};
    }

    /// The reads by ID and by every sort of query.
    std::vector<RequestRow> requests() const
    {
        Port named;
        named.NAME = "p1";
        Port logical;
        logical.LOGICTYPE = 0;
        Port all = named;
        all.ID = "1";
        all.LOGICTYPE = 4294967295U;
        all.LOCATION = "no condition";
        all.HEALTHSTATUS = all.RUNNINGSTATUS = 1;
        return {readRow(),
                batchRow("", Query()),
                batchRow("", Query(Port(), 10, 0)),
                batchRow("filter=NAME:p1&", Query(named, 0, 0)),
                batchRow("filter=LOGICTYPE:0&", Query(logical, 0, 0)),
                batchRow("range=[0-100]", Query(Port(), 0, 100)),
                batchRow("filter=ID:1 and NAME:p1 and LOGICTYPE:4294967295&range=[10-15]", Query(all, 10, 5))};
    }

    std::vector<RefusalRow> refusals() const { return {{readName, idMissing, readRow("").call}}; }

    /// Both reads take every field from their reply.
    std::vector<RecordRow> records() const
    {
        const RequestRow batch = batchRow("", Query());
        return {{readName, readRow().request, record, {}, readRow().call},
                {batchName, batch.request, record, {}, batch.call}};
    }

    Port portOf(CDeviceManagerImpl& manager) const
    {
        Recorder::instance().expectRequest(readRow().request, answer(record));
        return (Handler(&manager).*read)("7");
    }

    std::vector<Port> portsOf(CDeviceManagerImpl& manager, const std::string& data) const
    {
        Recorder::instance().expectRequest(batchRow("", Query()).request, answer(data));
        Query query;
        return (Handler(&manager).*readBatch)(query);
    }
};

/// A list of ports, by their IDs and names.
struct PortListRow {
    const char* name;
    std::function<std::vector<std::string>(CDeviceManagerImpl&, const std::string& data)> idsAndNames;
};

inline void PrintTo(const PortListRow& row, std::ostream* out)
{
    *out << row.name;
}

template <class Kind>
PortListRow portList(const Kind& kind)
{
    return {kind.batchName, [kind](CDeviceManagerImpl& manager, const std::string& data) {
                std::vector<std::string> result;
                for (const auto& port : kind.portsOf(manager, data)) {
                    result.push_back(port.ID + " " + port.NAME);
                }
                return result;
            }};
}

class PortList : public SdkTest, public testing::WithParamInterface<PortListRow> {};

// The rows of all suites of one kind of ports
#define BREVAN_INSTANTIATE_PORT(kind)                       \
    BREVAN_INSTANTIATE(FailingRequest, (kind).requests());  \
    BREVAN_INSTANTIATE(PlainRequest, (kind).requests());    \
    BREVAN_INSTANTIATE(RefusedArgument, (kind).refusals()); \
    BREVAN_INSTANTIATE(RecordReply, (kind).records());      \
    INSTANTIATE_TEST_SUITE_P(Rows, PortList, testing::Values(portList(kind)))

}  // namespace brevan::test

#endif
