#include "Records.h"

#include "ApiError.h"
#include "RecordText.h"
#include "Text.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace brevan::sim {

namespace {

/// Which objects are wanted, while it is put together.
struct Condition {
    std::string from;
    std::string sql;
    std::string order = "id";
    std::vector<Value> parameters;

    void add(const std::string& text, Value parameter)
    {
        sql += " AND (" + text + ")";
        parameters.push_back(std::move(parameter));
    }
};

std::string selection(const ResourceKind& kind)
{
    std::string columns;
    for (const Field& field : kind.fields) {
        columns += (columns.empty() ? "SELECT " : ", ") + std::string(field.sql);
    }
    return columns;
}

std::string idText(const Value& id)
{
    const auto* number = std::get_if<std::int64_t>(&id);
    return number != nullptr ? std::to_string(*number) : std::get<std::string>(id);
}

/// The whole record. A client that lists objects reads them one by one afterwards, so the texts are kept.
const std::string& record(Database& database, const ResourceKind& kind, const Value& id)
{
    const std::string key = std::string(kind.name) + " " + idText(id);
    if (const std::string* known = database.kept(key)) {
        return *known;
    }
    Statement row =
        database.query(selection(kind) + " FROM " + kind.table + " WHERE (" + kind.restriction + ") AND id = ?", {id});
    std::string text;
    if (row.step()) {
        appendRecord(text, row, kind);
    }
    return database.keep(key, text.empty() ? "{}" : std::move(text));
}

std::int64_t filterNumber(const std::string& key, const std::string& text)
{
    const auto number = decimal(text);
    if (!number || *number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
        throw ApiError(kBadQuery, "The filter value " + inQuotes(text) + " of " + key + " is not a whole number.");
    }
    return static_cast<std::int64_t>(*number);
}

Value filterValue(const Field& field, const std::string& text)
{
    if (field.match == Match::kNumber) {
        return filterNumber(field.key, text);
    }
    if (field.match == Match::kText) {
        return text;
    }
    if (text != "0" && text != "1" && text != "true" && text != "false") {
        throw ApiError(kBadQuery, "The filter value " + inQuotes(text) + " of " + field.key + " must be 0 or 1.");
    }
    return std::string(text == "1" || text == "true" ? "true" : "false");
}

void addFilter(Condition& condition, const ResourceKind& kind, const RequestQuery& query)
{
    for (const auto& [key, text] : query.filter()) {
        const auto field = std::find_if(kind.fields.begin(), kind.fields.end(),
                                        [&wanted = key](const Field& candidate) { return wanted == candidate.key; });
        if (field == kind.fields.end() || field->match == Match::kNever) {
            throw ApiError(kBadQuery, "A " + std::string(kind.name) + " cannot be filtered by " + inQuotes(key) + ".");
        }
        condition.add(std::string(field->sql) + " = ?", filterValue(*field, text));
    }
}

/// A "TYPE" that names another kind than the path does is a client's mistake that must not go unnoticed.
void checkType(const ResourceKind& kind, const RequestQuery& query)
{
    const std::string type = query.value("TYPE");
    if (!type.empty() && kind.type != ObjectType::kNone && type != std::to_string(static_cast<int>(kind.type))) {
        throw ApiError(kBadQuery, "TYPE " + inQuotes(type) + " is not the type of a " + kind.name + ".");
    }
}

void addAssociation(Condition& condition, Database& database, const ResourceKind& kind, const RequestQuery& query)
{
    const std::string type = query.value("ASSOCIATEOBJTYPE");
    if (type.empty() && query.value("ASSOCIATEOBJID").empty()) {
        return;
    }
    const std::string id = query.require("ASSOCIATEOBJID");
    query.require("ASSOCIATEOBJTYPE");
    for (const Association& association : kind.associations) {
        if (type == std::to_string(static_cast<int>(association.type))) {
            condition.add(association.condition, existingId(database, *kindOfType(association.type), id));
            if (association.through != nullptr) {
                const std::string through = association.through;
                condition.order = through;
                condition.from = through.substr(0, through.find('.')) + " CROSS JOIN " + kind.table + " ON " + kind.table +
                                 ".id = " + through;
            }
            return;
        }
    }
    throw ApiError(kBadQuery,
                   "A " + std::string(kind.name) + " has no association with objects of type " + inQuotes(type) + ".");
}

Condition conditionOf(Database& database, const ResourceKind& kind, const RequestQuery& query)
{
    Condition condition;
    condition.from = kind.table;
    condition.sql = std::string("(") + kind.restriction + ")";
    checkType(kind, query);
    addFilter(condition, kind, query);
    addAssociation(condition, database, kind, query);
    return condition;
}

/// The IDs of those that the condition picks, in order, at most so many of them.
std::vector<Value> idsOf(Database& database, const ResourceKind& kind, const Condition& condition, std::uint64_t most)
{
    std::vector<Value> parameters = condition.parameters;
    parameters.emplace_back(static_cast<std::int64_t>(most));
    Statement row = database.query(std::string("SELECT ") + kind.table + ".id FROM " + condition.from + " WHERE " +
                                       condition.sql + " ORDER BY " + condition.order + " LIMIT ?",
                                   parameters);
    std::vector<Value> ids;
    while (row.step()) {
        ids.push_back(kind.numericId ? Value(row.number(0)) : Value(row.text(0)));
    }
    return ids;
}

std::string keyOf(const ResourceKind& kind, const Condition& condition)
{
    std::string key = std::string(kind.name) + " " + condition.sql;
    for (const Value& parameter : condition.parameters) {
        const std::string text = idText(parameter);
        key += " " + std::to_string(text.size()) + " " + text;
    }
    return key;
}

/// A client reads a long list page by page. Walking to each page from the beginning would make the last ones the dearest, so
/// the second page finds out about all of them at once, and those after it are cut out of what is kept.
std::vector<Value> pageOf(Database& database, const ResourceKind& kind, const Condition& condition, std::uint64_t first,
                          std::uint64_t most)
{
    if (first == 0) {
        return idsOf(database, kind, condition, most);
    }
    const std::string key = keyOf(kind, condition);
    const std::vector<Value>* all = database.keptIds(key);
    if (all == nullptr) {
        all = &database.keepIds(key, idsOf(database, kind, condition, std::numeric_limits<std::int64_t>::max()));
    }
    const std::uint64_t begin = std::min<std::uint64_t>(first, all->size());
    const std::uint64_t end = begin + std::min(most, all->size() - begin);
    return {all->begin() + static_cast<std::ptrdiff_t>(begin), all->begin() + static_cast<std::ptrdiff_t>(end)};
}

[[noreturn]] void unknown(const ResourceKind& kind, const std::string& id)
{
    throw ApiError(kind.unknownCode, "The " + std::string(kind.name) + " " + inQuotes(id) + " does not exist.");
}

}  // namespace

Value existingId(Database& database, const ResourceKind& kind, const std::string& id)
{
    Value value = id;
    if (kind.numericId) {
        const auto number = decimal(id);
        // Only the array's own spelling is an ID: "007" is no object.
        if (!number || std::to_string(*number) != id ||
            *number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            unknown(kind, id);
        }
        value = static_cast<std::int64_t>(*number);
    }
    const std::string sql = std::string("SELECT 1 FROM ") + kind.table + " WHERE (" + kind.restriction + ") AND id = ?";
    if (!database.exists(sql, {value})) {
        unknown(kind, id);
    }
    return value;
}

std::string readRecord(Database& database, const ResourceKind& kind, const Value& id)
{
    return record(database, kind, id);
}

std::string readRecords(Database& database, const ResourceKind& kind, const RequestQuery& query)
{
    const Range range = query.range().value_or(Range{0, std::numeric_limits<std::uint64_t>::max()});
    const auto most = std::min(range.last - range.first, kMostRecords + 1);
    const std::vector<Value> page = pageOf(database, kind, conditionOf(database, kind, query), range.first, most);
    if (page.size() > kMostRecords) {
        throw ApiError(kTooManyRecords,
                       "The list is longer than " + std::to_string(kMostRecords) + " records: ask for a range.");
    }
    std::string records;
    for (const Value& id : page) {
        const std::string& text = record(database, kind, id);
        if (records.empty()) {
            records.reserve((text.size() + 16) * page.size());
        }
        records += records.empty() ? '[' : ',';
        records += text;
    }
    return records.empty() ? records : records + "]";
}

std::int64_t countRecords(Database& database, const ResourceKind& kind, const RequestQuery& query)
{
    const Condition condition = conditionOf(database, kind, query);
    return database.number("SELECT count(*) FROM " + condition.from + " WHERE " + condition.sql, condition.parameters);
}

}  // namespace brevan::sim
