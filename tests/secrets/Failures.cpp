// secrets_failures FOLDER: everything that can go wrong between the library and an array, with secrets that can be searched for.
// On standard output stands what an application gets to see. Exit status 1 where a case did not come about.
#include "Failures.h"

#include <iostream>

namespace brevan::test {

bool tell(const std::string& what, const std::function<void()>& operation)
{
    std::string thrown = "-";
    try {
        operation();
    } catch (const std::exception& failure) {
        thrown = failure.what();
    }
    const Failure last = lastFailure();
    std::cout << what << ": " << thrown << " | " << last.operation << " " << last.code << " " << last.text << " | "
              << last.advice << "\n";
    return thrown != "-" || !last.empty();
}

}  // namespace brevan::test

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "secrets_failures: the only argument is a folder\n";
        return 2;
    }
    using namespace brevan::test;
    const int missing = meetBadReplies(argv[1]) + meetBadServers(argv[1]) + meetFaultyArray(argv[1]);
    return missing == 0 ? 0 : 1;
}
