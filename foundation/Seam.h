#ifndef BREVAN_FOUNDATION_SEAM_H
#define BREVAN_FOUNDATION_SEAM_H

#include <atomic>

namespace brevan {

/// The place where a test puts something else for the real thing: time, the process map, the host's devices.
template <class Interface>
class Seam {
public:
    constexpr explicit Seam(Interface& real) : m_current(&real) {}

    Interface& get() const { return *m_current.load(std::memory_order_acquire); }
    Interface& replace(Interface& other) { return *m_current.exchange(&other, std::memory_order_acq_rel); }

private:
    std::atomic<Interface*> m_current;
};

}  // namespace brevan

#endif
