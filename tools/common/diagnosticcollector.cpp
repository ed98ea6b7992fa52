#include "diagnosticcollector.h"

#include "console.h"

#include <string>
#include <utility>

DiagnosticCollector::DiagnosticCollector(Sink sink)
    : m_sink(std::move(sink)),
      m_outer(s_innermost),
      m_previousHandler(qInstallMessageHandler(&DiagnosticCollector::handle))
{
    s_innermost = this;
}

DiagnosticCollector::DiagnosticCollector(std::string_view subject)
    : DiagnosticCollector([name = std::string(subject)](const QString& text) {
          printError(name, text.toStdString());
      })
{
}

DiagnosticCollector::~DiagnosticCollector()
{
    qInstallMessageHandler(m_previousHandler);
    s_innermost = m_outer;
}

void DiagnosticCollector::handle(QtMsgType, const QMessageLogContext&, const QString& text)
{
    ++s_innermost->m_count;
    s_innermost->m_sink(text);
}
