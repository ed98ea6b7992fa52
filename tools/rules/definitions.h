#ifndef DEFINITIONS_H
#define DEFINITIONS_H

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

class MainClass;
class TermStd;

namespace adexp {
class RuleSet;
}

/// What is inside @p rules, which must stay.
const MainClass& insideOf(const adexp::RuleSet& rules);

/// The terms of @p rules in load order, then its message rules. Not owned.
std::vector<TermStd*> allDefinitions(const MainClass& rules);

/// Those of the name @p name, in capital or small letters: a term and a message rule may share one.
/// If there is none, this is reported with the nearest name there is.
std::vector<TermStd*> definitionsNamed(const MainClass& rules, const std::string& name);

/// True if the data of @p definition (loaded) is made of fields. Simple terms are not asked: they
/// refer to no field, and the library's answer follows every path through their references.
bool isCompound(const TermStd* definition);

/// The names that @p definition refers to, in text order, none twice.
QStringList referencesOf(const TermStd* definition);

#endif
