#include "foundation/FailureState.h"

#include <brevan/LastFailure.h>

namespace brevan {
namespace {

struct State {
    Failure first;
    int passingCode = FAILURE_NONE;
    int depth = 0;
};

State& state()
{
    thread_local State current;
    return current;
}

}  // namespace

void FailureState::enterOperation()
{
    State& current = state();
    if (current.depth == 0) {
        current.first = Failure();
        current.passingCode = FAILURE_NONE;
    }
    ++current.depth;
}

void FailureState::leaveOperation() noexcept
{
    --state().depth;
}

void FailureState::note(const char* operation, int code, const std::string& text, const char* advice)
{
    State& current = state();
    current.passingCode = code;
    if (current.first.empty()) {
        current.first.code = code;
        current.first.text = text;
        current.first.advice = advice != nullptr ? advice : failureAdvice(code);
        current.first.operation = operation;
    }
}

int FailureState::passingCode() noexcept
{
    return state().passingCode;
}

FailureMark::FailureMark() noexcept : m_hadFailed(!state().first.empty()) {}

void FailureMark::forgive() const noexcept
{
    if (!m_hadFailed) {
        state().first = Failure();
    }
}

bool FailureMark::failedSince() const noexcept
{
    return !m_hadFailed && !state().first.empty();
}

Failure lastFailure()
{
    return state().first;
}

}  // namespace brevan
