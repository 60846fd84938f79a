#ifndef BREVAN_TESTS_SUPPORT_MANAGERWITHOUT_H
#define BREVAN_TESTS_SUPPORT_MANAGERWITHOUT_H

#include "session/DeviceManagerImpl.h"

#include <vector>

namespace brevan::test {

/// A device manager that lacks one handler and keeps which ones it was asked for.
class ManagerWithout final : public CDeviceManagerImpl {
public:
    explicit ManagerWithout(HANDLERTYPE missing) : m_missing(missing) {}

    CHandler* getHandler(HANDLERTYPE type) override
    {
        asked.push_back(type);
        return type == m_missing ? nullptr : CDeviceManagerImpl::getHandler(type);
    }

    std::vector<HANDLERTYPE> asked;

private:
    HANDLERTYPE m_missing;
};

}  // namespace brevan::test

#endif
