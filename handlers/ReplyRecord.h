#ifndef BREVAN_HANDLERS_REPLYRECORD_H
#define BREVAN_HANDLERS_REPLYRECORD_H

#include <json/value.h>

#include <string_view>
#include <vector>

namespace brevan {

/// The members of one record of a reply, laid side by side: a handler asks for some twenty of them, and each search through
/// JsonCpp's tree costs more than a look along the row. The Json::Value must outlive it, unchanged.
class ReplyRecord {
public:
    /// Null is a record without members. Throws UnusableReply for what is neither.
    explicit ReplyRecord(const Json::Value& record);

    /// Null where the record has no such member.
    const Json::Value* find(std::string_view key) const;

private:
    struct Member {
        std::string_view key;
        const Json::Value* value;
    };
    std::vector<Member> m_members;
};

}  // namespace brevan

#endif
