#include "simulator/Database.h"

#include "simulator/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

using namespace brevan::sim;

namespace {

class DatabaseFile : public ::testing::Test {
protected:
    ~DatabaseFile() override { std::filesystem::remove_all(m_directory); }
    std::string m_directory = makePrivateDirectory();
    std::string m_file = m_directory + "/array.db";
};

void addPool(Database& database, std::int64_t id)
{
    database.insert("pool", {{"id", id}, {"name", "pool" + std::to_string(id)}, {"capacity", std::int64_t{1}}});
}

}  // namespace

TEST_F(DatabaseFile, KeepsWhatWasCommitted)
{
    {
        Database database(m_file);
        Transaction transaction(database);
        addPool(database, 7);
        transaction.commit();
    }
    Database again(m_file);
    EXPECT_EQ(again.text("SELECT name FROM pool WHERE id = ?", {std::int64_t{7}}), "pool7");
}

TEST_F(DatabaseFile, RefusesAFileOfAnotherKind)
{
    {
        Database database(m_file);
        database.execute("PRAGMA user_version = 99");
    }
    EXPECT_THROW(Database{m_file}, std::runtime_error);
    writeFileAtomically(m_file, std::string(4096, 'x'));
    EXPECT_THROW(Database{m_file}, std::runtime_error);
}

TEST(Database, UndoesWhatIsNotCommitted)
{
    Database database(":memory:");
    {
        Transaction transaction(database);
        addPool(database, 7);
        EXPECT_EQ(database.next("object"), 1);
    }
    EXPECT_FALSE(database.exists("SELECT 1 FROM pool", {}));
    EXPECT_EQ(database.next("object"), 1);
    EXPECT_EQ(database.next("object"), 2);
}

TEST(Database, RunsTheSameStatementInsideItself)
{
    Database database(":memory:");
    addPool(database, 1);
    addPool(database, 2);
    Statement outer = database.query("SELECT id FROM pool ORDER BY id");
    ASSERT_TRUE(outer.step());
    Statement inner = database.query("SELECT id FROM pool ORDER BY id");
    ASSERT_TRUE(inner.step());
    EXPECT_EQ(inner.number(0), 1);
    ASSERT_TRUE(outer.step());
    EXPECT_EQ(outer.number(0), 2);
}

TEST(Database, StaysUsableAfterMoreTextsThanItKeeps)
{
    Database database(":memory:");
    for (int index = 0; index < 1200; ++index) {
        ASSERT_EQ(database.number("SELECT " + std::to_string(index)), index);
    }
}

TEST(Database, SaysWhatIsWrongWithAStatement)
{
    Database database(":memory:");
    EXPECT_THROW(database.execute("SELECT nonsense"), std::runtime_error);
    EXPECT_THROW(database.insert("snapshot", {{"id", std::int64_t{1}}}), std::runtime_error);
}

TEST(Database, KeepsATextUntilSomethingChanges)
{
    Database database(":memory:");
    EXPECT_EQ(database.kept("names"), nullptr);
    EXPECT_EQ(database.keep("names", "none"), "none");
    ASSERT_NE(database.kept("names"), nullptr);
    EXPECT_EQ(*database.kept("names"), "none");
    addPool(database, 1);
    EXPECT_EQ(database.kept("names"), nullptr);
}

TEST(Database, ForgetsATextWithTheTransactionThatIsUndone)
{
    Database database(":memory:");
    {
        Transaction transaction(database);
        addPool(database, 7);
        database.kept("name");
        database.keep("name", "pool7");
    }
    EXPECT_EQ(database.kept("name"), nullptr);
}

TEST(Database, KeepsNoMoreTextsThanItShould)
{
    Database database(":memory:");
    database.kept("0");
    for (int index = 0; index <= 20000; ++index) {
        database.keep(std::to_string(index), "x");
    }
    EXPECT_EQ(database.kept("0"), nullptr);
    EXPECT_NE(database.kept("20000"), nullptr);
}

TEST(Database, KeepsNoMoreIdsThanItShould)
{
    Database database(":memory:");
    EXPECT_EQ(database.keptIds("0"), nullptr);
    for (int list = 0; list <= 5; ++list) {
        database.keepIds(std::to_string(list), std::vector<Value>(100000, std::int64_t{1}));
    }
    EXPECT_EQ(database.keptIds("0"), nullptr);
    ASSERT_NE(database.keptIds("5"), nullptr);
    EXPECT_EQ(database.keptIds("5")->size(), 100000u);
    addPool(database, 1);
    EXPECT_EQ(database.keptIds("5"), nullptr);
}
