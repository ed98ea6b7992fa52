#include "report/finding.h"

namespace {

struct CodeName
{
    int code;
    const char* name;
};

constexpr CodeName CodeNames[] = {
    {ADEXP_CODE_MISSING_TITLE, "missing-title"},
    {ADEXP_CODE_FIELD_BEFORE_TITLE, "field-before-title"},
    {ADEXP_CODE_STRAY_WORD, "stray-word"},
    {ADEXP_CODE_LONE_HYPHEN, "lone-hyphen"},
    {ADEXP_CODE_UNKNOWN_FIELD, "unknown-field"},
    {ADEXP_CODE_INCORRECT_DATA, "incorrect-data"},
    {ADEXP_CODE_SURPLUS_DATA, "surplus-data"},
    {ADEXP_CODE_TOO_MANY_STEPS, "too-many-steps"},
    {ADEXP_CODE_MISSING_BLOCK_NAME, "missing-block-name"},
    {ADEXP_CODE_MISSING_END, "missing-end"},
    {ADEXP_CODE_MISSING_END_NAME, "missing-end-name"},
    {ADEXP_CODE_WRONG_END_NAME, "wrong-end-name"},
    {ADEXP_CODE_UNEXPECTED_END, "unexpected-end"},
    {ADEXP_CODE_SETTINGS_ACCESS, "settings-access"},
    {ADEXP_CODE_SETTINGS_FORMAT, "settings-format"},
    {ADEXP_CODE_SETTINGS_ERROR, "settings-error"},
    {ADEXP_CODE_MISSING_PATH, "missing-path"},
    {ADEXP_CODE_UNREADABLE_FILE, "unreadable-file"},
    {ADEXP_CODE_MALFORMED_XML, "malformed-xml"},
    {ADEXP_CODE_XML_TOO_DEEP, "xml-too-deep"},
    {ADEXP_CODE_XML_TOO_MANY_ATTRIBUTES, "xml-too-many-attributes"},
    {ADEXP_CODE_XML_TYPE_TOO_LONG, "xml-type-too-long"},
    {ADEXP_CODE_XML_GROWS_TOO_MUCH, "xml-grows-too-much"},
    {ADEXP_CODE_FILE_NOT_LOADED, "file-not-loaded"},
    {ADEXP_CODE_WRONG_TAG, "wrong-tag"},
    {ADEXP_CODE_REPEATED_DEFINITION, "repeated-definition"},
    {ADEXP_CODE_REPEATED_RULE, "repeated-rule"},
    {ADEXP_CODE_DEFINITION_REMOVED, "definition-removed"},
    {ADEXP_CODE_RULE_IGNORED, "rule-ignored"},
    {ADEXP_CODE_EMPTY_EXPRESSION, "empty-expression"},
    {ADEXP_CODE_UNCLOSED_BRACKET, "unclosed-bracket"},
    {ADEXP_CODE_EMPTY_BRACKETS, "empty-brackets"},
    {ADEXP_CODE_LEADING_OPERATOR, "leading-operator"},
    {ADEXP_CODE_REPEATED_OPERATOR, "repeated-operator"},
    {ADEXP_CODE_TRAILING_OPERATOR, "trailing-operator"},
    {ADEXP_CODE_MIXED_OPERATORS, "mixed-operators"},
    {ADEXP_CODE_EMPTY_LITERAL, "empty-literal"},
    {ADEXP_CODE_EMPTY_NAME, "empty-name"},
    {ADEXP_CODE_UNKNOWN_NAME, "unknown-name"},
    {ADEXP_CODE_INVALID_NAME, "invalid-name"},
    {ADEXP_CODE_SELF_REFERENCE, "self-reference"},
    {ADEXP_CODE_REFERENCE_LOOP, "reference-loop"},
    {ADEXP_CODE_TANGLED_LOOPS, "tangled-loops"},
    {ADEXP_CODE_NESTED_TOO_DEEP, "nested-too-deep"},
    {ADEXP_CODE_TOO_MANY_TERMS, "too-many-terms"},
    {ADEXP_CODE_REPEATED_SPACE, "repeated-space"},
    {ADEXP_CODE_COUNT_TOO_LARGE, "count-too-large"},
    {ADEXP_CODE_COUNT_TAKEN_AS_NAME, "count-taken-as-name"},
    {ADEXP_CODE_COUNTS_EXCHANGED, "counts-exchanged"},
    {ADEXP_CODE_BROKEN_INVARIANT, "broken-invariant"},
};

} // namespace

FindingKind Finding::kind() const
{
    switch (code) {
    case ADEXP_CODE_UNKNOWN_NAME:
        return FindingKind::UnknownName;
    case ADEXP_CODE_REFERENCE_LOOP:
        return FindingKind::Loop;
    case ADEXP_CODE_FILE_NOT_LOADED:
    case ADEXP_CODE_DEFINITION_REMOVED:
    case ADEXP_CODE_RULE_IGNORED:
    case ADEXP_CODE_INVALID_NAME:
        return FindingKind::Consequence;
    default:
        return FindingKind::Cause;
    }
}

const char* nameOf(int code)
{
    for (const CodeName& each : CodeNames) {
        if (each.code == code)
            return each.name;
    }
    return "";
}
