#include "messagesource.h"

#include <utility>

MessageSource::MessageSource(const ConvertOptions& options) : m_options(options), m_inputs(options)
{
    if (options.hasOutputFiles())
        m_documents.emplace(options, m_inputs.all());
}

Next MessageSource::next(Message* message, Waiting waiting)
{
    *message = Message();
    for (;;) {
        if (!m_records) {
            const Next input = m_inputs.next(&m_input, waiting);
            if (input != Next::Taken)
                return input;
            ++m_inputsTaken;
            if (!openRecords(message))
                break;
        }
        const Next record = nextRecord(message, waiting);
        if (record == Next::WouldWait)
            return record;
        if (record == Next::Taken)
            break;
        m_records.reset();
        m_file.reset();
    }
    message->input = m_input.argument;
    message->part = taken();
    if (m_documents && message->failure.empty())
        m_documents->assign(m_input, message);
    return Next::Taken;
}

int MessageSource::separator() const
{
    if (m_options.lines)
        return '\n';
    return m_options.nul ? '\0' : RecordReader::Whole;
}

// False if the input at hand is one message that is not read here, or cannot be read at all.
bool MessageSource::openRecords(Message* message)
{
    message->failure = m_input.failure;
    if (!m_input.failure.empty() || (!m_options.lines && m_input.argument != StandardInput))
        return false;
    m_file.emplace(m_input.argument);
    message->failure = m_file->error();
    if (message->failure.empty() && separator() == RecordReader::Whole)
        message->failure = m_file->sizeError();
    if (!message->failure.empty())
        return false;
    m_records.emplace(m_file->descriptor(), separator());
    m_number = 0;
    return true;
}

Next MessageSource::nextRecord(Message* message, Waiting waiting)
{
    Record record;
    const Next result = m_records->next(&record, waiting);
    if (result == Next::Taken) {
        message->text = std::move(record.text);
        message->failure = std::move(record.failure);
        message->isRead = true;
        message->number = separator() == RecordReader::Whole ? 0 : ++m_number;
    }
    return result;
}

// Which part of all inputs was taken, from 0 to 1; nothing if that cannot be known.
std::optional<double> MessageSource::taken() const
{
    const std::optional<std::size_t> count = m_inputs.count();
    if (!count || (m_records && m_file->size() == 0))
        return std::nullopt;
    double inputs = static_cast<double>(m_inputsTaken);
    if (m_records)
        inputs +=
            static_cast<double>(m_records->bytesRead()) / static_cast<double>(m_file->size()) - 1;
    return inputs / static_cast<double>(*count);
}
