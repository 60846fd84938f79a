#include "ChainFormats.h"

#include <algorithm>
#include <set>

namespace brevan::sim {

namespace {

constexpr std::size_t kMostInALine = 10;

/// The tree while it grows: a line for each object, deeper by two blanks than what it belongs to. What never got a line is told
/// at the end, kind by kind.
class Tree {
public:
    explicit Tree(const MappingChain& chain) : m_chain(chain) {}

    std::string write()
    {
        for (const auto& [id, name] : m_chain.hosts) {
            addHost(std::to_string(id), name);
        }
        addRest();
        return m_text.empty() ? "no hosts, no initiators, no volumes\n" : m_text;
    }

private:
    using Names = std::vector<std::string>;

    void line(std::size_t depth, const std::string& content) { m_text += std::string(2 * depth, ' ') + content + "\n"; }

    void show(std::size_t depth, const std::string& kind, const std::string& id, const std::string& name = "")
    {
        m_shown.insert(kind + " " + id);
        line(depth, kind + " " + id + (name.empty() ? "" : " " + name));
    }

    void addHost(const std::string& host, const std::string& name)
    {
        show(0, "host", host, name);
        for (const MappingChain::Initiator& initiator : m_chain.initiators) {
            if (initiator.host == host) {
                show(1, initiator.kind + " initiator", initiator.name);
            }
        }
        for (const auto& [id, group] : m_chain.hostGroups) {
            if (std::find(group.members.begin(), group.members.end(), host) != group.members.end()) {
                show(1, "host group", std::to_string(id), group.name);
                addViews(std::to_string(id));
            }
        }
        addSeen(std::stoll(host));
    }

    void addViews(const std::string& hostGroup)
    {
        for (const auto& [id, view] : m_chain.views) {
            if (view.hostGroup == hostGroup) {
                show(2, "mapping view", std::to_string(id), view.name);
                addLunGroup(view.lunGroup);
            }
        }
    }

    void addLunGroup(const std::string& id)
    {
        if (id.empty()) {
            return;
        }
        const MappingChain::Group& group = m_chain.lunGroups.at(std::stoll(id));
        show(3, "LUN group", id, group.name);
        for (const std::string& member : group.members) {
            const MappingChain::Volume& volume = m_chain.volumes.at(std::stoll(member));
            show(4, volume.kind, member, volume.name);
        }
    }

    void addSeen(std::int64_t host)
    {
        const auto seen = m_chain.seen.find(host);
        if (seen == m_chain.seen.end()) {
            line(1, "sees nothing");
            return;
        }
        line(1, "sees");
        for (const auto& [number, id] : seen->second) {
            const MappingChain::Volume& volume = m_chain.volumes.at(std::stoll(id));
            line(2, "LUN number " + std::to_string(number) + ": " + volume.kind + " " + id + " " + volume.name + ", " +
                        std::to_string(volume.bytes) + " bytes, WWN " + volume.wwn);
        }
    }

    template <typename Object>
    static Names idsOf(const MappingChain::ById<Object>& objects)
    {
        Names ids;
        for (const auto& [id, object] : objects) {
            ids.push_back(std::to_string(id));
        }
        return ids;
    }

    void addRest()
    {
        std::map<std::string, Names> byKind;
        for (const MappingChain::Initiator& initiator : m_chain.initiators) {
            byKind[initiator.kind + " initiator"].push_back(initiator.name);
        }
        for (const auto& [id, volume] : m_chain.volumes) {
            byKind[volume.kind].push_back(std::to_string(id));
        }
        byKind["host group"] = idsOf(m_chain.hostGroups);
        byKind["mapping view"] = idsOf(m_chain.views);
        byKind["LUN group"] = idsOf(m_chain.lunGroups);
        std::string rest;
        for (const char* kind :
             {"iSCSI initiator", "FC initiator", "host group", "mapping view", "LUN group", "LUN", "snapshot"}) {
            rest += restOf(kind, byKind[kind]);
        }
        m_text += rest.empty() ? "" : "belongs to no host\n" + rest;
    }

    std::string restOf(const std::string& kind, const Names& names) const
    {
        std::string text;
        std::size_t count = 0;
        for (const std::string& name : names) {
            if (m_shown.count(kind + " " + name) == 0 && ++count <= kMostInALine) {
                text += (text.empty() ? "" : ", ") + name;
            }
        }
        if (count > kMostInALine) {
            text += " and " + std::to_string(count - kMostInALine) + " more";
        }
        return text.empty() ? text : "  " + kind + " " + text + "\n";
    }

    const MappingChain& m_chain;
    std::string m_text;
    std::set<std::string> m_shown;
};

}  // namespace

std::string chainText(const MappingChain& chain)
{
    return Tree(chain).write();
}

}  // namespace brevan::sim
