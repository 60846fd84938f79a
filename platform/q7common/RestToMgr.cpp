#include "RestToMgr.h"

#include "CommandCatalogue.h"
#include "CommandRunner.h"
#include "CommandTemplate.h"
#include "ForkGuard.h"
#include "LastWords.h"
#include "Settings.h"
#include "TransportLog.h"

#include <exception>

namespace {

using brevan::CommandOutcome;

constexpr int kDidNotRun = -1;
constexpr auto kGrace = std::chrono::seconds(2);

std::string nameOf(const RunShellCmdInfo& command)
{
    return "Command " + std::to_string(command.cmdCode);
}

int refuse(const RunShellCmdInfo& command, const std::string& why, std::string& errorText)
{
    errorText = nameOf(command) + " did not run: " + why;
    brevan::logError(errorText);
    return kDidNotRun;
}

void addNote(const RunShellCmdInfo& command, const std::string& note, std::string& errorText)
{
    errorText += (errorText.empty() || errorText.back() == '\n' ? "" : "\n") + nameOf(command) + ": " + note;
    brevan::logError(nameOf(command) + ": " + note);
}

int report(const RunShellCmdInfo& command, const CommandOutcome& outcome, std::vector<std::string>& outputLines,
           std::string& errorText)
{
    outcome.output.appendLines(outputLines);
    errorText = outcome.errors.text() + outcome.output.text();
    const std::size_t dropped = outcome.output.dropped() + outcome.errors.dropped();
    if (dropped > 0) {
        addNote(command,
                std::to_string(dropped) +
                    " bytes of its output were dropped; command_output_kilobytes in "
                    "transport.ini sets how much is kept",
                errorText);
    }
    if (!outcome.fault.empty()) {
        addNote(command, outcome.fault, errorText);
        return kDidNotRun;
    }
    return outcome.exitStatus;
}

int run(const RunShellCmdInfo& command, std::vector<std::string>& outputLines, std::string& errorText)
{
    if (!brevan::isKnownCommand(command)) {
        return refuse(command, "its number, type and command line are not those of a command of this library", errorText);
    }
    std::string commandLine;
    if (const char* fault = brevan::fillTemplate(command.shellCmd, command.param, commandLine); fault != nullptr) {
        return refuse(command, fault, errorText);
    }
    const brevan::SettingsPointer settings = brevan::currentSettings();
    if (!settings->isUsable()) {
        brevan::logProblems(*settings);
        return refuse(command, "the settings in " + settings->file + " are wrong; " + settings->problems.front(), errorText);
    }
    const brevan::CommandLimits limits{settings->commandTime, kGrace, settings->commandOutputBytes};
    return report(command, brevan::runCommandLine(commandLine, limits), outputLines, errorText);
}

}  // namespace

int RestToMgr::ExceSystemCmd(const RunShellCmdInfo& command, std::vector<std::string>& outputLines, std::string& errorText)
{
    try {
        brevan::guardForks();
        errorText.clear();
        return run(command, outputLines, errorText);
    } catch (const std::exception& failure) {
        brevan::logLastWords(failure.what());
        return kDidNotRun;
    }
}
