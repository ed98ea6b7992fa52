#ifndef DIAGNOSTICCAPTURE_H
#define DIAGNOSTICCAPTURE_H

#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <vector>

/**
 * Collects what is written through Qt's message output while an object of this class lives.
 *
 * Nothing reaches the message handler that was installed before; it is back in place when the
 * capture ends. Captures may be nested: the innermost one collects. Not for use from several
 * threads, like the library it watches.
 *
 *     DiagnosticCapture diagnostics;
 *     compile(text);
 *     EXPECT_TRUE(diagnostics.lines().empty());
 */
class DiagnosticCapture
{
public:
    /// One message, exactly as it was handed to the message handler (trailing blanks included).
    struct Line
    {
        QtMsgType type;
        QString text;
    };

    DiagnosticCapture()
        : m_outer(s_innermost),
          m_previousHandler(qInstallMessageHandler(&DiagnosticCapture::collect))
    {
        s_innermost = this;
    }

    ~DiagnosticCapture()
    {
        s_innermost = m_outer;
        qInstallMessageHandler(m_previousHandler);
    }

    Q_DISABLE_COPY(DiagnosticCapture)

    /// All messages so far, oldest first.
    const std::vector<Line>& lines() const { return m_lines; }

    /// The texts of the messages of severity debug: reports about configuration and messages.
    QStringList debugLines() const { return linesOfType(QtDebugMsg); }

    /// The texts of the messages of severity critical: breaches of internal invariants.
    QStringList criticalLines() const { return linesOfType(QtCriticalMsg); }

    /// The message texts alone of all debug lines, each taken with reportedText().
    QStringList reportedTexts() const
    {
        QStringList texts;
        for (const QString& line : debugLines())
            texts.append(reportedText(line));
        return texts;
    }

    /// Forgets the messages so far.
    void clear() { m_lines.clear(); }

    /**
     * The last of the quoted items of a report line, without its quotes. A line that does not end
     * with a quote and a blank is given back whole, so that a comparison with it fails visibly.
     */
    static QString reportedText(const QString& line)
    {
        const QString end = QStringLiteral("\" ");
        if (!line.endsWith(end))
            return line;
        const QString items = line.left(line.size() - end.size());
        const QString betweenItems = QStringLiteral("\" \"");
        const auto lastItem = items.lastIndexOf(betweenItems);
        return lastItem < 0 ? line : items.mid(lastItem + betweenItems.size());
    }

private:
    static void collect(QtMsgType type, const QMessageLogContext&, const QString& text)
    {
        s_innermost->m_lines.push_back({type, text});
    }

    QStringList linesOfType(QtMsgType type) const
    {
        QStringList texts;
        for (const Line& line : m_lines) {
            if (line.type == type)
                texts.append(line.text);
        }
        return texts;
    }

    inline static DiagnosticCapture* s_innermost = nullptr;

    DiagnosticCapture* m_outer;
    QtMessageHandler m_previousHandler;
    std::vector<Line> m_lines;
};

#endif
