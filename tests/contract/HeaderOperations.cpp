#include "HeaderOperations.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace brevan::contract {
namespace {

std::string withoutComments(const std::string& text)
{
    std::istringstream lines(text);
    std::string code;
    for (std::string line; std::getline(lines, line);) {
        code += line.substr(0, line.find("//")) + "\n";
    }
    return code;
}

/// Words with one blank between.
std::string tidied(const std::string& text)
{
    std::istringstream words(text);
    std::string line;
    for (std::string word; words >> word;) {
        line += (line.empty() ? "" : " ") + word;
    }
    return line;
}

/// The text between the two, from `at` on; moves `at` behind it. Empty, and `at` at the end, where there is none.
std::string between(const std::string& text, const std::string& begin, const std::string& end, std::size_t& at)
{
    const std::size_t first = text.find(begin, at);
    const std::size_t last = first == std::string::npos ? first : text.find(end, first);
    at = last == std::string::npos ? text.size() : last + end.size();
    return last == std::string::npos ? "" : text.substr(first + begin.size(), last - first - begin.size());
}

std::vector<std::string> parametersOf(const std::string& list)
{
    std::istringstream parts(list);
    std::vector<std::string> parameters;
    for (std::string part; std::getline(parts, part, ',');) {
        parameters.push_back(tidied(part));
    }
    return parameters;
}

/// "LunMO getLun(const std::string& lunId)"
HeaderOperation operationOf(const std::string& owner, const std::string& declaration)
{
    const std::size_t open = declaration.find('(');
    const std::size_t name = declaration.rfind(' ', open) + 1;
    return {owner, declaration.substr(name, open - name),
            parametersOf(declaration.substr(open + 1, declaration.rfind(')') - open - 1))};
}

/// "BREVAN_API CLunHandler : public CHandler { ... "
bool isOfInterest(const std::string& classText)
{
    const std::string head = tidied(classText.substr(0, classText.find('{')));
    return head == "BREVAN_API CDeviceManager" || head.find(": public CHandler") != std::string::npos;
}

std::string nameOf(const std::string& classText)
{
    std::istringstream words(classText);
    std::string exported;
    std::string name;
    words >> exported >> name;
    return name;
}

}  // namespace

std::vector<HeaderOperation> operationsOf(const std::string& header)
{
    const std::string code = withoutComments(header);
    std::vector<HeaderOperation> operations;
    for (std::size_t at = 0; at < code.size();) {
        const std::string classText = between(code, "\nclass ", "\n};", at);
        if (!isOfInterest(classText)) {
            continue;
        }
        for (std::size_t inner = 0; inner < classText.size();) {
            const std::string declaration = tidied(between(classText, "virtual ", ";", inner));
            if (declaration.size() > 4 && declaration.compare(declaration.size() - 4, 4, " = 0") == 0) {
                operations.push_back(operationOf(nameOf(classText), declaration));
            }
        }
    }
    return operations;
}

std::vector<HeaderOperation> readHeaderOperations(const std::string& folder)
{
    std::vector<HeaderOperation> operations;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path());
        std::ostringstream text;
        text << file.rdbuf();
        const std::vector<HeaderOperation> more = operationsOf(text.str());
        operations.insert(operations.end(), more.begin(), more.end());
    }
    return operations;
}

}  // namespace brevan::contract
