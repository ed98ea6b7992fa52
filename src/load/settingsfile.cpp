#include "load/settingsfile.h"

#include "load/mainclass.h"
#include "report/reporter.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <algorithm>
#include <string_view>

namespace {

// Takes the next line off the front, as QSettings reads it: blanks and comments before it are
// skipped, it goes on after line ends that are quoted or escaped, and ends at a semicolon.
std::string_view takeLine(std::string_view* rest)
{
    const auto skip = [rest](size_t size) { rest->remove_prefix(std::min(size, rest->size())); };
    const auto skipBlanks = [rest, &skip] { skip(rest->find_first_not_of(" \t\r\n")); };
    skipBlanks();
    while (!rest->empty() && rest->front() == ';') {
        skip(rest->find_first_of("\r\n"));
        skipBlanks();
    }
    bool isQuoted = false;
    size_t size = 0;
    for (; size < rest->size(); ++size) {
        const char c = (*rest)[size];
        if (c == '\\') {
            const std::string_view next = rest->substr(size + 1, 2);
            size += next == "\r\n" || next == "\n\r" ? 2 : 1;
        } else if (c == '"') {
            isQuoted = !isQuoted;
        } else if (!isQuoted && (c == '\n' || c == '\r' || c == ';')) {
            break;
        }
    }
    const std::string_view line = rest->substr(0, size);
    skip(size);
    return line;
}

QSettings::Status statusOf(const QSettings& settings, const QString& path)
{
    // What is no regular file can be read once only, and QSettings has done that.
    if (settings.status() != QSettings::NoError || !QFileInfo(path).isFile())
        return settings.status();
    QFile file(path);
    const bool isBroken =
        file.open(QIODevice::ReadOnly) && !SettingsFile::isIniFile(file.readAll());
    return isBroken ? QSettings::FormatError : QSettings::NoError;
}

void reportStatus(QSettings::Status status, const QString& path, Reporter* reporter)
{
    Finding finding;
    finding.detail = path;
    switch (status) {
    case QSettings::AccessError:
        finding.code = ADEXP_CODE_SETTINGS_ACCESS;
        finding.text = QStringLiteral("QSettings: an access error occurred, path to ini file:");
        break;
    case QSettings::FormatError:
        finding.code = ADEXP_CODE_SETTINGS_FORMAT;
        finding.text = QStringLiteral("QSettings: a format error occurred, path to ini file:");
        break;
    default:
        finding.code = ADEXP_CODE_SETTINGS_ERROR;
        finding.text = QStringLiteral("QSettings: unknown error, path to ini file:");
    }
    reporter->report(finding);
}

} // namespace

adexp_status SettingsFile::load(const QString& path, MainClass* rules, Reporter* reporter)
{
    QSettings settings(path, QSettings::IniFormat);
    // The destructor of QSettings needs memory and ends the process if there is none. This is there
    // for it, released before.
    const QByteArray spare(64 << 10, Qt::Uninitialized);
    const QSettings::Status status = statusOf(settings, path);
    if (status != QSettings::NoError) {
        reportStatus(status, path, reporter);
        return ADEXP_SETTINGS_UNREADABLE;
    }
    return rules->readSettingsRules(&settings, reporter) ? ADEXP_OK : ADEXP_RULES_UNREADABLE;
}

bool SettingsFile::isIniFile(const QByteArray& content)
{
    std::string_view rest(content.constData(), static_cast<size_t>(content.size()));
    if (rest.substr(0, 3) == "\xef\xbb\xbf")
        rest.remove_prefix(3);
    for (std::string_view line = takeLine(&rest); !line.empty(); line = takeLine(&rest)) {
        if (line.front() == '[' && line.find(']') == std::string_view::npos)
            return false;
    }
    return true;
}
