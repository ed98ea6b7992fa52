#ifndef MESSAGESOURCE_H
#define MESSAGESOURCE_H

#include "convertoptions.h"
#include "inputlist.h"
#include "message.h"
#include "outputnames.h"
#include "recordreader.h"

#include <optional>

/// The messages of all inputs in order, one at a time, each with the file for its document.
class MessageSource
{
public:
    /// The messages that @p options name; the options must outlive the object.
    explicit MessageSource(const ConvertOptions& options);

    /// Takes the next message. One that is the whole of a file is not read yet: who converts it
    /// does that.
    Next next(Message* message, Waiting waiting);

    /// The file descriptor that next() would wait for; -1 if it never waits.
    int descriptor() const { return m_records ? m_file->descriptor() : m_inputs.descriptor(); }

private:
    int separator() const;
    bool openRecords(Message* message);
    Next nextRecord(Message* message, Waiting waiting);
    std::optional<double> taken() const;

    const ConvertOptions& m_options;
    InputList m_inputs;
    std::optional<OutputNames> m_documents; // nothing: they go to standard output
    std::size_t m_inputsTaken = 0;

    Input m_input; // the one at hand
    std::optional<InputFile> m_file;
    std::optional<RecordReader> m_records; // the messages in it; nothing: it is one, not read here
    std::uint64_t m_number = 0;
};

#endif
