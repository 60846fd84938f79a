// What reading a reply costs in this process: ours, with its checks, beside JsonCpp alone.
#include "Measurement.h"
#include "platform/q7common/Reply.h"

#include <benchmark/benchmark.h>
#include <json/reader.h>

#include <map>
#include <memory>
#include <stdexcept>

namespace {

using namespace brevan;

std::string recordOf(int id)
{
    const std::string number = std::to_string(id);
    return R"({"ID":")" + number + R"(","NAME":"volume_)" + number +
           R"(","PARENTID":"0","PARENTNAME":"pool0","HEALTHSTATUS":"1","RUNNINGSTATUS":"2","DESCRIPTION":"","ALLOCTYPE":"1",)"
           R"("SECTORSIZE":"512","CAPACITY":"2097152","ALLOCCAPACITY":"2048","EXPOSEDTOINITIATOR":"false",)"
           R"("WWN":"602b7e4492986b910000000000000010","OWNINGCONTROLLER":"B","WORKINGCONTROLLER":"B"})";
}

std::string replyWith(int records)
{
    std::string data = recordOf(10);
    for (int id = 11; id < 10 + records; ++id) {
        data += "," + recordOf(id);
    }
    return R"({"data":)" + (records == 1 ? data : "[" + data + "]") + R"(,"error":{"code":0,"description":"0"}})";
}

void readByJsonCpp(benchmark::State& state)
{
    const std::string text = replyWith(static_cast<int>(state.range(0)));
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    while (state.KeepRunning()) {
        Json::Value root;
        if (!reader->parse(text.data(), text.data() + text.size(), &root, nullptr)) {
            throw std::runtime_error("JsonCpp does not read the reply");
        }
        benchmark::DoNotOptimize(root);
    }
}

void readByUs(benchmark::State& state)
{
    const std::string text = replyWith(static_cast<int>(state.range(0)));
    while (state.KeepRunning()) {
        Reply reply;
        if (parseReply(text, reply) != nullptr) {
            throw std::runtime_error("the reply is not usable");
        }
        benchmark::DoNotOptimize(reply);
    }
}

/// Prints nothing, keeps the least time of each: what else the machine does only adds.
class Times : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) {
                continue;
            }
            const auto place = least.emplace(run.run_name.str(), run.GetAdjustedCPUTime()).first;
            place->second = std::min(place->second, run.GetAdjustedCPUTime());
        }
    }

    std::map<std::string, double> least;
};

BENCHMARK(readByUs)->Arg(1)->Arg(100)->MinTime(0.1)->Repetitions(7);
BENCHMARK(readByJsonCpp)->Arg(1)->Arg(100)->MinTime(0.1)->Repetitions(7);

}  // namespace

int main()
{
    Times times;
    benchmark::RunSpecifiedBenchmarks(&times);
    for (const char* records : {"1", "100"}) {
        const std::string which = std::string("/") + records + "/min_time:0.100/repeats:7";
        bench::report(std::string("reading a reply, its records: ") + records + ", checks included, beside JsonCpp alone",
                      times.least.at("readByUs" + which) / 1000, times.least.at("readByJsonCpp" + which) / 1000, "us",
                      "<= 1.2");
    }
    return 0;
}
