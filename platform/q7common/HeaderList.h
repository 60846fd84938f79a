#ifndef BREVAN_Q7COMMON_HEADERLIST_H
#define BREVAN_Q7COMMON_HEADERLIST_H

#include "Secret.h"

#include <curl/curl.h>

#include <array>
#include <cstddef>
#include <string_view>

namespace brevan {

/// One header line that carries a secret, wiped when it goes.
class SecretHeader {
public:
    /// Makes "name: value" of it, blanks before the value left out; an empty value makes no header. False, and no header,
    /// where the value holds a control character: it could forge further headers.
    bool set(std::string_view name, std::string_view value);

    /// The line as C text, null where there is none.
    const char* line() const { return m_line.empty() ? nullptr : m_line.data(); }

private:
    SecretBytes m_line;
};

/// The header lines of one request as libcurl reads them. Points at the lines, which must outlive it, and copies nothing.
class HeaderList {
public:
    HeaderList() = default;
    HeaderList(const HeaderList&) = delete;
    HeaderList& operator=(const HeaderList&) = delete;

    void add(const char* line);
    curl_slist* list() { return m_count == 0 ? nullptr : m_nodes.data(); }

private:
    std::array<curl_slist, 8> m_nodes{};
    std::size_t m_count = 0;
};

}  // namespace brevan

#endif
