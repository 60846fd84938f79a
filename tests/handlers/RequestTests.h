#ifndef BREVAN_TESTS_HANDLERS_REQUESTTESTS_H
#define BREVAN_TESTS_HANDLERS_REQUESTTESTS_H

#include "support/SdkTest.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

// What holds for every request of every handler: suites that each handler's tests instantiate with a table of its requests.

namespace brevan::test {

using Call = std::function<void(CDeviceManagerImpl&)>;

/// One request, and the operation that sends it.
struct RequestRow {
    const char* name;                 ///< of the operation
    std::vector<const char*> around;  ///< operations that called it, outermost first
    std::string request;              ///< the whole line of the recorder
    Call call;                        ///< calls the outermost operation
    const char* logName = nullptr;    ///< where "enter" and "leave" name the operation differently
};

/// One argument that is refused.
struct RefusalRow {
    const char* name;     ///< of the operation
    const char* message;  ///< without the operation's name behind it
    Call call;
};

/// Calls `body` with a handler of the device manager.
template <class Handler, class Body>
Call on(Body body)
{
    return [body](CDeviceManagerImpl& manager) {
        Handler handler(&manager);
        body(handler);
    };
}

inline void PrintTo(const RequestRow& row, std::ostream* out)
{
    *out << row.request;
}

inline void PrintTo(const RefusalRow& row, std::ostream* out)
{
    *out << row.name << " refuses: " << row.message;
}

/// The log of the row's operations, with `inner` in the innermost one; 0: all go well.
Lines logOf(const RequestRow& row, const Lines& inner, int code);

class RequestFixture : public SdkTest, public testing::WithParamInterface<RequestRow> {
protected:
    std::string thrown()
    {
        return thrownBy([this] { GetParam().call(manager); });
    }

    /// Sends the row's request and expects that its answer is taken for none.
    void expectUnusable(const Answer& reply);
};

/// A request that gets no usable reply or an error fails the operation: message, record, exception. Rows: all requests but
/// those whose failure is swallowed.
class FailingRequest : public RequestFixture {};

/// A request whose reply holds no record: the operation goes well. Rows: all that are then their operation's only request.
class PlainRequest : public RequestFixture {};

/// A request for a list of IDs that are then read one by one.
class ListRequest : public RequestFixture {};

/// A create. Its reply must have an ID that is a text.
class CreateRequest : public RequestFixture {};

class RefusedArgument : public SdkTest, public testing::WithParamInterface<RefusalRow> {};

template <class Row>
std::string nameOfRow(const testing::TestParamInfo<Row>& tested)
{
    return std::string(tested.param.name) + "_" + std::to_string(tested.index);
}

#define BREVAN_INSTANTIATE(Suite, rows) \
    INSTANTIATE_TEST_SUITE_P(Rows, Suite, testing::ValuesIn(rows), nameOfRow<Suite::ParamType>)

}  // namespace brevan::test

#endif
