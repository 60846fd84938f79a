#include "Objects.h"

namespace brevan::sim {

const ResourceKind& poolKind()
{
    static const ResourceKind kKind{"storage pool",
                                    "pool",
                                    ObjectType::kPool,
                                    kUnknownPool,
                                    true,
                                    false,
                                    "1",
                                    {
                                        {"ID", "id", Form::kText, Match::kNumber},
                                        {"NAME", "name", Form::kText, Match::kText},
                                        {"TYPE", "216"},
                                        {"HEALTHSTATUS", "health", Form::kText, Match::kNumber},
                                        {"RUNNINGSTATUS", "running", Form::kText, Match::kNumber},
                                        {"SECTORSIZE", "512"},
                                        {"TOTALCAPACITY", "capacity"},
                                        {"ALLOCATEDCAPACITY", "allocated"},
                                        {"FREECAPACITY", "capacity - allocated"},
                                    },
                                    {}};
    return kKind;
}

void addPoolRoutes(Router& router)
{
    addReadRoutes(router, poolKind(), "/storagepool", "/storagepool");
}

}  // namespace brevan::sim
