#include "Database.h"

#include "Schema.h"

#include <sqlite3.h>

#include <stdexcept>

namespace brevan::sim {

namespace {

// Filters make statements of many texts; beyond this many the store starts again instead of growing.
constexpr std::size_t kKeptStatements = 512;
constexpr std::size_t kKeptTexts = 20000;
constexpr std::size_t kKeptIds = 500000;  // a longer list is kept alone
constexpr std::size_t kKeptLists = 256;

[[noreturn]] void fail(sqlite3* handle, const std::string& what)
{
    throw std::runtime_error("database: " + what + ": " + (handle != nullptr ? sqlite3_errmsg(handle) : "out of memory"));
}

}  // namespace

Statement::Statement(sqlite3_stmt* statement, const std::vector<Value>& parameters) : m_statement(statement)
{
    int index = 1;
    for (const Value& parameter : parameters) {
        bind(index++, parameter);
    }
}

Statement::~Statement()
{
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
}

void Statement::bind(int index, const Value& value)
{
    int result = SQLITE_OK;
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        result = sqlite3_bind_int64(m_statement, index, *number);
    } else if (const auto* text = std::get_if<std::string>(&value)) {
        result = sqlite3_bind_text64(m_statement, index, text->data(), text->size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    if (result != SQLITE_OK) {
        fail(sqlite3_db_handle(m_statement), "parameter " + std::to_string(index));
    }
}

bool Statement::step()
{
    const int result = sqlite3_step(m_statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        fail(sqlite3_db_handle(m_statement), sqlite3_sql(m_statement));
    }
    return result == SQLITE_ROW;
}

std::int64_t Statement::number(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

std::string_view Statement::view(int column) const
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column));
    return bytes == nullptr ? std::string_view() : std::string_view(bytes, size);
}

std::string Statement::text(int column) const
{
    return std::string(view(column));
}

bool Statement::isNull(int column) const
{
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

void Database::Closer::operator()(sqlite3* handle) const
{
    sqlite3_close_v2(handle);
}

void Database::Finaliser::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

Database::Database(const std::string& path, int flags)
{
    sqlite3* handle = nullptr;
    const int result = sqlite3_open_v2(path.c_str(), &handle, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    m_handle.reset(handle);
    if (result != SQLITE_OK) {
        fail(handle, path);
    }
    sqlite3_busy_timeout(handle, 1000);
}

Database::Database(const std::string& path) : Database(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)
{
    script("PRAGMA foreign_keys = ON; PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;");
    openSchema();
}

std::unique_ptr<Database> Database::existing(const std::string& path)
{
    std::unique_ptr<Database> database(new Database(path, SQLITE_OPEN_READONLY));
    if (database->number("PRAGMA user_version") != kSchemaVersion) {
        throw std::runtime_error(path + " holds no array of this version of the simulated array");
    }
    return database;
}

Database::~Database() = default;

void Database::openSchema()
{
    const std::int64_t version = number("PRAGMA user_version");
    if (version == kSchemaVersion) {
        return;
    }
    if (version != 0 || number("SELECT count(*) FROM sqlite_master") != 0) {
        throw std::runtime_error("database: the file is not one of this version of the simulated array");
    }
    script("BEGIN; " + std::string(kSchema) + "; PRAGMA user_version = " + std::to_string(kSchemaVersion) + "; COMMIT;");
}

void Database::script(const std::string& sql)
{
    if (sqlite3_exec(m_handle.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        fail(m_handle.get(), "schema");
    }
}

sqlite3_stmt* Database::prepare(const std::string& sql)
{
    const auto known = m_statements.find(sql);
    if (known != m_statements.end()) {
        for (const Prepared& statement : known->second) {
            if (sqlite3_stmt_busy(statement.get()) == 0) {
                return statement.get();
            }
        }
    } else if (m_statements.size() >= kKeptStatements) {
        for (auto entry = m_statements.begin(); entry != m_statements.end();) {
            const bool busy = sqlite3_stmt_busy(entry->second.front().get()) != 0;
            entry = busy ? std::next(entry) : m_statements.erase(entry);
        }
    }
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v3(m_handle.get(), sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) != SQLITE_OK) {
        fail(m_handle.get(), sql);
    }
    m_statements[sql].emplace_back(statement);
    return statement;
}

Statement Database::query(const std::string& sql, const std::vector<Value>& parameters)
{
    return Statement(prepare(sql), parameters);
}

int Database::execute(const std::string& sql, const std::vector<Value>& parameters)
{
    Statement statement = query(sql, parameters);
    while (statement.step()) {
    }
    return sqlite3_changes(m_handle.get());
}

void Database::insert(const std::string& table, const std::vector<std::pair<std::string, Value>>& columns)
{
    std::string names;
    std::string places;
    std::vector<Value> values;
    for (const auto& [name, value] : columns) {
        names += (names.empty() ? "" : ", ") + name;
        places += places.empty() ? "?" : ", ?";
        values.push_back(value);
    }
    execute("INSERT INTO " + table + " (" + names + ") VALUES (" + places + ")", values);
}

bool Database::exists(const std::string& sql, const std::vector<Value>& parameters)
{
    return query(sql, parameters).step();
}

std::int64_t Database::number(const std::string& sql, const std::vector<Value>& parameters)
{
    Statement statement = query(sql, parameters);
    return statement.step() ? statement.number(0) : 0;
}

std::string Database::text(const std::string& sql, const std::vector<Value>& parameters)
{
    Statement statement = query(sql, parameters);
    return statement.step() ? statement.text(0) : std::string();
}

std::int64_t Database::next(const std::string& counter)
{
    return number("UPDATE counter SET next = next + 1 WHERE name = ? RETURNING next - 1", {counter});
}

void Database::forgetWhatChanged()
{
    const std::int64_t changes = sqlite3_total_changes64(m_handle.get());
    if (changes != m_keptSince) {
        m_kept.clear();
        m_keptIds.clear();
        m_keptIdCount = 0;
        m_keptSince = changes;
    }
}

const std::string* Database::kept(const std::string& key)
{
    forgetWhatChanged();
    const auto found = m_kept.find(key);
    return found == m_kept.end() ? nullptr : &found->second;
}

const std::vector<Value>* Database::keptIds(const std::string& key)
{
    forgetWhatChanged();
    const auto found = m_keptIds.find(key);
    return found == m_keptIds.end() ? nullptr : &found->second;
}

const std::vector<Value>& Database::keepIds(const std::string& key, std::vector<Value> ids)
{
    if (m_keptIdCount + ids.size() > kKeptIds || m_keptIds.size() >= kKeptLists) {
        m_keptIds.clear();
        m_keptIdCount = 0;
    }
    m_keptIdCount += ids.size();
    return m_keptIds[key] = std::move(ids);
}

const std::string& Database::keep(const std::string& key, std::string text)
{
    if (m_kept.size() >= kKeptTexts) {
        m_kept.clear();
    }
    return m_kept[key] = std::move(text);
}

Transaction::Transaction(Database& database) : m_database(database)
{
    m_database.execute("BEGIN");
}

Transaction::~Transaction()
{
    if (m_open) {
        // What is undone does not count as a change.
        m_database.m_kept.clear();
        try {
            m_database.execute("ROLLBACK");
        } catch (const std::exception&) {
            // SQLite has rolled back by itself after a failure such as a full disk; there is nothing left to undo.
        }
    }
}

void Transaction::commit()
{
    m_database.execute("COMMIT");
    m_open = false;
}

}  // namespace brevan::sim
