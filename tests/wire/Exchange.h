#ifndef BREVAN_TESTS_WIRE_EXCHANGE_H
#define BREVAN_TESTS_WIRE_EXCHANGE_H

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace brevan::test {

/// A file of tests/fixtures/wire: first line, headers, and what stands behind the empty line.
struct WireText {
    std::string first;
    std::vector<std::string> headers;
    std::string body;
};

/// A request and its reply, written by hand.
struct Exchange {
    std::string name;  ///< "03-create-lun"
    WireText request;
    WireText reply;

    std::string method() const { return request.first.substr(0, request.first.find(' ')); }
    std::string path() const { return request.first.substr(request.first.find(' ') + 1); }
    bool isSessionRequest() const { return path().rfind("/deviceManager", 0) == 0; }
};

inline WireText readWireText(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    WireText text;
    std::getline(file, text.first);
    for (std::string line; std::getline(file, line) && !line.empty();) {
        text.headers.push_back(line);
    }
    text.body.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    text.body.erase(text.body.find_last_not_of('\n') + 1);
    if (text.first.empty()) {
        throw std::runtime_error(path.string() + " is missing or empty");
    }
    return text;
}

/// All of them, in the order of their numbers.
inline std::vector<Exchange> readExchanges(const std::string& directory)
{
    std::vector<Exchange> exchanges;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().extension() == ".request") {
            std::filesystem::path reply = entry.path();
            reply.replace_extension(".reply");
            exchanges.push_back({entry.path().stem().string(), readWireText(entry.path()), readWireText(reply)});
        }
    }
    std::sort(exchanges.begin(), exchanges.end(),
              [](const Exchange& left, const Exchange& right) { return left.name < right.name; });
    return exchanges;
}

}  // namespace brevan::test

#endif
