#include "ChainFormats.h"

#include <nlohmann/json.hpp>

namespace brevan::sim {

namespace {

using Json = nlohmann::ordered_json;

Json groups(const MappingChain::ById<MappingChain::Group>& groups, const char* members)
{
    Json list = Json::array();
    for (const auto& [id, group] : groups) {
        list.push_back({{"id", std::to_string(id)}, {"name", group.name}, {members, group.members}});
    }
    return list;
}

/// An ID that may be missing.
Json idOrNull(const std::string& id)
{
    return id.empty() ? Json() : Json(id);
}

Json initiators(const MappingChain& chain)
{
    Json list = Json::array();
    for (const MappingChain::Initiator& initiator : chain.initiators) {
        list.push_back({{"kind", initiator.kind}, {"name", initiator.name}, {"host", idOrNull(initiator.host)}});
    }
    return list;
}

Json hosts(const MappingChain& chain)
{
    Json list = Json::array();
    for (const auto& [id, name] : chain.hosts) {
        Json sees = Json::array();
        const auto seen = chain.seen.find(id);
        if (seen != chain.seen.end()) {
            for (const auto& [number, volume] : seen->second) {
                sees.push_back({{"lunNumber", number}, {"volume", volume}});
            }
        }
        list.push_back({{"id", std::to_string(id)}, {"name", name}, {"sees", std::move(sees)}});
    }
    return list;
}

Json views(const MappingChain& chain)
{
    Json list = Json::array();
    for (const auto& [id, view] : chain.views) {
        list.push_back({{"id", std::to_string(id)},
                        {"name", view.name},
                        {"hostGroup", idOrNull(view.hostGroup)},
                        {"lunGroup", idOrNull(view.lunGroup)}});
    }
    return list;
}

Json volumes(const MappingChain& chain)
{
    Json list = Json::array();
    for (const auto& [id, volume] : chain.volumes) {
        list.push_back({{"id", std::to_string(id)},
                        {"kind", volume.kind},
                        {"name", volume.name},
                        {"wwn", volume.wwn},
                        {"bytes", volume.bytes}});
    }
    return list;
}

}  // namespace

std::string chainJson(const MappingChain& chain)
{
    const Json document{{"initiators", initiators(chain)},
                        {"hosts", hosts(chain)},
                        {"hostGroups", groups(chain.hostGroups, "hosts")},
                        {"mappingViews", views(chain)},
                        {"lunGroups", groups(chain.lunGroups, "volumes")},
                        {"volumes", volumes(chain)}};
    return document.dump(2) + "\n";
}

}  // namespace brevan::sim
