#include "handlers/BatchPath.h"

namespace brevan {

BatchPath& BatchPath::where(const char* key, const std::string& value)
{
    if (!value.empty()) {
        m_text += m_filtered ? " and " : "filter=";
        m_text.append(key).append(":").append(value);
        m_filtered = true;
    }
    return *this;
}

BatchPath& BatchPath::where(const char* key, std::int64_t value, std::int64_t unset)
{
    return value == unset ? *this : where(key, std::to_string(value));
}

BatchPath& BatchPath::endFilter()
{
    if (m_filtered) {
        m_text += "&";
    }
    return *this;
}

BatchPath& BatchPath::associated(MOType type, MOType associatedType, const std::string& associatedId)
{
    endFilter();
    m_text += "TYPE=" + std::to_string(type) + "&" + associatedWith(associatedType, associatedId);
    return *this;
}

BatchPath& BatchPath::range(const char* prefix, std::uint64_t start, std::uint64_t count)
{
    if (count != 0) {
        m_text += std::string(prefix) + "range=[" + std::to_string(start) + "-" + std::to_string(start + count) + "]";
    }
    return *this;
}

std::string associatedWith(MOType type, const std::string& id)
{
    return "ASSOCIATEOBJTYPE=" + std::to_string(type) + "&ASSOCIATEOBJID=" + id;
}

}  // namespace brevan
