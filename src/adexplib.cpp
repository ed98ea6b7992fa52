#include "adexplib.h"

#include "adexp.h"
#include "diagnosticline.h"
#include "mainclass.h"
#include "qtmemory.h"

#include <QSettings>

#include <cxxabi.h>

#include <climits>
#include <cstring>
#include <new>

MainClass* mc = nullptr;

namespace {

// What init_adexp returns.
enum InitResult { Loaded = 0, SettingsUnreadable = 1, RulesUnreadable = 2 };

const char* settingsErrorText(QSettings::Status status)
{
    switch (status) {
    case QSettings::AccessError:
        return "QSettings: an access error occurred, path to ini file:";
    case QSettings::FormatError:
        return "QSettings: a format error occurred, path to ini file:";
    default:
        return "QSettings: unknown error, path to ini file:";
    }
}

InitResult load(const QString& path)
{
    delete mc;
    mc = nullptr; // stays null if there is no memory for the next one
    QtMemory::requireForSettings(path);
    mc = new MainClass(nullptr);
    QSettings settings(path, QSettings::IniFormat);
    const QSettings::Status status = settings.status();
    if (status != QSettings::NoError) {
        DiagnosticLine(QtDebugMsg).plain(settingsErrorText(status)).quoted(path).send();
        return SettingsUnreadable;
    }
    return mc->readSettingsRules(&settings) ? Loaded : RulesUnreadable;
}

QString decode(const char* text, unsigned int length)
{
    // A length above INT_MAX (a negative signed number) means: up to the first NUL.
    if (length <= INT_MAX)
        return QString::fromUtf8(text, static_cast<int>(length));
    const size_t textLength = std::strlen(text);
    if (textLength > INT_MAX) // positions in the text are 32-bit numbers
        throw std::bad_alloc();
    return QString::fromUtf8(text, static_cast<int>(textLength));
}

// The result for the caller: the bytes and a terminating NUL, allocated with new[]. Null if there
// are none.
const char* giveToCaller(XmlDocument document, unsigned int* outLength)
{
    if (document.size() > UINT_MAX) // the size does not fit into outLength
        throw std::bad_alloc();
    if (outLength)
        *outLength = static_cast<unsigned int>(document.size());
    return document.release();
}

} // namespace

// No exception leaves these functions: Qt and the standard library throw only std::bad_alloc.
// A thread may end inside a call (by cancellation, or by pthread_exit() in a message handler). That
// is no exception, although it can be caught: the process ends if it is not thrown on. The caught
// object is then a reference to nothing, which the sanitizer would report.
#define CATCHES_FORCED_UNWIND __attribute__((no_sanitize("null")))

CATCHES_FORCED_UNWIND int init_adexp(const char* iniPath, int length)
try {
    const bool useDefault = length < 1 || !iniPath;
    return load(useDefault ? QStringLiteral("adexp.ini") : QString::fromUtf8(iniPath, length));
} catch (const abi::__forced_unwind&) {
    throw;
} catch (...) {
    return RulesUnreadable;
}

void clear_adexp(void)
{
    delete mc;
    mc = nullptr;
}

CATCHES_FORCED_UNWIND const char* convert_from_adexp(const char* text, unsigned int length,
                                                     unsigned int* outLength)
try {
    if (outLength)
        *outLength = 0;
    if (!text)
        return nullptr;
    if (!mc)
        init_adexp(nullptr, 0); // what it could load is used, even after an error
    if (!mc)
        return nullptr; // no memory
    return giveToCaller(mc->charAdexpToCharXml(decode(text, length)), outLength);
} catch (const abi::__forced_unwind&) {
    throw;
} catch (...) {
    return nullptr;
}

void free_adexp(const char* document)
{
    delete[] document;
}
