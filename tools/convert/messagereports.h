#ifndef MESSAGEREPORTS_H
#define MESSAGEREPORTS_H

#include "adexp.hpp"
#include "conversionresult.h"
#include "convertoptions.h"
#include "message.h"

#include <QJsonObject>

#include <string>

/// Tells what there is to report about one message.
class MessageReports
{
public:
    /// Puts the reports about @p message into @p result, in the form and as far as @p options ask
    /// for it. All must outlive the object.
    MessageReports(const Message& message, const ConvertOptions& options, ConversionResult* result);

    /// What was found in the message.
    void add(const adexp::Findings& findings);

    /// The message was not converted, for the @p reason.
    void notConverted(const std::string& reason);

    /// The @p document of the message could not be written, for the @p reason.
    void notWritten(const std::string& document, const std::string& reason);

private:
    void add(const adexp::Finding& finding);
    void fail(const std::string& reason, const std::string& line);
    QJsonObject placed(QJsonObject object) const;

    const Message& m_message;
    const ConvertOptions& m_options;
    ConversionResult* m_result;
};

#endif
