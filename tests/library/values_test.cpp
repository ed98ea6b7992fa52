// Rule sets and results as users have them: through adexp.hpp and adexp.h, over the shared library.

#include "adexp.hpp"

#include <gtest/gtest.h>

#include <QtGlobal>

#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

const char* const Message = "-TITLE IFPL -ARCID EIN604 -NOSUCH X Y\r\n-BEGIN RTEPTS\r\n"
                            "-PT -PTID BEPAN -FL F350 -PT -PTID LIFFY -END RTEPTS -ADEP ?";

const adexp::RuleSet& builtIn()
{
    static const adexp::RuleSet rules(adexp::BuiltIn);
    return rules;
}

std::string documentOf(const std::string& message)
{
    if (init_adexp(adexp::BuiltIn.data(), static_cast<int>(adexp::BuiltIn.size())) != 0)
        return "no rule set";
    unsigned int length = 0;
    const char* const document =
        convert_from_adexp(message.data(), static_cast<unsigned int>(message.size()), &length);
    std::string copy(document ? document : "", length);
    free_adexp(document);
    clear_adexp();
    return copy;
}

Texts namesOf(const adexp::Fields& fields)
{
    Texts names;
    for (const adexp::Field field : fields)
        names.emplace_back(field.name());
    return names;
}

Texts codesOf(const adexp::Findings& findings)
{
    Texts codes;
    for (const adexp::Finding finding : findings)
        codes.emplace_back(finding.codeName());
    return codes;
}

std::string stretch(const std::string& message, const adexp::Place& place)
{
    return message.substr(static_cast<std::size_t>(place.byte_begin),
                          static_cast<std::size_t>(place.byte_end - place.byte_begin));
}

TEST(RuleSet, TheBuiltInOneLoadsWithoutFindings)
{
    EXPECT_TRUE(builtIn().isLoaded());
    EXPECT_TRUE(builtIn().findings().empty());
}

TEST(RuleSet, ThatCannotBeLoadedTellsWhyAndCanBeUsed)
{
    const adexp::RuleSet rules("/nowhere/adexp.ini");
    EXPECT_EQ(rules.status(), adexp::Status::RulesUnreadable);
    EXPECT_EQ(codesOf(rules.findings()), (Texts{"missing-path", "file-not-loaded"}));
    EXPECT_EQ(rules.findings()[0].file(), "/nowhere/adexp.ini");
    EXPECT_EQ(rules.convert(Message).status(), adexp::Status::NoRule);
}

TEST(RuleSet, ThatWasMovedFromIsEmpty)
{
    adexp::RuleSet first("/nowhere/adexp.ini");
    const adexp::RuleSet second = std::move(first);
    EXPECT_EQ(first.status(), adexp::Status::BadArgument); // NOLINT(bugprone-use-after-move)
    EXPECT_TRUE(first.findings().empty());
    EXPECT_EQ(first.convert(Message).status(), adexp::Status::BadArgument);
    EXPECT_FALSE(second.findings().empty());
}

TEST(RuleSet, LivesAsLongAsACopy)
{
    auto first = std::make_unique<adexp::RuleSet>(adexp::BuiltIn);
    const adexp::RuleSet second = *first;
    first.reset();
    EXPECT_TRUE(second.convert(Message).isOk());
}

TEST(Conversion, GivesTheDocumentOfConvertFromAdexp)
{
    const adexp::Result result = builtIn().convert(Message);
    EXPECT_EQ(result.status(), adexp::Status::Ok);
    EXPECT_EQ(result.title(), "IFPL");
    EXPECT_EQ(result.document(), documentOf(Message));
    EXPECT_EQ(result.document().data()[result.document().size()], '\0');
}

TEST(Conversion, GivesTheFieldsInTheOrderOfTheText)
{
    const adexp::Result result = builtIn().convert(Message);
    EXPECT_EQ(namesOf(result.fields()),
              (Texts{"ARCID", "NOSUCH", "RTEPTS", "PT", "PTID", "FL", "PT", "PTID", "ADEP"}));
    const std::optional<adexp::Field> message = result.message();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->name(), "IFPL");
    EXPECT_FALSE(message->parent());
    EXPECT_EQ(namesOf(message->children()), (Texts{"ARCID", "NOSUCH", "RTEPTS", "ADEP"}));

    const std::optional<adexp::Field> points = result.fields().find("RTEPTS");
    ASSERT_TRUE(points);
    EXPECT_TRUE(points->isList());
    EXPECT_EQ(namesOf(points->children()), (Texts{"PT", "PT"}));
    std::vector<int> items;
    for (const adexp::Field point : points->children()) {
        items.push_back(point.item());
        EXPECT_EQ(point.parent()->name(), "RTEPTS");
    }
    EXPECT_EQ(items, (std::vector<int>{1, 2}));
    const std::optional<adexp::Field> unknown = result.fields().find("NOSUCH");
    ASSERT_TRUE(unknown);
    EXPECT_FALSE(unknown->isKnown());
    EXPECT_EQ(unknown->data(), "X Y");
    EXPECT_FALSE(result.fields().find("ABSENT"));
}

TEST(Conversion, GivesThePlacesOfFields)
{
    const std::string message = Message;
    const adexp::Result result = builtIn().convert(message);
    const adexp::Place list = result.fields().find("RTEPTS")->place();
    EXPECT_EQ(stretch(message, list).substr(0, 13), "-BEGIN RTEPTS");
    EXPECT_EQ(stretch(message, list).substr(stretch(message, list).size() - 11), "-END RTEPTS");
    EXPECT_EQ(list.line, 2);
    EXPECT_EQ(list.column, 1);
    EXPECT_EQ(list.byte_begin, list.begin + 1); // behind one carriage return
    // A compound that ends with its block has no end in the document.
    Texts points;
    for (const adexp::Field point : result.fields().find("RTEPTS")->children())
        points.push_back(stretch(message, point.place()));
    EXPECT_EQ(points, (Texts{"-PT -PTID BEPAN -FL F350", "-PT -PTID LIFFY"}));
}

TEST(Conversion, GivesTheFindings)
{
    const std::string message = Message;
    const adexp::Result result = builtIn().convert(message);
    EXPECT_EQ(codesOf(result.findings()), (Texts{"unknown-field", "incorrect-data"}));
    const adexp::Finding unknown = result.findings()[0];
    EXPECT_EQ(unknown.code(), ADEXP_CODE_UNKNOWN_FIELD);
    EXPECT_EQ(unknown.severity(), adexp::Severity::Error);
    EXPECT_EQ(unknown.text(), "rule NOSUCH for IFPL not found");
    EXPECT_EQ(unknown.path(), "NOSUCH");
    EXPECT_EQ(result.field(unknown.field())->name(), "NOSUCH");
    EXPECT_EQ(stretch(message, unknown.place()), "-NOSUCH");
    const adexp::Finding incorrect = result.findings()[1];
    EXPECT_EQ(incorrect.detail(), "?");
    EXPECT_EQ(incorrect.place().line, 3);
    EXPECT_EQ(result.field(incorrect.field())->name(), "ADEP");
}

TEST(Conversion, TellsThePathOfAFieldInsideOthers)
{
    const adexp::Result result =
        builtIn().convert("-TITLE IFPL -BEGIN RTEPTS -PT -PTID BEPAN -FL ? -END RTEPTS");
    ASSERT_EQ(result.findings().size(), 1U);
    EXPECT_EQ(result.findings()[0].path(), "RTEPTS/PT/FL");
    EXPECT_EQ(result.field(result.findings()[0].field())->name(), "FL");
}

TEST(Conversion, TellsWhyThereIsNoDocument)
{
    const auto convert = [](std::string_view message) { return builtIn().convert(message); };
    EXPECT_EQ(convert("").status(), adexp::Status::NoTitle);
    EXPECT_EQ(convert("-ARCID X").status(), adexp::Status::NoTitle);
    const adexp::Result noTitle = convert("-ARCID");
    EXPECT_EQ(codesOf(noTitle.findings()), (Texts{"field-before-title", "missing-title"}));
    EXPECT_EQ(convert("-TITLE NOBODY").status(), adexp::Status::NoRule);
    EXPECT_EQ(convert("-TITLE NOBODY").title(), "NOBODY");
    EXPECT_EQ(convert("-TITLE").status(), adexp::Status::NoRule);
    EXPECT_EQ(convert("-TITLE").title(), "");
    EXPECT_EQ(convert("-TITLE NOBODY").document().data(), nullptr);
}

TEST(Conversion, MakesWhatIsAskedForOnly)
{
    adexp::Options options;
    options.document = false;
    EXPECT_TRUE(builtIn().convert(Message, options).document().empty());
    EXPECT_EQ(builtIn().convert(Message, options).status(), adexp::Status::Ok);
    options = {};
    options.fields = false;
    adexp::Result result = builtIn().convert(Message, options);
    EXPECT_TRUE(result.fields().empty());
    EXPECT_EQ(result.findings()[0].field(), 2);
    EXPECT_FALSE(result.field(2));
    options = {};
    options.findings = false;
    builtIn().convert(Message, &result, options);
    EXPECT_TRUE(result.findings().empty());
    options.findings = true;
    options.maxFindings = 1;
    builtIn().convert(Message, &result, options);
    EXPECT_EQ(result.findings().size(), 1U);
    EXPECT_EQ(result.findings().leftOut(), 1U);
}

TEST(Conversion, IntoAUsedResultIsAsIntoANewOne)
{
    adexp::Result result;
    std::string large = Message;
    for (int i = 0; i < 5000; ++i)
        large += " -RMK <&>" + std::to_string(i);
    for (const std::string& message : {large, std::string(Message), std::string(), large}) {
        builtIn().convert(message, &result);
        const adexp::Result fresh = builtIn().convert(message);
        EXPECT_EQ(result.status(), fresh.status());
        EXPECT_EQ(result.document(), fresh.document());
        EXPECT_EQ(namesOf(result.fields()), namesOf(fresh.fields()));
        EXPECT_EQ(codesOf(result.findings()), codesOf(fresh.findings()));
    }
}

TEST(Conversion, WritesNothingToTheMessageOutput)
{
    static int lines = 0;
    const QtMessageHandler before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString&) { ++lines; });
    const adexp::RuleSet unreadable("/nowhere/adexp.ini");
    static_cast<void>(builtIn().convert(Message));
    // Qt would complain of the place marker.
    static_cast<void>(builtIn().convert("-TITLE IFPL -%\u0662 X"));
    qInstallMessageHandler(before);
    EXPECT_EQ(lines, 0);
}

TEST(Result, WithoutAConversionIsEmpty)
{
    const adexp::Result result;
    EXPECT_EQ(result.status(), adexp::Status::BadArgument);
    EXPECT_TRUE(result.document().empty());
    EXPECT_TRUE(result.fields().empty());
    EXPECT_FALSE(result.message());
    EXPECT_TRUE(result.findings().empty());
}

TEST(Result, ThatWasMovedFromTakesTheNextConversion)
{
    adexp::Result first = builtIn().convert(Message);
    const adexp::Result second = std::move(first);
    builtIn().convert("-TITLE RFI -ARCID A1", &first); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(first.title(), "RFI");
    EXPECT_EQ(second.title(), "IFPL");
}

template <typename Value, typename = void>
constexpr bool givesFindings = false;
template <typename Value>
constexpr bool givesFindings<Value, std::void_t<decltype(std::declval<Value>().findings())>> = true;

TEST(Result, GivesNoFindingsIfNothingKeepsIt)
{
    // `for (Finding finding : rules.convert(message).findings())` would go through what is gone.
    EXPECT_TRUE(givesFindings<adexp::Result&>);
    EXPECT_TRUE(givesFindings<const adexp::RuleSet&>);
    EXPECT_FALSE(givesFindings<adexp::Result>);
    EXPECT_FALSE(givesFindings<adexp::RuleSet>);
}

TEST(Result, IteratorsAreThoseOfTheLanguage)
{
    const adexp::Result result = builtIn().convert(Message);
    const adexp::Fields fields = result.fields();
    auto field = fields.begin();
    EXPECT_EQ((*field++).name(), "ARCID");
    EXPECT_EQ(field->name(), "NOSUCH");
    EXPECT_EQ(fields.size(), namesOf(fields).size());
    EXPECT_EQ(result.message()->children().size(), 4U);
    const adexp::Findings findings = result.findings();
    auto finding = findings.begin();
    EXPECT_EQ((*finding++).codeName(), findings[0].codeName());
    EXPECT_EQ(finding->codeName(), findings[1].codeName());
}

struct CRules
{
    CRules() { adexp_rules_load(adexp::BuiltIn.data(), adexp::BuiltIn.size(), &rules); }
    ~CRules()
    {
        adexp_result_release(result);
        adexp_rules_release(rules);
    }

    adexp_rules* rules = nullptr;
    adexp_result* result = adexp_result_new();
};

TEST(CInterface, RefusesBadArguments)
{
    CRules c;
    adexp_options options{};
    options.size = sizeof options;
    options.want = 1U << 30;
    EXPECT_EQ(adexp_rules_load(nullptr, 0, nullptr), ADEXP_BAD_ARGUMENT);
    EXPECT_EQ(adexp_convert(nullptr, "", 0, nullptr, c.result), ADEXP_BAD_ARGUMENT);
    EXPECT_EQ(adexp_convert(c.rules, nullptr, 1, nullptr, c.result), ADEXP_BAD_ARGUMENT);
    EXPECT_EQ(adexp_convert(c.rules, "", 0, nullptr, nullptr), ADEXP_BAD_ARGUMENT);
    EXPECT_EQ(adexp_convert(c.rules, "", 0, &options, c.result), ADEXP_BAD_ARGUMENT);
    options.want = ADEXP_FIELDS;
    options.size = 0; // forgotten
    EXPECT_EQ(adexp_convert(c.rules, "", 0, &options, c.result), ADEXP_BAD_ARGUMENT);
    adexp_view view{};
    view.size = sizeof view;
    adexp_result_view(nullptr, &view);
    EXPECT_EQ(view.status, ADEXP_BAD_ARGUMENT);
    EXPECT_STREQ(view.strings, "");
    view.status = ADEXP_OK;
    adexp_rules_view(nullptr, &view);
    EXPECT_EQ(view.status, ADEXP_BAD_ARGUMENT);
    EXPECT_EQ(adexp_convert(c.rules, "", std::size_t(1) << 31, nullptr, c.result), ADEXP_TOO_LARGE);
    adexp_rules_release(nullptr);
    adexp_result_release(nullptr);
    EXPECT_EQ(adexp_rules_share(nullptr), nullptr);
}

TEST(CInterface, ConvertsManyMessagesAndTellsWhatFailed)
{
    CRules first;
    CRules second;
    const char* const texts[] = {Message, "nothing"};
    const std::size_t lengths[] = {std::strlen(Message), 7};
    adexp_result* const results[] = {first.result, second.result};
    EXPECT_EQ(adexp_convert_many(first.rules, texts, lengths, 2, nullptr, results), ADEXP_OK);
    adexp_view view{};
    view.size = sizeof view;
    adexp_result_view(first.result, &view);
    EXPECT_EQ(std::string(view.document, view.document_size), documentOf(Message));
    adexp_result_view(second.result, &view);
    EXPECT_EQ(view.status, ADEXP_NO_TITLE);

    adexp_result* const incomplete[] = {nullptr, second.result};
    EXPECT_EQ(adexp_convert_many(first.rules, texts, lengths, 2, nullptr, incomplete),
              ADEXP_BAD_ARGUMENT);
    EXPECT_EQ(adexp_convert_many(first.rules, nullptr, nullptr, 1, nullptr, nullptr),
              ADEXP_BAD_ARGUMENT);
    EXPECT_EQ(adexp_convert_many(first.rules, nullptr, nullptr, 0, nullptr, nullptr), ADEXP_OK);
}

TEST(CInterface, WritesNoMoreOfAViewThanTheCallerKnows)
{
    CRules c;
    adexp_convert(c.rules, Message, std::strlen(Message), nullptr, c.result);
    adexp_view view;
    std::memset(&view, 0x55, sizeof view);
    view.size = offsetof(adexp_view, fields);
    adexp_result_view(c.result, &view);
    EXPECT_EQ(view.status, ADEXP_OK);
    EXPECT_NE(view.document, nullptr);
    EXPECT_EQ(view.size, offsetof(adexp_view, fields));
    EXPECT_EQ(view.field_count, static_cast<std::size_t>(0x5555555555555555));
}

TEST(CInterface, NamesTheCodes)
{
    EXPECT_STREQ(adexp_code_name(ADEXP_CODE_MISSING_END), "missing-end");
    EXPECT_STREQ(adexp_code_name(ADEXP_CODE_BROKEN_INVARIANT), "broken-invariant");
    EXPECT_STREQ(adexp_code_name(0), "");
    EXPECT_STREQ(adexp_code_name(99999), "");
}

TEST(CInterface, WalksArraysByTheirStride)
{
    CRules c;
    adexp_convert(c.rules, Message, std::strlen(Message), nullptr, c.result);
    adexp_view view{};
    view.size = sizeof view;
    adexp_result_view(c.result, &view);
    ASSERT_GT(view.field_count, 1U);
    const adexp_field* const field = adexp_field_at(&view, 1);
    EXPECT_STREQ(view.strings + field->name.at, "ARCID");
    const adexp_finding* const finding = adexp_finding_at(&view, 1);
    EXPECT_STREQ(view.strings + finding->detail.at, "?");
}

} // namespace
