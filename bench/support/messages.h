#ifndef BENCH_MESSAGES_H
#define BENCH_MESSAGES_H

#include <cstddef>
#include <string>
#include <vector>

/// The messages that are measured. Those made here are the same in every run.
namespace bench {

/// A flight plan of about 1.4 KB and 100 fields, the message that most goals are about.
std::string flightPlan();

/// One flight plan of about @p bytes bytes (at least one whole plan), with the fields of
/// flightPlan() repeated: the same mix of fields at every size.
std::string flightPlanOfSize(std::size_t bytes);

/// Messages of several titles in the layouts that systems send: one line, wrapped lines, a field a
/// line, and a blank behind each hyphen.
std::vector<std::string> variedMessages();

/// The files *.adexp of @p folder by name, without those in folders below. The program ends with a
/// message if there are none.
std::vector<std::string> messagesOfFolder(const std::string& folder);

/// The samples of the project.
std::vector<std::string> sampleMessages();

} // namespace bench

#endif
