#ifndef BREVAN_FOUNDATION_FAILURESTATE_H
#define BREVAN_FOUNDATION_FAILURESTATE_H

#include <string>

namespace brevan {

/// What brevan::lastFailure() tells, kept by the calling thread. Operations nest (an attach calls twenty others); the
/// outermost one clears the state, and the first failure within it stays.
class FailureState {
public:
    static void enterOperation();
    static void leaveOperation() noexcept;

    /// Something went wrong in `operation`. The code is also the one that passes through the operations around it.
    /// `advice`: what to do; null: what fits the code.
    static void note(const char* operation, int code, const std::string& text, const char* advice = nullptr);

    /// As note, where memory is exhausted: takes none. `operation` is kept as it is, and must stay.
    static void noteShortage(const char* operation) noexcept;

    /// The code of the failure that was noted last.
    static int passingCode() noexcept;
};

/// Remembers at construction whether something had gone wrong. forgive() drops what went wrong since: it was repeated with
/// success, or it is none (an object that was already in the group).
class FailureMark {
public:
    FailureMark() noexcept;
    void forgive() const noexcept;
    bool failedSince() const noexcept;

private:
    bool m_hadFailed;
};

/// What to do about a failure with that code; "" where nothing general can be said.
const char* failureAdvice(int code) noexcept;

}  // namespace brevan

#endif
