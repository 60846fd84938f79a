#include "Contract.h"

#include "Observation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <stdexcept>

namespace brevan::contract {
namespace {

/// The steps before the request.
Steps before(const Steps& all, const std::string& request)
{
    Steps first;
    for (const Step& step : all) {
        if (step.kind == Step::Kind::Request && step.line == request) {
            return first;
        }
        first += step;
    }
    throw std::logic_error("this row sends no such request: " + request);
}

/// The records of the operations that a failure passes, innermost first.
Steps records(const std::vector<std::string>& within, int code)
{
    Steps all;
    for (auto name = within.rbegin(); name != within.rend(); ++name) {
        all += record(*name, code);
    }
    return all;
}

std::vector<std::string> linesOf(const Steps& steps)
{
    std::vector<std::string> lines;
    for (const Step& step : steps) {
        lines.push_back(step.line);
    }
    return lines;
}

bool writes(const Steps& steps, const std::string& kind)
{
    return std::any_of(steps.begin(), steps.end(),
                       [&](const Step& step) { return step.line.compare(0, kind.size(), kind) == 0; });
}

std::string joined(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

}  // namespace

std::string exception(const std::string& message)
{
    return "PlimAPIException Exception:" + message;
}

std::string exception(int code, const std::string& message)
{
    return "PlimAPIExceptionWithErrCode " + std::to_string(code) + " Exception:" + message;
}

std::string unreachable(const std::string& operation)
{
    return exception(unreachableText(operation));
}

std::string refused(const std::string& operation)
{
    return exception(kRefused, refusedText(operation));
}

Operation& Operation::add(const std::string& title, Call call, Steps steps, const std::string& result,
                          const std::string& failure)
{
    m_rows.push_back(Row{m_name, title, std::move(call), std::move(steps), result, failure});
    return *this;
}

Operation& Operation::row(const std::string& title, Call call, Steps steps, const std::string& result)
{
    return add(title, std::move(call), std::move(steps), result);
}

Operation& Operation::succeeds(const std::string& title, Call call, Steps steps, const std::string& result)
{
    add(title, std::move(call), std::move(steps), result);
    m_rows.back().succeeds = true;
    return *this;
}

Operation& Operation::refusal(const std::string& title, Call call, Steps steps, const std::string& result)
{
    add(title, std::move(call), std::move(steps), result);
    m_rows.back().refusesArgument = true;
    return *this;
}

Operation& Operation::refuses(const std::string& message, const Call& call)
{
    refusal(message, call, failed(m_name, "error: " + message + m_name, 1), exception(message + m_name));
    m_rows.back().failure = message + m_name;
    return *this;
}

const Row& Operation::newestSuccess() const
{
    return *std::find_if(m_rows.rbegin(), m_rows.rend(), [](const Row& one) { return one.succeeds; });
}

Operation& Operation::failsAt(const std::string& request, const std::vector<std::string>& within)
{
    const Row whole = newestSuccess();
    const std::string& sender = within.back();
    const Steps first = before(whole.steps, request);
    add("unreachable at " + request, whole.call, {first, sendUnreachable(request, sender), records(within, kUnreachable)},
        unreachable(sender), unreachableText(sender));
    add("refused at " + request, whole.call, {first, sendRefused(request, sender), records(within, kRefused)},
        refused(sender), refusedText(sender));
    return *this;
}

Operation& Operation::endsAt(const std::string& request, const std::vector<std::string>& within, const Steps& closing,
                             const std::string& result)
{
    const Row whole = newestSuccess();
    const std::string& sender = within.back();
    const Steps first = before(whole.steps, request);
    add("unreachable at " + request, whole.call,
        {first, sendUnreachable(request, sender), records(within, kUnreachable), closing}, result, unreachableText(sender));
    add("refused at " + request, whole.call, {first, sendRefused(request, sender), records(within, kRefused), closing},
        result, refusedText(sender));
    return *this;
}

Operation& Operation::withRetries(unsigned int times, unsigned int pauseMicroseconds)
{
    m_rows.back().retryTimes = times;
    m_rows.back().pauseMicroseconds = pauseMicroseconds;
    return *this;
}

std::vector<Row> rowsOf(const Table& table)
{
    std::vector<Row> rows;
    for (const Operation& operation : table) {
        rows.insert(rows.end(), operation.rows().begin(), operation.rows().end());
    }
    return rows;
}

std::vector<Row> rowsAlone(const Table& table)
{
    std::vector<Row> rows = rowsOf(table);
    for (Row& row : rows) {
        row.alone = true;
    }
    return rows;
}

void PrintTo(const Row& row, std::ostream* out)
{
    *out << row.operation << ": " << row.title;
}

TEST_P(Contract, Holds)
{
    const Row& row = GetParam();
    const Observation seen = row.alone ? observeAlone(row) : observe(row);
    EXPECT_EQ(joined(seen.lines), joined(linesOf(row.steps)));
    EXPECT_EQ(seen.result, row.result);
    if (!row.failure.empty() || (writes(row.steps, "record:") && !writes(row.steps, "error:"))) {
        EXPECT_EQ(seen.failure, row.failure);
    }
}

}  // namespace brevan::contract
