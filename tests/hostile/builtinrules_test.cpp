// The definitions of the built-in rule set: none of them lets a message cost more than its length.
// A repetition in a repetition can (each character of "{({'A'} ! 'B') | 'A'}" is looked at as often
// as there are characters), and nothing forbids one in rules.

#include "hostile/steps.h"

#include "support/diagnosticcapture.h"

#include "adexp.h"
#include "api/adexplib.h"
#include "grammar/termstd.h"
#include "load/mainclass.h"

#include <QDomDocument>
#include <QFile>
#include <QHash>

#include <gtest/gtest.h>

namespace {

// The examples and counterexamples in the rule files, by the name of their definition.
QHash<QString, QStringList> examplesByName()
{
    QHash<QString, QStringList> examples;
    for (const char* name : {"simpleterms", "subfields", "primaryfields"}) {
        QFile file(QStringLiteral(":/adexp/%1.xml").arg(QLatin1String(name)));
        QDomDocument document;
        EXPECT_TRUE(file.open(QIODevice::ReadOnly) && document.setContent(&file)) << name;
        for (QDomElement record = document.documentElement().firstChildElement(); !record.isNull();
             record = record.nextSiblingElement()) {
            QStringList& texts = examples[record.attribute(QStringLiteral("name")).toUpper()];
            for (QDomElement part = record.firstChildElement(); !part.isNull();
                 part = part.nextSiblingElement())
                if (part.tagName().endsWith(QLatin1String("example")))
                    texts.append(part.text().simplified());
        }
    }
    return examples;
}

// What is repeated to make a long text for the definition.
QStringList pieces(const QStringList& examples)
{
    QStringList pieces{QStringLiteral("A"),  QStringLiteral("1"),         QStringLiteral(" "),
                       QStringLiteral("A "), QStringLiteral("1 "),        QStringLiteral("A1"),
                       QStringLiteral("/"),  QStringLiteral("N0450F350 ")};
    for (const QString& example : examples) {
        pieces.append(example);
        pieces.append(example + QLatin1Char(' '));
    }
    return pieces;
}

TEST(BuiltInRules, MatchInStepsInProportionToTheText)
{
    const DiagnosticCapture capture;
    constexpr std::string_view settings = ":/adexp/adexp.ini";
    ASSERT_EQ(init_adexp(settings.data(), static_cast<int>(settings.size())), 0);
    const QHash<QString, QStringList> examples = examplesByName();
    constexpr int Units = 500;
    for (TermStd* term : mc->termsList) {
        for (const QString& piece : pieces(examples.value(term->config.recordName))) {
            if (piece.isEmpty())
                continue;
            const auto steps = [term, &piece](int units) {
                const QString text = piece.repeated(units / static_cast<int>(piece.size()) + 1);
                return stepsOf([&] { term->parse(text.constData()); });
            };
            EXPECT_LE(steps(10 * Units), 10.5 * static_cast<double>(steps(Units)) + 1000)
                << term->config.recordName.toStdString() << ": " << piece.toStdString();
        }
    }
    clear_adexp();
}

} // namespace
