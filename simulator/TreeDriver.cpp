#include "TreeDriver.h"

#include "Files.h"
#include "Text.h"

#include <filesystem>
#include <stdexcept>

namespace brevan::sim {

namespace {

namespace fs = std::filesystem;

std::string listOf(const std::map<unsigned, ExposedVolume>& volumes)
{
    std::string text;
    for (const auto& [number, volume] : volumes) {
        text += std::to_string(number) + " " + volume.wwn + " " + std::to_string(volume.bytes) + "\n";
    }
    return text;
}

}  // namespace

TreeDriver::TreeDriver(std::string directory) : m_directory(std::move(directory))
{
    if (m_directory.empty()) {
        throw std::invalid_argument("the exposure \"tree\" needs a directory for its files");
    }
}

void TreeDriver::start()
{
    fs::create_directories(m_directory);
    for (const fs::directory_entry& entry : fs::directory_iterator(m_directory)) {
        if (isIscsiName(entry.path().filename().string())) {
            fs::remove(entry.path());
        }
    }
}

void TreeDriver::apply(const ExposurePlan& plan)
{
    for (auto entry = m_written.begin(); entry != m_written.end();) {
        if (plan.count(entry->first) != 0) {
            ++entry;
            continue;
        }
        fs::remove(fs::path(m_directory) / entry->first);
        entry = m_written.erase(entry);
    }
    for (const auto& [initiator, volumes] : plan) {
        const std::string list = listOf(volumes);
        const auto known = m_written.find(initiator);
        if (known == m_written.end() || known->second != list) {
            writeFileAtomically((fs::path(m_directory) / initiator).string(), list);
            m_written[initiator] = list;
        }
    }
}

void TreeDriver::stop()
{
    apply({});
}

void TreeDriver::createVolume(const ExposedVolume&) {}

void TreeDriver::copyVolume(const ExposedVolume&, const ExposedVolume&) {}

void TreeDriver::removeVolume(const ExposedVolume&) {}

}  // namespace brevan::sim
