#include "InventoryReader.h"

#include "Text.h"

#include <algorithm>
#include <stdexcept>

namespace brevan::sim {

namespace {

/// Takes the document piece by piece, so that its objects are never kept twice.
class DocumentReader : public nlohmann::json_sax<nlohmann::json> {
public:
    explicit DocumentReader(const std::string& text) : m_text(text) {}

    bool null() override { return fail("null is no value; leave the key out"); }
    bool boolean(bool value) override { return take(value); }
    bool number_integer(number_integer_t value) override { return take(value); }
    bool number_unsigned(number_unsigned_t value) override { return take(value); }
    bool number_float(number_float_t value, const string_t&) override { return take(value); }
    bool string(string_t& value) override { return take(std::move(value)); }
    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override
    {
        if (m_depth == Depth::kOutside) {
            m_depth = Depth::kDocument;
        } else if (m_depth == Depth::kSection) {
            m_depth = Depth::kRecord;
            records().emplace_back();
        } else {
            return fail("an object has no place here");
        }
        m_key.clear();
        return true;
    }
    bool key(string_t& name) override
    {
        m_key = std::move(name);
        return m_depth == Depth::kDocument ? beginMember() : beginValue();
    }
    bool end_object() override
    {
        m_key.clear();
        m_depth = m_depth == Depth::kRecord ? Depth::kSection : Depth::kOutside;
        return true;
    }
    bool start_array(std::size_t) override
    {
        if (m_depth == Depth::kDocument && m_section != nullptr) {
            m_depth = Depth::kSection;
            m_key.clear();
        } else if (m_depth == Depth::kRecord && m_column->type == InventoryType::kMembers) {
            m_depth = Depth::kMembers;
            records().back().emplace_back(m_column, nlohmann::json::array());
        } else {
            return fail("a list has no place here");
        }
        return true;
    }
    bool end_array() override
    {
        m_depth = m_depth == Depth::kMembers ? Depth::kRecord : Depth::kDocument;
        return true;
    }
    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception&) override
    {
        const auto end = m_text.begin() + static_cast<std::ptrdiff_t>(std::min(position, m_text.size()));
        const auto line = std::count(m_text.begin(), end, '\n');
        throw std::runtime_error("line " + std::to_string(line + 1) + ": this is not JSON");
    }

    InventoryDocument& document() { return m_document; }

private:
    enum class Depth { kOutside, kDocument, kSection, kRecord, kMembers };

    bool beginMember()
    {
        m_section = nullptr;
        for (const InventorySection& section : inventorySections()) {
            if (m_key == section.key) {
                m_section = &section;
            }
        }
        const bool known = m_section != nullptr || m_key == "version" || m_key == "device_id" || m_key == "next_id" ||
                           m_key == "next_volume";
        if (!known) {
            return fail("there is no such key");
        }
        const bool twice =
            m_section != nullptr ? !m_document.sections.try_emplace(m_section).second : m_document.header.count(m_key) != 0;
        return !twice || fail("the key stands twice");
    }

    bool beginValue()
    {
        m_column = nullptr;
        for (const InventoryColumn& column : m_section->columns) {
            if (m_key == column.key) {
                m_column = &column;
            }
        }
        if (m_column == nullptr) {
            return fail("there is no such key");
        }
        for (const auto& [column, value] : records().back()) {
            if (column == m_column) {
                return fail("the key stands twice");
            }
        }
        return true;
    }

    bool take(nlohmann::json value)
    {
        if (m_depth == Depth::kMembers) {
            records().back().back().second.push_back(std::move(value));
        } else if (m_depth == Depth::kRecord && m_column->type != InventoryType::kMembers) {
            records().back().emplace_back(m_column, std::move(value));
        } else if (m_depth == Depth::kDocument && m_section == nullptr) {
            m_document.header[m_key] = std::move(value);
        } else {
            const bool object = m_depth == Depth::kSection || m_depth == Depth::kOutside;
            return fail(object ? "an object is wanted here" : "a list is wanted here");
        }
        return true;
    }

    std::vector<InventoryRecord>& records() { return m_document.sections[m_section]; }

    bool fail(const std::string& mistake)
    {
        std::string place = m_depth == Depth::kOutside ? "the document" : m_key;
        if (m_depth != Depth::kOutside && m_depth != Depth::kDocument) {
            const std::size_t index = m_depth == Depth::kSection ? records().size() : records().size() - 1;
            place = std::string(m_section->key) + "[" + std::to_string(index) + "]" + (m_key.empty() ? "" : "." + m_key);
        }
        throw std::runtime_error(place + ": " + mistake);
    }

    const std::string& m_text;
    InventoryDocument m_document;
    Depth m_depth = Depth::kOutside;
    std::string m_key;
    const InventorySection* m_section = nullptr;
    const InventoryColumn* m_column = nullptr;
};

}  // namespace

InventoryDocument readInventory(const std::string& text)
{
    DocumentReader reader(text);
    nlohmann::json::sax_parse(text, &reader);
    return std::move(reader.document());
}

}  // namespace brevan::sim
