// The constructor of QSettings does not survive a single failing allocation: it ends the process,
// or leaks. The library makes sure of its memory before it calls it, so it does not fail when
// memory runs out. A test that lets any allocation fail must spare it.
//
// It is called through this function, which has the same name as that of Qt.

#include "countedheap.h"

#include <QSettings>

#include <dlfcn.h>

// The name as the compiler writes it.
#define SETTINGS_CONSTRUCTOR "_ZN9QSettingsC1ERK7QStringNS_6FormatEP7QObject"

void constructSettings(QSettings* self, const QString& path, QSettings::Format format,
                       QObject* parent) __asm__(SETTINGS_CONSTRUCTOR);

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
