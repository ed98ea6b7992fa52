// Two operations of Qt do not survive a single failing allocation: it ends the process, or leaks.
// The library makes sure of their memory before it calls them, so they do not fail when memory runs
// out. A test that lets any allocation fail must spare them.
//
// They are called through these functions, which have the same names as those of Qt.

#include "countedheap.h"

#include <QDomDocument>
#include <QSettings>

#include <dlfcn.h>

// The names as the compiler writes them.
#define SETTINGS_CONSTRUCTOR "_ZN9QSettingsC1ERK7QStringNS_6FormatEP7QObject"
#define SET_CONTENT "_ZN12QDomDocument10setContentERK10QByteArraybP7QStringPiS5_"

void constructSettings(QSettings* self, const QString& path, QSettings::Format format,
                       QObject* parent) __asm__(SETTINGS_CONSTRUCTOR);
bool setContent(QDomDocument* self, const QByteArray& content, bool namespaces, QString* error,
                int* line, int* column) __asm__(SET_CONTENT);

namespace {

template <typename Function>
Function* qts(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

void constructSettings(QSettings* self, const QString& path, QSettings::Format format,
                       QObject* parent)
{
    static auto* const next = qts<decltype(constructSettings)>(SETTINGS_CONSTRUCTOR);
    const CountedHeap::Spared spared;
    next(self, path, format, parent);
}

bool setContent(QDomDocument* self, const QByteArray& content, bool namespaces, QString* error,
                int* line, int* column)
{
    static auto* const next = qts<decltype(setContent)>(SET_CONTENT);
    const CountedHeap::Spared spared;
    return next(self, content, namespaces, error, line, column);
}
