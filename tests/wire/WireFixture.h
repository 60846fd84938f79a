#ifndef BREVAN_TESTS_WIRE_WIREFIXTURE_H
#define BREVAN_TESTS_WIRE_WIREFIXTURE_H

#include "support/SdkTest.h"

#include <string>

namespace brevan::test {

/// A test that makes the library go through exchanges of tests/fixtures/wire.
class WireTest : public SdkTest {
protected:
    /// The next request must be that of the exchange, to the letter, and gets its reply. `name`: without the number.
    void exchange(const std::string& name);
};

/// How a call ends that the array refuses: the texts of the reply in the exception.
std::string refusalOf(const std::string& operation, int code, const std::string& description);

}  // namespace brevan::test

#endif
