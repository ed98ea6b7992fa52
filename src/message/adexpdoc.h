#ifndef ADEXPDOC_H
#define ADEXPDOC_H

#include "grammar/namedlist.h"
#include "message/adexpfield.h"
#include "message/docword.h"
#include "message/endblockindex.h"
#include "output/largememory.h"
#include "output/xmldocument.h"
#include "report/reporter.h"

#include <QString>
#include <QVarLengthArray>

#include <array>
#include <cstddef>
#include <memory_resource>
#include <new>
#include <optional>

/// The header values of a message, and its text.
struct MsgParam
{
    QString title;    ///< the word after -TITLE
    QString rating;   ///< written to the attribute of the same name, as are the next three
    QString to;       ///< addressees
    QString datatime; ///< date and time
    QString from;     ///< sender
    QString text;     ///< the message without carriage returns
};

/// One message under conversion: its text, its words, the cursor over them, and the tree of its
/// fields.
///
/// All positions ("points") count UTF-16 units of the text without carriage returns, from 0. Words,
/// field names and field data are views into that text. (A keyword that was joined from a lone
/// hyphen and a word is a view into a copy that the document holds.) The views and all fields are
/// valid as long as the document.
class AdexpDoc
{
    // The memory of words and fields, and of what they hold. It is released all at once: fields are
    // not destroyed one by one. The first bytes are enough for a usual message, without the heap.
    // Declared before every member that uses it.
    LargeMemory m_heap;
    alignas(std::max_align_t) std::array<std::byte, 24576> m_firstMemory;
    std::pmr::monotonic_buffer_resource m_arena;

public:
    /// Splits @p text into words. At most 2^31 - 1 UTF-16 units.
    /// What is found goes to @p reporter (not null, not owned).
    AdexpDoc(const QString& text, Reporter* reporter);

    AdexpDoc(const AdexpDoc&) = delete;
    AdexpDoc& operator=(const AdexpDoc&) = delete;

    /// Finds "-TITLE", chooses the rule among @p rules (may be null, not owned) by the word after
    /// it and makes the root field for the rest of the message. Without "-TITLE" there is no root.
    /// A second call starts again from the first word.
    void setRootField(const RuleList* rules);

    /// The first of @p rules (may be null) whose title equals @p title exactly; null if none does.
    static const MsgRule* search_rule(const RuleList* rules, QStringView title);

    /// Parses the tree of fields below the root, if there is a root.
    void parse();

    /// The rule for the title; null if there is none.
    const MsgRule* rule() const;

    /// The output document as UTF-8; empty if there is no root or no rule for the title.
    XmlDocument toXMLString();

    /// @name Cursor
    /// A word or field is returned only if it begins at or before @p limit; otherwise null.
    /// @{

    /// The next word, whatever it is. @p beginPoint (may be null) receives its position.
    QStringView getNextWord(int limit, int* beginPoint);

    /// Steps back one word; reports an internal error if there is none.
    void undoGetNextWord();

    /// The next field word with its hyphen. Words before it are reported and skipped. A lone hyphen
    /// is joined with the word that follows; @p beginPoint is then the position of that word.
    QStringView getNextField(int limit, int* beginPoint);

    /// Moves to the next field word at or after @p startPoint, or to the word that crosses
    /// @p endPoint (0 or less: no end). Returns the position where the data before it ends.
    int setIteratorToNextField(int startPoint, int endPoint);

    /// The trimmed text from the current word to where setIteratorToNextField() stops.
    QStringView getTextFromCurrentToPoint(int startPoint, int endPoint);

    /// The trimmed text from the current word to the next field word or @p endPoint.
    QStringView getTextFromCurrentToField(int endPoint);

    /// Moves to the next field word at or after @p point, or to the word that crosses it.
    void ignoreTextFromCurrentToPoint(int point);

    /// Position after the word before the cursor; -1 if nothing was read yet.
    int getLastDWTextEndPoint() const;

    /// Looks ahead for "-END" followed by @p blockName, without moving the cursor. Returns the
    /// position after the name, and in @p endWordPoint (may be null) that of the "-END" word; -1 if
    /// there is none. Blocks of the same name do not nest: the first "-END" counts. Errors that the
    /// search passes are reported here, and again when they are read.
    int searchEndBlock(QStringView blockName, int limit, int* endWordPoint);

    /// @}

    /// Reports what is wrong with the message: @p message, and @p detail unless it is empty.
    void addError(adexp_code code, const QString& message, QStringView detail);
    /// Does exactly what addError() does.
    void addWarning(adexp_code code, const QString& message, QStringView detail);
    /// Reports the same line as addError(). Observers are told @p place, a part of the text or
    /// empty, as the place of the error. From addError() and addWarning() they get the place of the
    /// detail, or lastRead() if the detail is not a part of the text.
    void addErrorAt(QStringView place, adexp_code code, const QString& message, QStringView detail);

    /// From now on what is found is about @p field (may be null, not owned).
    void setCurrentField(const AdexpField* field) { m_currentField = field; }

    Reporter* reporter() const { return m_reporter; }

    /// The part of the text from the field word that getNextField() took last to the word read
    /// last; empty if nothing was read yet.
    QStringView lastRead() const;

    /// True if @p part is not empty, and a view into the text (not one into a copy of a part).
    bool isInText(QStringView part) const;

    /// Makes a field that is valid as long as the document. It is never destroyed; its memory is
    /// released with that of the document. An AdexpField holds only views and memory of arena().
    template <typename... Args>
    AdexpField* createField(Args&&... args)
    {
        void* const memory = m_arena.allocate(sizeof(AdexpField), alignof(AdexpField));
        auto* const field = new (memory) AdexpField(std::forward<Args>(args)...);
        field->index = m_fieldCount++;
        return field;
    }

    /// The number of fields made so far.
    int fieldCount() const { return m_fieldCount; }

    /// The memory of the fields and what they hold; released with the document.
    std::pmr::memory_resource* arena() { return &m_arena; }

    /// A copy of @p data with a null character at its end, for the terms. Valid until the next
    /// call.
    const QChar* nullTerminated(QStringView data);

    WordList wordList{&m_arena};                  ///< the words in text order
    WordList::const_iterator lastFieldWordListIt; ///< the word last taken by getNextField
    WordList::const_iterator currWordListIt;      ///< the next word to be read
    AdexpField* rootField = nullptr;              ///< the root of the fields, or null
    MsgParam msgParam;                            ///< header values and text
    bool isValid = true;                          ///< nothing was reported so far

private:
    void wordListSplit();
    bool atEnd() const { return currWordListIt == wordList.cend(); }
    QStringView textOf(const DocWord* word) const { return word->textIn(msgParam.text); }
    const DocWord* currentWord(const char* signature) const;
    QStringView joinedWithHyphen(QStringView keyword);
    void reportLoneHyphen(QStringView hyphen);
    void report(QStringView place, adexp_code code, const QString& message, QStringView detail,
                Severity severity);
    QStringView placeOf(QStringView detail) const;
    QStringView firstWord() const;

    std::optional<EndBlockIndex> m_endBlocks;     // made by the first searchEndBlock()
    QVarLengthArray<QChar, 128> m_nullTerminated; // the copy of nullTerminated()
    int m_fieldCount = 0;
    const AdexpField* m_currentField = nullptr;
    Reporter* m_reporter;
};

#endif
