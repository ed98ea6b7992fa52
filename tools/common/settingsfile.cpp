#include "settingsfile.h"

#include <QSettings>

#include <cerrno>
#include <cstring>
#include <unistd.h>

QString pathOf(const char* key, const QSettings& settings)
{
    return settings.value(QLatin1String("rules/") + QLatin1String(key)).toString();
}

// The library takes a settings file that is not there for an empty one, and its report then is
// about the keys that are missing.
std::string settingsError(const std::string& settings)
{
    const bool isCompiledIn = settings.front() == ':';
    if (isCompiledIn || access(settings.c_str(), R_OK) == 0)
        return {};
    return std::string("the settings file cannot be read: ") + std::strerror(errno) +
           "; check the name behind --settings";
}
