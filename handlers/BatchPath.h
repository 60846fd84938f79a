#ifndef BREVAN_HANDLERS_BATCHPATH_H
#define BREVAN_HANDLERS_BATCHPATH_H

#include <brevan/StorageRecords.h>

#include <cstdint>
#include <string>

namespace brevan {

/// The path of a batch read: "filter=" with every condition that is set, then whose objects, then the range.
class BatchPath {
public:
    /// `base` is the path up to and including its "?".
    explicit BatchPath(const std::string& base) : m_text(base) {}

    /// A condition on a text, set where it is not empty.
    BatchPath& where(const char* key, const std::string& value);

    /// A condition on a number, set where it is not `unset`.
    BatchPath& where(const char* key, std::int64_t value, std::int64_t unset);

    /// Ends the conditions: "&" where there are any.
    BatchPath& endFilter();

    /// Ends the conditions; objects of type `type` that are associated with one of type `associatedType`.
    BatchPath& associated(MOType type, MOType associatedType, const std::string& associatedId);

    /// "[start-end]" where `count` is not 0; the end is exclusive. `prefix` joins it to what stands before.
    BatchPath& range(const char* prefix, std::uint64_t start, std::uint64_t count);

    const std::string& text() const { return m_text; }

private:
    std::string m_text;
    bool m_filtered = false;
};

/// The condition on the other side alone: "ASSOCIATEOBJTYPE=" type "&ASSOCIATEOBJID=" ID.
std::string associatedWith(MOType type, const std::string& id);

}  // namespace brevan

#endif
