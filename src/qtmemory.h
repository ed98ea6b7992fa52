#ifndef QTMEMORY_H
#define QTMEMORY_H

#include <QByteArray>
#include <QString>

/// The memory that operations of Qt need which do not survive without it.
///
/// Most of Qt throws std::bad_alloc when memory runs out, and nothing is lost. The constructors of
/// QObject and QSettings and the reading of a QDomDocument end the process instead, or leave parts
/// behind. Before these are called, the memory is asked for and given back at once: if it is not
/// there, the failure comes here and is clean.
namespace QtMemory {

/// Before QSettings is made for the ini file @p path, which need not exist; it covers a QObject
/// made together with it. Throws std::bad_alloc.
void requireForSettings(const QString& path);

/// Before QDomDocument reads @p xml, which has no document type with entities of its own (they may
/// stand for more). Throws std::bad_alloc.
void requireForDom(const QByteArray& xml);

} // namespace QtMemory

#endif
