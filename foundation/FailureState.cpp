#include "foundation/FailureState.h"

#include <brevan/LastFailure.h>

namespace brevan {
namespace {

constexpr const char* kShortageText = "memory is exhausted";
constexpr const char* kShortageAdvice = "Read what is there before repeating a change.";

struct State {
    Failure first;
    const char* shortOfMemory = nullptr;  ///< the operation whose failure found no memory to be told; null: none
    int passingCode = FAILURE_NONE;
    int depth = 0;
};

State& state()
{
    thread_local State current;
    return current;
}

bool hasFailed() noexcept
{
    return state().shortOfMemory != nullptr || !state().first.empty();
}

void forget() noexcept
{
    state().first = Failure();
    state().shortOfMemory = nullptr;
}

}  // namespace

void FailureState::enterOperation()
{
    State& current = state();
    if (current.depth == 0) {
        forget();
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
    if (!hasFailed()) {
        current.first.code = code;
        current.first.text = text;
        current.first.advice = advice != nullptr ? advice : failureAdvice(code);
        current.first.operation = operation;
    }
}

void FailureState::noteShortage(const char* operation) noexcept
{
    state().passingCode = FAILURE_REFUSED;
    if (!hasFailed()) {
        state().shortOfMemory = operation;
    }
}

int FailureState::passingCode() noexcept
{
    return state().passingCode;
}

FailureMark::FailureMark() noexcept : m_hadFailed(hasFailed()) {}

void FailureMark::forgive() const noexcept
{
    if (!m_hadFailed) {
        forget();
    }
}

bool FailureMark::failedSince() const noexcept
{
    return !m_hadFailed && hasFailed();
}

Failure lastFailure()
{
    const State& current = state();
    if (current.shortOfMemory != nullptr) {
        return {current.shortOfMemory, FAILURE_REFUSED, kShortageText, kShortageAdvice};
    }
    return current.first;
}

}  // namespace brevan
