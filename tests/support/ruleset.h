#ifndef RULESET_H
#define RULESET_H

#include "support/rulefolder.h"

#include <QByteArray>
#include <QString>

/// A small rule set: a simple term, sub-field, compound, list and two message rules.
namespace RuleSetText {

inline const QByteArray SimpleTerms =
    "<terms>\n"
    "<simpleTerm name='POINT'><term>2{ALPHA}5</term></simpleTerm>\n"
    "</terms>\n";
inline const QByteArray SubFields = "<terms>\n"
                                    "<SubField name='PTID'><term>POINT</term></SubField>\n"
                                    "</terms>\n";
inline const QByteArray PrimaryFields =
    "<terms>\n"
    "<PrimaryField name='ARCID'><term>2{ALPHANUM}7</term></PrimaryField>\n"
    "<PrimaryField name='RMK'><term>{LIM_CHAR}</term></PrimaryField>\n"
    "<PrimaryField name='PT'><term>PTID</term></PrimaryField>\n"
    "<PrimaryField name='RTEPTS'><term>1{PT}</term></PrimaryField>\n"
    "</terms>\n";
inline const QByteArray MsgRules =
    "<rules>\n"
    "<msgRule title='IFPL'><fields>ARCID [RTEPTS] [RMK]</fields></msgRule>\n"
    "<msgRule title='ACK'><fields>[ARCID]</fields></msgRule>\n"
    "</rules>\n";

} // namespace RuleSetText

/// A settings file that names the four rule files.
inline QByteArray settingsText(const QString& simpleTerms, const QString& subFields,
                               const QString& primaryFields, const QString& msgRules)
{
    return "[rules]\nsimpleTermsFile=" + simpleTerms.toUtf8() +
           "\nsubFieldsFile=" + subFields.toUtf8() +
           "\nprimaryFieldsFile=" + primaryFields.toUtf8() + "\nmsgRulesFile=" + msgRules.toUtf8() +
           "\n";
}

/// Writes the small rule set into @p folder as simple.xml, sub.xml, primary.xml and rules.xml.
inline void writeRuleFiles(const RuleFolder& folder)
{
    folder.write(QStringLiteral("simple.xml"), RuleSetText::SimpleTerms);
    folder.write(QStringLiteral("sub.xml"), RuleSetText::SubFields);
    folder.write(QStringLiteral("primary.xml"), RuleSetText::PrimaryFields);
    folder.write(QStringLiteral("rules.xml"), RuleSetText::MsgRules);
}

/// Writes the small rule set and the settings file @p name for it; returns the path of the latter.
inline QString writeRuleSet(const RuleFolder& folder,
                            const QString& name = QStringLiteral("adexp.ini"))
{
    writeRuleFiles(folder);
    return folder.write(name, settingsText(folder.path(QStringLiteral("simple.xml")),
                                           folder.path(QStringLiteral("sub.xml")),
                                           folder.path(QStringLiteral("primary.xml")),
                                           folder.path(QStringLiteral("rules.xml"))));
}

#endif
