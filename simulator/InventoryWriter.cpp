#include "Inventory.h"
#include "InventoryTables.h"

#include <nlohmann/json.hpp>

namespace brevan::sim {

namespace {

using Json = nlohmann::ordered_json;
using Type = InventoryType;

/// What is selected for the values of one object: an expression for each key, and none for members and secrets.
std::string selection(const InventorySection& section)
{
    std::string columns;
    for (const InventoryColumn& column : section.columns) {
        const char* expression = column.type == Type::kMembers || column.type == Type::kSecret ? "NULL" : column.column;
        columns += (columns.empty() ? "SELECT " : ", ") + std::string(expression);
    }
    return columns + " FROM " + section.table + " ORDER BY " + section.order;
}

Json members(Database& database, const InventoryColumn& column, const Value& id)
{
    Json list = Json::array();
    Statement row = database.query(column.members, {id});
    while (row.step()) {
        list.push_back(row.text(0));
    }
    return list;
}

Json value(const Statement& row, int index, const InventoryColumn& column)
{
    switch (column.type) {
        case Type::kNumber:
            return row.number(index);
        case Type::kFlag:
            return row.number(index) == 1;
        default:
            return row.text(index);
    }
}

Json record(Database& database, const InventorySection& section, const Statement& row)
{
    Json object = Json::object();
    int index = -1;
    for (const InventoryColumn& column : section.columns) {
        ++index;
        if (column.type == Type::kMembers) {
            object[column.key] = members(database, column, row.number(0));
        } else if (column.type == Type::kDetail) {
            const Json details = Json::parse(row.text(index));
            if (details.contains(column.key)) {
                object[column.key] = details[column.key];
            }
        } else if (!row.isNull(index)) {
            object[column.key] = value(row, index, column);
        }
    }
    return object;
}

void writeSection(Database& database, const InventorySection& section, std::string& text)
{
    text += ",\n\"" + std::string(section.key) + "\": [";
    const char* separator = "\n";
    Statement row = database.query(selection(section));
    while (row.step()) {
        text += separator + record(database, section, row).dump();
        separator = ",\n";
    }
    text += *separator == ',' ? "\n]" : "]";
}

}  // namespace

std::string writeInventory(Database& database)
{
    std::string text = "{\"version\": " + std::to_string(kInventoryVersion);
    text += ",\n\"device_id\": " + Json(database.text("SELECT device_id FROM identity")).dump();
    text += ",\n\"next_id\": " + std::to_string(database.number("SELECT next FROM counter WHERE name = 'object'"));
    text += ",\n\"next_volume\": " + std::to_string(database.number("SELECT next FROM counter WHERE name = 'volume'"));
    for (const InventorySection& section : inventorySections()) {
        writeSection(database, section, text);
    }
    return text + "\n}\n";
}

}  // namespace brevan::sim
