#ifndef BREVAN_TESTS_CONTRACT_RECORDS_H
#define BREVAN_TESTS_CONTRACT_RECORDS_H

#include <brevan/brevan.h>

#include <string>
#include <vector>

namespace brevan::contract {

// Results as text. A record shows the fields that differ from a fresh record: "ID:7 NAME:a"; a default record shows nothing.

std::string show(const LunMO& record);
std::string show(const SnapshotMO& record);
std::string show(const LunGroupMO& record);
std::string show(const MappingViewMO& record);
std::string show(const HostMO& record);
std::string show(const HostGroupMO& record);
std::string show(const IscsiInitiatorMO& record);
std::string show(const FCInitiatorMO& record);
std::string show(const FCPortMO& record);
std::string show(const FCoEPortMO& record);
std::string show(const ETHPortMO& record);

inline std::string show(const std::string& text)
{
    return text;
}

inline std::string show(int number)
{
    return std::to_string(number);
}

inline std::string show(unsigned int number)
{
    return std::to_string(number);
}

/// "[ID:7] [ID:8]"
template <class Record>
std::string show(const std::vector<Record>& records)
{
    std::string text;
    for (const Record& record : records) {
        text += (text.empty() ? "[" : " [") + show(record) + "]";
    }
    return text;
}

}  // namespace brevan::contract

#endif
