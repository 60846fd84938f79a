#include "handlers/ReplyRecord.h"

#include "foundation/Operation.h"

#include <algorithm>

namespace brevan {

ReplyRecord::ReplyRecord(const Json::Value& record)
{
    if (!record.isObject() && !record.isNull()) {
        throw UnusableReply();
    }
    m_members.reserve(record.size());
    const auto end = record.end();
    for (auto member = record.begin(); member != end; ++member) {
        const char* keyEnd = nullptr;
        const char* key = member.memberName(&keyEnd);
        m_members.push_back({std::string_view(key, static_cast<std::size_t>(keyEnd - key)), &*member});
    }
}

const Json::Value* ReplyRecord::find(std::string_view key) const
{
    const auto isIt = [key](const Member& member) { return member.key == key; };
    const auto found = std::find_if(m_members.begin(), m_members.end(), isIt);
    return found == m_members.end() ? nullptr : found->value;
}

}  // namespace brevan
