#include "outputfile.h"

#include "interruption.h"

#include <QFile>
#include <QSaveFile>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

bool isDeviceOrPipe(const std::string& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

// Qt ends a write early, without an error, when only a part of it found room; the error shows when
// the rest is written.
bool writeWhole(QFileDevice* file, std::string_view data)
{
    while (!data.empty()) {
        const qint64 written = file->write(data.data(), static_cast<qint64>(data.size()));
        if (written <= 0)
            return false;
        data.remove_prefix(static_cast<std::size_t>(written));
    }
    return file->flush();
}

std::string writeDirectly(const QString& name, std::string_view data)
{
    QFile file(name);
    if (file.open(QIODevice::WriteOnly) && writeWhole(&file, data))
        return {};
    return file.errorString().toStdString();
}

std::string writeAndRename(const QString& name, std::string_view data)
{
    const Interruption::Delay delay;
    QSaveFile file(name);
    if (file.open(QIODevice::WriteOnly) && writeWhole(&file, data) && file.commit())
        return {};
    return file.errorString().toStdString();
}

} // namespace

std::string writeFile(const std::string& path, std::string_view data)
{
    // Qt has names as Unicode text; another name than the one that was asked for must not be
    // written.
    const QString name = QFile::decodeName(path.c_str());
    std::string reason = "the name is not in the encoding of the locale";
    if (QFile::encodeName(name) == path.c_str())
        reason = isDeviceOrPipe(path) ? writeDirectly(name, data) : writeAndRename(name, data);
    if (reason.empty())
        return {};
    return "cannot be written: " + reason +
           "; check the name, the permissions and the room on the disk";
}
