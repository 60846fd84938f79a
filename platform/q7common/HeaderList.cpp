#include "HeaderList.h"

#include <algorithm>

namespace brevan {

bool SecretHeader::set(std::string_view name, std::string_view value)
{
    wipe(m_line);
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; };
    if (std::any_of(value.begin(), value.end(), isControl)) {
        return false;
    }
    value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
    if (!value.empty()) {
        m_line.reserve(name.size() + value.size() + 3);
        append(m_line, name);
        append(m_line, ": ");
        append(m_line, value);
        m_line.push_back('\0');
    }
    return true;
}

void HeaderList::add(const char* line)
{
    if (line == nullptr || m_count == m_nodes.size()) {
        return;
    }
    // libcurl declares the text as writable, but only reads the lists that it is given.
    m_nodes[m_count].data = const_cast<char*>(line);
    if (m_count > 0) {
        m_nodes[m_count - 1].next = &m_nodes[m_count];
    }
    ++m_count;
}

}  // namespace brevan
