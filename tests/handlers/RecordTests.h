#ifndef BREVAN_TESTS_HANDLERS_RECORDTESTS_H
#define BREVAN_TESTS_HANDLERS_RECORDTESTS_H

#include "RequestTests.h"

namespace brevan::test {

/// A read whose reply holds one record of which every key is read.
struct RecordRow {
    const char* name;  ///< of the operation
    std::string request;
    std::string record;              ///< a good one
    std::vector<std::string> sizes;  ///< the keys that must be sizes
    Call call;
};

inline void PrintTo(const RecordRow& row, std::ostream* out)
{
    *out << row.name;
}

/// What the array may get wrong in a record: never a crash, never an exception that callers do not know.
class RecordReply : public SdkTest, public testing::WithParamInterface<RecordRow> {
protected:
    /// Answers the read with the good record in which `key` has another value (JSON), and returns what it throws.
    std::string thrownWith(const std::string& key, const std::string& value);
    std::string thrownAt(const std::string& data);
    void expectUnusable(const std::string& thrown);
    std::vector<std::string> keys() const;
    bool isSize(const std::string& key) const;
};

}  // namespace brevan::test

#endif
