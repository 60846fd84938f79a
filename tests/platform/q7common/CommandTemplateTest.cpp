#include "platform/q7common/CommandRunner.h"
#include "platform/q7common/CommandTemplate.h"

#include <gtest/gtest.h>

namespace brevan {
namespace {

std::string fill(const std::string& commandLine, const std::vector<std::string>& parameters)
{
    std::string line;
    const char* fault = fillTemplate(commandLine, parameters, line);
    return fault == nullptr ? line : std::string("refused: ") + fault;
}

std::string outputOf(const std::string& commandLine)
{
    const CommandOutcome outcome = runCommandLine(commandLine, {std::chrono::seconds(20), std::chrono::seconds(1), 100000});
    EXPECT_EQ(outcome.fault, "");
    return outcome.output.text();
}

TEST(CommandTemplate, QuotesForThePlace)
{
    EXPECT_EQ(fill("ls | grep ? | grep x", {"6a"}), "ls | grep '6a' | grep x");
    EXPECT_EQ(fill("rescan '?'", {"sda"}), "rescan 'sda'");
    EXPECT_EQ(fill("a ? '?' ?", {"1", "2", "3"}), "a '1' '2' '3'");
}

TEST(CommandTemplate, KeepsAQuestionMarkThatIsNoPlace)
{
    EXPECT_EQ(fill("a \"?\" \\? ?", {"1"}), "a \"?\" \\? '1'");
    EXPECT_EQ(fill("a \"'?'\" '\"?\"'", {"1"}), "a \"'?'\" '\"1\"'");
}

TEST(CommandTemplate, RefusesTheWrongCount)
{
    EXPECT_EQ(fill("a ?", {}), "refused: there are fewer parameters than places for them");
    EXPECT_EQ(fill("a ?", {"1", "2"}), "refused: there are more parameters than places for them");
    EXPECT_EQ(fill("a", {"1"}), "refused: there are more parameters than places for them");
}

TEST(CommandTemplate, RefusesWhatNoParameterMayBe)
{
    for (const std::string& bad :
         {std::string(), std::string("-rf"), std::string("-"), std::string("a\nb"), std::string("a\0b", 3),
          std::string("\x7f"), std::string(4097, 'a'), std::string(1024 * 1024, 'a')}) {
        EXPECT_EQ(fill("a ?", {bad}).substr(0, 7), "refused");
        EXPECT_EQ(fill("a '?'", {bad}).substr(0, 7), "refused");
    }
}

TEST(CommandTemplate, MakesOneArgumentOfAnything)
{
    const std::string long4096(4096, 'x');
    for (const std::string& hostile :
         {std::string("a'b"), std::string("'"), std::string("''"), std::string("\""), std::string("; id"),
          std::string("$(id)"), std::string("`id`"), std::string("a b  c"), std::string("*"), std::string("\\"),
          std::string("?"), std::string("$HOME"), std::string("x' ; id ; '"), std::string("\xff\xfe"), std::string("!x"),
          std::string("~"), std::string("#a"), std::string("a\\'b"), long4096}) {
        EXPECT_EQ(outputOf(fill("printf '%s.%s' ? end", {hostile})), hostile + ".end");
        EXPECT_EQ(outputOf(fill("printf '%s.%s' '?' end", {hostile})), hostile + ".end");
    }
}

}  // namespace
}  // namespace brevan
