#include "answer.h"

#include "documentcheck.h"
#include "require.h"

#include "adexp.h"

#include <QString>

#include <cstring>
#include <memory>

namespace {

std::string_view viewOf(const QByteArray& bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

// The one internal error that is about a rule set which is used all the same.
bool isAboutRules(const QString& internalError)
{
    return internalError.contains(QLatin1String("check_term not found"));
}

void requireNoInternalErrors(const DiagnosticCapture& capture)
{
    for (const QString& line : capture.criticalLines())
        require(isAboutRules(line), "no internal error is reported", line.toStdString());
}

} // namespace

QByteArray reportLines(const DiagnosticCapture& capture)
{
    QByteArray lines;
    for (const DiagnosticCapture::Line& line : capture.lines())
        lines += line.text.toUtf8() + '\n';
    return lines;
}

Answer answer(std::string_view message, bool rulesAreBroken)
{
    const DiagnosticCapture capture;
    unsigned int length = 1;
    const std::unique_ptr<const char, void (*)(const char*)> document(
        convert_from_adexp(message.data(), static_cast<unsigned int>(message.size()), &length),
        free_adexp);
    require((document != nullptr) == (length != 0), "a length is told only with a document");
    if (document)
        require(std::strlen(document.get()) == length, "the document ends at its length");
    if (!rulesAreBroken)
        requireNoInternalErrors(capture);
    return {document != nullptr, QByteArray(document.get(), static_cast<int>(length)),
            reportLines(capture)};
}

Answer checkedAnswer(std::string_view message, bool rulesAreBroken)
{
    const Answer first = answer(message, rulesAreBroken);
    // Carriage returns may part the bytes of a character, so they are taken out of the characters.
    QString text = QString::fromUtf8(message.data(), static_cast<int>(message.size()));
    text.remove(u'\r');
    if (first.hasDocument)
        DocumentCheck(text).check(viewOf(first.document));
    require(answer(message, rulesAreBroken) == first, "a message gives the same answer twice");
    // With a mark in front, since one is taken away with the decoding.
    const QByteArray withoutReturns = (QChar(QChar::ByteOrderMark) + text).toUtf8();
    require(answer(viewOf(withoutReturns), rulesAreBroken) == first,
            "carriage returns do not count");
    return first;
}
