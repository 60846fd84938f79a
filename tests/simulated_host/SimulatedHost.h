#ifndef BREVAN_TESTS_SIMULATED_HOST_SIMULATEDHOST_H
#define BREVAN_TESTS_SIMULATED_HOST_SIMULATEDHOST_H

#include "Disks.h"
#include "support/HostClient.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace brevan::test {

/// One array to which this host is logged in, with one LUN that is attached and whose disk is there, for all tests of a suite.
class SimulatedHost : public testing::Test {
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();

    static std::unique_ptr<sim::ArrayServer> array;
    static std::unique_ptr<HostClient> client;
    static std::unique_ptr<LunMO> lun;
    static std::string path;    ///< what the scan has found for it
    static std::string device;  ///< the name of that disk

    Disks disks;

    static std::string scan() { return client->scan(lun->ID); }
};

}  // namespace brevan::test

#endif
