// The tree of fields: construction, look-ups, items of lists, and the parsing of compounds and
// blocks.

#include "message/adexpdoc.h"
#include "message/adexpfield.h"

#include "support/diagnosticcapture.h"
#include "support/fieldtree.h"
#include "support/grammar.h"
#include "support/reports.h"
#include "support/tooutput.h"

#include <gtest/gtest.h>

namespace {

class FieldTree : public testing::Test
{
protected:
    FieldTree()
    {
        grammar.simple(QStringLiteral("LOCATION"), QStringLiteral("4{ALPHA}8"));
        grammar.field(QStringLiteral("FAC"), QStringLiteral("LOCATION"));
        grammar.field(QStringLiteral("PTID"), QStringLiteral("2{ALPHANUM}5"));
        grammar.field(QStringLiteral("FL"), QStringLiteral("'F' ! 3{DIGIT}3"));
        grammar.field(QStringLiteral("ARCID"), QStringLiteral("{ALPHANUM}7"));
        grammar.field(QStringLiteral("ADDR"), QStringLiteral("1{FAC}"));
        grammar.field(QStringLiteral("PT"), QStringLiteral("PTID [FL]"));
        grammar.field(QStringLiteral("RTEPTS"), QStringLiteral("{PT}"));
        grammar.rule(QStringLiteral("IFPL"), QStringLiteral("ARCID [ADDR] [PT] [RTEPTS]"));
    }

    // The fields below the root of the message, whose text is put behind "-TITLE IFPL ".
    Lines tree(const QString& fields)
    {
        doc = std::make_unique<AdexpDoc>(QStringLiteral("-TITLE IFPL ") + fields, &toOutput);
        doc->setRootField(grammar.rules());
        doc->parse();
        return treeBelow(*doc->rootField);
    }

    // A field of `term` over a document of its own.
    AdexpField* rootOf(const QString& text, QStringView name, const TermStd* term)
    {
        doc = std::make_unique<AdexpDoc>(text, &toOutput);
        return doc->createField(doc.get(), name, term);
    }

    Lines reports() const { return linesOf(diagnostics); }

    Grammar grammar;
    DiagnosticCapture diagnostics;
    std::unique_ptr<AdexpDoc> doc;
};

using FieldConstruction = FieldTree;
using FieldItems = FieldTree;
using FieldLookUp = FieldTree;

void expectFresh(const AdexpField& field)
{
    EXPECT_EQ(field.fieldBegin, -1);
    EXPECT_EQ(field.fieldEnd, -1);
    EXPECT_TRUE(field.subFields.empty());
    EXPECT_TRUE(field.fieldData.isEmpty());
    EXPECT_FALSE(field.isList);
    EXPECT_FALSE(field.dataReady);
    EXPECT_FALSE(field.inGetData);
    EXPECT_EQ(field.itemCount, 0);
    EXPECT_EQ(field.itemIndex, 0);
}

TEST_F(FieldConstruction, RootReachesOverTheWholeText)
{
    TermStd* const term = grammar.rules()->at(0);
    const AdexpField& root = *rootOf(QStringLiteral("-TITLE\r IFPL"), u"IFPL", term);
    expectFresh(root);
    EXPECT_EQ(root.doc, doc.get());
    EXPECT_EQ(root.parentField, nullptr);
    EXPECT_EQ(root.fieldTerm, term);
    EXPECT_EQ(root.fieldName.toString(), QStringLiteral("IFPL"));
    EXPECT_EQ(root.endBlockPoint, 11);
    EXPECT_EQ(root.endTextPoint, 11);
}

TEST_F(FieldConstruction, ChildTakesItsLimits)
{
    AdexpField* const root = rootOf(QStringLiteral("0123456789"), u"T", nullptr);
    const TermStd* const term = grammar.fieldTerm(QStringLiteral("ADDR"));
    const AdexpField& child = *doc->createField(root, term, QStringView(u"ADDR"), 7, 5);
    expectFresh(child);
    EXPECT_EQ(child.doc, doc.get());
    EXPECT_EQ(child.parentField, root);
    EXPECT_EQ(child.fieldTerm, term);
    EXPECT_EQ(child.fieldName.toString(), QStringLiteral("ADDR"));
    EXPECT_EQ(child.endBlockPoint, 7);
    EXPECT_EQ(child.endTextPoint, 5);
    EXPECT_TRUE(root->subFields.empty());
    EXPECT_EQ(reports(), Lines());
}

TEST_F(FieldConstruction, ChildWithoutLimitsTakesThoseOfItsParent)
{
    AdexpField* const root = rootOf(QStringLiteral("0123456789"), u"T", nullptr);
    AdexpField* const block = doc->createField(root, nullptr, QStringView(u"A"), 7, 5);
    for (const int ignored : {-1, 3, 9}) {
        const AdexpField& child = *doc->createField(block, nullptr, QStringView(u"B"), -1, ignored);
        EXPECT_EQ(child.endBlockPoint, 7);
        EXPECT_EQ(child.endTextPoint, 5);
    }
    EXPECT_EQ(reports(), Lines());
}

TEST_F(FieldConstruction, EqualLimitsAreFine)
{
    AdexpField* const root = rootOf(QStringLiteral("0123456789"), u"T", nullptr);
    const AdexpField& child = *doc->createField(root, nullptr, QStringView(u"A"), 0, 0);
    EXPECT_EQ(child.endBlockPoint, 0);
    EXPECT_EQ(child.endTextPoint, 0);
    EXPECT_EQ(reports(), Lines());
}

TEST_F(FieldConstruction, TextLimitBehindTheBlockIsReportedAndMended)
{
    AdexpField* const root = rootOf(QStringLiteral("0123456789"), u"T", nullptr);
    const AdexpField& child = *doc->createField(root, nullptr, QStringView(u"A"), 5, 7);
    EXPECT_EQ(child.endBlockPoint, 5);
    EXPECT_EQ(child.endTextPoint, 5);
    EXPECT_EQ(reports(),
              (Lines{"severity 2: AdexpField::AdexpField(AdexpField*, TermStd*, const QString&, "
                     "int, int) endTextPoint= 7 endBlockPoint= 5 "}));
}

TEST_F(FieldConstruction, NegativeTextLimitIsReportedAndMended)
{
    AdexpField* const root = rootOf(QStringLiteral("0123456789"), u"T", nullptr);
    const AdexpField& child = *doc->createField(root, nullptr, QStringView(u"A"), 5, -1);
    EXPECT_EQ(child.endBlockPoint, 5);
    EXPECT_EQ(child.endTextPoint, 5);
    EXPECT_EQ(reports(),
              (Lines{"severity 2: AdexpField::AdexpField(AdexpField*, TermStd*, const QString&, "
                     "int, int) endTextPoint= -1 endBlockPoint= 5 "}));
}

TEST_F(FieldConstruction, UnknownChildHasNoTermAndNoStretch)
{
    AdexpField* const root = rootOf(QStringLiteral("0123456789"), u"T", nullptr);
    const AdexpField& child = *doc->createField(root, QStringView(u"XYZ"));
    expectFresh(child);
    EXPECT_EQ(child.doc, doc.get());
    EXPECT_EQ(child.parentField, root);
    EXPECT_EQ(child.fieldTerm, nullptr);
    EXPECT_EQ(child.fieldName.toString(), QStringLiteral("XYZ"));
    EXPECT_EQ(child.endBlockPoint, 0);
    EXPECT_EQ(child.endTextPoint, 0);
}

// Items

TEST_F(FieldItems, FieldThatIsNoListHasNone)
{
    AdexpField* const root = rootOf(QString(), u"A", grammar.fieldTerm(QStringLiteral("PT")));
    AdexpField* const sub = doc->createField(root, QStringView(u"X"));
    root->subFieldsListAppend(sub);
    ASSERT_EQ(root->subFields.size(), 1u);
    EXPECT_EQ(root->subFields.front(), sub);
    EXPECT_EQ(root->itemCount, 0);
    EXPECT_EQ(sub->itemIndex, 0);
}

TEST_F(FieldItems, FirstRequiredFieldOpensTheNextOne)
{
    const TermStd* const list = grammar.fieldTerm(QStringLiteral("PT"));
    const TermStd* const first = list->search_TermField(u"PTID");
    const TermStd* const second = list->search_TermField(u"FL");
    AdexpField* const root = rootOf(QString(), u"PT", list);
    root->isList = true;
    QList<int> items;
    for (const TermStd* term : {second, first, second, first, first, second}) {
        AdexpField* const sub = doc->createField(root, term, QStringView(u"X"), -1, -1);
        root->subFieldsListAppend(sub);
        items.append(sub->itemIndex);
    }
    EXPECT_EQ(items, (QList<int>{1, 2, 2, 3, 4, 4}));
    EXPECT_EQ(root->itemCount, 4);
    EXPECT_EQ(root->subFields.size(), 6u);
}

TEST_F(FieldItems, FieldsWithoutTermStayInTheItem)
{
    AdexpField* const root = rootOf(QString(), u"ADDR", grammar.fieldTerm(QStringLiteral("ADDR")));
    root->isList = true;
    for (int i = 0; i < 3; ++i) {
        root->subFieldsListAppend(doc->createField(root, QStringView(u"X")));
        EXPECT_EQ(root->subFields.back()->itemIndex, 1);
    }
}

TEST_F(FieldItems, ListWithoutTermHasOne)
{
    AdexpField* const root = rootOf(QString(), u"ADDR", nullptr);
    root->isList = true;
    const TermStd* const term = grammar.fieldTerm(QStringLiteral("ARCID"));
    for (int i = 0; i < 3; ++i) {
        root->subFieldsListAppend(doc->createField(root, term, QStringView(u"X"), -1, -1));
        EXPECT_EQ(root->subFields.back()->itemIndex, 1);
    }
}

// Look-ups

TEST_F(FieldLookUp, TakesTheFirstWhoseDataWasNotFetched)
{
    AdexpField* const root = rootOf(QString(), u"T", nullptr);
    for (const char16_t* name : {u"A", u"B", u"A"})
        root->subFieldsListAppend(doc->createField(root, QStringView(name)));
    EXPECT_EQ(root->searchSubField(u"A"), root->subFields.at(0));
    EXPECT_EQ(root->searchSubField(u"B"), root->subFields.at(1));
    root->subFields.at(0)->dataReady = true;
    EXPECT_EQ(root->searchSubField(u"A"), root->subFields.at(2));
    root->subFields.at(2)->dataReady = true;
    EXPECT_EQ(root->searchSubField(u"A"), nullptr);
    EXPECT_EQ(root->searchSubField(u"a"), nullptr);
    EXPECT_EQ(root->searchSubField(u""), nullptr);
}

TEST_F(FieldLookUp, ClearMakesTheWholeTreeFetchableAgain)
{
    AdexpField* const root = rootOf(QString(), u"T", nullptr);
    AdexpField* const sub = doc->createField(root, QStringView(u"A"));
    AdexpField* const subSub = doc->createField(sub, QStringView(u"B"));
    root->subFieldsListAppend(sub);
    sub->subFieldsListAppend(subSub);
    root->dataReady = sub->dataReady = subSub->dataReady = true;
    root->clearAlreadyDBBeenProcessed();
    EXPECT_FALSE(root->dataReady);
    EXPECT_FALSE(sub->dataReady);
    EXPECT_FALSE(subSub->dataReady);
    EXPECT_FALSE(root->inGetData);
    EXPECT_FALSE(subSub->inGetData);
    EXPECT_EQ(reports(), Lines());
}

TEST_F(FieldLookUp, ClearReportsALoop)
{
    AdexpField* const root = rootOf(QString(), u"T", nullptr);
    AdexpField* const sub = doc->createField(root, QStringView(u"A"));
    root->subFieldsListAppend(sub);
    sub->subFieldsListAppend(root);
    sub->dataReady = true;
    root->clearAlreadyDBBeenProcessed();
    EXPECT_EQ(reports(), (Lines{"severity 2: void AdexpField::clearAlreadyDBBeenProcessed() "
                                "\"loop detected in the AdexpField\" "}));
    EXPECT_FALSE(sub->dataReady);
    EXPECT_FALSE(root->inGetData);
    EXPECT_FALSE(sub->inGetData);
}

TEST_F(FieldLookUp, ClearInsideALoopStopsAtTheField)
{
    AdexpField* const root = rootOf(QString(), u"T", nullptr);
    AdexpField* const sub = doc->createField(root, QStringView(u"A"));
    root->subFieldsListAppend(sub);
    root->inGetData = root->dataReady = sub->dataReady = true;
    root->clearAlreadyDBBeenProcessed();
    EXPECT_FALSE(root->dataReady);
    EXPECT_TRUE(sub->dataReady);
    EXPECT_TRUE(root->inGetData);
}

// Parsing

TEST_F(FieldTree, RootWithoutTermParsesNothing)
{
    AdexpField* const root = rootOf(QStringLiteral("-ARCID ABC"), u"T", nullptr);
    root->parse();
    EXPECT_TRUE(root->subFields.empty());
    EXPECT_TRUE(doc->currWordListIt == doc->wordList.cbegin());
    EXPECT_EQ(reports(), Lines());
}

TEST_F(FieldTree, KnownFieldIsAChildOfTheRoot)
{
    EXPECT_EQ(tree(QStringLiteral("-ARCID ABC")), (Lines{"ARCID 12..22: ABC"}));
    EXPECT_EQ(doc->rootField->subFields.front()->parentField, doc->rootField);
    EXPECT_EQ(doc->rootField->subFields.front()->fieldTerm,
              grammar.fieldTerm(QStringLiteral("ARCID")));
    EXPECT_EQ(reports(), Lines());
}

TEST_F(FieldTree, UnknownFieldAtTheRootKeepsItsData)
{
    EXPECT_EQ(tree(QStringLiteral("-XYZ A\n B -ARCID ABC")),
              (Lines{"XYZ? 12..21: A\n B", "ARCID 22..32: ABC"}));
    EXPECT_EQ(reports(), (Lines{"\"rule XYZ for IFPL not found\" "}));
}

TEST_F(FieldTree, UnknownFieldEndsACompound)
{
    EXPECT_EQ(tree(QStringLiteral("-PT -PTID AB -XYZ 1 -FL F330")),
              (Lines{"PT 12..24", "  PTID 16..24: AB", "XYZ? 25..31: 1", "FL? 32..40: F330"}));
    EXPECT_EQ(reports(),
              (Lines{"\"rule XYZ for IFPL not found\" ", "\"rule FL for IFPL not found\" "}));
}

TEST_F(FieldTree, CompoundEndsWithTheWordBeforeTheNextField)
{
    EXPECT_EQ(tree(QStringLiteral("-PT -PTID AB  \n -ARCID ABC")),
              (Lines{"PT 12..24", "  PTID 16..24: AB", "ARCID 28..38: ABC"}));
    EXPECT_EQ(reports(), Lines());
}

TEST_F(FieldTree, CompoundThatRunsToTheEndHasNoEnd)
{
    EXPECT_EQ(tree(QStringLiteral("-PT -PTID AB ")), (Lines{"PT 12..-1", "  PTID 16..24: AB"}));
}

TEST_F(FieldTree, CompoundWithoutFieldsEndsBehindItsKeyword)
{
    EXPECT_EQ(tree(QStringLiteral("-PT -ARCID ABC")), (Lines{"PT 12..15", "ARCID 16..26: ABC"}));
}

TEST_F(FieldTree, LoneHyphenIsUnreadWithItsKeyword)
{
    EXPECT_EQ(tree(QStringLiteral("-PT -PTID AB - ARCID ABC")),
              (Lines{"PT 12..24", "  PTID 16..24: AB", "ARCID 27..36: ABC"}));
    EXPECT_EQ(reports(), Lines());
}

TEST_F(FieldTree, CommentIsSkippedAtEveryLevel)
{
    EXPECT_EQ(tree(QStringLiteral("-COMMENT A B -PT -COMMENT C -PTID AB -COMMENT D -FL F330 "
                                  "-BEGIN ADDR -COMMENT E -FAC EGLL -END ADDR -COMMENT")),
              (Lines{"PT 25..68", "  PTID 40..48: AB", "  FL 60..68: F330", "ADDR[] 69..111",
                     "  FAC 92..101 #1: EGLL"}));
    EXPECT_EQ(reports(), Lines());
}

TEST_F(FieldTree, KeywordsAreComparedExactly)
{
    EXPECT_EQ(tree(QStringLiteral("-Comment A -Begin B -End C")),
              (Lines{"Comment? 12..22: A", "Begin? 23..31: B", "End? 32..38: C"}));
}

TEST_F(FieldTree, BlockIsAListOfItems)
{
    EXPECT_EQ(tree(QStringLiteral("-BEGIN ADDR -FAC EGLL -FAC EGKK -END ADDR -ARCID ABC")),
              (Lines{"ADDR[] 12..53", "  FAC 24..33 #1: EGLL", "  FAC 34..43 #2: EGKK",
                     "ARCID 54..64: ABC"}));
    const AdexpField& list = *doc->rootField->subFields.front();
    EXPECT_EQ(list.endTextPoint, 44);
    EXPECT_EQ(list.endBlockPoint, 53);
    EXPECT_EQ(list.itemCount, 2);
    EXPECT_EQ(reports(), Lines());
}

TEST_F(FieldTree, CompoundsInAListEndBeforeTheNextItem)
{
    EXPECT_EQ(tree(QStringLiteral("-BEGIN RTEPTS -PT -PTID AB -FL F330 -PT -PTID CD -END RTEPTS")),
              (Lines{"RTEPTS[] 12..72", "  PT 26..47 #1", "    PTID 30..38: AB",
                     "    FL 39..47: F330", "  PT 48..60 #2", "    PTID 52..60: CD"}));
    EXPECT_EQ(reports(), Lines());
}

TEST_F(FieldTree, UnknownFieldInAListBelongsToTheItem)
{
    EXPECT_EQ(tree(QStringLiteral("-BEGIN ADDR -FAC EGLL -XYZ A -FAC EGKK -END ADDR")),
              (Lines{"ADDR[] 12..60", "  FAC 24..33 #1: EGLL", "  XYZ? 34..40 #1: A",
                     "  FAC 41..50 #2: EGKK"}));
    EXPECT_EQ(reports(), (Lines{"\"rule XYZ for ADDR not found\" "}));
}

TEST_F(FieldTree, UnknownBlockKeepsItsText)
{
    EXPECT_EQ(tree(QStringLiteral("-BEGIN XYZ -ARCID A\n-END XYZ -ARCID ABC")),
              (Lines{"XYZ? 12..40: -BEGIN XYZ -ARCID A\n-END XYZ", "ARCID 41..51: ABC"}));
    EXPECT_EQ(reports(), (Lines{"\"rule XYZ for IFPL not found\" "}));
}

TEST_F(FieldTree, UnknownBlockInAListKeepsItsText)
{
    EXPECT_EQ(tree(QStringLiteral("-BEGIN ADDR -BEGIN XYZ A -END XYZ -FAC EGLL -END ADDR")),
              (Lines{"ADDR[] 12..65", "  XYZ? 24..45 #1: -BEGIN XYZ A -END XYZ",
                     "  FAC 46..55 #2: EGLL"}));
    EXPECT_EQ(reports(), (Lines{"\"rule XYZ for ADDR not found\" "}));
}

TEST_F(FieldTree, BlockEndsACompoundThatDoesNotKnowIt)
{
    EXPECT_EQ(tree(QStringLiteral("-PT -PTID AB -BEGIN ADDR -FAC EGLL -END ADDR")),
              (Lines{"PT 12..24", "  PTID 16..24: AB", "ADDR[] 25..56", "  FAC 37..46 #1: EGLL"}));
    EXPECT_EQ(reports(), Lines());
}

TEST_F(FieldTree, WrongNameBehindEndIsReported)
{
    EXPECT_EQ(tree(QStringLiteral("-BEGIN ADDR -FAC EGLL -END RTEPTS -END ADDR")),
              (Lines{"ADDR[] 12..45", "  FAC 24..33 #1: EGLL"}));
    EXPECT_EQ(reports(), (Lines{"\"end block RTEPTS but wait ADDR\" ",
                                "\"found the end of the block without the block start\" ",
                                "\"ignore word\" \"ADDR\" "}));
}

TEST_F(FieldTree, MissingNameBehindEndIsReported)
{
    AdexpField* const root = rootOf(QStringLiteral("-FAC EGLL -END"), u"ADDR",
                                    grammar.fieldTerm(QStringLiteral("ADDR")));
    root->isList = true;
    root->parse();
    EXPECT_EQ(treeBelow(*root), (Lines{"FAC 0..9 #1: EGLL"}));
    EXPECT_EQ(root->fieldEnd, 14);
    EXPECT_EQ(reports(), (Lines{"\"end block wich out word\" \"ADDR\" "}));
}

TEST_F(FieldTree, NameBehindTheLimitIsAMissingName)
{
    AdexpField* const root =
        rootOf(QStringLiteral("-END ADDR"), u"ADDR", grammar.fieldTerm(QStringLiteral("ADDR")));
    root->isList = true;
    root->endBlockPoint = root->endTextPoint = 4;
    root->parse();
    EXPECT_EQ(root->fieldEnd, 4);
    EXPECT_EQ(reports(), (Lines{"\"end block wich out word\" \"ADDR\" "}));
}

TEST_F(FieldTree, EndAtTheRootIsReportedAndPassedOver)
{
    EXPECT_EQ(tree(QStringLiteral("-END -ARCID ABC")), (Lines{"ARCID 17..27: ABC"}));
    EXPECT_EQ(reports(), (Lines{"\"found the end of the block without the block start\" "}));
}

TEST_F(FieldTree, EndIsLeftToTheParentOfACompound)
{
    EXPECT_EQ(tree(QStringLiteral("-PT -PTID AB -END PT")),
              (Lines{"PT 12..24", "  PTID 16..24: AB"}));
    EXPECT_EQ(reports(), (Lines{"\"found the end of the block without the block start\" ",
                                "\"ignore word\" \"PT\" "}));
}

TEST_F(FieldTree, BlockWithoutEndAtTheRootIsPassedOver)
{
    EXPECT_EQ(tree(QStringLiteral("-BEGIN ADDR -ARCID ABC")), (Lines{"ARCID 24..34: ABC"}));
    EXPECT_EQ(reports(), (Lines{"\"not found the end of the block\" \"-END\" "}));
}

TEST_F(FieldTree, BlockWithoutEndInACompoundTakesTheRest)
{
    EXPECT_EQ(tree(QStringLiteral("-PT -PTID AB -BEGIN XYZ -FL F330 -ARCID ABC ")),
              (Lines{"PT 12..-1", "  PTID 16..24: AB", "  XYZ? 25..56: -FL F330 -ARCID ABC"}));
    EXPECT_EQ(reports(), (Lines{"\"not found the end of the block\" \"-END\" "}));
}

TEST_F(FieldTree, BlockWithoutEndInAListTakesTheRestOfTheList)
{
    EXPECT_EQ(
        tree(QStringLiteral("-BEGIN ADDR -FAC EGLL -BEGIN XYZ -FAC EGKK -END ADDR -ARCID ABC")),
        (Lines{"ADDR[] 12..55", "  FAC 24..33 #1: EGLL", "  XYZ? 34..64 #1: -FAC EGKK",
               "ARCID 65..75: ABC"}));
    EXPECT_EQ(reports(), (Lines{"\"not found the end of the block\" \"-END\" "}));
}

TEST_F(FieldTree, BeginAsLastWordIsReported)
{
    EXPECT_EQ(tree(QStringLiteral("-ARCID ABC -BEGIN")), (Lines{"ARCID 12..22: ABC"}));
    EXPECT_EQ(reports(), (Lines{"\"the blo\u0441k is empty\" "}));
}

TEST_F(FieldTree, BlocksOfTheSameNameDoNotNest)
{
    EXPECT_EQ(tree(QStringLiteral("-BEGIN ADDR -BEGIN ADDR -FAC EGLL -END ADDR -END ADDR")),
              (Lines{"ADDR[] 12..46", "  ADDR? 24..55 #1: -BEGIN ADDR -FAC EGLL -END ADDR"}));
    EXPECT_EQ(reports(), (Lines{"\"rule ADDR for ADDR not found\" ",
                                "\"found the end of the block without the block start\" ",
                                "\"ignore word\" \"ADDR\" "}));
}

TEST_F(FieldTree, ListKeywordWithoutBeginMakesACompound)
{
    EXPECT_EQ(
        tree(QStringLiteral("-ADDR -FAC EGLL -FAC EGKK -ARCID ABC")),
        (Lines{"ADDR 12..37", "  FAC 18..27: EGLL", "  FAC 28..37: EGKK", "ARCID 38..48: ABC"}));
    EXPECT_EQ(reports(), Lines());
}

} // namespace
