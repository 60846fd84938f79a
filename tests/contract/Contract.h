#ifndef BREVAN_TESTS_CONTRACT_CONTRACT_H
#define BREVAN_TESTS_CONTRACT_CONTRACT_H

#include "Records.h"
#include "Sdk.h"
#include "Steps.h"

#include <gtest/gtest.h>

#include <functional>
#include <iosfwd>
#include <string>
#include <type_traits>
#include <vector>

// What every operation of the library promises, as tables: a call, everything that the library then does, in order, and what the
// caller gets. Only the public headers are used; the library is the shared one, and the recorder takes the place of the transport and
// of the log library under it.

namespace brevan::contract {

/// Calls an operation and tells its result as text: "" where it has none.
class Call {
public:
    template <class Body>
    Call(Body body) : m_call([body](Sdk& sdk) mutable { return resultOf(body, sdk); })
    {
    }

    std::string operator()(Sdk& sdk) const { return m_call(sdk); }

private:
    template <class Body>
    static std::string resultOf(Body& body, Sdk& sdk)
    {
        if constexpr (std::is_void_v<std::invoke_result_t<Body, Sdk&>>) {
            body(sdk);
            return "";
        } else {
            return show(body(sdk));
        }
    }

    std::function<std::string(Sdk&)> m_call;
};

/// One row of a table.
struct Row {
    std::string operation;
    std::string title;
    Call call;
    Steps steps;         ///< all that happens, in order
    std::string result;  ///< the call's, or the exception

    /// The text of brevan::lastFailure(). Where it is not given: none, unless an error line is written.
    std::string failure{};

    unsigned int retryTimes = 1;
    unsigned int pauseMicroseconds = 500000;
    bool refusesArgument = false;
    bool succeeds = false;
    bool alone = false;  ///< in a process of its own, because it depends on or changes what a process never forgets
};

/// The rows of one operation.
class Operation {
public:
    explicit Operation(std::string name) : m_name(std::move(name)) {}

    /// The operation goes well. The first of these rows shows all its requests.
    Operation& succeeds(const std::string& title, Call call, Steps steps, const std::string& result = "");

    /// An argument check: the message and the operation's name are logged and thrown, nothing is sent.
    Operation& refuses(const std::string& message, const Call& call);

    /// The newest succeeds() above, but this request gets no usable reply, or an error of the array (two rows). `within`: the operations
    /// that fail by that, outermost first. The innermost one is named in the message; each writes a record, none a leave line.
    Operation& failsAt(const std::string& request, const std::vector<std::string>& within);

    /// The same, but what fails is not passed on: after the records come these steps, and the call has this result.
    Operation& endsAt(const std::string& request, const std::vector<std::string>& within, const Steps& closing,
                      const std::string& result);

    /// Anything else, in full.
    Operation& row(const std::string& title, Call call, Steps steps, const std::string& result);

    /// An argument check that does not follow the rule of refuses().
    Operation& refusal(const std::string& title, Call call, Steps steps, const std::string& result);

    /// The retry settings of the newest row.
    Operation& withRetries(unsigned int times, unsigned int pauseMicroseconds);

    const std::string& name() const { return m_name; }
    const std::vector<Row>& rows() const { return m_rows; }

private:
    Operation& add(const std::string& title, Call call, Steps steps, const std::string& result,
                   const std::string& failure = "");
    const Row& newestSuccess() const;

    std::string m_name;
    std::vector<Row> m_rows;
};

using Table = std::vector<Operation>;

std::vector<Row> rowsOf(const Table& table);

/// The same, each in a process of its own.
std::vector<Row> rowsAlone(const Table& table);

void PrintTo(const Row& row, std::ostream* out);

/// What a call that fails throws, as text.
std::string unreachable(const std::string& operation);
std::string refused(const std::string& operation);
std::string exception(const std::string& message);
std::string exception(int code, const std::string& message);

class Contract : public testing::TestWithParam<Row> {};

#define BREVAN_CONTRACT(Name, rows)                                                                                   \
    INSTANTIATE_TEST_SUITE_P(Name, Contract, testing::ValuesIn(rows), [](const testing::TestParamInfo<Row>& tested) { \
        return tested.param.operation + "_" + std::to_string(tested.index);                                           \
    })

Table lunContract();
Table lunGroupContract();
Table lunGroupMembershipContract();
Table snapshotContract();
Table hostContract();
Table hostGroupContract();
Table mappingViewContract();
Table iscsiInitiatorContract();
Table fcInitiatorContract();
Table portContract();
Table sessionContract();
Table handlerContract();
Table attachContract();
Table detachContract();
Table lunScanContract();
Table snapshotScanContract();
Table sharedRescanContract();
Table diskPathContract();

/// All of them.
Table wholeContract();

}  // namespace brevan::contract

#endif
