#ifndef BREVAN_TESTS_CONTRACT_HEADEROPERATIONS_H
#define BREVAN_TESTS_CONTRACT_HEADEROPERATIONS_H

#include <string>
#include <vector>

namespace brevan::contract {

/// One pure virtual operation of a public class.
struct HeaderOperation {
    std::string owner;  ///< the class
    std::string name;
    std::vector<std::string> parameters;  ///< "const std::string& lunId"
};

/// All of CDeviceManager and of the classes that derive from CHandler, read from the headers of a folder.
std::vector<HeaderOperation> readHeaderOperations(const std::string& folder);

/// The same from the text of one header.
std::vector<HeaderOperation> operationsOf(const std::string& header);

}  // namespace brevan::contract

#endif
