// The terms one by one: construction, repeat counts, checks, lengths and questions about fields.

#include "support/diagnosticcapture.h"
#include "support/termset.h"
#include "support/tooutput.h"
#include "support/utf16text.h"

#include "grammar/termexpression.h"
#include "grammar/termsimple.h"
#include "grammar/termstd.h"
#include "grammar/termvariable.h"
#include "load/mainclass.h"
#include "message/msgrule.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

constexpr int Optional = 1;
constexpr int Repeated = 2;
constexpr int Unlimited = 0x1fffffff;

/// A record of the given rule text, ready for a term's constructor.
struct Record
{
    explicit Record(const Utf16Text& ruleText, const Utf16Text& name = u"R")
    {
        fillRecord(&item, name, ruleText);
    }

    ConfigInfo item;
};

std::unique_ptr<TermStd> standardTerm(int kind)
{
    const Record record(u"KEYWORD");
    return std::make_unique<TermStd>(kind, &record.item);
}

std::unique_ptr<TermSimple> literal(const Utf16Text& text)
{
    const Record record(text);
    return std::make_unique<TermSimple>(&record.item);
}

std::unique_ptr<TermVariable> reference(const Utf16Text& target)
{
    const Record record(target);
    return std::make_unique<TermVariable>(&record.item);
}

std::unique_ptr<TermExpression> expression(const Utf16Text& text)
{
    const Record record(text);
    return std::make_unique<TermExpression>(&record.item, &toOutput);
}

template <typename Term>
std::unique_ptr<Term> repeated(std::unique_ptr<Term> term, int least, int most)
{
    term->bracketType = Repeated;
    term->setRepeatCount(least, most, &toOutput);
    return term;
}

/// The only critical message of a capture, blanks between its items evened out.
std::string onlyInternalError(const DiagnosticCapture& diagnostics)
{
    const QStringList lines = diagnostics.criticalLines();
    if (lines.size() != 1)
        return std::to_string(lines.size()) + " internal errors";
    return lines.first().simplified().toStdString();
}

bool endsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string joined(const QStringList& texts)
{
    return texts.join(QChar(u'\n')).toStdString();
}

} // namespace

TEST(StandardTerm, is_valid_from_birth)
{
    const Record record(u"DIGIT", u"NAME");
    const TermStd term(4, &record.item);
    EXPECT_EQ(term.type(), 4);
    EXPECT_EQ(term.stdType, 4);
    EXPECT_TRUE(term.valid);
    EXPECT_EQ(term.ExprRuleStr, QStringLiteral("DIGIT"));
    EXPECT_EQ(term.config.recordName, QStringLiteral("NAME"));
    EXPECT_EQ(term.config.ruleText, QStringLiteral("DIGIT"));
    EXPECT_EQ(term.config.xmlFile, QStringLiteral("simple.xml"));
    EXPECT_EQ(term.config.lineNumber, 12);
    EXPECT_EQ(term.minRepeat, -1);
    EXPECT_EQ(term.maxRepeat, -1);
    EXPECT_EQ(term.bracketType, 0);
    EXPECT_FALSE(term.compoundField);
    EXPECT_FALSE(term.configChecked);
    EXPECT_FALSE(term.containsField);
}

TEST(StandardTerm, of_a_record_alone_is_not_valid_and_has_no_kind)
{
    const Record record(u"DIGIT");
    const TermStd term(&record.item);
    EXPECT_EQ(term.type(), 0);
    EXPECT_FALSE(term.valid);
    EXPECT_TRUE(term.ExprRuleStr.isEmpty());
    EXPECT_EQ(term.minRepeat, -1);
    EXPECT_EQ(term.maxRepeat, -1);
    EXPECT_EQ(term.config.ruleText, QStringLiteral("DIGIT"));
    EXPECT_EQ(term.dumpData(false), QStringLiteral("UNKNOWN"));
}

TEST(StandardTerm, check_returns_valid_and_leaves_the_checked_mark_to_the_caller)
{
    const auto term = standardTerm(4);
    EXPECT_TRUE(term->check_config(nullptr, &toOutput));
    EXPECT_FALSE(term->configChecked);
    term->valid = false;
    EXPECT_FALSE(term->check_config(nullptr, &toOutput));
}

TEST(StandardTerm, answers_about_fields)
{
    const auto term = standardTerm(4);
    EXPECT_EQ(term->search_TermField(QStringLiteral("KEYWORD")), nullptr);
    EXPECT_FALSE(term->isFirstRequiredField(term.get(), &toOutput));
    EXPECT_FALSE(term->isContainsField());
    term->containsField = true;
    EXPECT_TRUE(term->isContainsField());
    EXPECT_FALSE(term->isContainsCompoundField());
    term->compoundField = true;
    EXPECT_TRUE(term->isContainsCompoundField());
    term->setCompoundField(); // clears the mark of a standard term, whatever it holds
    EXPECT_FALSE(term->isContainsCompoundField());
}

TEST(StandardTerm, null_text_is_an_internal_error)
{
    const auto term = standardTerm(4);
    DiagnosticCapture diagnostics;
    EXPECT_EQ(term->parse(nullptr), 0);
    EXPECT_EQ(onlyInternalError(diagnostics), "int TermStd::parse(const QChar*) indata == 0");
}

TEST(StandardTerm, unknown_kind_is_an_internal_error)
{
    const QString text = QStringLiteral("A");
    for (const int kind : {0, -1, 8, 1000}) {
        SCOPED_TRACE(kind);
        const auto term = standardTerm(kind);
        DiagnosticCapture diagnostics;
        EXPECT_EQ(term->parse(text.constData()), 0);
        EXPECT_TRUE(
            endsWith(onlyInternalError(diagnostics),
                     "real_parse(const QChar*) unknown StdTerm type = " + std::to_string(kind)))
            << onlyInternalError(diagnostics);
    }
}

TEST(StandardTerm, separator_test_works_on_any_term)
{
    const auto term = standardTerm(4);
    const QString text = QStringLiteral(" \n A");
    EXPECT_EQ(term->parse_sep(text.constData()), 3);
    EXPECT_EQ(term->parse_sep(text.constData() + 3), 0);
    EXPECT_EQ(term->parse_sep(text.constData() + 4), 0);
}

TEST(StandardTerm, character_classes)
{
    const auto term = standardTerm(4);
    const QString special = QStringLiteral("()?:.,'=+/ \n\t");
    for (int i = 0; i < special.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(term->parse_special(special.constData() + i), 1);
        EXPECT_EQ(term->parse_lim_char(special.constData() + i), 1);
        EXPECT_EQ(term->parse_character(special.constData() + i), 1);
        EXPECT_EQ(term->parse_nil(special.constData() + i), 0);
    }
    const QString hyphen = QStringLiteral("-");
    EXPECT_EQ(term->parse_special(hyphen.constData()), 0);
    EXPECT_EQ(term->parse_lim_char(hyphen.constData()), 0);
    EXPECT_EQ(term->parse_character(hyphen.constData()), 1);
    const QString letter = QStringLiteral("A");
    EXPECT_EQ(term->parse_special(letter.constData()), 0);
    const QString none;
    EXPECT_EQ(term->parse_special(none.constData()), 0);
    EXPECT_EQ(term->parse_character(none.constData()), 0);
    EXPECT_EQ(term->parse_lim_char(none.constData()), 0);
    EXPECT_EQ(term->parse_sep(none.constData()), 0);
}

TEST(StandardTerm, one_occurrence_ignores_the_repeat_count)
{
    const auto term = repeated(standardTerm(4), 2, 4);
    const QString text = QStringLiteral("12345");
    EXPECT_EQ(term->real_parse(text.constData()), 1);
    EXPECT_EQ(term->parse(text.constData()), 4);
}

TEST(StandardTerm, maximum_of_zero_or_less_tries_nothing)
{
    const QString text = QStringLiteral("12345");
    const auto term = standardTerm(4);
    term->bracketType = Repeated;
    for (const int most : {0, -5}) {
        term->minRepeat = -5;
        term->maxRepeat = most;
        EXPECT_EQ(term->parse(text.constData()), 0);
    }
}

TEST(StandardTerm, longest_length)
{
    const auto term = standardTerm(4);
    EXPECT_EQ(term->calculateOfLengthData(true), 1);
    EXPECT_EQ(term->calculateOfLengthData(false), 1);
    const auto bounded = repeated(standardTerm(4), 2, 7);
    EXPECT_EQ(bounded->calculateOfLengthData(true), 7);
    EXPECT_EQ(bounded->calculateOfLengthData(false), 1);
    EXPECT_EQ(repeated(standardTerm(4), 2, -1)->calculateOfLengthData(true), Unlimited);
    EXPECT_EQ(repeated(standardTerm(4), -1, 0)->calculateOfLengthData(true), 1);
    term->bracketType = Optional;
    term->maxRepeat = 7;
    EXPECT_EQ(term->calculateOfLengthData(true), 1);
}

TEST(StandardTerm, only_an_unbounded_run_of_CHARACTER_is_character_without_limit)
{
    EXPECT_TRUE(repeated(standardTerm(1), 0, -1)->isCharacterNoLimit(&toOutput));
    EXPECT_TRUE(repeated(standardTerm(1), 3, Unlimited)->isCharacterNoLimit(&toOutput));
    EXPECT_FALSE(repeated(standardTerm(1), 0, 100)->isCharacterNoLimit(&toOutput));
    EXPECT_FALSE(repeated(standardTerm(7), 0, -1)->isCharacterNoLimit(&toOutput));
    EXPECT_FALSE(standardTerm(1)->isCharacterNoLimit(&toOutput));
    const auto optional = standardTerm(1);
    optional->bracketType = Optional;
    optional->maxRepeat = Unlimited;
    EXPECT_FALSE(optional->isCharacterNoLimit(&toOutput));
}

TEST(RepeatCount, table)
{
    const char* spaces = "in adexp the number of spaces does not matter";
    const int digit = 4;
    const int sep = 5;
    const struct
    {
        int kind, bracketType, least, most;
        int storedLeast, storedMost;
        std::string messages;
    } rows[] = {
        {digit, 2, -1, -1, 0, Unlimited, ""},
        {digit, 2, 2, -1, 2, Unlimited, ""},
        {digit, 2, -1, 4, 0, 4, ""},
        {digit, 2, 2, 5, 2, 5, ""},
        {digit, 2, 0, 0, 0, 0, ""},
        {digit, 2, -3, 2, -3, 2, ""},
        {digit, 2, -3, -2, -3, -2, ""},
        {digit, 2, -1, -2, -2, -2, "minimum repeat count = 0 more than maximum repeat count = -2"},
        {digit, 2, 5, 3, 3, 3, "minimum repeat count = 5 more than maximum repeat count = 3"},
        {digit, 0, 2, 5, -1, -1, ""},
        {digit, 1, 2, 5, -1, -1, ""},
        {digit, 0, 5, 3, -1, -1, ""},
        {sep, 0, 2, 5, -1, -1, ""},
        {sep, 2, 2, -1, 1, Unlimited, spaces},
        {sep, 2, 0, 3, 0, 1, spaces},
        {sep, 2, 1, 1, 1, 1, ""},
        {sep, 2, -1, -1, 0, Unlimited, ""},
        {sep, 2, -1, 2, 0, 1, spaces},
        {sep, 2, 5, 3, 1, 1, spaces},
        {sep, 2, -3, 4, -3, 1, spaces},
        {sep, 2, 2, 0, 0, 0,
         std::string(spaces) + "\nminimum repeat count = 1 more than maximum repeat count = 0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE("kind " + std::to_string(row.kind) + " bracket " +
                     std::to_string(row.bracketType) + ": " + std::to_string(row.least) + ", " +
                     std::to_string(row.most));
        const auto term = standardTerm(row.kind);
        term->bracketType = row.bracketType;
        DiagnosticCapture diagnostics;
        term->setRepeatCount(row.least, row.most, &toOutput);
        EXPECT_EQ(term->minRepeat, row.storedLeast);
        EXPECT_EQ(term->maxRepeat, row.storedMost);
        EXPECT_EQ(joined(diagnostics.reportedTexts()), row.messages);
        EXPECT_TRUE(term->valid);
    }
}

TEST(RepeatCount, is_taken_away_from_a_term_that_is_no_longer_in_braces)
{
    const auto term = repeated(standardTerm(4), 2, 4);
    term->bracketType = Optional;
    term->setRepeatCount(2, 4, &toOutput);
    EXPECT_EQ(term->minRepeat, -1);
    EXPECT_EQ(term->maxRepeat, -1);
}

TEST(TermReport, has_three_quoted_items_each_followed_by_a_blank)
{
    const Record record(u"F {DIGIT}3", u"FL_LEVEL");
    const TermStd term(&record.item);
    DiagnosticCapture diagnostics;
    term.configErrorMessage(ADEXP_CODE_EMPTY_EXPRESSION, QStringLiteral("say \"no\""), &toOutput);
    ASSERT_EQ(diagnostics.lines().size(), 1u);
    EXPECT_EQ(diagnostics.lines()[0].type, QtDebugMsg);
    EXPECT_EQ(diagnostics.lines()[0].text.toStdString(),
              "\"element (FL_LEVEL) file simple.xml line 12, column 5: \" \"F {DIGIT}3\" \"say "
              "\"no\"\" ");
}

TEST(TermDump, decorations)
{
    const auto term = standardTerm(4);
    const QString name = QStringLiteral("X");
    EXPECT_EQ(term->dumpDataSetMaxMin(name), QStringLiteral("X"));
    term->bracketType = Optional;
    EXPECT_EQ(term->dumpDataSetMaxMin(name), QStringLiteral("[X]"));
    term->bracketType = Repeated;
    EXPECT_EQ(term->dumpDataSetMaxMin(name), QStringLiteral("-1{X}-1"));
    term->setRepeatCount(2, 4, &toOutput);
    EXPECT_EQ(term->dumpDataSetMaxMin(name), QStringLiteral("2{X}4"));
    EXPECT_EQ(term->dumpData(true), QStringLiteral("2{DIGIT}4"));
    term->setRepeatCount(-1, -1, &toOutput);
    EXPECT_EQ(term->dumpData(false), QStringLiteral("0{DIGIT}536870911"));
    term->bracketType = 7;
    EXPECT_EQ(term->dumpDataSetMaxMin(name), QStringLiteral("X"));
}

TEST(TermDump, names_of_the_kinds)
{
    const char* names[] = {"UNKNOWN", "CHARACTER", "ALPHANUM", "ALPHA",   "DIGIT",
                           "SEP",     "NIL",       "LIM_CHAR", "UNKNOWN", "UNKNOWN"};
    for (int kind = 0; kind < 10; ++kind)
        EXPECT_EQ(standardTerm(kind)->dumpData(false).toStdString(), names[kind]);
    EXPECT_EQ(standardTerm(11)->dumpData(false), QStringLiteral("UNKNOWN"));
    EXPECT_EQ(standardTerm(-1)->dumpData(false), QStringLiteral("UNKNOWN"));
}

TEST(TermDump, literal)
{
    const auto term = literal(u"IFPL");
    EXPECT_EQ(term->dumpData(false), QStringLiteral("'IFPL'"));
    term->bracketType = Optional;
    EXPECT_EQ(term->dumpData(false), QStringLiteral("['IFPL']"));
}

TEST(TermDump, unresolved_reference_closes_its_tag_twice)
{
    EXPECT_EQ(reference(u"ARCID")->dumpData(true),
              QStringLiteral("ARCID<simpleTerm>ARCID</simpleTerm>not found</simpleTerm>"));
}

TEST(TermDump, resolved_reference)
{
    TermSet set;
    set.define(QStringLiteral("ARCID"), QStringLiteral("A B"));
    set.define(QStringLiteral("A"), QStringLiteral("2{ALPHANUM}7"));
    set.define(QStringLiteral("B"), QStringLiteral("['X']"));
    const auto term = repeated(reference(u"ARCID"), 1, 1);
    ASSERT_TRUE(term->check_config(set.terms(), &toOutput));
    EXPECT_EQ(term->dumpData(true).toStdString(),
              "1{ARCID}1<simpleTerm>1{ARCID}1</simpleTerm>(<TermExpression>"
              "A<simpleTerm>A</simpleTerm>2{ALPHANUM}7</simpleTerm> ! SEP ! "
              "B<simpleTerm>B</simpleTerm>['X']</simpleTerm></TermExpression>)</simpleTerm>");
}

TEST(TermDump, expression_shows_round_brackets_only_inside_another_and_never_with_a_count)
{
    const auto term = expression(u"DIGIT | ALPHA");
    EXPECT_EQ(term->dumpData(true),
              QStringLiteral("<TermExpression>DIGIT | ALPHA</TermExpression>"));
    EXPECT_EQ(term->dumpData(false),
              QStringLiteral("(<TermExpression>DIGIT | ALPHA</TermExpression>)"));
    term->bracketType = Optional;
    EXPECT_EQ(term->dumpData(true),
              QStringLiteral("<TermExpression>DIGIT | ALPHA</TermExpression>"));
    EXPECT_EQ(term->dumpData(false),
              QStringLiteral("(<TermExpression>DIGIT | ALPHA</TermExpression>)"));
    term->bracketType = Repeated;
    term->setRepeatCount(2, 3, &toOutput);
    EXPECT_EQ(term->dumpData(true),
              QStringLiteral("2{<TermExpression>DIGIT | ALPHA</TermExpression>}3"));
    EXPECT_EQ(term->dumpData(false),
              QStringLiteral("2{<TermExpression>DIGIT | ALPHA</TermExpression>}3"));
}

TEST(TermDump, expression_of_one_term_shows_neither_operator_nor_blank)
{
    EXPECT_EQ(expression(u"DIGIT")->dumpData(true),
              QStringLiteral("<TermExpression>DIGIT</TermExpression>"));
}

TEST(TermDump, expression_without_terms)
{
    EXPECT_EQ(expression(u"")->dumpData(true), QStringLiteral("<TermExpression></TermExpression>"));
}

TEST(TermDump, missing_operator_shows_as_a_question_mark_and_is_an_internal_error)
{
    const auto term = expression(u"DIGIT!ALPHA!SEP");
    term->OperatorsList = QStringLiteral("!");
    DiagnosticCapture diagnostics;
    EXPECT_EQ(term->dumpData(true),
              QStringLiteral("<TermExpression>DIGIT ! ALPHA ? SEP</TermExpression>"));
    EXPECT_EQ(
        onlyInternalError(diagnostics),
        "virtual QString TermExpression::dumpData(bool) const i = 1 OperatorsList.length() = 1");
}

TEST(Literal, does_not_match_the_null_that_ends_the_data)
{
    ConfigInfo record;
    record.ruleText = QStringLiteral("A") + QChar(0) + QStringLiteral("B");
    TermSimple literal(&record);
    EXPECT_EQ(literal.parse(QStringLiteral("A").constData()), 0);
    record.ruleText = QString(QChar(0));
    TermSimple null(&record);
    EXPECT_EQ(null.parse(QString(QLatin1String("")).constData()), 0);
}

TEST(Literal, keeps_its_text_simplified)
{
    const auto term = literal(u"  Two \t\n words ");
    EXPECT_EQ(term->type(), 10);
    EXPECT_TRUE(term->valid);
    EXPECT_EQ(term->ExprRuleStr, QStringLiteral("Two words"));
    EXPECT_EQ(term->stdType, 0);
    const QString text = QStringLiteral("Two words");
    EXPECT_EQ(term->parse(text.constData()), 9);
    EXPECT_TRUE(term->check_config(nullptr, &toOutput));
}

TEST(Literal, of_blanks_only_is_found_empty_by_the_check)
{
    const auto term = literal(u" \n ");
    EXPECT_TRUE(term->valid);
    const QString text = QStringLiteral("A");
    EXPECT_EQ(term->parse(text.constData()), 0);
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(term->check_config(nullptr, &toOutput));
    EXPECT_FALSE(term->valid);
    EXPECT_EQ(joined(diagnostics.reportedTexts()), "ExprRuleStr is empty");
}

TEST(Literal, invalid_one_stays_invalid)
{
    const auto term = literal(u"A");
    term->valid = false;
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(term->check_config(nullptr, &toOutput));
    EXPECT_TRUE(diagnostics.lines().empty());
}

TEST(Literal, repeat_count_always_counts_in_the_longest_length)
{
    EXPECT_EQ(literal(u"IFPL")->calculateOfLengthData(true), 4);
    EXPECT_EQ(literal(u"IFPL")->calculateOfLengthData(false), 4);
    const auto bounded = repeated(literal(u"IFPL"), 0, 3);
    EXPECT_EQ(bounded->calculateOfLengthData(false), 12);
    EXPECT_EQ(bounded->calculateOfLengthData(true), 12);
    const auto unbounded = repeated(literal(u"IFPL"), 0, -1);
    EXPECT_EQ(unbounded->calculateOfLengthData(false), Unlimited);
    EXPECT_EQ(repeated(literal(u"IFPL"), 0, 0)->calculateOfLengthData(true), 4);
}

TEST(Literal, has_no_answers_about_fields)
{
    const auto term = literal(u"IFPL");
    EXPECT_EQ(term->search_TermField(QStringLiteral("IFPL")), nullptr);
    EXPECT_FALSE(term->isContainsField());
    EXPECT_FALSE(term->isFirstRequiredField(term.get(), &toOutput));
    EXPECT_FALSE(repeated(literal(u"IFPL"), 0, -1)->isCharacterNoLimit(&toOutput));
}

TEST(Reference, is_unresolved_after_construction)
{
    const auto term = reference(u"ARCID");
    EXPECT_EQ(term->type(), 9);
    EXPECT_EQ(term->ExprRuleStr, QStringLiteral("ARCID"));
    EXPECT_FALSE(term->valid);
    EXPECT_EQ(term->simpleTerm, nullptr);
    EXPECT_EQ(term->stdType, 0);
}

TEST(Reference, unresolved_one_reports_an_internal_error_where_it_needs_its_target)
{
    const auto term = reference(u"ARCID");
    const QString text = QStringLiteral("A");
    DiagnosticCapture diagnostics;

    EXPECT_EQ(term->parse(text.constData()), 0);
    EXPECT_TRUE(endsWith(onlyInternalError(diagnostics),
                         "TermVariable::real_parse(const QChar*) simpleTerm == 0"))
        << onlyInternalError(diagnostics);
    diagnostics.clear();

    EXPECT_FALSE(term->isCharacterNoLimit(&toOutput));
    EXPECT_TRUE(endsWith(onlyInternalError(diagnostics),
                         "TermVariable::isCharacterNoLimit() simpleTerm == 0"))
        << onlyInternalError(diagnostics);
    diagnostics.clear();

    EXPECT_EQ(term->calculateOfLengthData(true), 0);
    EXPECT_TRUE(endsWith(onlyInternalError(diagnostics),
                         "TermVariable::calculateOfLengthData(bool) const simpleTerm == 0"))
        << onlyInternalError(diagnostics);
    diagnostics.clear();

    EXPECT_FALSE(term->isFirstRequiredField(term.get(), &toOutput));
    EXPECT_TRUE(
        endsWith(onlyInternalError(diagnostics),
                 "TermVariable::isFirstRequiredField(const TermStd*) const simpleTerm == 0"))
        << onlyInternalError(diagnostics);
}

TEST(Reference, own_run_of_characters_needs_no_target)
{
    const auto term = repeated(reference(u"ARCID"), 0, -1);
    term->stdType = TermTypeCharacter;
    const DiagnosticCapture diagnostics;
    EXPECT_TRUE(term->isCharacterNoLimit(&toOutput));
    EXPECT_TRUE(diagnostics.lines().empty());
}

TEST(Reference, unresolved_one_answers_silently_about_fields)
{
    const auto term = reference(u"ARCID");
    DiagnosticCapture diagnostics;
    EXPECT_EQ(term->search_TermField(QStringLiteral("ARCID")), nullptr);
    EXPECT_FALSE(term->isContainsField());
    EXPECT_FALSE(term->isContainsCompoundField());
    term->compoundField = true;
    EXPECT_FALSE(term->isContainsCompoundField());
    term->setCompoundField();
    EXPECT_TRUE(term->compoundField); // left as it was
    term->containsField = true;
    EXPECT_TRUE(term->isContainsField());
    EXPECT_TRUE(diagnostics.lines().empty());
}

TEST(Reference, that_leads_back_to_itself_is_a_loop)
{
    TermSet set;
    set.define(QStringLiteral("X"), QStringLiteral("{CHARACTER}"));
    const auto term = reference(u"X");
    const QString text = QStringLiteral("A");
    ASSERT_TRUE(term->check_config(set.terms(), &toOutput));
    EXPECT_TRUE(term->isCharacterNoLimit(&toOutput));
    EXPECT_EQ(term->parse(text.constData()), 1);

    Check check{set.terms(), &toOutput, {term.get()}};
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(term->check(&check));
    EXPECT_EQ(joined(diagnostics.reportedTexts()), "loop detected in the variables");
    EXPECT_TRUE(term->valid); // left as it was
    diagnostics.clear();

    term->simpleTerm = term.get();
    EXPECT_EQ(term->parse(text.constData()), 0);
    EXPECT_TRUE(endsWith(onlyInternalError(diagnostics), "loop detected in the variables"));
    diagnostics.clear();
    EXPECT_FALSE(term->isCharacterNoLimit(&toOutput));
    EXPECT_TRUE(endsWith(onlyInternalError(diagnostics), "loop detected in the variables"));
    EXPECT_TRUE(term->valid); // left as it was
}

TEST(ReferenceCheck, resolves_to_the_first_term_of_the_name)
{
    TermSet set;
    set.define(QStringLiteral("Y"), QStringLiteral("SEP"));
    TermStd* first = set.define(QStringLiteral("X"), QStringLiteral("DIGIT"));
    set.define(QStringLiteral("X"), QStringLiteral("ALPHA"));
    const auto term = reference(u"X");
    DiagnosticCapture diagnostics;
    EXPECT_TRUE(term->check_config(set.terms(), &toOutput));
    EXPECT_TRUE(term->valid);
    EXPECT_EQ(term->simpleTerm, first);
    EXPECT_TRUE(first->configChecked);
    EXPECT_FALSE(term->configChecked);
    EXPECT_TRUE(diagnostics.lines().empty());
}

TEST(ReferenceCheck, resolved_one_is_not_looked_up_again)
{
    TermSet set;
    set.define(QStringLiteral("X"), QStringLiteral("DIGIT"));
    const auto term = reference(u"X");
    ASSERT_TRUE(term->check_config(set.terms(), &toOutput));
    EXPECT_TRUE(term->check_config(nullptr, &toOutput));
    term->valid = false;
    EXPECT_FALSE(term->check_config(set.terms(), &toOutput));
}

TEST(ReferenceCheck, names_are_compared_exactly)
{
    TermSet set;
    set.define(QStringLiteral("x"), QStringLiteral("DIGIT"));
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(reference(u"X")->check_config(set.terms(), &toOutput));
    EXPECT_EQ(joined(diagnostics.reportedTexts()), "variable X not found");
}

TEST(ReferenceCheck, errors_in_the_order_of_the_tests)
{
    TermSet set;
    DiagnosticCapture diagnostics;

    const Record empty(u"", u"");
    TermVariable nameless(&empty.item); // its name is also that of its record
    nameless.valid = true;
    EXPECT_FALSE(nameless.check_config(nullptr, &toOutput));
    EXPECT_FALSE(nameless.valid);
    EXPECT_EQ(joined(diagnostics.reportedTexts()), "ExprRuleStr is empty");
    diagnostics.clear();

    const Record own(u"A", u"A");
    TermVariable itself(&own.item);
    itself.valid = true;
    EXPECT_FALSE(itself.check_config(nullptr, &toOutput));
    EXPECT_FALSE(itself.valid);
    EXPECT_EQ(joined(diagnostics.reportedTexts()), "variable points to itself");
    diagnostics.clear();

    const auto listless = reference(u"X");
    listless->valid = true;
    EXPECT_FALSE(listless->check_config(nullptr, &toOutput));
    EXPECT_FALSE(listless->valid);
    EXPECT_EQ(joined(diagnostics.reportedTexts()), "termsList = 0");
    diagnostics.clear();

    const auto unknown = reference(u"X");
    unknown->valid = true;
    EXPECT_FALSE(unknown->check_config(set.terms(), &toOutput));
    EXPECT_FALSE(unknown->valid);
    EXPECT_EQ(unknown->simpleTerm, nullptr);
    EXPECT_EQ(joined(diagnostics.reportedTexts()), "variable X not found");
}

TEST(ReferenceCheck, record_that_refers_to_itself)
{
    TermSet set;
    TermStd* term = set.define(QStringLiteral("A"), QStringLiteral("A"));
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(term->check_config(set.terms(), &toOutput));
    EXPECT_EQ(joined(diagnostics.reportedTexts()), "variable points to itself");
    diagnostics.clear();
    TermStd* deep = set.define(QStringLiteral("D"), QStringLiteral("DIGIT [{SEP ! D}]"));
    EXPECT_FALSE(deep->check_config(set.terms(), &toOutput));
    EXPECT_EQ(joined(diagnostics.reportedTexts()), "variable points to itself");
}

TEST(ReferenceCheck, loop_of_two_records)
{
    TermSet set;
    TermStd* a = set.define(QStringLiteral("A"), QStringLiteral("B"));
    TermStd* b = set.define(QStringLiteral("B"), QStringLiteral("A"));
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(a->check_config(set.terms(), &toOutput));
    EXPECT_EQ(joined(diagnostics.reportedTexts()), "loop detected in the variables\n"
                                                   "variable A was found, but variable not valid\n"
                                                   "variable B was found, but variable not valid");
    EXPECT_FALSE(a->valid);
    EXPECT_FALSE(b->valid);
    // Marked while they were checked on the way, in spite of the failure.
    EXPECT_TRUE(a->configChecked);
    EXPECT_TRUE(b->configChecked);
}

TEST(ReferenceCheck, loop_through_expressions)
{
    TermSet set;
    TermStd* a = set.define(QStringLiteral("A"), QStringLiteral("DIGIT B"));
    set.define(QStringLiteral("B"), QStringLiteral("DIGIT | (C ! C)"));
    set.define(QStringLiteral("C"), QStringLiteral("[A]"));
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(a->check_config(set.terms(), &toOutput));
    const QStringList texts = diagnostics.reportedTexts();
    EXPECT_EQ(texts.value(0), QStringLiteral("loop detected in the variables"));
    EXPECT_EQ(texts.value(texts.size() - 1),
              QStringLiteral("variable B was found, but variable not valid"));
}

TEST(ReferenceCheck, target_that_failed_before_is_not_checked_again)
{
    TermSet set;
    TermStd* bad = set.define(QStringLiteral("BAD"), QStringLiteral("' '"));
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(reference(u"BAD")->check_config(set.terms(), &toOutput));
    EXPECT_EQ(joined(diagnostics.reportedTexts()),
              "ExprRuleStr is empty\nvariable BAD was found, but variable not valid");
    EXPECT_TRUE(bad->configChecked);
    diagnostics.clear();
    EXPECT_FALSE(reference(u"BAD")->check_config(set.terms(), &toOutput));
    EXPECT_EQ(joined(diagnostics.reportedTexts()),
              "variable BAD was found, but variable not valid");
}

TEST(ReferenceCheck, mark_and_validity_of_a_checked_target_are_believed)
{
    TermSet set;
    TermStd* term = set.define(QStringLiteral("X"), QStringLiteral("UNDEFINED"));
    term->configChecked = true;
    term->valid = true;
    DiagnosticCapture diagnostics;
    EXPECT_TRUE(reference(u"X")->check_config(set.terms(), &toOutput));
    EXPECT_TRUE(diagnostics.lines().empty());
}

TEST(Reference, longest_length_includes_the_count_of_the_target)
{
    TermSet set;
    set.define(QStringLiteral("X"), QStringLiteral("2{DIGIT}3"));
    set.define(QStringLiteral("U"), QStringLiteral("{DIGIT}"));
    const auto checked = [&set](std::unique_ptr<TermVariable> term) {
        EXPECT_TRUE(term->check_config(set.terms(), &toOutput));
        return term;
    };
    const auto plain = checked(reference(u"X"));
    EXPECT_EQ(plain->calculateOfLengthData(true), 3);
    EXPECT_EQ(plain->calculateOfLengthData(false), 3);
    const auto bounded = checked(repeated(reference(u"X"), 0, 4));
    EXPECT_EQ(bounded->calculateOfLengthData(true), 12);
    EXPECT_EQ(bounded->calculateOfLengthData(false), 3);
    const auto unbounded = checked(repeated(reference(u"X"), 0, -1));
    EXPECT_EQ(unbounded->calculateOfLengthData(true), Unlimited);
    EXPECT_EQ(unbounded->calculateOfLengthData(false), 3);
    EXPECT_EQ(checked(repeated(reference(u"X"), 0, 0))->calculateOfLengthData(true), 3);
    EXPECT_EQ(checked(reference(u"U"))->calculateOfLengthData(false), Unlimited);
}

TEST(Reference, character_without_limit_is_the_answer_of_the_target_whatever_its_own_brackets)
{
    TermSet set;
    set.define(QStringLiteral("TEXT"), QStringLiteral("{CHARACTER}"));
    set.define(QStringLiteral("CHAR"), QStringLiteral("CHARACTER"));
    set.define(QStringLiteral("GROUP"), QStringLiteral("({CHARACTER})"));
    set.define(QStringLiteral("CHAIN"), QStringLiteral("TEXT"));
    const auto answer = [&set](std::unique_ptr<TermVariable> term) {
        EXPECT_TRUE(term->check_config(set.terms(), &toOutput));
        return term->isCharacterNoLimit(&toOutput);
    };
    EXPECT_TRUE(answer(reference(u"TEXT")));
    EXPECT_TRUE(answer(reference(u"CHAIN")));
    EXPECT_TRUE(answer(repeated(reference(u"TEXT"), 0, 1)));
    EXPECT_FALSE(answer(reference(u"CHAR")));
    EXPECT_FALSE(answer(repeated(reference(u"CHAR"), 0, -1)));
    EXPECT_FALSE(answer(reference(u"GROUP"))); // an expression is never one
}

TEST(Reference, answers_about_fields_are_those_of_the_target)
{
    TermSet set;
    TermStd* field = set.define(QStringLiteral("FIELD"), QStringLiteral("DIGIT"));
    field->containsField = true;
    TermStd* block = set.define(QStringLiteral("BLOCK"), QStringLiteral("FIELD DIGIT"));
    TermStd* plain = set.define(QStringLiteral("PLAIN"), QStringLiteral("DIGIT"));
    ASSERT_TRUE(block->check_config(set.terms(), &toOutput));

    const auto toField = reference(u"FIELD");
    ASSERT_TRUE(toField->check_config(set.terms(), &toOutput));
    EXPECT_TRUE(toField->isContainsField());
    EXPECT_TRUE(toField->isFirstRequiredField(field, &toOutput));
    EXPECT_FALSE(toField->isFirstRequiredField(plain, &toOutput));
    EXPECT_FALSE(toField->isContainsCompoundField());
    toField->setCompoundField();
    EXPECT_TRUE(toField->compoundField);
    EXPECT_FALSE(toField->isContainsCompoundField()); // its own mark is not consulted
    field->compoundField = true;
    EXPECT_TRUE(toField->isContainsCompoundField());

    const auto toBlock = reference(u"BLOCK");
    ASSERT_TRUE(toBlock->check_config(set.terms(), &toOutput));
    EXPECT_TRUE(toBlock->isContainsField());
    EXPECT_TRUE(toBlock->isFirstRequiredField(block, &toOutput));
    EXPECT_TRUE(toBlock->isFirstRequiredField(field, &toOutput));

    const auto toPlain = reference(u"PLAIN");
    ASSERT_TRUE(toPlain->check_config(set.terms(), &toOutput));
    EXPECT_FALSE(toPlain->isContainsField());
    toPlain->compoundField = true;
    toPlain->setCompoundField();
    EXPECT_FALSE(toPlain->compoundField);
}

TEST(Reference, field_search_goes_through_to_the_target)
{
    TermSet set;
    set.define(QStringLiteral("BLOCK"), QStringLiteral("NAME ALIAS"));
    set.define(QStringLiteral("NAME"), QStringLiteral("DIGIT"));
    TermStd* alias = set.define(QStringLiteral("ALIAS"), QStringLiteral("NAME"));

    const auto toBlock = reference(u"BLOCK");
    ASSERT_TRUE(toBlock->check_config(set.terms(), &toOutput));
    const TermStd* found = toBlock->search_TermField(QStringLiteral("NAME"));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->type(), 9);
    EXPECT_EQ(found->ExprRuleStr, QStringLiteral("NAME"));
    EXPECT_EQ(toBlock->search_TermField(QStringLiteral("BLOCK")), nullptr);

    const auto toAlias = reference(u"ALIAS");
    ASSERT_TRUE(toAlias->check_config(set.terms(), &toOutput));
    EXPECT_EQ(toAlias->search_TermField(QStringLiteral("NAME")), alias);
    EXPECT_EQ(toAlias->search_TermField(QStringLiteral("ALIAS")), nullptr);

    const auto toName = reference(u"NAME");
    ASSERT_TRUE(toName->check_config(set.terms(), &toOutput));
    EXPECT_EQ(toName->search_TermField(QStringLiteral("NAME")), nullptr);
}

TEST(Expression, keeps_its_text_simplified)
{
    const auto term = expression(u"  digit \n |  'x'  ");
    EXPECT_EQ(term->type(), 8);
    EXPECT_TRUE(term->valid);
    EXPECT_EQ(term->ExprRuleStr, QStringLiteral("digit | 'x'"));
    EXPECT_EQ(term->bracketType, 0);
    EXPECT_EQ(term->minRepeat, -1);
}

TEST(Expression, own_repeat_count_is_applied_around_one_occurrence)
{
    const auto term = repeated(expression(u"DIGIT!ALPHA"), 2, 3);
    const QString text = QStringLiteral("1A2B3C4D");
    EXPECT_EQ(term->real_parse(text.constData()), 2);
    EXPECT_EQ(term->parse(text.constData()), 6);
}

TEST(Expression, sequence_and_choice_matchers_can_be_called_alone)
{
    const QString text = QStringLiteral("1A");
    const auto sequence = expression(u"DIGIT!ALPHA");
    Match match(&toOutput);
    EXPECT_EQ(sequence->parse_by_operator_and(text.constData(), &match), 2);
    const auto choice = expression(u"DIGIT|ALPHA");
    EXPECT_EQ(choice->parse_by_operator_or(text.constData(), &match), 1);
}

TEST(Expression, longest_length)
{
    EXPECT_EQ(expression(u"'ABC'!DIGIT")->calculateOfLengthData(true), 4);
    EXPECT_EQ(expression(u"'ABC' DIGIT")->calculateOfLengthData(true), 5); // with the separator
    EXPECT_EQ(expression(u"'ABC'|DIGIT|'AB'")->calculateOfLengthData(true), 3);
    EXPECT_EQ(expression(u"2{DIGIT}3!{'AB'}4")->calculateOfLengthData(false), 11);
    EXPECT_EQ(expression(u"{DIGIT}!'A'")->calculateOfLengthData(false),
              Unlimited + 1); // nothing is capped
    EXPECT_EQ(expression(u"{DIGIT}|'A'")->calculateOfLengthData(false), Unlimited);

    const auto bounded = repeated(expression(u"'ABC'!DIGIT"), 0, 3);
    EXPECT_EQ(bounded->calculateOfLengthData(true), 12);
    EXPECT_EQ(bounded->calculateOfLengthData(false), 4);
    const auto unbounded = repeated(expression(u"'ABC'!DIGIT"), 0, -1);
    EXPECT_EQ(unbounded->calculateOfLengthData(true), Unlimited);
    EXPECT_EQ(unbounded->calculateOfLengthData(false), 4);
    EXPECT_EQ(repeated(expression(u"'ABC'!DIGIT"), 0, 0)->calculateOfLengthData(true), 4);

    DiagnosticCapture diagnostics;
    EXPECT_EQ(expression(u"")->calculateOfLengthData(true), 0);
}

TEST(ExpressionCheck, result_is_its_own_validity)
{
    const auto term = expression(u"DIGIT SEP ALPHA");
    EXPECT_TRUE(term->check_config(nullptr, &toOutput));
    EXPECT_FALSE(term->configChecked);
    for (const TermStd* part : term->ExprList)
        EXPECT_TRUE(part->configChecked);
    term->valid = false;
    EXPECT_FALSE(term->check_config(nullptr, &toOutput));
}

TEST(ExpressionCheck, all_terms_are_visited_and_reported_once)
{
    TermSet set;
    const auto term = expression(u"X (DIGIT Y) ' ' X");
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(term->check_config(set.terms(), &toOutput));
    EXPECT_FALSE(term->valid);
    EXPECT_EQ(
        joined(diagnostics.reportedTexts()),
        "variable X not found\nvariable Y not found\nExprRuleStr is empty\nvariable X not found");
    diagnostics.clear();
    EXPECT_FALSE(term->check_config(set.terms(), &toOutput));
    EXPECT_TRUE(diagnostics.lines().empty());
}

TEST(ExpressionCheck, checked_part_that_is_invalid_makes_it_invalid)
{
    const auto term = expression(u"DIGIT ALPHA");
    term->ExprList.first()->configChecked = true;
    term->ExprList.first()->valid = false;
    EXPECT_FALSE(term->check_config(nullptr, &toOutput));
    EXPECT_FALSE(term->valid);
}

TEST(ExpressionSearch, finds_a_reference_at_any_depth_in_the_order_of_the_text)
{
    const auto term = expression(u"A | [B {C}3] | C");
    EXPECT_EQ(term->search_TermField(QStringLiteral("A")), term->ExprList.at(0));
    EXPECT_EQ(term->search_TermField(QStringLiteral("X")), nullptr);
    EXPECT_EQ(term->search_TermField(QStringLiteral("c")), nullptr);
    const TermStd* found = term->search_TermField(QStringLiteral("C"));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->bracketType, Repeated);
    EXPECT_NE(found, term->ExprList.at(2));
}

TEST(ExpressionSearch, compares_the_text_of_every_term_not_only_of_references)
{
    const auto term = expression(u"DIGIT | 'LIT' | (a b)");
    EXPECT_EQ(term->search_TermField(QStringLiteral("DIGIT")), term->ExprList.at(0));
    EXPECT_EQ(term->search_TermField(QStringLiteral("LIT")), term->ExprList.at(1));
    EXPECT_EQ(term->search_TermField(QStringLiteral("A B")), term->ExprList.at(2));
}

TEST(ExpressionSearch, does_not_follow_references)
{
    TermSet set;
    set.define(QStringLiteral("BLOCK"), QStringLiteral("NAME DIGIT"));
    set.define(QStringLiteral("NAME"), QStringLiteral("DIGIT"));
    const auto term = expression(u"BLOCK ALPHA");
    ASSERT_TRUE(term->check_config(set.terms(), &toOutput));
    EXPECT_EQ(term->search_TermField(QStringLiteral("NAME")), nullptr);
}

TEST(ExpressionSearch, does_not_descend_into_a_message_rule)
{
    const auto outer = expression(u"DIGIT");
    const Record record(u"A B", u"RULE");
    outer->ExprList.append(
        new MsgRule(&record.item, nullptr, &toOutput)); // the expression owns it now
    outer->OperatorsList.append(QChar(u'!'));
    EXPECT_EQ(outer->search_TermField(QStringLiteral("A")), nullptr);
    EXPECT_EQ(outer->search_TermField(QStringLiteral("A B")), outer->ExprList.at(1));
}

TEST(ExpressionField, containing_and_compound)
{
    TermSet set;
    set.define(QStringLiteral("FIELD"), QStringLiteral("DIGIT"))->containsField = true;
    set.define(QStringLiteral("PLAIN"), QStringLiteral("DIGIT"));

    const auto plain = expression(u"PLAIN DIGIT");
    ASSERT_TRUE(plain->check_config(set.terms(), &toOutput));
    EXPECT_FALSE(plain->isContainsField());
    plain->setCompoundField();
    EXPECT_FALSE(plain->compoundField);
    plain->compoundField = true;
    plain->setCompoundField();
    EXPECT_TRUE(plain->compoundField); // never cleared here
    plain->containsField = true;
    EXPECT_TRUE(plain->isContainsField());

    const auto deep = expression(u"PLAIN [DIGIT (FIELD | ALPHA)]");
    ASSERT_TRUE(deep->check_config(set.terms(), &toOutput));
    EXPECT_TRUE(deep->isContainsField());
    deep->setCompoundField();
    EXPECT_TRUE(deep->compoundField);
    // Its own mark does not count, only those of its parts.
    EXPECT_FALSE(deep->isContainsCompoundField());
    deep->ExprList.last()->compoundField = true;
    EXPECT_TRUE(deep->isContainsCompoundField());
}

TEST(ExpressionField, own_mark_without_a_field_inside_sets_no_compound)
{
    const auto term = expression(u"DIGIT ALPHA");
    term->containsField = true;
    term->setCompoundField();
    EXPECT_FALSE(term->compoundField);
}

TEST(ExpressionField, empty_expression_contains_nothing)
{
    DiagnosticCapture diagnostics;
    const auto term = expression(u"");
    term->compoundField = true;
    EXPECT_FALSE(term->isContainsField());
    EXPECT_FALSE(term->isContainsCompoundField());
    EXPECT_EQ(term->search_TermField(QString()), nullptr);
}

TEST(ExpressionFirstField, walk_stops_at_the_first_required_term)
{
    TermSet set;
    TermStd* a = set.define(QStringLiteral("A"), QStringLiteral("DIGIT"));
    TermStd* b = set.define(QStringLiteral("B"), QStringLiteral("DIGIT"));
    const struct
    {
        Utf16Text text;
        bool aFirst, bFirst;
    } rows[] = {
        {u"A B", true, false},
        {u"A ! B", true, false},
        {u"A | B", true, false}, // a choice is walked like a sequence
        {u"[A] ! B", true, true},
        {u"{A} ! B", true, true},
        {u"{A}3 ! B", true, true},
        {u"1{A} ! B", true, false},
        {u"0{A}3 ! B", true, true},
        {u"-3{A}2 ! B", true, true},
        {u"[A] B", true, false},      // the separator between them is required
        {u"[A ! B] ! B", true, true}, // the group may be absent, and then the second B comes first
        {u"[A ! B] ! DIGIT", true, false}, // inside the group B stands behind A
        {u"(A | B) DIGIT", true, false},
        {u"[DIGIT] ! [ALPHA] ! A ! B", true, false},
        {u"[[A] ! B] ! DIGIT", true, true},
        {u"DIGIT A", false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(readable(row.text));
        const auto term = expression(row.text);
        ASSERT_TRUE(term->check_config(set.terms(), &toOutput));
        DiagnosticCapture diagnostics;
        EXPECT_EQ(term->isFirstRequiredField(a, &toOutput), row.aFirst);
        EXPECT_EQ(term->isFirstRequiredField(b, &toOutput), row.bFirst);
    }
}

TEST(ExpressionFirstField, part_itself_can_be_asked_for)
{
    const auto term = expression(u"[DIGIT] ! (ALPHA | 'X') ! SEP");
    EXPECT_TRUE(term->isFirstRequiredField(term->ExprList.at(0), &toOutput));
    EXPECT_TRUE(term->isFirstRequiredField(term->ExprList.at(1), &toOutput));
    EXPECT_FALSE(term->isFirstRequiredField(term->ExprList.at(2), &toOutput));
}

TEST(ExpressionFirstField, running_out_of_terms_is_an_internal_error)
{
    TermSet set;
    set.define(QStringLiteral("A"), QStringLiteral("DIGIT"));
    TermStd* b = set.define(QStringLiteral("B"), QStringLiteral("DIGIT"));
    const auto term = expression(u"[A] ! {A}");
    ASSERT_TRUE(term->check_config(set.terms(), &toOutput));
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(term->isFirstRequiredField(b, &toOutput));
    EXPECT_EQ(onlyInternalError(diagnostics),
              "virtual bool TermExpression::isFirstRequiredField(const TermStd*) const check_term "
              "not found");
    const auto empty = expression(u"");
    diagnostics.clear();
    EXPECT_FALSE(empty->isFirstRequiredField(b, &toOutput));
    EXPECT_EQ(onlyInternalError(diagnostics),
              "virtual bool TermExpression::isFirstRequiredField(const TermStd*) const check_term "
              "not found");
}

TEST(Expression, unchecked_one_matches_up_to_an_unresolved_reference)
{
    const auto term = expression(u"DIGIT ! ARCID");
    DiagnosticCapture diagnostics;
    EXPECT_EQ(term->parse(QStringLiteral("A1").constData()), 0);
    EXPECT_TRUE(diagnostics.lines().empty());
    EXPECT_EQ(term->parse(QStringLiteral("1A").constData()), 0);
    EXPECT_TRUE(endsWith(onlyInternalError(diagnostics),
                         "TermVariable::real_parse(const QChar*) simpleTerm == 0"))
        << onlyInternalError(diagnostics);
}

TEST(Expression, is_never_character_without_limit)
{
    EXPECT_FALSE(repeated(expression(u"CHARACTER"), 0, -1)->isCharacterNoLimit(&toOutput));
    EXPECT_FALSE(expression(u"{CHARACTER}")->isCharacterNoLimit(&toOutput));
}

TEST(MessageRule, is_an_expression_with_a_type_of_its_own)
{
    const Record record(u"A | DIGIT", u"IFPL");
    TermSet set;
    set.define(QStringLiteral("A"), QStringLiteral("'A'"));
    MsgRule rule(&record.item, nullptr, &toOutput);
    EXPECT_EQ(rule.type(), 11);
    EXPECT_TRUE(rule.valid);
    EXPECT_EQ(rule.owner, nullptr);
    EXPECT_EQ(rule.config.recordName, QStringLiteral("IFPL"));
    EXPECT_TRUE(rule.compoundField);
    EXPECT_TRUE(rule.check_config(set.terms(), &toOutput));
    EXPECT_FALSE(rule.isContainsField());
    EXPECT_TRUE(rule.isContainsCompoundField()); // although it holds no field
    const QString text = QStringLiteral("A");
    EXPECT_EQ(rule.parse(text.constData()), 1);
    EXPECT_EQ(rule.search_TermField(QStringLiteral("A")), rule.ExprList.at(0));
    EXPECT_EQ(rule.calculateOfLengthData(true), 1);
}

TEST(MessageRule, text_that_does_not_compile_gives_an_invalid_rule)
{
    const Record record(u"A |", u"IFPL");
    DiagnosticCapture diagnostics;
    MsgRule rule(&record.item, nullptr, &toOutput);
    EXPECT_FALSE(rule.valid);
    EXPECT_EQ(joined(diagnostics.reportedTexts()), "missing the last term after operator |");
    EXPECT_FALSE(rule.check_config(nullptr, &toOutput));
    EXPECT_TRUE(rule.isContainsCompoundField());
}

TEST(MessageRule, of_one_bracketed_part_keeps_the_part)
{
    const Record record(u"[A]", u"IFPL");
    MsgRule rule(&record.item, nullptr, &toOutput);
    ASSERT_EQ(rule.ExprList.size(), 1);
    EXPECT_EQ(rule.ExprList.at(0)->bracketType, Optional);
}
