#ifndef BREVAN_SIMULATOR_EXPOSUREDRIVER_H
#define BREVAN_SIMULATOR_EXPOSUREDRIVER_H

#include <cstdint>
#include <map>
#include <string>

namespace brevan::sim {

/// A volume as an initiator gets it.
struct ExposedVolume {
    std::string wwn;
    std::uint64_t bytes = 0;
};

/// What every initiator of the array sees: its volumes by LUN number. An initiator that sees nothing has an empty list.
using ExposurePlan = std::map<std::string, std::map<unsigned, ExposedVolume>>;

/// Brings mapped volumes out of the array. All calls but copyVolume come from one thread at a time. A failure is a std::exception; the
/// request that led to it is undone and `apply` is called again with what was there before.
class ExposureDriver {
public:
    virtual ~ExposureDriver() = default;
    /// Removes what an earlier run has left and gets ready.
    virtual void start() = 0;
    /// From now on initiators see exactly this.
    virtual void apply(const ExposurePlan& plan) = 0;
    /// Nothing is exposed any more; nothing of ours stays but the data of volumes that the array still has.
    virtual void stop() = 0;

    /// A volume comes to be: it reads as zeros.
    virtual void createVolume(const ExposedVolume& volume) = 0;
    /// A volume comes to be with what `source` holds now. May take long, and so may run beside all other calls; until it is done
    /// no other call is about the copy, and none removes the source.
    virtual void copyVolume(const ExposedVolume& source, const ExposedVolume& copy) = 0;
    /// A volume is gone, and so is its data.
    virtual void removeVolume(const ExposedVolume& volume) = 0;
};

/// Exposes nothing.
class NoExposure : public ExposureDriver {
public:
    void start() override {}
    void apply(const ExposurePlan&) override {}
    void stop() override {}
    void createVolume(const ExposedVolume&) override {}
    void copyVolume(const ExposedVolume&, const ExposedVolume&) override {}
    void removeVolume(const ExposedVolume&) override {}
};

}  // namespace brevan::sim

#endif
