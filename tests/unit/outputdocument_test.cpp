// The output document.

#include "message/adexpdoc.h"
#include "message/adexpfield.h"
#include "output/xmlwriter.h"

#include "support/diagnosticcapture.h"
#include "support/grammar.h"
#include "support/reports.h"
#include "support/tooutput.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

class OutputDocument : public testing::Test
{
protected:
    OutputDocument()
    {
        grammar.field(QStringLiteral("FAC"), QStringLiteral("{ALPHA}8"));
        grammar.field(QStringLiteral("ARCID"), QStringLiteral("{ALPHANUM}7"));
        grammar.field(QStringLiteral("ADDR"), QStringLiteral("{FAC}"));
        grammar.rule(QStringLiteral("IFPL"), QStringLiteral("ARCID [ADDR]"));
    }

    MsgRule* rule() const { return grammar.rules()->at(0); }

    std::string convert(const QString& message)
    {
        doc = std::make_unique<AdexpDoc>(message, &toOutput);
        doc->setRootField(grammar.rules());
        doc->parse();
        return std::string(doc->toXMLString().view());
    }

    // A root made by hand, named T, in a document without text.
    AdexpField* root(const TermStd* term = nullptr)
    {
        doc = std::make_unique<AdexpDoc>(QString(), &toOutput);
        doc->rootField = doc->createField(doc.get(), QStringView(u"T"), term);
        return doc->rootField;
    }

    AdexpField* add(AdexpField* parent, QStringView name, int begin, int end, int item = 0)
    {
        AdexpField* const field = doc->createField(parent, name);
        field->fieldBegin = begin;
        field->fieldEnd = end;
        field->itemIndex = item;
        parent->subFields.push_back(field);
        return field;
    }

    static std::string elementOf(const AdexpField& field)
    {
        XmlWriter writer(0);
        field.dataToXML(&writer);
        return std::string(writer.takeDocument().view());
    }

    Grammar grammar;
    DiagnosticCapture diagnostics;
    std::unique_ptr<AdexpDoc> doc;
};

// A message can name a separator by its text. That of SUBA is not the one before B: no new item.
TEST_F(OutputDocument, EachSeparatorIsAnotherTerm)
{
    Grammar lists;
    for (const char* name : {"B", "C", "D"})
        lists.field(QLatin1String(name), QStringLiteral("DIGIT"));
    lists.field(QStringLiteral("SUBA"), QStringLiteral("[C] D"));
    lists.field(QStringLiteral("L"), QStringLiteral("SUBA B"));
    lists.rule(QStringLiteral("T"), QStringLiteral("L"));
    AdexpDoc message(QStringLiteral("-TITLE T -BEGIN L -B 1 -AUTOSEP -END L"), &toOutput);
    message.setRootField(lists.rules());
    message.parse();
    const std::string document(message.toXMLString().view());
    const std::size_t first = document.find("<item ");
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(document.find("<item ", first + 1), std::string::npos) << document;
}

TEST_F(OutputDocument, HoldsHeaderFieldsAndMessage)
{
    EXPECT_EQ(convert(QStringLiteral("-TITLE IFPL\r\n-ARCID ABC\n"
                                     "-BEGIN ADDR -FAC EGLL -FAC EGKK -END ADDR")),
              R"(<ADEXP_XML version="0.3" parser_ver="0.2.1" from="БУДЕТ_АДРЕС_ОТПРАВИТЕЛЯ")"
              R"( datatime="БУДЕТ_ДАТА_ВРЕМЯ" rating="ГГ" to="БУДУТ_АДРЕСА_КОМУ" rule="IFPL">
    <IFPL valid="true" field_begin="0" field_end="64" list="false">
        <ARCID valid="true" field_begin="12" field_end="22" list="false">ABC</ARCID>
        <ADDR valid="true" field_begin="23" field_end="64" list="true">
            <item field_begin="35" field_end="44">
                <FAC valid="true" field_begin="35" field_end="44" list="false">EGLL</FAC>
            </item>
            <item field_begin="45" field_end="54">
                <FAC valid="true" field_begin="45" field_end="54" list="false">EGKK</FAC>
            </item>
        </ADDR>
    </IFPL>
    <ORIGINAL_TEXT>-TITLE IFPL
-ARCID ABC
-BEGIN ADDR -FAC EGLL -FAC EGKK -END ADDR</ORIGINAL_TEXT>
</ADEXP_XML>
)");
    EXPECT_EQ(linesOf(diagnostics), Lines());
}

TEST_F(OutputDocument, IsTheSameEachTime)
{
    const std::string first = convert(QStringLiteral("-TITLE IFPL -ARCID ABC -X Y"));
    EXPECT_EQ(doc->toXMLString().view(), first);
    EXPECT_EQ(rule()->toXMLString(doc.get()).view(), first);
}

TEST_F(OutputDocument, IsEmptyWithoutTitle)
{
    EXPECT_EQ(convert(QStringLiteral("-ARCID ABC")), "");
    EXPECT_EQ(doc->rootField, nullptr);
}

TEST_F(OutputDocument, IsEmptyWithoutRule)
{
    EXPECT_EQ(convert(QStringLiteral("-TITLE XYZ -ARCID ABC")), "");
    EXPECT_NE(doc->rootField, nullptr);
}

TEST_F(OutputDocument, IsEmptyIfTheRootsTermIsNoRule)
{
    root(grammar.fieldTerm(QStringLiteral("ADDR")));
    EXPECT_TRUE(doc->toXMLString().isEmpty());
}

TEST_F(OutputDocument, UnsetHeaderGivesEmptyAttributes)
{
    root(rule());
    EXPECT_EQ(doc->toXMLString().view(),
              R"(<ADEXP_XML version="0.3" parser_ver="0.2.1" from="" datatime="" rating="" to="")"
              R"( rule="IFPL">
    <T valid="true" field_begin="-1" field_end="-1" list="false"/>
    <ORIGINAL_TEXT></ORIGINAL_TEXT>
</ADEXP_XML>
)");
}

TEST_F(OutputDocument, HeaderIsWrittenAsItStands)
{
    root(rule());
    doc->msgParam.from = QStringLiteral(u"<\"Я\" & Ω>");
    const std::string document = std::string(doc->toXMLString().view());
    EXPECT_NE(document.find(R"( from="&lt;&quot;Я&quot; &amp; Ω>" )"), std::string::npos)
        << document;
}

TEST_F(OutputDocument, ReportsLeaveNothingButTheMarkOfAnUnknownField)
{
    const std::string document = convert(QStringLiteral("X -TITLE IFPL -ARCID * -END Y -Z A"));
    EXPECT_EQ(linesOf(diagnostics).size(), 5u);
    EXPECT_NE(document.find(R"(
        <ARCID valid="true" field_begin="14" field_end="22" list="false">*</ARCID>
        <Z valid="false" field_begin="30" field_end="34" list="false">A</Z>
    </IFPL>
)"),
              std::string::npos)
        << document;
}

// One field

TEST_F(OutputDocument, FieldWithoutDataHasAttributesOnly)
{
    EXPECT_EQ(elementOf(*root()),
              "<T valid=\"false\" field_begin=\"-1\" field_end=\"-1\" list=\"false\"/>\n");
}

TEST_F(OutputDocument, FieldWithATermIsValid)
{
    EXPECT_EQ(elementOf(*root(grammar.fieldTerm(QStringLiteral("ARCID")))),
              "<T valid=\"true\" field_begin=\"-1\" field_end=\"-1\" list=\"false\"/>\n");
}

TEST_F(OutputDocument, DataStandsBeforeTheSubFields)
{
    AdexpField* const field = root();
    field->fieldData = u"DATA";
    add(field, u"A", 1, 2);
    add(field, u"B", 3, 4);
    EXPECT_EQ(elementOf(*field),
              R"(<T valid="false" field_begin="-1" field_end="-1" list="false">)"
              R"(DATA<A valid="false" field_begin="1" field_end="2" list="false"/>
    <B valid="false" field_begin="3" field_end="4" list="false"/>
</T>
)");
}

TEST_F(OutputDocument, ListWithoutSubFieldsHasNoItem)
{
    AdexpField* const field = root();
    field->isList = true;
    EXPECT_EQ(elementOf(*field),
              "<T valid=\"false\" field_begin=\"-1\" field_end=\"-1\" list=\"true\"/>\n");
}

TEST_F(OutputDocument, EqualItemIndexesMakeOneItem)
{
    AdexpField* const field = root();
    field->isList = true;
    add(field, u"A", 1, 2, 5);
    add(field, u"B", 3, 4, 5);
    add(field, u"C", 5, 9, 5);
    EXPECT_EQ(elementOf(*field),
              R"(<T valid="false" field_begin="-1" field_end="-1" list="true">
    <item field_begin="1" field_end="9">
        <A valid="false" field_begin="1" field_end="2" list="false"/>
        <B valid="false" field_begin="3" field_end="4" list="false"/>
        <C valid="false" field_begin="5" field_end="9" list="false"/>
    </item>
</T>
)");
}

TEST_F(OutputDocument, EachChangeOfTheItemIndexBeginsAnItem)
{
    AdexpField* const field = root();
    field->isList = true;
    add(field, u"A", 1, 2, 0);
    add(field, u"B", 3, 4, 1);
    add(field, u"C", 5, 6, 0);
    EXPECT_EQ(elementOf(*field),
              R"(<T valid="false" field_begin="-1" field_end="-1" list="true">
    <item field_begin="1" field_end="2">
        <A valid="false" field_begin="1" field_end="2" list="false"/>
    </item>
    <item field_begin="3" field_end="4">
        <B valid="false" field_begin="3" field_end="4" list="false"/>
    </item>
    <item field_begin="5" field_end="6">
        <C valid="false" field_begin="5" field_end="6" list="false"/>
    </item>
</T>
)");
}

TEST_F(OutputDocument, DataOfAListStandsBeforeItsItems)
{
    AdexpField* const field = root();
    field->isList = true;
    field->fieldData = u"DATA";
    add(field, u"A", 1, 2, 1);
    EXPECT_EQ(elementOf(*field), R"(<T valid="false" field_begin="-1" field_end="-1" list="true">)"
                                 R"(DATA<item field_begin="1" field_end="2">
        <A valid="false" field_begin="1" field_end="2" list="false"/>
    </item>
</T>
)");
}

TEST_F(OutputDocument, FieldWithoutNameIsLeftOutWithAllBelow)
{
    AdexpField* const field = root();
    AdexpField* const nameless = add(field, QStringView(), 1, 2);
    nameless->fieldData = u"DATA";
    add(nameless, u"A", 3, 4);
    add(field, u"B", 5, 6);
    EXPECT_EQ(elementOf(*field),
              R"(<T valid="false" field_begin="-1" field_end="-1" list="false">
    <B valid="false" field_begin="5" field_end="6" list="false"/>
</T>
)");
}

} // namespace
