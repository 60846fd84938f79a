#ifndef BREVAN_SIMULATOR_TREEDRIVER_H
#define BREVAN_SIMULATOR_TREEDRIVER_H

#include "ExposureDriver.h"

#include <string>

namespace brevan::sim {

/// Keeps a file for each initiator, named as the initiator, with a line for each volume that it sees, in the order of the
/// LUN numbers: LUN number, WWN and size in bytes, with blanks between. A reader never finds half a file.
class TreeDriver : public ExposureDriver {
public:
    /// `directory` is made if it is not there; nothing else may live in it.
    explicit TreeDriver(std::string directory);

    void start() override;
    void apply(const ExposurePlan& plan) override;
    void stop() override;
    void createVolume(const ExposedVolume& volume) override;
    void copyVolume(const ExposedVolume& source, const ExposedVolume& copy) override;
    void removeVolume(const ExposedVolume& volume) override;

private:
    std::string m_directory;
    std::map<std::string, std::string> m_written;  ///< what stands in each initiator's file
};

}  // namespace brevan::sim

#endif
