#ifndef BREVAN_HANDLERS_RECORDREADER_H
#define BREVAN_HANDLERS_RECORDREADER_H

#include "foundation/Operation.h"
#include "handlers/ReplyText.h"

#include <RestResponse.h>

#include <cstddef>
#include <string>
#include <vector>

namespace brevan {

/// One row of a handler's table: how a key of the reply's record becomes a member of the typed record.
template <class Record>
struct Field {
    const char* key;
    void (*read)(Record& record, const ReplyRecord& from, const char* key);
};

template <class Member>
struct MemberOf;
template <class Owner, class Value>
struct MemberOf<Value Owner::*> {
    using Record = Owner;
    using Type = Value;
};

// The kinds of rows. Each is called with the member that it fills: text<&LunMO::NAME>("NAME").

template <auto Member, auto Convert>
constexpr auto field(const char* key)
{
    using Record = typename MemberOf<decltype(Member)>::Record;
    using Value = typename MemberOf<decltype(Member)>::Type;
    return Field<Record>{key, [](Record& record, const ReplyRecord& from, const char* name) {
                             record.*Member = static_cast<Value>(Convert(from, name));
                         }};
}

template <auto Member>
constexpr auto text(const char* key)
{
    return field<Member, replyText>(key);
}

template <auto Member>
constexpr auto number32(const char* key)
{
    return field<Member, replyNumber32>(key);
}

template <auto Member>
constexpr auto number64(const char* key)
{
    return field<Member, replyNumber64>(key);
}

/// What atoi makes of the text: speeds may be negative.
template <auto Member>
constexpr auto signedNumber(const char* key)
{
    return field<Member, replySigned>(key);
}

template <auto Member>
constexpr auto size64(const char* key)
{
    return field<Member, replySize>(key);
}

template <auto Member>
constexpr auto type(const char* key)
{
    return field<Member, replyType>(key);
}

template <auto Member>
constexpr auto flag(const char* key)
{
    return field<Member, replyFlag>(key);
}

/// Text that keeps the member's default where the record does not have the key.
template <auto Member>
constexpr auto textIfPresent(const char* key)
{
    using Record = typename MemberOf<decltype(Member)>::Record;
    return Field<Record>{key, [](Record& record, const ReplyRecord& from, const char* name) {
                             if (from.find(name) != nullptr) {
                                 record.*Member = replyText(from, name);
                             }
                         }};
}

/// Whether the record names an object. What is neither a record nor absent makes the whole reply unusable.
inline bool hasId(const Json::Value& record)
{
    if (!record.isObject() && !record.isNull()) {
        throw UnusableReply();
    }
    return record.isObject() && record.isMember("ID");
}

template <class Record, std::size_t Count>
Record readRecord(const Json::Value& from, const Field<Record> (&fields)[Count])
{
    const ReplyRecord reply(from);
    Record record;
    for (const Field<Record>& field : fields) {
        field.read(record, reply, field.key);
    }
    return record;
}

/// The first record of a reply; a default record where there is none with an "ID".
template <class Record, std::size_t Count>
Record readFirst(const RestResponse& reply, const Field<Record> (&fields)[Count])
{
    if (reply.count() == 0) {
        return Record();
    }
    const Json::Value first = reply[0];
    return hasId(first) ? readRecord(first, fields) : Record();
}

/// Reads one by one what a list names: the list gives only IDs. Records without an "ID" are skipped.
template <class ReadOne>
auto readEach(const RestResponse& list, ReadOne readOne)
{
    std::vector<decltype(readOne(std::string()))> records;
    const unsigned int count = list.count();
    for (unsigned int index = 0; index < count; ++index) {
        const Json::Value entry = list[index];
        if (hasId(entry)) {
            records.push_back(readOne(idOf(entry)));
        }
    }
    return records;
}

/// What the first entry of a list names, or a default record where the list has none.
template <class ReadOne>
auto readFirstNamed(const RestResponse& list, ReadOne readOne)
{
    const Json::Value first = list[0];
    return hasId(first) ? readOne(idOf(first)) : decltype(readOne(std::string()))();
}

}  // namespace brevan

#endif
