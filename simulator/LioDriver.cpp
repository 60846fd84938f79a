#include "LioDriver.h"

#include "Text.h"

#include <stdexcept>
#include <system_error>

namespace brevan::sim {

namespace {

// The kernel gathers backstores in numbered adapters, which mean nothing else.
constexpr const char* kAdapter = "/core/fileio_0";
constexpr const char* kLunPrefix = "lun_";
constexpr const char* kMappedLink = "lun";
constexpr std::size_t kCompanyDigits = 6;
constexpr std::size_t kSerialDigits = 25;

std::string lunName(unsigned number)
{
    return kLunPrefix + std::to_string(number);
}

void checkOptions(const LioOptions& options)
{
    if (!isIscsiName(options.target)) {
        throw std::invalid_argument(inQuotes(options.target) + " is not an iSCSI name for the target");
    }
    if (options.portal.find('/') != std::string::npos || options.portal.rfind(':') == std::string::npos) {
        throw std::invalid_argument("the portal " + inQuotes(options.portal) + " is not of the form ADDRESS:PORT");
    }
    // The kernel takes the file's name out of a list that commas divide.
    if (options.volumeDirectory.empty() || options.volumeDirectory.find_first_of(", \n") != std::string::npos) {
        throw std::invalid_argument(
            "the exposure \"lio\" needs a directory for its volumes, without blanks and commas in its name");
    }
}

}  // namespace

LioDriver::LioDriver(LioOptions options, std::unique_ptr<ConfigTree> tree)
    : m_options((checkOptions(options), std::move(options))),
      m_tree(std::move(tree)),
      m_files(m_options.volumeDirectory, m_options.wwnPrefix)
{
}

std::string LioDriver::portalGroup() const
{
    return m_options.root + "/iscsi/" + m_options.target + "/tpgt_1";
}

std::string LioDriver::acl(const std::string& initiator) const
{
    return portalGroup() + "/acls/" + initiator;
}

std::string LioDriver::backstore(const std::string& wwn) const
{
    return m_options.root + kAdapter + "/" + wwn;
}

void LioDriver::makeDirectoryIfMissing(const std::string& path)
{
    if (!m_tree->exists(path)) {
        m_tree->makeDirectory(path);
    }
}

void LioDriver::start()
{
    if (!m_tree->exists(m_options.root)) {
        throw std::runtime_error(m_options.root + " is not there: mount configfs and load the module target_core_mod first");
    }
    m_files.makeDirectory();
    apply({});
    if (!m_options.keepVolumes) {
        m_files.removeAll();
    }
    const std::string group = portalGroup();
    makeDirectoryIfMissing(m_options.root + "/iscsi");
    makeDirectoryIfMissing(m_options.root + "/iscsi/" + m_options.target);
    makeDirectoryIfMissing(group);
    makeDirectoryIfMissing(group + "/np/" + m_options.portal);
    m_tree->write(group + "/attrib/authentication", "0");
    m_tree->write(group + "/enable", "1");
}

void LioDriver::stop()
{
    apply({});
    const std::string group = portalGroup();
    if (m_tree->exists(group)) {
        m_tree->write(group + "/enable", "0");
        for (const std::string& portal : m_tree->directories(group + "/np")) {
            m_tree->removeDirectory(group + "/np/" + portal);
        }
        m_tree->removeDirectory(group);
    }
    if (m_tree->exists(m_options.root + "/iscsi/" + m_options.target)) {
        m_tree->removeDirectory(m_options.root + "/iscsi/" + m_options.target);
    }
    if (!m_options.keepVolumes) {
        m_files.removeAll();
    }
}

void LioDriver::apply(const ExposurePlan& plan)
{
    withdraw(plan);
    std::map<std::string, ExposedVolume> wanted;
    std::set<std::string> names;
    for (const auto& [initiator, volumes] : plan) {
        for (const auto& [number, volume] : volumes) {
            wanted.emplace(volume.wwn, volume);
            names.insert(volume.wwn);
        }
    }
    removeExports(names);
    const auto exported = exportedVolumes();
    for (const auto& [wwn, volume] : wanted) {
        if (exported.count(wwn) == 0) {
            addExport(volume);
        }
    }
    for (const auto& [initiator, volumes] : plan) {
        expose(initiator, volumes);
    }
}

void LioDriver::withdraw(const ExposurePlan& plan)
{
    for (const std::string& initiator : m_tree->directories(portalGroup() + "/acls")) {
        withdrawFrom(initiator, plan);
        if (plan.count(initiator) == 0) {
            m_tree->removeDirectory(acl(initiator));
        }
    }
}

void LioDriver::withdrawFrom(const std::string& initiator, const ExposurePlan& plan)
{
    std::map<std::string, std::string> wanted;  // directory of the mapping, WWN
    const auto known = plan.find(initiator);
    if (known != plan.end()) {
        for (const auto& [number, volume] : known->second) {
            wanted[lunName(number)] = volume.wwn;
        }
    }
    for (const std::string& name : m_tree->directories(acl(initiator))) {
        const std::string directory = acl(initiator) + "/" + name;
        const std::string exported = m_tree->linkedName(directory + "/" + kMappedLink);
        const auto volumes =
            exported.empty() ? std::vector<std::string>() : m_tree->links(portalGroup() + "/lun/" + exported);
        const auto wish = wanted.find(name);
        const bool stays = wish != wanted.end() && volumes == std::vector<std::string>{wish->second};
        // Beside the mapped LUNs, an initiator's directory holds others that the kernel itself has put there.
        if (stays || !startsWith(name, kLunPrefix)) {
            continue;
        }
        for (const std::string& link : m_tree->links(directory)) {
            m_tree->unlink(directory + "/" + link);
        }
        m_tree->removeDirectory(directory);
    }
}

std::map<std::string, std::string> LioDriver::exportedVolumes() const
{
    std::map<std::string, std::string> exported;  // WWN, directory name
    for (const std::string& name : m_tree->directories(portalGroup() + "/lun")) {
        for (const std::string& wwn : m_tree->links(portalGroup() + "/lun/" + name)) {
            exported[wwn] = name;
        }
    }
    return exported;
}

void LioDriver::removeExports(const std::set<std::string>& wanted)
{
    const std::string luns = portalGroup() + "/lun/";
    for (const std::string& name : m_tree->directories(luns)) {
        const std::vector<std::string> volumes = m_tree->links(luns + name);
        if (!volumes.empty() && wanted.count(volumes.front()) != 0) {
            continue;
        }
        for (const std::string& wwn : volumes) {
            m_tree->unlink(luns + name + "/" + wwn);
        }
        m_tree->removeDirectory(luns + name);
    }
    for (const std::string& wwn : m_tree->directories(m_options.root + kAdapter)) {
        if (startsWith(wwn, m_options.wwnPrefix) && wanted.count(wwn) == 0) {
            m_tree->removeDirectory(backstore(wwn));
        }
    }
}

void LioDriver::addExport(const ExposedVolume& volume)
{
    // A backstore that was left unfinished is made anew: what is missing in it cannot be seen.
    if (m_tree->exists(backstore(volume.wwn))) {
        m_tree->removeDirectory(backstore(volume.wwn));
    }
    makeBackstore(volume);
    const std::string luns = portalGroup() + "/lun/";
    unsigned number = 0;
    while (m_tree->exists(luns + lunName(number))) {
        ++number;
    }
    m_tree->makeDirectory(luns + lunName(number));
    m_tree->link(backstore(volume.wwn), luns + lunName(number) + "/" + volume.wwn);
}

void LioDriver::makeBackstore(const ExposedVolume& volume)
{
    const std::string file = m_files.prepare(volume);
    const std::string directory = backstore(volume.wwn);
    makeDirectoryIfMissing(m_options.root + kAdapter);
    m_tree->makeDirectory(directory);
    m_tree->write(directory + "/control", "fd_dev_name=" + file + ",fd_dev_size=" + std::to_string(volume.bytes));
    // Both before the export: afterwards the kernel refuses them, and without a serial there is no NAA designator at all.
    m_tree->write(directory + "/wwn/company_id", "0x" + volume.wwn.substr(1, kCompanyDigits));
    m_tree->write(directory + "/wwn/vpd_unit_serial", volume.wwn.substr(1 + kCompanyDigits, kSerialDigits));
    m_tree->write(directory + "/enable", "1");
}

void LioDriver::expose(const std::string& initiator, const std::map<unsigned, ExposedVolume>& volumes)
{
    makeDirectoryIfMissing(acl(initiator));
    const auto exported = exportedVolumes();
    for (const auto& [number, volume] : volumes) {
        const std::string directory = acl(initiator) + "/" + lunName(number);
        makeDirectoryIfMissing(directory);
        if (m_tree->linkedName(directory + "/" + kMappedLink).empty()) {
            m_tree->link(portalGroup() + "/lun/" + exported.at(volume.wwn), directory + "/" + kMappedLink);
        }
    }
}

void LioDriver::createVolume(const ExposedVolume& volume)
{
    m_files.remove(volume.wwn);
}

void LioDriver::copyVolume(const ExposedVolume& source, const ExposedVolume& copy)
{
    m_files.copy(source.wwn, copy);
}

void LioDriver::removeVolume(const ExposedVolume& volume)
{
    m_files.remove(volume.wwn);
}

}  // namespace brevan::sim
