#include "foundation/Operation.h"

#include "foundation/Clock.h"
#include "foundation/FailureState.h"
#include "foundation/InterfaceLog.h"
#include "foundation/RunLog.h"

#include <brevan/Errors.h>
#include <brevan/LastFailure.h>

#include <RestRequest.h>

#include <new>

namespace brevan {

Operation::Operation(const char* name) : Operation(OperationStyle{name}) {}

Operation::Operation(const OperationStyle& style) : m_style(style)
{
    if (m_style.logName == nullptr) {
        m_style.logName = m_style.name;
    }
    FailureState::enterOperation();
}

Operation::~Operation()
{
    FailureState::leaveOperation();
}

void Operation::line(const char* custom, const char* word) const
{
    if (custom == nullptr) {
        logParts(OS_LOG_INFO, {word, " ", m_style.logName, " successfully!"});
    } else if (*custom != '\0') {
        logParts(OS_LOG_INFO, {custom});
    }
}

void Operation::enter()
{
    line(m_style.enterLine, "enter");
    m_start = theClock().now();
}

void Operation::leave() const
{
    line(m_style.leaveLine, "leave");
}

void Operation::succeed()
{
    if (m_ended) {
        return;
    }
    if (m_style.leaveBeforeRecord) {
        leave();
        record(FAILURE_NONE);
    } else {
        record(FAILURE_NONE);
        leave();
    }
    m_ended = true;
}

void Operation::record(int code)
{
    if (m_style.recorded) {
        writeInterfaceRecord(m_style.name, m_start, code);
    }
}

void Operation::noteLine(int code, const std::string& message) const
{
    COMMLOG(OS_LOG_ERROR, "%s", message.c_str());
    FailureState::note(m_style.name, code, message);
}

void Operation::require(bool holds, const char* message)
{
    if (!holds) {
        refuse(message);
    }
}

void Operation::endFailed(int code, const std::string& line)
{
    noteLine(code, line);
    record(code);
    m_ended = true;
}

void Operation::endRefused(const char* message)
{
    endFailed(FAILURE_REFUSED, std::string(message) + m_style.name);
}

void Operation::endRecorded(int code)
{
    record(code);
    m_ended = true;
}

void Operation::note(const std::string& text, const char* advice) const
{
    FailureState::note(m_style.name, FAILURE_REFUSED, text, advice);
}

void Operation::endSilently()
{
    m_ended = true;
}

void Operation::refuse(const std::string& message)
{
    const std::string text = message + m_style.name;
    endFailed(FAILURE_REFUSED, text);
    throw PlimAPIException(text);
}

void Operation::failTransport(int sendResult)
{
    const std::string text = std::string("url error or internet error ") + m_style.name;
    endFailed(sendResult, text);
    throw PlimAPIException(text);
}

void Operation::failResponse(int code, const std::string& description)
{
    const std::string text =
        "get error response, error code:" + std::to_string(code) + ", description:" + description + " " + m_style.name;
    endFailed(code, text);
    throw PlimAPIExceptionWithErrCode(code, text);
}

void Operation::failUnexpectedly(const std::string& what)
{
    const std::string text = "unexpected failure: " + what + " " + m_style.name;
    endFailed(FAILURE_REFUSED, text);
    throw PlimAPIException(text);
}

void Operation::raise(const std::string& message)
{
    const std::string text = message + m_style.name;
    noteLine(FAILURE_REFUSED, text);
    throw PlimAPIException(text);
}

void Operation::report(const std::string& message)
{
    COMMLOG(OS_LOG_ERROR, "%s%s", message.c_str(), m_style.name);
    record(FAILURE_REFUSED);
}

void Operation::passOn()
{
    try {
        translate();
    } catch (const std::bad_alloc&) {
        failWithoutMemory();
    }
}

void Operation::failWithoutMemory()
{
    COMMLOG(OS_LOG_ERROR, "memory is exhausted %s", m_style.name);
    FailureState::noteShortage(m_style.name);
    if (!m_ended) {
        record(FAILURE_REFUSED);
    }
    throw PlimAPIException(std::string());  // so short that it needs no memory; lastFailure() has the words
}

void Operation::translate()
{
    try {
        throw;
    } catch (PlimAPIExceptionWithErrCode& failure) {
        if (!m_ended) {
            record(failure.getErrCode());
        }
        throw;
    } catch (const PlimAPIException&) {
        if (!m_ended) {
            record(FailureState::passingCode());
        }
        throw;
    } catch (const UnusableReply&) {
        failTransport(REST_UNUSABLE_REPLY);
    } catch (const std::exception& foreign) {
        failUnexpectedly(foreign.what());
    } catch (...) {
        failUnexpectedly("no standard exception");
    }
}

}  // namespace brevan
