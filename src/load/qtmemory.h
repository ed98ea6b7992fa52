#ifndef QTMEMORY_H
#define QTMEMORY_H

#include <QByteArray>
#include <QString>

/// Makes sure of memory before calls of Qt that do not survive without it.
///
/// Most of Qt throws std::bad_alloc when memory runs out, and nothing is lost. But the constructors
/// of QObject and QSettings and the reading of a QDomDocument end the process, or leak. Before such
/// a call, the memory that it needs is allocated and released at once. If there is not enough, the
/// failure happens here, where it does no harm.
namespace QtMemory {

/// Call it before QSettings is made for the ini file @p path, which need not exist. It is enough
/// for one QObject as well. Throws std::bad_alloc.
void requireForSettings(const QString& path);

/// Call it before QDomDocument reads @p xml. It is enough if the document type of @p xml defines no
/// entities (they may need more). Throws std::bad_alloc.
void requireForDom(const QByteArray& xml);

} // namespace QtMemory

#endif
