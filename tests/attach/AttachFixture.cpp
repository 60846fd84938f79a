#include "attach/AttachFixture.h"

#include <algorithm>

namespace brevan::test {
namespace {

/// Two operations have another name in their lines than in their records.
std::string logName(const std::string& operation)
{
    return operation == "getObjNOFromLunGroup"             ? "getLunNOFromLunGroup"
           : operation == "removeAssociateFromMappingView" ? "removeAssociateFromMaskingView"
                                                           : operation;
}

/// Writes the log of nested operations from the paths of their requests.
class NestedLog {
public:
    void enter(const std::vector<std::string>& within)
    {
        const auto common = std::mismatch(m_open.begin(), m_open.end(), within.begin(), within.end());
        std::size_t keep = static_cast<std::size_t>(common.first - m_open.begin());
        keep = std::min(keep, within.size() - 1);
        closeDownTo(keep, 0);
        for (; keep < within.size(); ++keep) {
            m_open.push_back(within[keep]);
            add("info: enter " + logName(within[keep]) + " successfully!");
        }
    }

    void closeDownTo(std::size_t depth, int code)
    {
        for (; m_open.size() > depth; m_open.pop_back()) {
            add("record: " + m_open.back() + " " + std::to_string(code));
            if (code == 0) {
                add("info: leave " + logName(m_open.back()) + " successfully!");
            }
        }
    }

    void add(const std::string& line) { lines.push_back(line); }

    Lines lines;

private:
    std::vector<std::string> m_open;
};

Lines framed(const std::string& operation, const Lines& between, const Lines& end)
{
    return joined({{"info: enter " + operation + " successfully!"}, between, end});
}

}  // namespace

std::string Failing::line(const std::string& operation) const
{
    return answer.sendResult != 0
               ? "url error or internet error " + operation
               : "get error response, error code:" + std::to_string(code) + ", description:busy " + operation;
}

std::vector<Failing> failures()
{
    return {{refusal(50331651, "busy"), 50331651}, {sendFailure(1007), 1007}};
}

Lines logOf(const Call& call)
{
    NestedLog log;
    for (const Step& step : call) {
        log.enter(step.within);
        for (const std::string& line : step.says) {
            log.add(line);
        }
    }
    log.closeDownTo(0, 0);
    return log.lines;
}

Lines logOf(const Call& call, std::size_t failingStep, const Failing& failing)
{
    NestedLog log;
    for (std::size_t i = 0; i <= failingStep; ++i) {
        log.enter(call[i].within);
    }
    log.add("error: " + failing.line(call[failingStep].within.back()));
    log.closeDownTo(0, failing.code);
    return log.lines;
}

Lines joined(std::initializer_list<Lines> parts)
{
    Lines all;
    for (const Lines& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

Lines closed(const std::string& operation, const Lines& between)
{
    return framed(operation, between, {"info: leave " + operation + " successfully!", "record: " + operation + " 0"});
}

Lines closedAfterFailure(const std::string& operation, const Lines& between)
{
    return closed(operation, joined({between, {"record: " + operation + " 1"}}));
}

Lines endedEarly(const std::string& operation, const Lines& between, const std::string& error)
{
    return framed(operation, between, {"error: " + error + operation, "record: " + operation + " 1"});
}

const VolumeKind& lunKind()
{
    static const VolumeKind kind = {
        "lun",
        MOTYPE_LUN,
        "getLun",
        "/lun/",
        "attachLunToHost",
        "detachLunFromHost",
        "lunID is empty! ",
        "The lunID is not valid! ",
        {HANDLER_LUN, HANDLER_LUNGROUP, HANDLER_ISCSI_INITIATOR, HANDLER_HOST, HANDLER_HOSTGROUP, HANDLER_MAPPINGVIEW},
        {HANDLER_LUN, HANDLER_HOSTGROUP, HANDLER_LUNGROUP, HANDLER_HOST, HANDLER_MAPPINGVIEW, HANDLER_ISCSI_INITIATOR}};
    return kind;
}

const VolumeKind& snapshotKind()
{
    static const VolumeKind kind = {
        "snapshot",
        MOTYPE_SNAPSHOT,
        "getSnapshot",
        "/SNAPSHOT/",
        "attachSnapshotToHost",
        "detachSnapshotFromHost",
        "snapshotID is empty! ",
        "The snapshotID is not valid! ",
        {HANDLER_SNAPSHOT, HANDLER_LUNGROUP, HANDLER_ISCSI_INITIATOR, HANDLER_HOST, HANDLER_MAPPINGVIEW, HANDLER_HOSTGROUP},
        {HANDLER_MAPPINGVIEW, HANDLER_SNAPSHOT, HANDLER_HOSTGROUP, HANDLER_HOST, HANDLER_ISCSI_INITIATOR, HANDLER_LUNGROUP}};
    return kind;
}

const char* missingHandlerText(HANDLERTYPE type)
{
    switch (static_cast<int>(type)) {
        case HANDLER_LUN:
            return "get LunHandler fail! ";
        case HANDLER_LUNGROUP:
            return "get LunGroupHandler fail! ";
        case HANDLER_HOST:
            return "get HostHandler fail! ";
        case HANDLER_HOSTGROUP:
            return "get HostGroupHandler fail! ";
        case HANDLER_MAPPINGVIEW:
            return "get MappingViewHandler fail! ";
        case HANDLER_ISCSI_INITIATOR:
            return "get IscsiInitiatorHandler fail! ";
        default:
            return "get SnapshotHandler fail! ";
    }
}

Lines FlowTest::script(const Flow& flow)
{
    Lines log;
    for (const Call& call : flow) {
        for (const Step& step : call) {
            expect(step.request, answer(step.data));
        }
        log = joined({log, logOf(call)});
    }
    return log;
}

Lines FlowTest::scriptUpTo(const Flow& flow, std::size_t call, std::size_t step, const Failing& failing)
{
    const Lines before = script(Flow(flow.begin(), flow.begin() + static_cast<std::ptrdiff_t>(call)));
    for (std::size_t i = 0; i < step; ++i) {
        expect(flow[call][i].request, answer(flow[call][i].data));
    }
    expect(flow[call][step].request, failing.answer);
    return joined({before, logOf(flow[call], step, failing)});
}

int FlowTest::attach(const std::string& id, const std::string& initiator, const std::string& ip)
{
    return kind.isLun() ? handler.attachLunToHost(id, initiator, ip) : handler.attachSnapshotToHost(id, initiator, ip);
}

int FlowTest::detach(const std::string& initiator, const std::string& id)
{
    return kind.isLun() ? handler.detachLunFromHost(id, initiator) : handler.detachSnapshotFromHost(id, initiator);
}

void FlowTest::failEachStep(const std::string& operation, const Flow& flow, const std::set<std::string>& tolerated,
                            const std::function<int()>& run)
{
    for (std::size_t call = 0; call < flow.size(); ++call) {
        if (tolerated.count(flow[call].front().within.front()) != 0) {
            continue;
        }
        for (std::size_t step = 0; step < flow[call].size(); ++step) {
            for (const Failing& failing : failures()) {
                SCOPED_TRACE(flow[call][step].request + " fails with " + std::to_string(failing.code));
                const Lines log = scriptUpTo(flow, call, step, failing);
                EXPECT_EQ(run(), 0);
                checkFailure(operation, log, flow[call][step], failing);
            }
        }
    }
}

void FlowTest::checkFailure(const std::string& operation, const Lines& log, const Step& step, const Failing& failing)
{
    EXPECT_EQ(newLog(), closedAfterFailure(operation, log));
    EXPECT_EQ(lastFailure().operation, step.within.back());
    EXPECT_EQ(lastFailure().code, failing.code);
    EXPECT_EQ(lastFailure().text, failing.line(step.within.back()));
    recorder.verify();
}

}  // namespace brevan::test
