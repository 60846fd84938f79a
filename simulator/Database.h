#ifndef BREVAN_SIMULATOR_DATABASE_H
#define BREVAN_SIMULATOR_DATABASE_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace brevan::sim {

/// A value of a column or of a parameter; monostate is NULL.
using Value = std::variant<std::monostate, std::int64_t, std::string>;

/// A prepared statement while it runs. It goes back to the database's store of statements when this object ends.
class Statement {
public:
    Statement(sqlite3_stmt* statement, const std::vector<Value>& parameters);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    /// The next row: true; no further row: false.
    bool step();
    std::int64_t number(int column) const;
    std::string text(int column) const;
    /// Until the next step.
    std::string_view view(int column) const;
    bool isNull(int column) const;

private:
    void bind(int index, const Value& value);
    sqlite3_stmt* m_statement;
};

/// The array's state in SQLite. Every failure is a std::runtime_error. For one thread at a time.
class Database {
public:
    /// `path`: a file, made if it is not there, or ":memory:". A file of another schema is refused.
    explicit Database(const std::string& path);
    /// A file that holds an array already, also one that an array is running on: for reading only.
    static std::unique_ptr<Database> existing(const std::string& path);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    Statement query(const std::string& sql, const std::vector<Value>& parameters = {});
    /// Runs a statement that has no rows; returns how many rows it changed.
    int execute(const std::string& sql, const std::vector<Value>& parameters = {});
    /// One row for the columns given.
    void insert(const std::string& table, const std::vector<std::pair<std::string, Value>>& columns);
    bool exists(const std::string& sql, const std::vector<Value>& parameters);
    /// First column of the first row; 0 where there is no row.
    std::int64_t number(const std::string& sql, const std::vector<Value>& parameters = {});
    /// First column of the first row; empty where there is no row.
    std::string text(const std::string& sql, const std::vector<Value>& parameters = {});
    /// The next number of a counter. It never comes back once the transaction is committed.
    std::int64_t next(const std::string& counter);
    /// A text that follows from what is in the database and was kept since its last change; null where there is none.
    const std::string* kept(const std::string& key);
    /// Keeps one. Valid until the next call of either.
    const std::string& keep(const std::string& key, std::string text);
    /// The same for lists of IDs.
    const std::vector<Value>* keptIds(const std::string& key);
    const std::vector<Value>& keepIds(const std::string& key, std::vector<Value> ids);

private:
    struct Closer {
        void operator()(sqlite3* handle) const;
    };
    struct Finaliser {
        void operator()(sqlite3_stmt* statement) const;
    };
    using Handle = std::unique_ptr<sqlite3, Closer>;
    using Prepared = std::unique_ptr<sqlite3_stmt, Finaliser>;

    Database(const std::string& path, int flags);
    sqlite3_stmt* prepare(const std::string& sql);
    void script(const std::string& sql);
    void openSchema();
    void forgetWhatChanged();
    friend class Transaction;

    Handle m_handle;
    std::unordered_map<std::string, std::vector<Prepared>> m_statements;
    std::unordered_map<std::string, std::string> m_kept;
    std::unordered_map<std::string, std::vector<Value>> m_keptIds;
    std::size_t m_keptIdCount = 0;  ///< in all lists together
    std::int64_t m_keptSince = -1;  ///< count of changes then
};

/// All or nothing: what is not committed is undone.
class Transaction {
public:
    explicit Transaction(Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();

private:
    Database& m_database;
    bool m_open = true;
};

}  // namespace brevan::sim

#endif
