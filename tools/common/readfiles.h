#ifndef READFILES_H
#define READFILES_H

#include <filesystem>
#include <set>
#include <string>

/// The files that a run of the command reads: no output may replace them.
class ReadFiles
{
public:
    /// The settings file @p settings, and the rule files that it names. It has been loaded before.
    explicit ReadFiles(const std::string& settings);

    /// Adds the input @p argument: a file, or "-" for the one that standard input is read from.
    void add(const std::string& argument);

    /// True if @p file is one of them, by whatever name.
    bool contains(const std::string& file) const;

private:
    std::set<std::filesystem::path> m_files; // as canonical paths
};

#endif
