#ifndef BREVAN_SIMULATOR_LIODRIVER_H
#define BREVAN_SIMULATOR_LIODRIVER_H

#include "ConfigTree.h"
#include "ExposureDriver.h"
#include "VolumeFiles.h"

#include <memory>
#include <set>
#include <string>

namespace brevan::sim {

struct LioOptions {
    std::string root;    ///< "/sys/kernel/config/target"
    std::string target;  ///< iSCSI name
    std::string portal;  ///< ADDRESS:PORT
    std::string volumeDirectory;
    std::string wwnPrefix;     ///< with what the WWNs of this array begin: what is ours among other targets' volumes
    bool keepVolumes = false;  ///< the data outlives stop(), because the array's state does
};

/// Makes volumes disks of the kernel's iSCSI target. Every initiator of the array may log in; it finds the volumes of the
/// plan under the LUN numbers of the plan. What is there is read from the tree each time, so a change that failed half-way,
/// or an earlier run that was killed, is put right by the next `apply`.
class LioDriver : public ExposureDriver {
public:
    /// An option that does not do is a std::invalid_argument.
    LioDriver(LioOptions options, std::unique_ptr<ConfigTree> tree);

    void start() override;
    void apply(const ExposurePlan& plan) override;
    void stop() override;
    void createVolume(const ExposedVolume& volume) override;
    void copyVolume(const ExposedVolume& source, const ExposedVolume& copy) override;
    void removeVolume(const ExposedVolume& volume) override;

private:
    std::string portalGroup() const;
    std::string acl(const std::string& initiator) const;
    std::string backstore(const std::string& wwn) const;
    std::map<std::string, std::string> exportedVolumes() const;

    void makeDirectoryIfMissing(const std::string& path);
    void withdraw(const ExposurePlan& plan);
    void withdrawFrom(const std::string& initiator, const ExposurePlan& plan);
    void removeExports(const std::set<std::string>& wanted);
    void addExport(const ExposedVolume& volume);
    void makeBackstore(const ExposedVolume& volume);
    void expose(const std::string& initiator, const std::map<unsigned, ExposedVolume>& volumes);

    LioOptions m_options;
    std::unique_ptr<ConfigTree> m_tree;
    VolumeFiles m_files;
};

}  // namespace brevan::sim

#endif
