#include "Fields.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace brevan::sim::test {

struct Data::Node {
    nlohmann::json json;
};

Scalar::Scalar(const char* text) : m_json(nlohmann::json(text).dump()) {}

Scalar::Scalar(const std::string& text) : m_json(nlohmann::json(text).dump()) {}

Scalar::Scalar(bool value) : m_json(value ? "true" : "false") {}

Scalar::Scalar(int value) : m_json(std::to_string(value)) {}

Scalar::Scalar(unsigned long value) : m_json(std::to_string(value)) {}

Scalar::Scalar(unsigned long long value) : m_json(std::to_string(value)) {}

const std::string& Scalar::json() const
{
    return m_json;
}

Fields::Fields(std::initializer_list<std::pair<const std::string, Scalar>> members) : m_members(members) {}

Scalar& Fields::operator[](const std::string& key)
{
    return m_members[key];
}

void Fields::update(const Fields& others)
{
    for (const auto& [key, value] : others.m_members) {
        m_members[key] = value;
    }
}

void Fields::erase(const std::string& key)
{
    m_members.erase(key);
}

std::string Fields::dump() const
{
    std::string text = "{";
    for (const auto& [key, value] : m_members) {
        text += (text.size() == 1 ? "" : ",") + Scalar(key).json() + ":" + value.json();
    }
    return text + "}";
}

Data::Data(std::shared_ptr<const Node> node) : m_node(std::move(node)) {}

Data Data::parse(const std::string& text)
{
    return Data(std::make_shared<const Node>(Node{nlohmann::json::parse(text)}));
}

bool Data::isAbsent() const
{
    return m_node == nullptr;
}

std::size_t Data::size() const
{
    return m_node->json.size();
}

bool Data::contains(const std::string& key) const
{
    return m_node->json.contains(key);
}

bool Data::isText() const
{
    return m_node->json.is_string();
}

Data Data::at(std::size_t index) const
{
    return Data(std::make_shared<const Node>(Node{m_node->json.at(index)}));
}

Data Data::at(const std::string& key) const
{
    return Data(std::make_shared<const Node>(Node{m_node->json.at(key)}));
}

std::string Data::text() const
{
    return m_node->json.get<std::string>();
}

int Data::number() const
{
    return m_node->json.get<int>();
}

std::string Data::dump() const
{
    return m_node == nullptr ? "absent" : m_node->json.dump();
}

namespace {

using nlohmann::json;

bool fits(const json& wanted, const json& real)
{
    const std::string text = wanted.is_string() ? wanted.get<std::string>() : std::string();
    const std::size_t begin = text.find('<');
    if (begin == std::string::npos || text.back() != '>') {
        return wanted == real;
    }
    const std::string known = text.substr(0, begin);
    return real.is_string() && real.get<std::string>().size() > known.size() && real.get<std::string>().find(known) == 0;
}

std::string difference(const json& wanted, const json& real, const std::string& place)
{
    const bool bothLists = wanted.is_array() && real.is_array() && wanted.size() == real.size();
    if (!bothLists && !(wanted.is_object() && real.is_object())) {
        return fits(wanted, real) ? std::string() : place + ": wanted " + wanted.dump() + ", there is " + real.dump();
    }
    for (const auto& [key, value] : wanted.items()) {
        const json* found = bothLists ? &real.at(std::stoul(key)) : real.contains(key) ? &real.at(key) : nullptr;
        const std::string inside = place + "/" + key;
        const std::string result = found == nullptr ? inside + " is missing" : difference(value, *found, inside);
        if (!result.empty()) {
            return result;
        }
    }
    return {};
}

}  // namespace

std::string Data::differenceFrom(const Data& wanted) const
{
    return difference(wanted.m_node->json, m_node->json, "");
}

bool operator==(const Data& data, const Fields& fields)
{
    return data.dump() == fields.dump();
}

bool operator==(const Data& data, const Scalar& value)
{
    return data.dump() == value.json();
}

std::ostream& operator<<(std::ostream& stream, const Data& data)
{
    return stream << data.dump();
}

std::ostream& operator<<(std::ostream& stream, const Fields& fields)
{
    return stream << fields.dump();
}

std::ostream& operator<<(std::ostream& stream, const Scalar& value)
{
    return stream << value.json();
}

}  // namespace brevan::sim::test
