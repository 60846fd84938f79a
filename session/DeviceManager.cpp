#include <brevan/DeviceManager.h>

#include "session/DeviceManagerImpl.h"

#include <UserManager.h>

CDeviceManager::~CDeviceManager() = default;

CDeviceManager* CDeviceManager::getInstance(unsigned int retryTimes, unsigned int trySleepTimeMs)
{
    return CDeviceManagerImpl::createInstance(retryTimes, trySleepTimeMs);
}

void CDeviceManager::releaseInstance(CDeviceManager* manager)
{
    auto* implementation = static_cast<CDeviceManagerImpl*>(manager);
    CUserManager::getInstance().RemoveSession(implementation);
    CDeviceManagerImpl::destroyInstance(implementation);
}
