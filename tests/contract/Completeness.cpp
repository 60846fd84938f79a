#include "Completeness.h"

#include <algorithm>
#include <map>
#include <set>

namespace brevan::contract {
namespace {

using Rows = std::vector<const Row*>;

/// Parameters that are not checked: they are recorded or compared as they are.
const std::set<std::string> kUnchecked = {
    "attachLunToHost hostIP", "attachSnapshotToHost hostIP",         "GetDiskPath id",
    "GetDiskPath wwn",        "scanSnapshotBeforeDetach snapshotId",
};

/// A request without what differs from object to object: mode and path up to the query or the body, without digits.
std::string stageOf(const std::string& request)
{
    const std::size_t path = request.find(' ') + 1;
    std::string stage = request.substr(0, request.find_first_of("? ", path));
    stage.erase(std::remove_if(stage.begin(), stage.end(), [](char c) { return c >= '0' && c <= '9'; }), stage.end());
    return stage;
}

bool isRefusal(const Answer& answer)
{
    return answer.reply.find(R"("error":{"code":)") != std::string::npos &&
           answer.reply.find(R"("error":{"code":0,)") == std::string::npos;
}

template <class Condition>
std::set<std::string> stages(const Rows& rows, Condition condition)
{
    std::set<std::string> found;
    for (const Row* row : rows) {
        for (const Step& step : row->steps) {
            if (step.kind == Step::Kind::Request && condition(*row, step.answer)) {
                found.insert(stageOf(step.line));
            }
        }
    }
    return found;
}

void addMissing(std::vector<std::string>& gaps, const std::set<std::string>& wanted, const std::set<std::string>& shown,
                const std::string& what)
{
    for (const std::string& stage : wanted) {
        if (shown.count(stage) == 0) {
            gaps.push_back(what + stage);
        }
    }
}

void addStageGaps(std::vector<std::string>& gaps, const std::string& name, const Rows& rows)
{
    const auto sent = stages(rows, [](const Row& row, const Answer&) { return row.succeeds; });
    const auto unreachable = stages(rows, [](const Row&, const Answer& answer) { return answer.sendResult != 0; });
    const auto refused = stages(rows, [](const Row&, const Answer& answer) { return isRefusal(answer); });
    addMissing(gaps, sent, unreachable, name + " is never unreachable at ");
    addMissing(gaps, sent, refused, name + " is never refused at ");
}

/// Texts, and records to be created or changed, must be given; queries and numbers have no wrong value.
bool isChecked(const std::string& operation, const std::string& parameter)
{
    const std::string name = parameter.substr(parameter.rfind(' ') + 1);
    const bool text = parameter.find("std::string&") != std::string::npos;
    const bool record = parameter.find("MO& ") != std::string::npos;
    return (text || record) && kUnchecked.count(operation + " " + name) == 0;
}

void addArgumentGaps(std::vector<std::string>& gaps, const HeaderOperation& operation, const Rows& rows)
{
    const auto checked = std::count_if(operation.parameters.begin(), operation.parameters.end(),
                                       [&](const std::string& one) { return isChecked(operation.name, one); });
    const auto refusing = std::count_if(rows.begin(), rows.end(), [](const Row* row) { return row->refusesArgument; });
    if (refusing < checked) {
        gaps.push_back(operation.name + " refuses " + std::to_string(refusing) + " arguments of " + std::to_string(checked));
    }
}

}  // namespace

std::vector<std::string> gaps(const std::vector<HeaderOperation>& operations, const Rows& rows)
{
    std::map<std::string, Rows> byOperation;
    for (const Row* row : rows) {
        byOperation[row->operation].push_back(row);
    }
    std::vector<std::string> found;
    for (const HeaderOperation& operation : operations) {
        const Rows& own = byOperation[operation.name];
        if (std::none_of(own.begin(), own.end(), [](const Row* row) { return row->succeeds; })) {
            found.push_back(operation.name + " has no row that succeeds");
        }
        addStageGaps(found, operation.name, own);
        addArgumentGaps(found, operation, own);
        byOperation.erase(operation.name);
    }
    for (const auto& [name, unused] : byOperation) {
        found.push_back(name + " is no operation");
    }
    return found;
}

}  // namespace brevan::contract
