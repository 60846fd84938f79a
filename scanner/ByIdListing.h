#ifndef BREVAN_SCANNER_BYIDLISTING_H
#define BREVAN_SCANNER_BYIDLISTING_H

#include <map>
#include <optional>
#include <string>
#include <vector>

// What the lines of "ls -al /dev/disk/by-id" say: "... scsi-36001405... -> ../../sdc".

namespace brevan {

/// The path of the disk that a line names, "/dev/disk/by-id/../../sdc", as the link has it. A line without "../" gives the
/// bare folder.
std::string candidatePath(const std::string& line);

/// The identifier in a line's name: "scsi-" or else "wwn-" up to the next blank, without its first six characters (the word
/// and what says the kind of identifier). Nothing where the line has no such name or the name is too short.
std::optional<std::string> lineIdentifier(const std::string& line);

/// Disks in ascending order of their paths, each with all its identifiers. Lines that lead nowhere are left out.
std::map<std::string, std::vector<std::string>> groupByPath(const std::vector<std::string>& lines);

/// The device's name: the part of a path after its last "/".
std::string deviceName(const std::string& path);

}  // namespace brevan

#endif
