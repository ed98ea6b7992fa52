// The data of a field as one text.

#include "message/adexpdoc.h"
#include "message/adexpfield.h"

#include "support/diagnosticcapture.h"
#include "support/grammar.h"
#include "support/reports.h"
#include "support/tooutput.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class FieldData : public testing::Test
{
protected:
    FieldData()
    {
        grammar.field(QStringLiteral("A"), QStringLiteral("{ALPHA}"));
        grammar.field(QStringLiteral("B"), QStringLiteral("{ALPHA}"));
        grammar.field(QStringLiteral("C"), QStringLiteral("[A] [B]"));
        grammar.field(QStringLiteral("D"), QStringLiteral("[C]"));
        grammar.rule(QStringLiteral("T"), QStringLiteral("A B C D"));
    }

    // A field with the definition `name`, without data.
    AdexpField* field(QStringView name)
    {
        return doc.createField(&doc, name, grammar.fieldTerm(name.toString()));
    }

    AdexpField* add(AdexpField* parent, QStringView name, QStringView data)
    {
        AdexpField* const sub =
            doc.createField(parent, grammar.fieldTerm(name.toString()), name, -1, -1);
        sub->fieldData = data;
        parent->subFieldsListAppend(sub);
        return sub;
    }

    // getData() of the field. It must be simple or composed as expected, and leave the flags right.
    std::string dataOf(AdexpField* of, bool expectedSimple)
    {
        bool isSimple = !expectedSimple;
        const QString data = of->getData(&isSimple);
        EXPECT_EQ(isSimple, expectedSimple);
        EXPECT_TRUE(of->dataReady);
        EXPECT_FALSE(of->inGetData);
        return data.toStdString();
    }

    Grammar grammar;
    DiagnosticCapture diagnostics;
    AdexpDoc doc{QString(), &toOutput};
};

TEST_F(FieldData, OfAFieldWithoutTermIsItsOwn)
{
    AdexpField* const root = field(u"C");
    AdexpField* const unknown = doc.createField(root, QStringView(u"X"));
    unknown->fieldData = u"SOME DATA";
    EXPECT_EQ(dataOf(unknown, true), "SOME DATA");
}

TEST_F(FieldData, OfASimpleFieldIsItsOwn)
{
    AdexpField* const simple = field(u"A");
    EXPECT_EQ(dataOf(simple, true), "");
    simple->fieldData = u"DATA";
    EXPECT_EQ(dataOf(simple, true), "DATA");
}

TEST_F(FieldData, OfACompoundWithoutSubFieldsIsEmpty)
{
    AdexpField* const compound = field(u"C");
    compound->fieldData = u"NOT LOOKED AT";
    EXPECT_EQ(dataOf(compound, false), "");
}

TEST_F(FieldData, NamesASubFieldWithoutData)
{
    AdexpField* const compound = field(u"C");
    add(compound, u"A", u"");
    EXPECT_EQ(dataOf(compound, false), " A=");
}

TEST_F(FieldData, NamesAllSubFieldsWithoutData)
{
    AdexpField* const compound = field(u"C");
    add(compound, u"A", u"");
    add(compound, u"B", u"");
    EXPECT_EQ(dataOf(compound, false), " A=B=");
}

TEST_F(FieldData, LeavesOutSubFieldsWithData)
{
    AdexpField* const compound = field(u"C");
    AdexpField* const first = add(compound, u"A", u"X");
    AdexpField* const second = add(compound, u"B", u"Y");
    EXPECT_EQ(dataOf(compound, false), "");
    EXPECT_TRUE(first->dataReady);
    EXPECT_TRUE(second->dataReady);

    add(compound, u"B", u"");
    EXPECT_EQ(dataOf(compound, false), " B=");
}

TEST_F(FieldData, DoesNotNameAnEmptyCompound)
{
    AdexpField* const outer = field(u"D");
    AdexpField* const inner = add(outer, u"C", u"");
    EXPECT_EQ(dataOf(outer, false), " ");
    EXPECT_TRUE(inner->dataReady);

    add(inner, u"A", u"");
    EXPECT_EQ(dataOf(inner, false), " A=");
    EXPECT_EQ(dataOf(outer, false), "");
}

TEST_F(FieldData, SecondEmptySubFieldAddsNoBlank)
{
    AdexpField* const outer = field(u"D");
    add(outer, u"C", u"");
    add(outer, u"C", u"");
    EXPECT_EQ(dataOf(outer, false), " ");
}

TEST_F(FieldData, NeedsNoPlaceForTheKind)
{
    AdexpField* const compound = field(u"C");
    add(compound, u"A", u"");
    EXPECT_EQ(compound->getData(nullptr), QStringLiteral(" A="));
    EXPECT_EQ(compound->subFields.front()->getData(nullptr), QString());
}

TEST_F(FieldData, LoopIsReportedAndCut)
{
    AdexpField* const outer = field(u"D");
    AdexpField* const inner = add(outer, u"C", u"");
    inner->subFieldsListAppend(outer);
    EXPECT_EQ(dataOf(outer, false), "");
    EXPECT_EQ(linesOf(diagnostics), (Lines{"severity 2: QString AdexpField::getData(bool*) "
                                           "\"loop detected in the AdexpField\" "}));
    EXPECT_FALSE(inner->inGetData);
    EXPECT_TRUE(inner->dataReady);
}

TEST_F(FieldData, CallThatIsCutGivesTheOwnDataAndIsNotReady)
{
    AdexpField* const compound = field(u"C");
    add(compound, u"A", u"");
    compound->fieldData = u"OWN";
    compound->inGetData = true;
    bool isSimple = false;
    EXPECT_EQ(compound->getData(&isSimple), QStringLiteral("OWN"));
    EXPECT_TRUE(isSimple);
    EXPECT_FALSE(compound->dataReady);
    EXPECT_FALSE(compound->subFields.front()->dataReady);
}

TEST_F(FieldData, FetchedFieldsAreFoundAgainAfterClearing)
{
    AdexpField* const compound = field(u"C");
    AdexpField* const sub = add(compound, u"A", u"X");
    dataOf(compound, false);
    EXPECT_EQ(compound->searchSubField(u"A"), nullptr);
    compound->clearAlreadyDBBeenProcessed();
    EXPECT_EQ(compound->searchSubField(u"A"), sub);
}

} // namespace
