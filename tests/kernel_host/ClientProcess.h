#ifndef BREVAN_TESTS_KERNEL_HOST_CLIENTPROCESS_H
#define BREVAN_TESTS_KERNEL_HOST_CLIENTPROCESS_H

#include "KernelHost.h"

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace brevan::test {

/// kernel_host_client, which stands beside this program, doing one thing for a user. Ends with this object.
class ClientProcess {
public:
    ClientProcess(const sim::ArrayServer& array, const std::vector<std::string>& arguments);
    ~ClientProcess();
    ClientProcess(const ClientProcess&) = delete;
    ClientProcess& operator=(const ClientProcess&) = delete;

    /// What it said once it has ended by itself: "result", "operation", "code", "text" and "advice".
    std::map<std::string, std::string> said();
    /// The messages of the errors in its run log.
    std::vector<std::string> errorLines() const;
    bool isRunning();
    void kill();

private:
    pid_t m_pid = -1;  ///< -1 once it has ended
    pid_t m_id = -1;
    std::string m_output;
};

/// In place of the rescan script, one that notes the begin and the end of each call and can be held: tests/kernel_host/rescan-recorder.sh.
class RescanRecorder {
public:
    RescanRecorder();
    ~RescanRecorder();
    RescanRecorder(const RescanRecorder&) = delete;
    RescanRecorder& operator=(const RescanRecorder&) = delete;

    /// "begin do_uprescan", "end do_uprescan", "begin dev_rescan", ...
    static std::vector<std::string> calls();
    static int callsOf(const std::string& line);
    static void forget();
    /// Calls of this command wait from now on until they are let go.
    static void hold(const std::string& command);
    static void letGo(const std::string& command);
    /// The script says this, too.
    static void say(const std::string& text);
};

}  // namespace brevan::test

#endif
