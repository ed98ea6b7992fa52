#ifndef DIAGNOSTICCOLLECTOR_H
#define DIAGNOSTICCOLLECTOR_H

#include <QString>
#include <QtGlobal>

#include <functional>
#include <string_view>

/// Takes Qt's message output, to which the library reports, while an object of this class exists.
///
/// Every message goes to the sink at once and unchanged, and nowhere else. Collectors may be
/// nested; the innermost takes the messages. Like the library, for one thread only.
class DiagnosticCollector
{
public:
    using Sink = std::function<void(const QString& text)>;

    /// A collector that hands every message to @p sink.
    explicit DiagnosticCollector(Sink sink);

    /// A collector that writes every message to standard error, as "subject: message".
    explicit DiagnosticCollector(std::string_view subject);

    /// Gives the message output back to the handler before.
    ~DiagnosticCollector();

    Q_DISABLE_COPY(DiagnosticCollector)

    /// Number of messages taken so far.
    qint64 count() const { return m_count; }

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text);

    inline static DiagnosticCollector* s_innermost = nullptr;

    Sink m_sink;
    qint64 m_count = 0;
    DiagnosticCollector* m_outer;
    QtMessageHandler m_previousHandler;
};

#endif
