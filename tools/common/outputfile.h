#ifndef OUTPUTFILE_H
#define OUTPUTFILE_H

#include <string>
#include <string_view>

/// Writes @p data as the file @p path, whole or not at all: it is written under another name in the
/// same folder and renamed when it is complete. A file that is there is replaced. A device or pipe
/// is written directly.
///
/// SIGINT and the other signals that ask to end wait while the file is being written, so that no
/// half-written file stays behind.
///
/// Returns what went wrong and what to do about it, empty if nothing did.
std::string writeFile(const std::string& path, std::string_view data);

#endif
