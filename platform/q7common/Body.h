#ifndef BREVAN_Q7COMMON_BODY_H
#define BREVAN_Q7COMMON_BODY_H

#include "Secret.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brevan {

/// The body of a request: one flat JSON object whose members keep the order in which they were added. A key that is
/// added again takes its new value at its old place. Values may be secrets: every copy made here is wiped.
class Body {
public:
    /// Adds a text, escaped as JSON wants it. Bytes that are no UTF-8 cannot be written as JSON: they make the body invalid,
    /// because replacing them would create an object under another name, or log in with another password, than was asked
    /// for.
    void addText(const std::string& key, std::string_view value);

    /// Adds a number or a truth value, given as JSON.
    void addLiteral(const std::string& key, std::string_view json);

    bool isEmpty() const { return m_members.empty(); }
    bool isValid() const { return m_isValid; }

    /// The object as JSON without blanks; "{}" where nothing was added.
    SecretBytes json() const;

private:
    void put(const std::string& key, SecretBytes json);

    std::vector<std::pair<std::string, SecretBytes>> m_members;
    bool m_isValid = true;
};

/// Whether `text` is well-formed UTF-8 (RFC 3629: no overlong form, no surrogate, nothing above U+10FFFF).
bool isUtf8(std::string_view text);

}  // namespace brevan

#endif
