// The dump of a tree of fields.

#include "message/adexpdoc.h"
#include "message/adexpfield.h"

#include "support/diagnosticcapture.h"
#include "support/grammar.h"
#include "support/reports.h"
#include "support/tooutput.h"

#include <gtest/gtest.h>

namespace {

class FieldDump : public testing::Test
{
protected:
    FieldDump()
    {
        grammar.field(QStringLiteral("PTID"), QStringLiteral("{ALPHANUM}5"));
        grammar.field(QStringLiteral("PT"), QStringLiteral("PTID"));
        grammar.field(QStringLiteral("ARCID"), QStringLiteral("{ALPHANUM}7"));
        grammar.rule(QStringLiteral("T"), QStringLiteral("ARCID PT"));
    }

    AdexpField* root(const TermStd* term) { return doc.createField(&doc, QStringView(u"T"), term); }

    AdexpField* add(AdexpField* parent, QStringView name, const TermStd* term, QStringView data)
    {
        AdexpField* const field = doc.createField(parent, term, name, -1, -1);
        field->fieldData = data;
        parent->subFieldsListAppend(field);
        return field;
    }

    Lines dump(const AdexpField& field)
    {
        diagnostics.clear();
        field.dumpData();
        return linesOf(diagnostics);
    }

    Grammar grammar;
    DiagnosticCapture diagnostics;
    AdexpDoc doc{QString(), &toOutput};
};

TEST_F(FieldDump, FieldWithoutSubFieldsIsOneLine)
{
    AdexpField* const field = root(grammar.rules()->at(0));
    EXPECT_EQ(dump(*field), (Lines{"T  "}));
    field->fieldData = u"A B";
    EXPECT_EQ(dump(*field), (Lines{"T A B "}));
}

TEST_F(FieldDump, SubFieldsAreIndentedBetweenBeginAndEnd)
{
    AdexpField* const field = root(grammar.rules()->at(0));
    const TermStd* const term = grammar.fieldTerm(QStringLiteral("ARCID"));
    add(field, u"ARCID", term, u"ABC");
    add(field, u"ARCID", term, u"");
    EXPECT_EQ(dump(*field), (Lines{"T  ", "++ Begin sub fields for T ++ ", "   ARCID ABC ",
                                   "   ARCID  ", "++ End sub fields for T ++ "}));
}

TEST_F(FieldDump, EachLevelIsIndentedByThreeBlanks)
{
    AdexpField* const field = root(grammar.rules()->at(0));
    AdexpField* const point =
        add(field, u"PT", grammar.fieldTerm(QStringLiteral("PT")), QStringView());
    add(point, u"PTID", point->fieldTerm->search_TermField(u"PTID"), u"NOSLI");
    EXPECT_EQ(dump(*field),
              (Lines{"T  ", "++ Begin sub fields for T ++ ", "   PT  ",
                     "   ++ Begin sub fields for PT ++ ", "      PTID NOSLI ",
                     "   ++ End sub fields for PT ++ ", "++ End sub fields for T ++ "}));
}

TEST_F(FieldDump, UnknownFieldNamesItsParent)
{
    AdexpField* const field = root(grammar.rules()->at(0));
    const AdexpField* const unknown = add(field, u"N", nullptr, u"D");
    EXPECT_EQ(dump(*unknown), (Lines{"N D : -- <T> Unknown field -- "}));
    EXPECT_EQ(dump(*field),
              (Lines{"T  ", "++ Begin sub fields for T ++ ", "   N D : -- <T> Unknown field -- ",
                     "++ End sub fields for T ++ "}));
}

TEST_F(FieldDump, UnknownFieldWithoutParentShowsQuestionMarks)
{
    EXPECT_EQ(dump(*root(nullptr)), (Lines{"T  : -- <?\?\?> Unknown field -- "}));
}

TEST_F(FieldDump, LeavesTheDepthAsItWas)
{
    AdexpField* const field = root(grammar.rules()->at(0));
    add(field, u"ARCID", grammar.fieldTerm(QStringLiteral("ARCID")), u"ABC");
    const Lines first = dump(*field);
    EXPECT_EQ(dump(*field), first);
    EXPECT_EQ(dump(*field->subFields.front()), (Lines{"ARCID ABC "}));
}

TEST_F(FieldDump, ChangesNothing)
{
    AdexpField* const field = root(grammar.rules()->at(0));
    const AdexpField* const sub =
        add(field, u"ARCID", grammar.fieldTerm(QStringLiteral("ARCID")), u"ABC");
    dump(*field);
    EXPECT_FALSE(field->dataReady);
    EXPECT_FALSE(sub->dataReady);
    EXPECT_TRUE(doc.isValid);
}

} // namespace
