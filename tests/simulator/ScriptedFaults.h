#ifndef BREVAN_TESTS_SIMULATOR_SCRIPTEDFAULTS_H
#define BREVAN_TESTS_SIMULATOR_SCRIPTEDFAULTS_H

#include "simulator/ArrayServer.h"

#include <gtest/gtest.h>

#include <string>

namespace brevan::sim::test {

/// A fault script for the length of a test. What has not fired at its end fails the test: a fault that never came proves
/// nothing. Further scripts may be added.
class ScriptedFaults {
public:
    ScriptedFaults(ArrayServer& server, const std::string& script) : m_server(server) { m_server.addFaults(script); }
    ~ScriptedFaults()
    {
        for (const WaitingFaults& waiting : m_server.faultReport().waiting) {
            for (const std::string& fault : waiting.faults) {
                ADD_FAILURE() << "the fault \"" << fault << "\" of " << waiting.operation << " was never used";
            }
        }
        m_server.clearFaults();
    }
    ScriptedFaults(const ScriptedFaults&) = delete;
    ScriptedFaults& operator=(const ScriptedFaults&) = delete;

private:
    ArrayServer& m_server;
};

}  // namespace brevan::sim::test

#endif
