#include "Files.h"
#include "Identity.h"
#include "Inventory.h"
#include "InventoryIdentities.h"
#include "InventoryReader.h"
#include "InventoryValues.h"
#include "Mapping.h"
#include "Secrets.h"
#include "Text.h"

#include <algorithm>
#include <cstdio>
#include <set>
#include <stdexcept>

namespace brevan::sim {

namespace {

using Type = InventoryType;

constexpr std::int64_t kLargestPoolId = 999999999;

/// Loads one document and knows the place where it is.
class Loader {
public:
    Loader(Database& database, const InventoryDocument& document) : m_database(database), m_document(document) {}

    void load(const std::string& deviceId)
    {
        try {
            loadHeader(deviceId);
            countExplicit();
            for (const InventorySection& section : inventorySections()) {
                loadSection(section);
            }
            m_identities.setCounters(m_database);
            m_section = nullptr;
            m_key = "mapping_views";
            updateLunNumbers(m_database);
        } catch (const std::exception& mistake) {
            throw std::runtime_error(place() + ": " + mistake.what());
        }
    }

private:
    const nlohmann::json* header(const char* key)
    {
        m_key = key;
        m_section = nullptr;
        const auto found = m_document.header.find(key);
        return found == m_document.header.end() ? nullptr : &found->second;
    }

    void loadHeader(const std::string& deviceId)
    {
        const nlohmann::json* version = header("version");
        if (version == nullptr || numberFrom(*version, 65535) != kInventoryVersion) {
            wrong("this program reads version " + std::to_string(kInventoryVersion) + ", and the document must say so");
        }
        const nlohmann::json* own = header("device_id");
        const std::string id = own != nullptr ? textFrom(*own) : deviceId.empty() ? kUsualDeviceId : deviceId;
        if (!deviceId.empty() && id != deviceId) {
            wrong("the inventory is that of the array " + inQuotes(id) + ", not of " + inQuotes(deviceId));
        }
        setIdentity(m_database, id);
        m_identities.setPrefix(wwnPrefix(id));
    }

    /// IDs and WWNs that the document chooses come before those that the array gives.
    void countExplicit()
    {
        for (const auto& [section, records] : m_document.sections) {
            for (std::size_t index = 0; index < records.size(); ++index) {
                for (const auto& [column, value] : records[index]) {
                    at(*section, index, column);
                    countExplicit(*column, value);
                }
            }
        }
        const std::int64_t nextId = next("next_id", m_identities.nextId());
        m_identities.setNext(nextId, next("next_volume", m_identities.nextVolume()));
    }

    void countExplicit(const InventoryColumn& column, const nlohmann::json& value)
    {
        if (column.type == Type::kId) {
            m_identities.takeId(numberFrom(value, kLargestId));
        } else if (column.type == Type::kWwn) {
            m_identities.takeWwn(textFrom(value));
        }
    }

    std::int64_t next(const char* key, std::int64_t least)
    {
        const nlohmann::json* value = header(key);
        const std::int64_t number = value == nullptr ? least : numberFrom(*value, kLargestId + 1);
        if (number < least) {
            wrong("it must be higher than all that are taken: at least " + std::to_string(least));
        }
        return number;
    }

    void loadSection(const InventorySection& section)
    {
        const auto found = m_document.sections.find(&section);
        if (found == m_document.sections.end()) {
            return;
        }
        for (std::size_t index = 0; index < found->second.size(); ++index) {
            loadRecord(section, found->second[index], index);
        }
    }

    void loadRecord(const InventorySection& section, const InventoryRecord& record, std::size_t index)
    {
        InventoryRow row;
        std::map<std::string, nlohmann::json> details;
        for (const InventoryColumn& column : section.columns) {
            const nlohmann::json* value = valueOf(record, column);
            at(section, index, &column);
            if (column.type == Type::kDetail) {
                addDetail(details[column.column], column, value);
            } else if (column.type != Type::kMembers) {
                row[column.column] = value == nullptr ? leftOut(column) : converted(section, column, *value, row);
            }
        }
        at(section, index, nullptr);
        if (section.check != nullptr) {
            section.check(m_database, row);
        }
        for (const auto& [column, members] : details) {
            row[column] = members.dump();
        }
        m_database.insert(section.table, {row.begin(), row.end()});
        for (const auto& [column, value] : record) {
            at(section, index, column);
            addMembers(*column, value, row);
        }
    }

    static const nlohmann::json* valueOf(const InventoryRecord& record, const InventoryColumn& wanted)
    {
        for (const auto& [column, value] : record) {
            if (column == &wanted) {
                return &value;
            }
        }
        return nullptr;
    }

    Value leftOut(const InventoryColumn& column)
    {
        switch (column.missing) {
            case Missing::kMistake:
                wrong("the value is missing");
            case Missing::kZero:
                return column.type == Type::kChapMode ? Value(std::string("0")) : Value(std::int64_t{0});
            case Missing::kOne:
                return std::int64_t{1};
            case Missing::kTwo:
                return std::int64_t{2};
            case Missing::kNothing:
                break;
        }
        switch (column.type) {
            case Type::kId:
                return m_identities.giveId();
            case Type::kWwn:
                return m_identities.giveWwn();
            case Type::kText:
            case Type::kSecret:
                return std::string();
            default:
                return std::monostate();
        }
    }

    Value converted(const InventorySection& section, const InventoryColumn& column, const nlohmann::json& value,
                    const InventoryRow& row)
    {
        switch (column.type) {
            case Type::kId:
                return numberFrom(value, kLargestId);
            case Type::kPoolId:
                return unused(section, numberFrom(value, kLargestPoolId));
            case Type::kName:
                return unusedName(
                    section, textThatIs(isObjectName, value, "a name of 1 to 31 letters, digits, \"_\", \"-\" and \".\""),
                    row);
            case Type::kText:
                return textFrom(value, std::min<std::uint64_t>(column.most, 255));
            case Type::kWwn:
                return textFrom(value);
            case Type::kNumber:
                return numberFrom(value, column.most);
            case Type::kFlag:
                return flagFrom(value);
            case Type::kChapMode:
                return textThatIs(isChapMode, value, "\"0\", \"1\" or \"2\"");
            case Type::kReference:
                return reference(column, value);
            case Type::kIscsiName:
                return unused(section, textThatIs(isIscsiName, value, "an iSCSI name"));
            case Type::kPortName:
                return unused(section, textThatIs(isPortName, value, "a port name of 16 hexadecimal digits"));
            case Type::kPortKind:
                return textThatIs(isPortKind, value, "FC_PORT, FCoE_PORT or ETH_PORT");
            case Type::kSecret:
                return textFrom(value).empty() ? std::string() : sealed(textFrom(value));
            case Type::kMembers:
            case Type::kDetail:
                break;
        }
        return std::monostate();
    }

    Value unused(const InventorySection& section, const Value& id)
    {
        if (m_database.exists(std::string("SELECT 1 FROM ") + section.table + " WHERE id = ?", {id})) {
            wrong("another object has the same ID");
        }
        return id;
    }

    /// Ports of different kinds may have the same name.
    Value unusedName(const InventorySection& section, const std::string& name, const InventoryRow& row)
    {
        const auto kind = row.find("kind");
        const std::string scope = kind == row.end() ? std::string() : std::get<std::string>(kind->second);
        if (!m_names.insert(std::string(section.key) + "/" + scope + "/" + name).second) {
            wrong("another object of the kind has the name " + inQuotes(name) + ", too");
        }
        return name;
    }

    Value reference(const InventoryColumn& column, const nlohmann::json& value)
    {
        Value id = numberFrom(value, kLargestId);
        if (!m_database.exists(std::string("SELECT 1 FROM ") + column.table + " WHERE id = ?", {id})) {
            wrong("there is no " + kindName(column.table) + " with the ID " + std::to_string(std::get<std::int64_t>(id)));
        }
        return id;
    }

    static void addDetail(nlohmann::json& details, const InventoryColumn& column, const nlohmann::json* value)
    {
        details = details.is_null() ? nlohmann::json::object() : std::move(details);
        if (value != nullptr) {
            details[column.key] = textFrom(*value);
        }
    }

    void addMembers(const InventoryColumn& column, const nlohmann::json& members, const InventoryRow& row)
    {
        if (column.type != Type::kMembers) {
            return;
        }
        for (const nlohmann::json& member : members) {
            if (m_database.execute(column.addMember, {row.at("id"), reference(column, member)}) != 1) {
                wrong(member.dump() + " stands twice");
            }
        }
    }

    void at(const InventorySection& section, std::size_t index, const InventoryColumn* column)
    {
        m_section = &section;
        m_index = index;
        m_key = column == nullptr ? "" : column->key;
    }

    std::string place() const
    {
        std::string key = m_key;
        if (m_section == nullptr) {
            return key;
        }
        return std::string(m_section->key) + "[" + std::to_string(m_index) + "]" + (key.empty() ? "" : "." + key);
    }

    Database& m_database;
    const InventoryDocument& m_document;
    const InventorySection* m_section = nullptr;
    std::size_t m_index = 0;
    const char* m_key = "";
    InventoryIdentities m_identities;
    std::set<std::string> m_names;
};

}  // namespace

void loadInventory(Database& database, const std::string& text, const std::string& deviceId)
{
    const InventoryDocument document = readInventory(text);
    Loader(database, document).load(deviceId);
}

void loadInventoryFile(Database& database, const std::string& path, const std::string& deviceId)
{
    const std::string text = readFile(path, kLargestInventory);
    try {
        loadInventory(database, text, deviceId);
    } catch (const std::exception& mistake) {
        throw std::runtime_error(path + ": " + mistake.what());
    }
}

}  // namespace brevan::sim
