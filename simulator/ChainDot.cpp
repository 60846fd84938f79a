#include "ChainFormats.h"

#include <set>

namespace brevan::sim {

namespace {

/// A text of DOT, in quotes. "\n" in it begins a new line of a label.
std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"') {
            result += '\\';
        }
        result += character;
    }
    return result + "\"";
}

class Picture {
public:
    explicit Picture(const MappingChain& chain) : m_chain(chain) {}

    std::string write()
    {
        m_text =
            "digraph chain {\n  rankdir=LR;\n  node [shape=box, fontname=\"sans-serif\", fontsize=11];\n"
            "  edge [fontname=\"sans-serif\", fontsize=10];\n";
        addNodes();
        addEdges();
        return m_text + "}\n";
    }

private:
    void node(const std::string& key, const std::string& kind, const std::string& name, const char* look = "")
    {
        m_text += "  " + quoted(key) + " [label=" + quoted(kind + "\\n" + name) + look + "];\n";
    }
    void edge(const std::string& from, const std::string& to, const std::string& look = "")
    {
        m_text += "  " + quoted(from) + " -> " + quoted(to) + look + ";\n";
    }

    void addNodes()
    {
        for (const MappingChain::Initiator& initiator : m_chain.initiators) {
            node("initiator " + initiator.name, initiator.kind + " initiator", initiator.name, ", style=rounded");
        }
        for (const auto& [id, name] : m_chain.hosts) {
            node("host " + std::to_string(id), "host " + std::to_string(id), name);
        }
        for (const auto& [id, group] : m_chain.hostGroups) {
            node("hostgroup " + std::to_string(id), "host group " + std::to_string(id), group.name);
        }
        for (const auto& [id, view] : m_chain.views) {
            node("view " + std::to_string(id), "mapping view " + std::to_string(id), view.name);
        }
        std::set<std::string> inGroups;
        for (const auto& [id, group] : m_chain.lunGroups) {
            node("lungroup " + std::to_string(id), "LUN group " + std::to_string(id), group.name);
            inGroups.insert(group.members.begin(), group.members.end());
        }
        for (const auto& [id, volume] : m_chain.volumes) {
            if (inGroups.count(std::to_string(id)) != 0) {
                node("volume " + std::to_string(id), volume.kind + " " + std::to_string(id),
                     volume.name + "\\n" + volume.wwn, ", style=bold");
            }
        }
    }

    void addEdges()
    {
        for (const MappingChain::Initiator& initiator : m_chain.initiators) {
            if (!initiator.host.empty()) {
                edge("initiator " + initiator.name, "host " + initiator.host);
            }
        }
        for (const auto& [id, group] : m_chain.hostGroups) {
            for (const std::string& host : group.members) {
                edge("host " + host, "hostgroup " + std::to_string(id));
            }
        }
        for (const auto& [id, view] : m_chain.views) {
            addViewEdges("view " + std::to_string(id), view);
        }
        for (const auto& [id, group] : m_chain.lunGroups) {
            for (const std::string& volume : group.members) {
                edge("lungroup " + std::to_string(id), "volume " + volume);
            }
        }
        for (const auto& [host, volumes] : m_chain.seen) {
            for (const auto& [number, volume] : volumes) {
                edge("host " + std::to_string(host), "volume " + volume,
                     " [style=dashed, label=" + quoted("sees as LUN " + std::to_string(number)) + "]");
            }
        }
    }

    void addViewEdges(const std::string& key, const MappingChain::View& view)
    {
        if (!view.hostGroup.empty()) {
            edge("hostgroup " + view.hostGroup, key);
        }
        if (!view.lunGroup.empty()) {
            edge(key, "lungroup " + view.lunGroup);
        }
    }

    const MappingChain& m_chain;
    std::string m_text;
};

}  // namespace

std::string chainDot(const MappingChain& chain)
{
    return Picture(chain).write();
}

}  // namespace brevan::sim
