#ifndef BREVAN_TESTS_SIMULATED_HOST_DISKS_H
#define BREVAN_TESTS_SIMULATED_HOST_DISKS_H

#include <string>
#include <vector>

namespace brevan::test {

/// The initiator of the simulated host.
std::string hostInitiator();

/// A text of tests/fixtures/page83/, "{wwn}" and "{head}" replaced by the bytes of that WWN and by the first eight of them.
std::string fixture(const std::string& name, const std::string& wwn);

/// A WWN that no array gives.
std::string otherWwn(unsigned number);

/// Disks of the simulated host beside those that the rescan brings, and other answers of those. What a test has made and
/// changed is as before when this goes.
class Disks {
public:
    Disks() = default;
    ~Disks();
    Disks(const Disks&) = delete;
    Disks& operator=(const Disks&) = delete;

    /// A disk that answers with this text (ScsiGeneric.cpp), under these names in /dev/disk/by-id.
    void add(const std::string& device, const std::string& answer, const std::vector<std::string>& names);
    /// A name in /dev/disk/by-id for that device, whether it exists or not.
    void link(const std::string& name, const std::string& device);
    /// Takes a name away.
    void unlink(const std::string& name);
    /// From now on the disk answers this.
    void answer(const std::string& device, const std::string& text);
    /// The disks that were asked for their page since the last call, in order.
    static std::vector<std::string> asked();
    /// lsscsi lists one more line.
    void list(const std::string& line);

private:
    struct Before {
        std::string path;
        bool isLink;
        bool wasThere;
        std::string content;
    };
    void change(const std::string& path, const std::string& text);
    void changeLink(const std::string& name, const std::string& target);
    std::vector<Before> m_before;
};

}  // namespace brevan::test

#endif
