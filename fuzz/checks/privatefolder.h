#ifndef PRIVATEFOLDER_H
#define PRIVATEFOLDER_H

#include <map>
#include <string>
#include <string_view>

/// The working directory of targets that deal with files: a new folder in the system's folder for
/// temporary files, which goes away with the process if that ends well.
namespace PrivateFolder {

/// Makes the folder and makes it the working directory. Called once.
void enter();

/// Deletes all that is in the folder.
void clear();

/// Writes the file @p name.
void write(const std::string& name, std::string_view content);

/// All files in the folder and in folders in it: name, from the folder on, and content.
std::map<std::string, std::string> files();

} // namespace PrivateFolder

#endif
