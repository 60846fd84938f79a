#ifndef BREVAN_TESTS_SUPPORT_FORKS_H
#define BREVAN_TESTS_SUPPORT_FORKS_H

namespace brevan::test {

/// Why a test of this build must not fork while other threads run and go on in the child; null: it may.
#ifdef __SANITIZE_ADDRESS__
constexpr const char* kWhyNoForks = "the address sanitizer's allocator may be locked in the child of a fork (GCC 12)";
#else
constexpr const char* kWhyNoForks = nullptr;
#endif

}  // namespace brevan::test

#endif
