#ifndef BREVAN_SIMULATOR_CHAIN_H
#define BREVAN_SIMULATOR_CHAIN_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace brevan::sim {

class Database;

/// The mapping chain: initiator, host, host group, mapping view, LUN group, volume, and under which LUN number a host sees what.
/// Objects are known by their IDs; initiators by their iSCSI or port names.
struct MappingChain {
    struct Initiator {
        std::string kind;  ///< "iSCSI" or "FC"
        std::string name;
        std::string host;  ///< empty: free
    };
    struct Volume {
        std::string kind;  ///< "LUN" or "snapshot"
        std::string name;
        std::string wwn;
        std::uint64_t bytes = 0;
    };
    struct Group {
        std::string name;
        std::vector<std::string> members;
    };
    struct View {
        std::string name;
        std::string hostGroup;  ///< empty: none yet
        std::string lunGroup;
    };
    template <typename Object>
    using ById = std::map<std::int64_t, Object>;

    std::vector<Initiator> initiators;
    ById<std::string> hosts;  ///< names
    ById<Group> hostGroups;
    ById<View> views;
    ById<Group> lunGroups;
    ById<Volume> volumes;
    ById<std::map<unsigned, std::string>> seen;  ///< by host: which volume under which LUN number
};

/// All of it, as it is at one moment.
MappingChain readChain(Database& database);

enum class ChainFormat { kText, kJson, kDot };

/// "text": a tree for people; "json": the same as data; "dot": a picture for Graphviz, without volumes that are in no LUN
/// group. Ends with a line's end.
std::string written(const MappingChain& chain, ChainFormat format);

}  // namespace brevan::sim

#endif
