// Deliberately naive: see the warning in the header before changing anything here.

#include "referencematcher.h"

#include <algorithm>

namespace reference {

namespace {

const QChar Sequence(u'!');
const QChar Choice(u'|');
const QChar Plus(u'+');

QString simplified(const QString& text)
{
    QString result;
    bool blankWaits = false;
    for (const QChar character : text) {
        if (character.isSpace()) {
            blankWaits = !result.isEmpty();
            continue;
        }
        if (blankWaits)
            result += QChar(u' ');
        blankWaits = false;
        result += character;
    }
    return result;
}

bool isKeyword(const QString& word)
{
    return word == QLatin1String("CHARACTER") || word == QLatin1String("ALPHANUM") ||
           word == QLatin1String("ALPHA") || word == QLatin1String("DIGIT") ||
           word == QLatin1String("SEP") || word == QLatin1String("NIL") ||
           word == QLatin1String("LIM_CHAR");
}

Term keyword(const QString& name)
{
    Term term;
    term.kind = Kind::Keyword;
    term.text = name;
    return term;
}

Term wordTerm(const QString& upperCaseWord)
{
    if (isKeyword(upperCaseWord))
        return keyword(upperCaseWord);
    Term term;
    term.kind = Kind::Name;
    term.text = upperCaseWord;
    return term;
}

bool isSeparator(const Term& term)
{
    return term.kind == Kind::Keyword && term.text == QLatin1String("SEP");
}

bool isRequired(const Term& term)
{
    if (term.bracket == Bracket::None)
        return true;
    return term.bracket == Bracket::Repeated && term.least >= 1;
}

bool isAsciiDigit(QChar character)
{
    return character >= QChar(u'0') && character <= QChar(u'9');
}

/// True for a number that does not fit into 31 bits.
bool isTooLarge(const QString& word)
{
    int firstDigit = 0;
    for (const QChar character : word) {
        if (!isAsciiDigit(character))
            return false;
    }
    while (firstDigit < word.size() && word.at(firstDigit) == QChar(u'0'))
        ++firstDigit;
    const QString number = word.mid(firstDigit);
    const QString largest = QStringLiteral("2147483647");
    return number.size() != largest.size() ? number.size() > largest.size() : number > largest;
}

void setRepeatCount(Term* term, int least, int most, QStringList* messages)
{
    if (least == NotGiven)
        least = 0;
    if (isSeparator(*term) && (least > 1 || most > 1)) {
        messages->append(QStringLiteral("in adexp the number of spaces does not matter"));
        if (least > 0)
            least = 1;
        if (most > 1)
            most = 1;
    }
    if (most == NotGiven)
        most = Unlimited;
    if (most < least) {
        messages->append(
            QStringLiteral("minimum repeat count = %1 more than maximum repeat count = %2")
                .arg(least)
                .arg(most));
        least = most;
    }
    term->least = least;
    term->most = most;
}

std::optional<Term> compileText(const QString& text, bool forceUnwrap, QStringList* messages);

/// Compiles the text between one pair of brackets, or a whole definition.
class GroupCompiler
{
public:
    GroupCompiler(const QString& text, QStringList* messages)
        : m_text(simplified(text)), m_messages(messages)
    {
    }

    /// The group, or nothing if something was wrong with it.
    std::optional<Term> compile()
    {
        while (m_at < m_text.size()) {
            if (!readElement())
                return std::nullopt;
        }
        const bool complete = finish();
        const bool pure = hasOneKindOfOperator();
        if (!pure) {
            m_messages->append(
                QStringLiteral("automatic priority operations are not implemented, "
                               "please arrange the brackets to indicate the priority"));
        }
        if (!complete || !pure)
            return std::nullopt;
        return m_group;
    }

private:
    bool readElement()
    {
        const QChar character = m_text.at(m_at);
        if (character == QChar(u'\''))
            return readLiteral();
        if (character == QChar(u'('))
            return readGroup(QChar(u'('), QChar(u')'), Bracket::None);
        if (character == QChar(u'['))
            return readGroup(QChar(u'['), QChar(u']'), Bracket::Optional);
        if (character == QChar(u'{'))
            return readGroup(QChar(u'{'), QChar(u'}'), Bracket::Repeated);
        if (character == Choice || character == Sequence || character == Plus)
            return readOperator(character);
        ++m_at;
        if (character != QChar(u' '))
            m_word += character;
        else if (m_at == m_text.size() || m_text.at(m_at) != QChar(u'{'))
            appendPendingWord();
        return true;
    }

    bool readLiteral()
    {
        const QString inner = readBracketed(QChar(u'\''), QChar(u'\''));
        if (inner.isEmpty())
            return false;
        appendPendingWord();
        recordOperator(QString());
        Term term;
        term.kind = Kind::Literal;
        term.text = simplified(inner.toUpper());
        m_group.parts.push_back(term);
        return true;
    }

    bool readGroup(QChar open, QChar close, Bracket bracket)
    {
        const QString inner = readBracketed(open, close);
        if (inner.isEmpty())
            return false;
        int least = NotGiven;
        int most = NotGiven;
        if (bracket == Bracket::Repeated) {
            bool isNumber = false;
            const int number = m_word.toInt(&isNumber);
            if (isNumber) {
                least = number;
                m_word.clear();
            } else if (isTooLarge(m_word)) {
                m_messages->append(QStringLiteral("repeat count ") + m_word +
                                   QStringLiteral(" is larger than 2147483647") +
                                   QStringLiteral(" and is taken for a name"));
            }
            most = readMaximum();
        }
        appendPendingWord();
        recordOperator(inner);

        const QString upperCase = inner.toUpper();
        std::optional<Term> term =
            isKeyword(upperCase) ? keyword(upperCase) : compileText(upperCase, false, m_messages);
        if (!term)
            return false;
        term->bracket = bracket;
        if (bracket == Bracket::Repeated)
            setRepeatCount(&*term, least, most, m_messages);
        m_group.parts.push_back(*term);
        return true;
    }

    /// Reads from the opening to its closing character; empty after a reported error.
    QString readBracketed(QChar open, QChar close)
    {
        QString inner;
        int depth = 0;
        for (int at = m_at + 1; at < m_text.size(); ++at) {
            const QChar character = m_text.at(at);
            if (character == close && depth == 0) {
                if (inner.isEmpty()) {
                    m_messages->append(QStringLiteral("term in ") + open + close +
                                       QStringLiteral(" empty"));
                }
                m_at = at + 1;
                return inner;
            }
            if (character == close)
                --depth;
            else if (character == open)
                ++depth;
            inner += character;
        }
        QString message = QStringLiteral("no clossing character ") + close;
        if (!inner.isEmpty())
            message += QChar(u' ') + inner;
        m_messages->append(message);
        return QString();
    }

    /// The number after a closing brace, if one stands there and nothing is glued to it.
    int readMaximum()
    {
        int at = m_at;
        while (at < m_text.size() && m_text.at(at) == QChar(u' '))
            ++at;
        QString digits;
        while (at < m_text.size() && isAsciiDigit(m_text.at(at)))
            digits += m_text.at(at++);
        if (digits.isEmpty())
            return NotGiven;
        if (at < m_text.size() && !QStringLiteral(" !|+'{([").contains(m_text.at(at)))
            return NotGiven;
        m_at = at;
        if (isTooLarge(digits)) {
            m_messages->append(QStringLiteral("repeat count ") + digits +
                               QStringLiteral(" is larger than 2147483647") +
                               QStringLiteral(" and counts as 0"));
            return 0;
        }
        return digits.toInt();
    }

    bool readOperator(QChar character)
    {
        if (m_word.isEmpty()) {
            if (!m_operator.isNull()) {
                m_messages->append(
                    QStringLiteral("two statements one after another without the term ") +
                    m_operator + QChar(u' ') + character);
                return false;
            }
            if (m_group.parts.empty()) {
                m_messages->append(QStringLiteral("operator ") + character +
                                   QStringLiteral(" without the term"));
                return false;
            }
        }
        appendPendingWord();
        m_operator = character;
        ++m_at;
        return true;
    }

    void appendPendingWord()
    {
        if (m_word.isEmpty())
            return;
        const QString word = m_word.toUpper();
        m_word.clear();
        recordOperator(word);
        m_group.parts.push_back(wordTerm(word));
    }

    void recordOperator(const QString& nextTermText)
    {
        if (m_group.parts.empty())
            return;
        const QChar written = m_operator;
        m_operator = QChar();
        if (written == Choice || written == Sequence) {
            m_group.operators += written;
            return;
        }
        m_group.operators += Sequence;
        const bool noSeparator = nextTermText.isEmpty() || nextTermText == QLatin1String("SEP") ||
                                 isSeparator(m_group.parts.back());
        if (noSeparator)
            return;
        m_group.parts.push_back(keyword(QStringLiteral("SEP")));
        m_group.operators += Sequence;
    }

    bool finish()
    {
        if (!m_word.isEmpty()) {
            appendPendingWord();
            return true;
        }
        if (m_group.parts.empty()) {
            m_messages->append(QStringLiteral("term list is empty"));
            return false;
        }
        if (!m_operator.isNull()) {
            m_messages->append(QStringLiteral("missing the last term after operator ") +
                               m_operator);
            return false;
        }
        return true;
    }

    bool hasOneKindOfOperator() const
    {
        return !(m_group.operators.contains(Choice) && m_group.operators.contains(Sequence));
    }

    QString m_text;
    QStringList* m_messages;
    int m_at = 0;
    QString m_word;   ///< word read but not yet appended
    QChar m_operator; ///< operator read but not yet recorded, null if none
    Term m_group;
};

std::optional<Term> compileText(const QString& text, bool forceUnwrap, QStringList* messages)
{
    const std::optional<Term> group = GroupCompiler(text, messages).compile();
    if (!group || group->parts.size() > 1)
        return group;
    const Term only = group->parts.front();
    const bool isDecorated =
        only.bracket != Bracket::None || only.least != NotGiven || only.most != NotGiven;
    if (isDecorated && !forceUnwrap)
        return group;
    return only;
}

bool isUpperCaseLetter(QChar character)
{
    return character.category() == QChar::Letter_Uppercase;
}

bool isDigit(QChar character)
{
    return character.category() == QChar::Number_DecimalDigit;
}

bool isLimitedCharacter(QChar character)
{
    return isUpperCaseLetter(character) || isDigit(character) || character.isSpace() ||
           QStringLiteral("()?:.,'=+/").contains(character);
}

int separatorLength(const QString& text)
{
    int length = 0;
    while (length < text.size() && text.at(length).isSpace())
        ++length;
    return length;
}

int keywordLength(const QString& keyword, const QString& text)
{
    if (keyword == QLatin1String("SEP"))
        return separatorLength(text);
    if (text.isEmpty())
        return 0;
    const QChar first = text.at(0);
    bool matches = false; // NIL never matches
    if (keyword == QLatin1String("CHARACTER"))
        matches = isLimitedCharacter(first) || first == QChar(u'-');
    else if (keyword == QLatin1String("LIM_CHAR"))
        matches = isLimitedCharacter(first);
    else if (keyword == QLatin1String("ALPHANUM"))
        matches = isUpperCaseLetter(first) || isDigit(first);
    else if (keyword == QLatin1String("ALPHA"))
        matches = isUpperCaseLetter(first);
    else if (keyword == QLatin1String("DIGIT"))
        matches = isDigit(first);
    return matches ? 1 : 0;
}

QString decorated(const Term& term, const QString& text)
{
    if (term.bracket == Bracket::Repeated)
        return QString::number(term.least) + QChar(u'{') + text + QChar(u'}') +
               QString::number(term.most);
    if (term.bracket == Bracket::Optional)
        return QChar(u'[') + text + QChar(u']');
    return text;
}

} // namespace

Compiled compile(const QString& expression)
{
    Compiled result;
    result.term = compileText(expression, true, &result.messages);
    return result;
}

void Grammar::define(const QString& name, const QString& expression)
{
    const Compiled compiled = compile(expression);
    if (compiled.term)
        m_definitions.push_back({name, *compiled.term});
}

const Term* Grammar::find(const QString& name) const
{
    for (const Definition& definition : m_definitions) {
        if (definition.name == name)
            return &definition.term;
    }
    return nullptr;
}

bool Grammar::isSound(const Term& term, const QString& ownName) const
{
    return isSoundBelow(term, QStringList{ownName});
}

bool Grammar::isSoundBelow(const Term& term, const QStringList& namesAbove) const
{
    switch (term.kind) {
    case Kind::Keyword:
        return true;
    case Kind::Literal:
        return !term.text.isEmpty();
    case Kind::Name: {
        const Term* definition = find(term.text);
        return definition && !namesAbove.contains(term.text) &&
               isSoundBelow(*definition, namesAbove + QStringList{term.text});
    }
    case Kind::Group:
        break;
    }
    for (const Term& part : term.parts) {
        if (!isSoundBelow(part, namesAbove))
            return false;
    }
    return true;
}

int Grammar::matchedLength(const Term& term, const QString& text) const
{
    const auto end = text.indexOf(QChar(u'\0'));
    return match(term, end < 0 ? text : text.left(end));
}

int Grammar::match(const Term& term, const QString& text) const
{
    if (term.bracket != Bracket::Repeated)
        return matchOnce(term, text);
    int count = 0;
    int length = 0;
    while (count < term.most) {
        const int more = matchOnce(term, text.mid(length));
        if (more == 0)
            break;
        ++count;
        length += more;
    }
    return count < term.least ? 0 : length;
}

int Grammar::matchOnce(const Term& term, const QString& text) const
{
    switch (term.kind) {
    case Kind::Keyword:
        return keywordLength(term.text, text);
    case Kind::Literal:
        return text.startsWith(term.text) ? static_cast<int>(term.text.size()) : 0;
    case Kind::Name:
        return match(*find(term.text), text);
    case Kind::Group:
        break;
    }
    return term.operators.startsWith(Choice) ? matchChoice(term, text) : matchSequence(term, text);
}

int Grammar::matchChoice(const Term& group, const QString& text) const
{
    int longest = 0;
    for (const Term& alternative : group.parts)
        longest = std::max(longest, match(alternative, text));
    return longest;
}

int Grammar::matchSequence(const Term& group, const QString& text) const
{
    int position = 0;
    std::size_t i = 0;
    while (i < group.parts.size()) {
        const Term& part = group.parts[i];
        if (position == text.size()) {
            // The text is used up: separators may be missing, whatever is required may not.
            if (!isSeparator(part) && isRequired(part))
                return 0;
            ++i;
            continue;
        }
        const int length = match(part, text.mid(position));
        if (length == 0 && isRequired(part))
            return 0;
        const bool separatorIsNext = i + 1 < group.parts.size() && isSeparator(group.parts[i + 1]);
        const bool separatorFollows = separatorLength(text.mid(position + length)) > 0;
        if (!isRequired(part) && separatorIsNext && !separatorFollows) {
            // Absent, and so is the separator after it. Nothing of the match is kept.
            i += 2;
            continue;
        }
        position += length;
        ++i;
    }
    return position;
}

qint64 Grammar::longestLength(const Term& term, bool withRepeat) const
{
    const bool isRepeated = term.bracket == Bracket::Repeated && term.most > 0;
    qint64 once = 0;
    switch (term.kind) {
    case Kind::Keyword:
        return isRepeated && withRepeat ? term.most : 1;
    case Kind::Literal:
        once = term.text.size();
        withRepeat = true; // the repeat count of a literal always counts
        break;
    case Kind::Name:
        once = longestLength(*find(term.text), true);
        break;
    case Kind::Group:
        for (const Term& part : term.parts) {
            const qint64 length = longestLength(part, true);
            once = term.operators.startsWith(Choice) ? std::max(once, length) : once + length;
        }
        break;
    }
    if (!isRepeated || !withRepeat)
        return once;
    return term.most == Unlimited ? Unlimited : once * term.most;
}

QString Grammar::dump(const Term& term, bool topLevel) const
{
    switch (term.kind) {
    case Kind::Keyword:
        return decorated(term, term.text);
    case Kind::Literal:
        return decorated(term, QChar(u'\'') + term.text + QChar(u'\''));
    case Kind::Name: {
        const QString name = decorated(term, term.text);
        const Term* definition = find(term.text);
        return name + QStringLiteral("<simpleTerm>") + name + QStringLiteral("</simpleTerm>") +
               (definition ? dump(*definition, false) : QStringLiteral("not found")) +
               QStringLiteral("</simpleTerm>"); // two closing tags, see TermVariable::dumpData()
    }
    case Kind::Group:
        break;
    }
    return dumpGroup(term, topLevel);
}

QString Grammar::dumpGroup(const Term& group, bool topLevel) const
{
    QString text = QStringLiteral("<TermExpression>");
    for (std::size_t i = 0; i < group.parts.size(); ++i) {
        if (i > 0)
            text +=
                QChar(u' ') + QString(group.operators.at(static_cast<int>(i) - 1)) + QChar(u' ');
        text += dump(group.parts[i], false);
    }
    text += QStringLiteral("</TermExpression>");
    if (group.least != NotGiven || group.most != NotGiven)
        return decorated(group, text);
    return topLevel ? text : QChar(u'(') + text + QChar(u')');
}

} // namespace reference
