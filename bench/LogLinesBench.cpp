// A million lines of the run log, beside spdlog alone that writes the same lines and hands each to the kernel as it comes, as we do.
#include "Measurement.h"

#include <PlimLogAPI.h>

#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/spdlog.h>

#include <filesystem>
#include <stdexcept>

namespace {

using namespace brevan::bench;

constexpr int kLines = 1000000;
constexpr int kRounds = 10;
constexpr const char* kLine = "enter getLun successfully!";
constexpr std::size_t kFileBytes = 10240 * 1024;  // as ours by default
constexpr std::size_t kFiles = 4;                 // beside the one being written

class Folder {
public:
    Folder() : m_path(std::filesystem::temp_directory_path() / "log-lines-XXXXXX")
    {
        if (mkdtemp(m_path.data()) == nullptr) {
            throw std::runtime_error("no folder for the logs");
        }
    }
    ~Folder() { std::filesystem::remove_all(m_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

}  // namespace

int main()
{
    const Folder folder;
    if (LogInit("bench", nullptr, nullptr, folder.path().c_str()) != 0) {
        return 1;
    }
    auto file = std::make_shared<spdlog::sinks::rotating_file_sink_st>(folder.path() + "/spdlog.log", kFileBytes, kFiles);
    spdlog::logger alone("bench", file);
    alone.set_pattern("%Y-%m-%d %H:%M:%S.%e %l %P %t %v");
    alone.flush_on(spdlog::level::info);
    double ours = 0;
    double limit = 0;
    for (int round = 0; round < kRounds; ++round) {  // in turns, so that what else the machine does meets both alike
        ours += microseconds([] {
            for (int line = 0; line < kLines / kRounds; ++line) {
                Log_Run_Info("bench", kLine);
            }
        });
        limit += microseconds([&alone] {
            for (int line = 0; line < kLines / kRounds; ++line) {
                alone.info(kLine);
            }
        });
    }
    LogFini("bench");
    report("1,000,000 run-log lines, beside spdlog alone", ours / 1e6, limit / 1e6, "s", "<= 1.15");
    return 0;
}
