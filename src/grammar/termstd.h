#ifndef TERMSTD_H
#define TERMSTD_H

#include "grammar/check.h"
#include "grammar/firstchars.h"
#include "grammar/match.h"
#include "grammar/namedlist.h"
#include "report/reporter.h"

#include <QString>

/// Kinds of terms. The standard terms and the classes share one number space.
enum TermType {
    TermTypeUnknown = 0,
    TermTypeCharacter = 1,
    TermTypeAlphanum = 2,
    TermTypeAlpha = 3,
    TermTypeDigit = 4,
    TermTypeSep = 5,
    TermTypeNil = 6,
    TermTypeLimChar = 7,
    TermTypeExpression = 8,
    TermTypeVariable = 9,
    TermTypeSimple = 10,
    TermTypeMsgRule = 11,
};

/// How a term was written in its expression.
enum BracketType {
    BracketNone = 0,     ///< plain or in round brackets: required, once
    BracketOptional = 1, ///< in square brackets: optional, once
    BracketRepeat = 2,   ///< in braces: between minRepeat and maxRepeat times
};

/// How the data of a field is read; it depends on the definition of the field.
enum class FieldKind : unsigned char {
    Unknown,      ///< loading has not ended yet
    Basic,        ///< data up to the next field word
    BasicToLimit, ///< an unbounded run of CHARACTER: data up to the end of the block or message
    Compound,     ///< sub-fields
};

/// The repeat count, or the length, that means: no upper limit.
constexpr int RepeatNoLimit = 0x1fffffff;

/// Base of all terms, and the class of the standard terms CHARACTER, ALPHANUM, ALPHA, DIGIT, SEP,
/// NIL and LIM_CHAR.
///
/// Matching works on UTF-16 units up to a null character. The result is the number of units matched
/// from the start, 0 for no match. A term that may match nothing (NIL, a repeat with minimum 0)
/// gives 0 as well; the caller asks isRequired() whether a 0 is acceptable.
///
/// A term is owned by the list that holds it: that of the rule set or of an expression.
class TermStd
{
public:
    /// A standard term of kind @p kind (a TermType of 1 to 7), written as the rule text of @p
    /// record (not null, copied). It is valid at once.
    TermStd(int kind, const ConfigInfo* record);

    /// The base of a derived term. It is not valid until the derived class says so.
    explicit TermStd(const ConfigInfo* record);

    virtual ~TermStd() = default;

    TermStd(const TermStd&) = delete;
    TermStd& operator=(const TermStd&) = delete;

    /// The kind as a TermType.
    virtual int type() const;

    /// The largest number of UTF-16 units that the term covers; RepeatNoLimit without limit.
    /// @p withRepeat says whether the term's own repeat count counts.
    virtual int calculateOfLengthData(bool withRepeat) const;

    /// Resolves references and checks the term against the named terms @p termsList (not owned).
    /// Returns false, after a report, if the term cannot be used.
    bool check_config(const TermList* termsList, Reporter* reporter);

    /// The same, as a part of the check @p check.
    virtual bool check(Check* check);

    /// Finds out, when loading ends, what matching and the look-up of fields need to know of the
    /// term and those inside it. The terms must not change any more.
    virtual void settle(Reporter* reporter);

    /// The term as one line of text for diagnosis. @p topLevel is true for the outermost call.
    virtual QString dumpData(bool topLevel) const;

    /// True if the term is an unbounded run of CHARACTER; its data may contain hyphens.
    virtual bool isCharacterNoLimit(Reporter* reporter) const;

    /// The sub-term written with the name @p name, or null. The caller does not own it.
    virtual const TermStd* search_TermField(QStringView name) const;

    /// True if the term is, or contains, the definition of a field.
    virtual bool isContainsField() const;

    /// Computes once, after loading, whether the term is a compound of fields.
    virtual void setCompoundField();

    /// True if the term is a compound of fields.
    virtual bool isContainsCompoundField() const;

    /// True if @p field (a sub-term of this one) can be the first thing in it.
    virtual bool isFirstRequiredField(const TermStd* field, Reporter* reporter) const;

    /// Matches one occurrence at the start of @p data, without brackets and repeat count.
    virtual int matchOnce(const QChar* data, Match* match) const;

    /// Matches the term with its repeat count at the start of @p indata, which ends with a null.
    /// Returns the UTF-16 units matched, 0 for no match. Greedy, never goes back.
    int match(const QChar* indata, Match* match) const
    {
        if (indata && bracketType != BracketRepeat)
            return firstChars.contains(*indata) ? matchOnce(indata, match) : 0;
        return matchRepeated(indata, match);
    }

    /// matchOnce() and match() without a bound on the steps. Broken invariants go to Qt's message
    /// output.
    int real_parse(const QChar* data) const;
    int parse(const QChar* indata) const;

    /// Stores the repeat count of a term in braces; -1 stands for a number that was not written.
    /// Counts that make no sense are reported and corrected; the term stays valid.
    void setRepeatCount(int min, int max, Reporter* reporter);

    /// What isContainsCompoundField() and isCharacterNoLimit() say together.
    FieldKind fieldKind(Reporter* reporter) const
    {
        return m_fieldKind == FieldKind::Unknown ? findFieldKind(reporter) : m_fieldKind;
    }

    /// True if the term must match something where it stands.
    bool isRequired() const
    {
        return bracketType == BracketNone || (bracketType == BracketRepeat && minRepeat >= 1);
    }

    /// True for the standard term SEP; no other class has its type.
    bool isSeparator() const { return stdType == TermTypeSep; }

    /// @p text in the term's own brackets and counts, for the dumps.
    QString dumpDataSetMaxMin(const QString& text) const;

    /// Reports the configuration error @p text at the place of the term's record; @p begin is the
    /// place in its expression, -1: that of the term's own text.
    void configErrorMessage(adexp_code code, const QString& text, Reporter* reporter,
                            int begin = -1) const;

    /// @name Character classes
    /// Each looks at the character that @p c points to and returns the units matched: 0 or 1,
    /// parse_sep the length of the whole run of white space.
    /// @{
    int parse_special(const QChar* c) const;
    int parse_lim_char(const QChar* c) const;
    int parse_character(const QChar* c) const;
    int parse_sep(const QChar* data) const;
    int parse_nil(const QChar* data) const;
    /// @}

    // The members that matching uses come first, so that they lie in the first cache line.
    int minRepeat = -1;            ///< minimum repeat count; -1 if none is set
    int maxRepeat = -1;            ///< maximum repeat count; -1 if none is set
    int bracketType = BracketNone; ///< a BracketType
    int stdType = TermTypeUnknown; ///< kind of a standard term; 0 in derived terms
    bool valid = false;            ///< the term can be used
    bool compoundField = false;    ///< a compound of fields
    bool configChecked = false;    ///< check() has been called; the caller sets it
    bool containsField = false;    ///< the definition of a field

private:
    FieldKind m_fieldKind = FieldKind::Unknown; // known when loading has ended

    FieldKind findFieldKind(Reporter* reporter) const;
    int matchRepeated(const QChar* indata, Match* match) const;

protected:
    /// The characters with which the term's data can begin; known once the term has been checked.
    FirstChars firstChars = FirstChars::all();

    /// firstChars of another term.
    static const FirstChars& firstCharsOf(const TermStd* term) { return term->firstChars; }

    /// parse_sep(), which takes a step for each unit.
    int matchSeparator(const QChar* data, Match* match) const
    {
        const int length = parse_sep(data);
        match->takeSteps(length);
        return length;
    }

    /// @p length times maxRepeat for a term in braces (RepeatNoLimit without limit), else @p
    /// length.
    int lengthTimesMaxRepeat(int length) const;

public:                  // more members: these are not used by matching
    ConfigInfo config;   ///< the record that the term comes from
    QString ExprRuleStr; ///< the term's own text: keyword, literal, name or expression
};

#endif
