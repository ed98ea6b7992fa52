#include "report/finding.h"

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
    switch (code) {
    case ADEXP_CODE_MISSING_TITLE:
        return "missing-title";
    case ADEXP_CODE_FIELD_BEFORE_TITLE:
        return "field-before-title";
    case ADEXP_CODE_STRAY_WORD:
        return "stray-word";
    case ADEXP_CODE_LONE_HYPHEN:
        return "lone-hyphen";
    case ADEXP_CODE_UNKNOWN_FIELD:
        return "unknown-field";
    case ADEXP_CODE_INCORRECT_DATA:
        return "incorrect-data";
    case ADEXP_CODE_SURPLUS_DATA:
        return "surplus-data";
    case ADEXP_CODE_TOO_MANY_STEPS:
        return "too-many-steps";
    case ADEXP_CODE_MISSING_BLOCK_NAME:
        return "missing-block-name";
    case ADEXP_CODE_MISSING_END:
        return "missing-end";
    case ADEXP_CODE_MISSING_END_NAME:
        return "missing-end-name";
    case ADEXP_CODE_WRONG_END_NAME:
        return "wrong-end-name";
    case ADEXP_CODE_UNEXPECTED_END:
        return "unexpected-end";
    case ADEXP_CODE_SETTINGS_ACCESS:
        return "settings-access";
    case ADEXP_CODE_SETTINGS_FORMAT:
        return "settings-format";
    case ADEXP_CODE_SETTINGS_ERROR:
        return "settings-error";
    case ADEXP_CODE_MISSING_PATH:
        return "missing-path";
    case ADEXP_CODE_UNREADABLE_FILE:
        return "unreadable-file";
    case ADEXP_CODE_MALFORMED_XML:
        return "malformed-xml";
    case ADEXP_CODE_XML_TOO_DEEP:
        return "xml-too-deep";
    case ADEXP_CODE_XML_TOO_MANY_ATTRIBUTES:
        return "xml-too-many-attributes";
    case ADEXP_CODE_XML_TYPE_TOO_LONG:
        return "xml-type-too-long";
    case ADEXP_CODE_XML_GROWS_TOO_MUCH:
        return "xml-grows-too-much";
    case ADEXP_CODE_FILE_NOT_LOADED:
        return "file-not-loaded";
    case ADEXP_CODE_WRONG_TAG:
        return "wrong-tag";
    case ADEXP_CODE_REPEATED_DEFINITION:
        return "repeated-definition";
    case ADEXP_CODE_REPEATED_RULE:
        return "repeated-rule";
    case ADEXP_CODE_DEFINITION_REMOVED:
        return "definition-removed";
    case ADEXP_CODE_RULE_IGNORED:
        return "rule-ignored";
    case ADEXP_CODE_EMPTY_EXPRESSION:
        return "empty-expression";
    case ADEXP_CODE_UNCLOSED_BRACKET:
        return "unclosed-bracket";
    case ADEXP_CODE_EMPTY_BRACKETS:
        return "empty-brackets";
    case ADEXP_CODE_LEADING_OPERATOR:
        return "leading-operator";
    case ADEXP_CODE_REPEATED_OPERATOR:
        return "repeated-operator";
    case ADEXP_CODE_TRAILING_OPERATOR:
        return "trailing-operator";
    case ADEXP_CODE_MIXED_OPERATORS:
        return "mixed-operators";
    case ADEXP_CODE_EMPTY_LITERAL:
        return "empty-literal";
    case ADEXP_CODE_EMPTY_NAME:
        return "empty-name";
    case ADEXP_CODE_UNKNOWN_NAME:
        return "unknown-name";
    case ADEXP_CODE_INVALID_NAME:
        return "invalid-name";
    case ADEXP_CODE_SELF_REFERENCE:
        return "self-reference";
    case ADEXP_CODE_REFERENCE_LOOP:
        return "reference-loop";
    case ADEXP_CODE_TANGLED_LOOPS:
        return "tangled-loops";
    case ADEXP_CODE_NESTED_TOO_DEEP:
        return "nested-too-deep";
    case ADEXP_CODE_TOO_MANY_TERMS:
        return "too-many-terms";
    case ADEXP_CODE_REPEATED_SPACE:
        return "repeated-space";
    case ADEXP_CODE_COUNT_TOO_LARGE:
        return "count-too-large";
    case ADEXP_CODE_COUNT_TAKEN_AS_NAME:
        return "count-taken-as-name";
    case ADEXP_CODE_COUNTS_EXCHANGED:
        return "counts-exchanged";
    case ADEXP_CODE_BROKEN_INVARIANT:
        return "broken-invariant";
    default:
        return "";
    }
}
