#ifndef BREVAN_SIMULATOR_VOLUMEFILES_H
#define BREVAN_SIMULATOR_VOLUMEFILES_H

#include "ExposureDriver.h"

#include <string>

namespace brevan::sim {

/// The data of volumes: a sparse file each, named by the WWN. A volume that was never exposed has no file and reads as
/// zeros. Failures are std::system_error.
class VolumeFiles {
public:
    /// Only files whose names begin with `prefix` are ours.
    VolumeFiles(std::string directory, std::string prefix);

    /// Also removes copies that an earlier run did not finish.
    void makeDirectory();
    /// Its file, made as large as the volume if it is not there; returns the path.
    std::string prepare(const ExposedVolume& volume);
    /// Gives `copy` what `source` holds now, holes included.
    void copy(const std::string& sourceWwn, const ExposedVolume& copy);
    void remove(const std::string& wwn);
    void removeAll();

private:
    std::string path(const std::string& wwn) const;
    std::string m_directory;
    std::string m_prefix;
};

}  // namespace brevan::sim

#endif
