#ifndef BREVAN_SIMULATOR_APIERROR_H
#define BREVAN_SIMULATOR_APIERROR_H

#include "ErrorCodes.h"

#include <stdexcept>
#include <string>

namespace brevan::sim {

/// A request that the array refuses: nothing of it is kept, and the client gets this code and this text.
class ApiError : public std::runtime_error {
public:
    ApiError(int code, const std::string& text) : std::runtime_error(text), m_code(code) {}

    int code() const noexcept { return m_code; }

private:
    int m_code;
};

}  // namespace brevan::sim

#endif
