#include "readfiles.h"

#include "inputfile.h"
#include "settingsfile.h"

#include <QFile>
#include <QSettings>

namespace fs = std::filesystem;

namespace {

// The one path that all names of an existing file share; empty if there is no such file.
fs::path canonical(const std::string& name)
{
    std::error_code error;
    return fs::canonical(name, error);
}

// The file that was redirected to standard input; empty if it is a pipe or a terminal.
fs::path fileOfStandardInput()
{
    const fs::path file = canonical("/dev/stdin");
    std::error_code error;
    return fs::is_regular_file(file, error) ? file : fs::path();
}

} // namespace

ReadFiles::ReadFiles(const std::string& settings)
{
    add(settings);
    const QSettings rules(QString::fromStdString(settings), QSettings::IniFormat);
    for (const char* key : RuleFileKeys)
        add(QFile::encodeName(pathOf(key, rules)).toStdString());
}

void ReadFiles::add(const std::string& argument)
{
    if (fs::path file = argument == StandardInput ? fileOfStandardInput() : canonical(argument);
        !file.empty())
        m_files.insert(std::move(file));
}

bool ReadFiles::contains(const std::string& file) const
{
    return m_files.count(canonical(file)) != 0;
}
