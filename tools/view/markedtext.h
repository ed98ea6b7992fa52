#ifndef MARKEDTEXT_H
#define MARKEDTEXT_H

#include "excerpt.h"
#include "textplaces.h"

#include <QStringView>

#include <string>
#include <vector>

/// The text of a message as HTML, with its fields and findings marked.
///
/// A field is a <span class="field" id="tN" data-i="N">, N being its index, with the
/// class "group" if there are fields in it; fields nest as they do in the message. Of the root,
/// which covers the whole text, only the keyword and the title are in its span. Keywords are <b>. A
/// finding is a <mark data-f="N">, N being its number from 1. It may begin in one field and end in
/// another, so it is put together from pieces inside of them; the first one has the id "mN".
///
/// Each line begins with an empty <i class="line" data-n="N">, N being its number. Where text is
/// left out stands a <span class="gap"> that says how much.
class MarkedText
{
public:
    /// The text of @p places is @p text; all must stay, as must @p excerpt, what is shown of it.
    MarkedText(QStringView text, const TextPlaces& places, const Excerpt& excerpt);

    /// The HTML. To be called once.
    std::string html();

private:
    // A stretch of the text with the findings that all of it belongs to.
    struct Run
    {
        int end;
        std::vector<size_t> findings; // indexes
    };

    void splitIntoRuns();
    void openField(size_t index);
    void closeField();
    void writeKeyword(int begin, int end);
    void writeUntil(int position);
    void skipUntil(int position);
    void writeRun(int end);
    void writeLines(int end);
    void writeLineNumber();
    void writeGap(int begin, int end);
    void openMark(size_t finding);

    QStringView m_text;
    const TextPlaces& m_places;
    const MessageFields& m_fields;
    const MessageFindings& m_findings;
    std::vector<Excerpt::Stretch> m_stretches; // the last one ends with the text
    std::vector<Run> m_runs;
    std::vector<bool> m_isBegun;            // for each finding: its first piece is written
    std::vector<size_t> m_open;             // indexes of the fields whose elements are open
    std::vector<Run>::const_iterator m_run; // the one that holds m_position
    size_t m_stretch = 0;                   // index of the one that holds m_position, or the next
    int m_position = 0;                     // the text before it is written or left out
    std::string m_html;
};

#endif
