#ifndef BREVAN_TESTS_SIMULATOR_FIELDS_H
#define BREVAN_TESTS_SIMULATOR_FIELDS_H

#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace brevan::sim::test {

/// A value of a flat JSON object, kept as its JSON text. The tests know JSON through this header and Data only, because the
/// parser's own header costs seconds in each source that uses it.
class Scalar {
public:
    Scalar() = default;
    Scalar(const char* text);
    Scalar(const std::string& text);
    Scalar(bool value);
    Scalar(int value);
    Scalar(unsigned long value);
    Scalar(unsigned long long value);
    const std::string& json() const;

private:
    std::string m_json = "null";
};

/// A flat JSON object to send or to compare with.
class Fields {
public:
    Fields() = default;
    Fields(std::initializer_list<std::pair<const std::string, Scalar>> members);
    Scalar& operator[](const std::string& key);
    void update(const Fields& others);
    void erase(const std::string& key);
    /// As JSON, keys in the order of the alphabet.
    std::string dump() const;

private:
    std::map<std::string, Scalar> m_members;
};

/// JSON that was received. What is not there, or is of another type than asked for, is an exception.
class Data {
public:
    /// Absent: is_null.
    Data() = default;
    static Data parse(const std::string& text);

    bool isAbsent() const;
    std::size_t size() const;
    bool contains(const std::string& key) const;
    bool isText() const;
    Data at(std::size_t index) const;
    Data at(const std::string& key) const;
    std::string text() const;
    int number() const;
    /// As JSON, keys in the order of the alphabet.
    std::string dump() const;
    /// Empty where everything that `wanted` has stands here, too, and lists are equally long: objects may have more keys. A
    /// wanted text with "<...>" in it stands for any text but an empty one. Otherwise the first place that differs.
    std::string differenceFrom(const Data& wanted) const;

private:
    struct Node;
    explicit Data(std::shared_ptr<const Node> node);
    std::shared_ptr<const Node> m_node;
};

bool operator==(const Data& data, const Fields& fields);
bool operator==(const Data& data, const Scalar& value);
std::ostream& operator<<(std::ostream& stream, const Data& data);
std::ostream& operator<<(std::ostream& stream, const Fields& fields);
std::ostream& operator<<(std::ostream& stream, const Scalar& value);

}  // namespace brevan::sim::test

#endif
