#ifndef BREVAN_FOUNDATION_OPERATION_H
#define BREVAN_FOUNDATION_OPERATION_H

#include <sys/time.h>

#include <string>
#include <type_traits>

namespace brevan {

/// What the logs say of an operation. Most have just a name; what deviates is set where the operation stands.
struct OperationStyle {
    const char* name;                 ///< in messages and in the interface record
    const char* enterLine = nullptr;  ///< null: "enter " logName " successfully!"; empty: none
    const char* leaveLine = nullptr;  ///< null: "leave " logName " successfully!"; empty: none
    const char* logName = nullptr;    ///< null: name
    bool leaveBeforeRecord = false;
    bool recorded = true;  ///< false: writes no interface record at all
};

/// Thrown while a reply is read that has the wrong shape; the operation turns it into the failure that callers know.
struct UnusableReply {};

/// One public operation while it runs: it enters, fails or goes well, and writes its lines and its record. Run it by
/// perform().
class Operation {
public:
    Operation(const char* name);             // NOLINT(google-explicit-constructor): an operation is mostly just its name
    Operation(const OperationStyle& style);  // NOLINT(google-explicit-constructor)
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
    ~Operation();

    const char* name() const { return m_style.name; }

    void enter();

    /// Ends with the record and the "leave" line, unless it has ended already.
    void succeed();

    /// A check of an argument: where it does not hold, the operation fails with the message and its name.
    void require(bool holds, const char* message);

    /// Ends as failed: error line, record, exception. The message gets the operation's name behind it.
    [[noreturn]] void refuse(const std::string& message);
    [[noreturn]] void failTransport(int sendResult);
    [[noreturn]] void failResponse(int code, const std::string& description);

    /// As refuse, but leaves the record to whoever catches the exception.
    [[noreturn]] void raise(const std::string& message);

    /// Ends as failed without an exception: the caller returns a result. The line is written as it stands.
    void endFailed(int code, const std::string& line);

    /// The same, the message with the operation's name behind it and code 1.
    void endRefused(const char* message);

    /// Ends as failed with the record alone: what went wrong inside has been said.
    void endRecorded(int code);

    /// Keeps for lastFailure() what went wrong, where the logs say it in other words.
    void note(const std::string& text, const char* advice) const;

    /// Ends without line or record: the operation says by itself all that it has to say.
    void endSilently();

    /// Writes an error line with the operation's name and a failed record, and goes on.
    void report(const std::string& message);

    void record(int code);

    /// For a failure that is passing: writes the record if there is none yet and throws what callers may see.
    [[noreturn]] void passOn();

private:
    [[noreturn]] void translate();
    [[noreturn]] void failWithoutMemory();
    [[noreturn]] void failUnexpectedly(const std::string& what);
    void noteLine(int code, const std::string& message) const;
    void leave() const;
    void line(const char* custom, const char* word) const;

    OperationStyle m_style;
    timeval m_start{};
    bool m_ended = false;
};

// Runs `body(operation)` up to the operation's good end. Functions of their own, so that a record is made where the caller wants
// it: a variable in a try block would be moved there.

template <class OperationType, class Body, class Result = std::invoke_result_t<Body, OperationType&>>
std::enable_if_t<!std::is_void_v<Result>, Result> runToGoodEnd(OperationType& operation, Body&& body)
{
    Result result = body(operation);
    operation.succeed();
    return result;
}

template <class OperationType, class Body, class Result = std::invoke_result_t<Body, OperationType&>>
std::enable_if_t<std::is_void_v<Result>> runToGoodEnd(OperationType& operation, Body&& body)
{
    body(operation);
    operation.succeed();
}

/// Runs `body(operation)` as that operation. Exceptions of other types than the public ones are turned into them.
template <class OperationType, class Body>
std::invoke_result_t<Body, OperationType&> perform(OperationType&& operation, Body&& body)
{
    operation.enter();
    try {
        return runToGoodEnd(operation, body);
    } catch (...) {
        operation.passOn();
    }
}

/// The same for an operation that never throws: where it would, it returns `otherwise`.
template <class OperationType, class Result, class Body>
Result performQuietly(OperationType&& operation, Result otherwise, Body&& body) noexcept
{
    try {
        return perform(operation, body);
    } catch (...) {
        return otherwise;
    }
}

}  // namespace brevan

#endif
