#ifndef MESSAGEREPORTS_H
#define MESSAGEREPORTS_H

#include "conversionresult.h"
#include "convertoptions.h"
#include "diagnosticcollector.h"
#include "findingobserver.h"
#include "message.h"

#include <QJsonObject>
#include <QString>

#include <string>

/// Takes what is reported about one message, while an object of this class lives.
class MessageReports : private FindingObserver
{
public:
    /// Puts what is reported about @p message into @p result, in the form and as far as @p options
    /// ask for it. All must outlive the object.
    MessageReports(const Message& message, const ConvertOptions& options, ConversionResult* result);

    /// The message was not converted, for the @p reason.
    void notConverted(const std::string& reason);

    /// The @p document of the message could not be written, for the @p reason.
    void notWritten(const std::string& document, const std::string& reason);

private:
    void found(const Finding& finding) override;
    void foundLine(const QString& line);
    void fail(const std::string& reason, const std::string& line);
    QJsonObject placed(QJsonObject object) const;

    const Message& m_message;
    const ConvertOptions& m_options;
    ConversionResult* m_result;
    DiagnosticCollector m_collector;
};

#endif
