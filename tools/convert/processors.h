#ifndef PROCESSORS_H
#define PROCESSORS_H

#include <filesystem>
#include <string>

/// How many processors this process may use: those it may run on (its affinity), or fewer if its
/// control group allows less of their time. At least 1.
int usableProcessors();

/// How many processors a control group of version 2 may use, rounded up, as its file cpu.max says,
/// and those of the groups around it; 0: as many as there are. @p group is the path of the group
/// below @p root, the folder of all groups.
int processorsOfGroup(const std::filesystem::path& root, const std::filesystem::path& group);

#endif
