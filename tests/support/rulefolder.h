#ifndef RULEFOLDER_H
#define RULEFOLDER_H

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

/**
 * A temporary folder with rule files that a test writes. It goes away with the object.
 *
 * It also knows what the reports about a file must say about places in it.
 */
class RuleFolder
{
public:
    /// The path of the file or folder @p name.
    QString path(const QString& name) const { return m_folder.filePath(name); }

    /// Writes the file @p name; returns its path.
    QString write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return file.fileName();
    }

    /// Makes the folder @p name; returns its path.
    QString makeFolder(const QString& name) const
    {
        EXPECT_TRUE(QDir(m_folder.path()).mkdir(name));
        return path(name);
    }

    /// The short head of the child element number @p index (from 0) of the root of @p filePath.
    static QString place(const QString& filePath, int index)
    {
        QFile file(filePath);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        QXmlStreamReader reader(file.readAll());
        EXPECT_TRUE(reader.readNextStartElement()); // the root
        for (int i = 0; i < index; ++i) {
            EXPECT_TRUE(reader.readNextStartElement());
            reader.skipCurrentElement();
        }
        EXPECT_TRUE(reader.readNextStartElement());
        return QStringLiteral("file ") + filePath + QStringLiteral(" line ") +
               QString::number(reader.lineNumber()) + QStringLiteral(", column ") +
               QString::number(reader.columnNumber());
    }

    /// The full head of that element, whose record has the name @p recordName (not empty).
    static QString head(const QString& filePath, int index, const QString& recordName)
    {
        return QStringLiteral("element (") + recordName + QStringLiteral(") ") +
               place(filePath, index) + QStringLiteral(": ");
    }

    /// What is reported about the file @p filePath, which cannot be opened.
    static QString openErrorText(const QString& filePath)
    {
        QFile file(filePath);
        EXPECT_FALSE(file.open(QIODevice::ReadOnly));
        return QStringLiteral("can not open file ") + filePath + QStringLiteral(" for read: ") +
               file.errorString();
    }

private:
    QTemporaryDir m_folder;
};

/// Sets the working directory, and sets the previous one again when the object is destroyed.
class WorkingDirectory
{
public:
    explicit WorkingDirectory(const QString& path) : m_previous(QDir::currentPath())
    {
        EXPECT_TRUE(QDir::setCurrent(path));
    }
    ~WorkingDirectory() { QDir::setCurrent(m_previous); }
    Q_DISABLE_COPY(WorkingDirectory)

private:
    QString m_previous;
};

#endif
