#include "Steps.h"

namespace brevan::contract {

Steps::Steps(std::initializer_list<Steps> parts)
{
    for (const Steps& part : parts) {
        *this += part;
    }
}

Steps& Steps::operator+=(const Steps& more)
{
    m_steps.insert(m_steps.end(), more.begin(), more.end());
    return *this;
}

Steps enter(const std::string& operation)
{
    return "info: enter " + operation + " successfully!";
}

Steps leave(const std::string& operation)
{
    return "info: leave " + operation + " successfully!";
}

Steps record(const std::string& operation, int code)
{
    return "record: " + operation + " " + std::to_string(code);
}

Steps done(const std::string& operation, const Steps& between)
{
    return {enter(operation), between, record(operation, 0), leave(operation)};
}

Steps failed(const std::string& operation, const Steps& between, int code)
{
    return {enter(operation), between, record(operation, code)};
}

Steps answered(const std::string& request, const Answer& answer)
{
    return Step{Step::Kind::Request, request, answer};
}

Steps send(const std::string& request, const std::string& data)
{
    return answered(request, test::answer(data));
}

std::string unreachableText(const std::string& operation)
{
    return "url error or internet error " + operation;
}

std::string refusedText(const std::string& operation, int code)
{
    return "get error response, error code:" + std::to_string(code) + ", description:no such object " + operation;
}

Steps sendUnreachable(const std::string& request, const std::string& operation)
{
    return {answered(request, test::sendFailure(kUnreachable)), "error: " + unreachableText(operation)};
}

Steps sendRefused(const std::string& request, const std::string& operation, int code)
{
    return {answered(request, test::refusal(code, "no such object")), "error: " + refusedText(operation, code)};
}

Steps command(const std::string& line, const CommandResult& result)
{
    Step step{Step::Kind::Command, line};
    step.command = result;
    return step;
}

Steps shell(const std::string& line, int result)
{
    Step step{Step::Kind::Shell, "shell: " + line};
    step.shellResult = result;
    return step;
}

Steps disk(const std::string& path, const std::string& designator)
{
    Step step{Step::Kind::Disk, "open: " + path};
    step.designator = designator;
    return {step, "inquiry: 12018300ff00, 256 bytes, 64 of sense, 60000 ms"};
}

Steps unopenable(const std::string& path)
{
    return {Step{Step::Kind::Disk, "open: " + path}, "open read-only: " + path};
}

Steps repeated(unsigned int times, const Steps& steps)
{
    Steps all;
    for (unsigned int i = 0; i < times; ++i) {
        all += steps;
    }
    return all;
}

}  // namespace brevan::contract
