#ifndef RULEFILE_H
#define RULEFILE_H

#include <QString>

#include <vector>

/// A place in a file as editors count it: line and column from 1, columns in UTF-16 units.
struct SourcePlace
{
    int line = 0; ///< 0: the place is not known
    int column = 0;
};

/// The text of an element of a rule file, and where its characters stand in the file.
struct SourceText
{
    QString text;
    SourcePlace place;               ///< of the first character, or of the end tag without one
    std::vector<SourcePlace> places; ///< of each UTF-16 unit of the text, and of what follows it;
                                     ///< empty if they are not known

    /// The place of each UTF-16 unit of the text after QString::toUpper() and
    /// QString::simplified(), which is the form that expressions are compiled from, and of what
    /// follows it; empty if they are not known.
    std::vector<SourcePlace> placesInExpression() const;

    /// The text without white space at both ends, with the place of its first character.
    SourceText trimmed() const;
};

/// A child element of a record.
struct RecordPart
{
    QString tag;
    SourceText content;
};

/// A record of a rule file as its author wrote it.
struct RuleRecord
{
    QString file;
    QString tag;
    QString name;               ///< of a message rule: its title
    bool isActive = true;       ///< false: switched off
    bool isMeantUnused = false; ///< says that no message rule uses it
    bool isForeign = false;     ///< has another tag than the records of its file
    int lineNumber = 0;         ///< as findings of the library give it
    int columnNumber = 0;       ///< as findings of the library give it
    SourcePlace place;          ///< of the record's start tag
    std::vector<RecordPart> parts;

    bool isMessageRule() const { return tag == QLatin1String("msgRule"); }
    bool isField() const { return !isMessageRule() && tag != QLatin1String("simpleTerm"); }

    /// The tag of the element that holds the expression.
    QString expressionTag() const;

    /// The expression; null if there is no such element.
    const SourceText* expression() const;
};

/// Appends all records of the rule file @p path, where they have the tag @p recordTag, to
/// @p records. False if the file cannot be read.
bool readRuleFile(const QString& path, const QString& recordTag, std::vector<RuleRecord>* records);

#endif
