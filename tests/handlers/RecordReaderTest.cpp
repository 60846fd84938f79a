#include "handlers/RecordReader.h"

#include "RecordTests.h"
#include "foundation/Operation.h"

#include <json/reader.h>
#include <json/writer.h>

#include <algorithm>
#include <sstream>

namespace brevan::test {
namespace {

Json::Value parsed(const std::string& text)
{
    Json::Value value;
    std::istringstream(text) >> value;
    return value;
}

}  // namespace

std::string RecordReply::thrownWith(const std::string& key, const std::string& value)
{
    Json::Value record = parsed(GetParam().record);
    record[key] = parsed("[" + value + "]")[0];
    return thrownAt(Json::writeString(Json::StreamWriterBuilder(), record));
}

std::string RecordReply::thrownAt(const std::string& data)
{
    newLog();
    expect(GetParam().request, answer(data));
    return thrownBy([this] { GetParam().call(manager); });
}

void RecordReply::expectUnusable(const std::string& thrown)
{
    const std::string line = std::string("url error or internet error ") + GetParam().name;
    EXPECT_EQ(thrown, "Exception:" + line);
    EXPECT_EQ(newLog(), failed(GetParam().name, line, 1009));
    EXPECT_EQ(lastFailure().code, FAILURE_UNUSABLE_REPLY);
}

std::vector<std::string> RecordReply::keys() const
{
    return parsed(GetParam().record).getMemberNames();
}

bool RecordReply::isSize(const std::string& key) const
{
    const auto& sizes = GetParam().sizes;
    return std::find(sizes.begin(), sizes.end(), key) != sizes.end();
}

TEST_P(RecordReply, IsUnusableWhereAListOrAnObjectStandsForAValue)
{
    for (const std::string& key : keys()) {
        for (const char* value : {"[]", R"(["7"])", "{}", R"({"ID":"7"})", "[[]]"}) {
            SCOPED_TRACE(key + " is " + value);
            expectUnusable(thrownWith(key, value));
        }
    }
}

TEST_P(RecordReply, IsUnusableWhereASizeIsNone)
{
    for (const std::string& key : GetParam().sizes) {
        for (const char* value : {R"("abc")", R"("-1")", R"("18446744073709551616")", R"("1.5")", R"("0x10")", R"(" 1")",
                                  R"("1 ")", R"("99999999999999999999999")", "true", "1.5", "-1", R"("1e3")"}) {
            SCOPED_TRACE(key + " is " + value);
            expectUnusable(thrownWith(key, value));
        }
    }
}

TEST_P(RecordReply, IsReadWhateverElseStandsForAValue)
{
    for (const std::string& key : keys()) {
        for (const char* value : {"null", "5", R"("5")", R"("")", "-5", "true", R"("abc")", R"("-1")", "1.5", "1e300",
                                  R"("18446744073709551616")", R"("50%s\n\u0000")", "18446744073709551615"}) {
            const bool isNumber =
                std::string(value) == "null" || std::string(value).find_first_not_of("\"5") == std::string::npos;
            if (!isSize(key) || isNumber) {
                EXPECT_EQ(thrownWith(key, value), "nothing") << key << " is " << value;
            }
        }
    }
}

TEST_P(RecordReply, IsReadWithoutAnyOneOfItsKeys)
{
    for (const std::string& key : keys()) {
        Json::Value record = parsed(GetParam().record);
        record.removeMember(key);
        EXPECT_EQ(thrownAt(Json::writeString(Json::StreamWriterBuilder(), record)), "nothing") << "without " << key;
        EXPECT_EQ(newLog(), entered(GetParam().name));
    }
}

TEST_P(RecordReply, IsUnusableWhereTheRecordIsNoObject)
{
    for (const char* data : {"[7]", R"(["ID"])", "[true]", R"([[{"ID":"7"}]])"}) {
        SCOPED_TRACE(data);
        expectUnusable(thrownAt(data));
    }
}

TEST_P(RecordReply, MayHoldNothing)
{
    for (const char* data : {"", "{}", "[]", "[null]", "null"}) {
        EXPECT_EQ(thrownAt(data), "nothing") << data;
        EXPECT_EQ(newLog(), entered(GetParam().name));
    }
}

namespace {

struct Sample {
    std::string ID;
    std::string NAME = "default";
    std::uint32_t COUNT = 9;
};

constexpr Field<Sample> kFields[] = {
    text<&Sample::ID>("ID"),
    textIfPresent<&Sample::NAME>("NAME"),
    number32<&Sample::COUNT>("COUNT"),
};

TEST(RecordReader, FillsEveryFieldOfItsTable)
{
    const Sample sample = readRecord(parsed(R"({"ID":"7","NAME":"a","COUNT":"5","OTHER":[]})"), kFields);
    EXPECT_EQ(sample.ID, "7");
    EXPECT_EQ(sample.NAME, "a");
    EXPECT_EQ(sample.COUNT, 5U);
}

TEST(RecordReader, KeepsDefaultsOnlyOfTextsThatMayBeAbsent)
{
    const Sample sample = readRecord(parsed(R"({"ID":"7"})"), kFields);
    EXPECT_EQ(sample.NAME, "default");
    EXPECT_EQ(sample.COUNT, 0U);
    EXPECT_EQ(readRecord(parsed(R"({"NAME":""})"), kFields).NAME, "");
}

TEST(RecordReader, TellsWhatARecordWithoutAnIdIs)
{
    EXPECT_TRUE(hasId(parsed(R"({"ID":""})")));
    EXPECT_FALSE(hasId(parsed(R"({"NAME":"a"})")));
    EXPECT_FALSE(hasId(Json::Value()));
    for (const char* shape : {"7", "\"ID\"", "[]", "true"}) {
        EXPECT_THROW(hasId(parsed(shape)), UnusableReply) << shape;
    }
}

}  // namespace
}  // namespace brevan::test
