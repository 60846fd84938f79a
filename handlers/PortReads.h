#ifndef BREVAN_HANDLERS_PORTREADS_H
#define BREVAN_HANDLERS_PORTREADS_H

#include "handlers/BatchPath.h"
#include "handlers/RecordReader.h"
#include "handlers/ResourceOperation.h"

#include <cstddef>
#include <string>
#include <vector>

// What the three kinds of ports have in common: one read by ID, and one of a list that carries whole records.

namespace brevan {

constexpr std::int64_t kLogicTypeUnset = 100;

template <class Port, std::size_t Count>
Port readPort(ResourceOperation&& operation, const char* path, const std::string& id, const char* idMissing,
              const Field<Port> (&fields)[Count])
{
    return perform(operation, [&](ResourceOperation& entered) {
        entered.require(!id.empty(), idMissing);
        return readFirst(entered.get(path + id), fields);
    });
}

template <class Port, class Query, std::size_t Count>
std::vector<Port> readPorts(ResourceOperation&& operation, const char* path, const Query& query,
                            const Field<Port> (&fields)[Count])
{
    return perform(operation, [&](ResourceOperation& entered) {
        const RestResponse reply = entered.get(BatchPath(path)
                                                   .where("ID", query.condition.ID)
                                                   .where("NAME", query.condition.NAME)
                                                   .where("LOGICTYPE", query.condition.LOGICTYPE, kLogicTypeUnset)
                                                   .endFilter()  // stays also where no range follows: meant
                                                   .range("", query.rangeStart, query.rangeCount)
                                                   .text());
        std::vector<Port> ports;
        const unsigned int count = reply.count();
        for (unsigned int index = 0; index < count; ++index) {
            const Json::Value record = reply[index];
            if (hasId(record)) {
                ports.push_back(readRecord(record, fields));
            }
        }
        return ports;
    });
}

}  // namespace brevan

#endif
