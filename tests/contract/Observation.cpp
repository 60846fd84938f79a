#include "Observation.h"

#include "Host.h"

#include <gtest/gtest.h>

#include <sched.h>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <sstream>

namespace brevan::contract {
namespace {

using test::Recorder;

constexpr unsigned int kSecondsForOneRow = 60;

void logLine(const std::string& line)
{
    Recorder::instance().logLine(line);
}

/// A request or command writes its line into the log when it comes, so that the order of everything is seen.
template <class Script>
Script noted(Script script, const std::string& line)
{
    script.before = [line, then = script.before] {
        logLine(line);
        if (then) {
            then();
        }
    };
    return script;
}

void play(const Step& step)
{
    Recorder& recorder = Recorder::instance();
    switch (step.kind) {
        case Step::Kind::Request:
            return recorder.expectRequest(step.line, noted(step.answer, step.line));
        case Step::Kind::Command:
            return recorder.expectCommand(step.line, noted(step.command, step.line));
        case Step::Kind::Shell:
            return Host::instance().expectShell(step.line, step.shellResult);
        case Step::Kind::Disk:
            return Host::instance().addDisk(step.line.substr(step.line.find('/')), step.designator);
        case Step::Kind::Line:
            return;
    }
}

std::string resultOf(const Row& row, CDeviceManager& manager)
{
    try {
        Sdk sdk{manager};
        return row.call(sdk);
    } catch (PlimAPIExceptionWithErrCode& refusal) {
        return "PlimAPIExceptionWithErrCode " + std::to_string(refusal.getErrCode()) + " " + refusal.what();
    } catch (const PlimAPIException& failure) {
        return std::string("PlimAPIException ") + failure.what();
    } catch (const std::exception& foreign) {
        return std::string("a foreign exception: ") + foreign.what();
    }
}

/// The device manager's address differs from run to run.
std::string withoutAddress(std::string line, const void* manager)
{
    std::ostringstream address;
    address << manager;
    const std::size_t at = line.find(address.str());
    return at == std::string::npos ? line : line.replace(at, address.str().size(), "MANAGER");
}

/// Every request goes out under the session of this device manager: its address, cut to 32 bits.
void checkHandles(const void* manager)
{
    for (const unsigned int handle : Recorder::instance().handles()) {
        EXPECT_EQ(handle, static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(manager)));
    }
}

/// The first semaphore set of a namespace gets the id 0, which the rescan lock takes for "not found".
void enterOwnIpcNamespace()
{
    if (unshare(CLONE_NEWIPC) != 0 || semget(IPC_PRIVATE, 1, 0600) != 0) {
        ADD_FAILURE() << "no System V semaphores of this process's own";
    }
}

void write(std::FILE* out, const std::string& text)
{
    std::fwrite(text.c_str(), 1, text.size() + 1, out);
}

/// Texts with a null byte behind each: the lines, then the result and the failure.
void write(std::FILE* out, const Observation& seen)
{
    for (const std::string& line : seen.lines) {
        write(out, line);
    }
    write(out, seen.result);
    write(out, seen.failure);
    std::fflush(out);
}

std::string takeLast(std::vector<std::string>& texts)
{
    std::string last;
    if (!texts.empty()) {
        last = texts.back();
        texts.pop_back();
    }
    return last;
}

Observation read(std::FILE* in)
{
    Observation seen;
    std::string text;
    for (int c = std::fgetc(in); c != EOF; c = std::fgetc(in)) {
        if (c != '\0') {
            text += static_cast<char>(c);
        } else {
            seen.lines.push_back(std::move(text));
            text.clear();
        }
    }
    seen.failure = takeLast(seen.lines);
    seen.result = takeLast(seen.lines);
    return seen;
}

}  // namespace

Observation observe(const Row& row)
{
    Recorder& recorder = Recorder::instance();
    recorder.reset();
    Host::instance().reset();
    CDeviceManager* const manager = CDeviceManager::getInstance(row.retryTimes, row.pauseMicroseconds);
    const std::size_t before = recorder.log().size();
    recorder.logCalls = true;
    for (const Step& step : row.steps) {
        play(step);
    }
    Observation seen;
    seen.result = resultOf(row, *manager);
    seen.failure = lastFailure().text;
    const std::vector<std::string> log = recorder.log();
    for (std::size_t i = before; i < log.size(); ++i) {
        seen.lines.push_back(withoutAddress(log[i], manager));
    }
    recorder.verify();
    Host::instance().verify();
    checkHandles(manager);
    CDeviceManager::releaseInstance(manager);
    return seen;
}

Observation observeAlone(const Row& row)
{
    std::FILE* const file = std::tmpfile();
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        alarm(kSecondsForOneRow);
        enterOwnIpcNamespace();
        write(file, observe(row));
        std::fflush(stdout);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "the process of this row failed; see above";
    std::rewind(file);
    const Observation seen = read(file);
    std::fclose(file);
    return seen;
}

}  // namespace brevan::contract
