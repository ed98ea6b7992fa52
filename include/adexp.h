/* adexp.h - converts ATS messages in ADEXP into XML documents.
 *
 * Plain C; usable from C, C++ and every language that can call C. C++17 programs may prefer
 * adexp.hpp, which stands on this file.
 *
 * There are two ways to use the library, and a process may use both:
 *
 * - Rule sets and results as values: adexp_rules_load() loads a rule set, adexp_convert() converts
 * a message with it into a result, which holds document, title, fields and findings. Nothing is
 *   written anywhere. Use it for all that is new.
 * - One default rule set for the whole process: init_adexp() once, convert_from_adexp() for each
 *   message, clear_adexp() at the end. What is wrong with a rule set or a message is written line
 * by line to the message output of Qt (standard error, unless the application installs a message
 *   handler with qInstallMessageHandler()).
 *
 * Threads: every function may be called by any number of threads at the same time. Only a result
 * (adexp_result) belongs to one thread at a time. A message handler may run in several threads at
 * once. A thread may end inside a call (cancelled, or by pthread_exit() in a message handler); what
 * the call was about is then lost. Nothing may be called after main() has ended, from static
 * destructors for example: Qt has ended then, too.
 *
 * All texts are UTF-8. No exception ever leaves one of these functions.
 *
 * When memory runs out, adexp_rules_load() and adexp_convert() return ADEXP_NO_MEMORY, init_adexp()
 * returns 2 and convert_from_adexp() null; nothing is lost, and the next call works. The part of
 * Qt that reads settings does not survive this, so loading makes sure of the memory it will need
 * before it calls it. If another thread takes the last of it at that very moment, Qt may still end
 * the process; conversions do not use that part.
 */
#ifndef ADEXP_H
#define ADEXP_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define ADEXP_EXPORT __attribute__((visibility("default")))
#else
#define ADEXP_EXPORT
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The default rule set of the process.
 *
 * A conversion ends with the rule set that it began with, whatever init_adexp() and clear_adexp()
 * do meanwhile. Loads and clears run one after another. While one loads, conversions use the rule
 * set of before; the new one takes its place when loading ends, failed or not. Each line is sent to
 * Qt's message output at the moment when the thing is found, by the thread that found it. A message
 * handler that is called by a load may call none of init_adexp(), clear_adexp() and
 * convert_from_adexp(): they would wait for that load.
 */

/* Loads the default rule set, in place of the one of before, also when this call fails.
 *
 * iniPath  path of the settings file (ini format) as UTF-8; it needs no terminating NUL. The path
 *          ":/adexp/adexp.ini" names the rule set that is compiled into the library. A relative
 *          path starts at the working directory, and so do the four paths in the file.
 *          Null: "adexp.ini". The caller keeps the memory.
 * length   length of iniPath in bytes; less than 1: "adexp.ini".
 *
 * Returns
 *   0  the rule set is loaded (single definitions may have been refused, each with a report);
 *   1  the settings file cannot be read as an ini file; nothing is loaded;
 *   2  one of the four rule files cannot be read, or memory ran out; everything loaded before that
 *      stays in use. A settings file that does not exist gives 2 as well, since it names no rule
 *      file.
 * convert_from_adexp() and clear_adexp() may be called after every return.
 */
ADEXP_EXPORT int init_adexp(const char* iniPath, int length);

/* Lets go of the default rule set. Does nothing when there is none; may be called again. */
ADEXP_EXPORT void clear_adexp(void);

/* Converts one message. Without a rule set, init_adexp(NULL, 0) is called first; if several threads
 * find none, one of them loads and the others wait.
 *
 * text       the message as UTF-8; the caller keeps the memory. Null: no result.
 * length     length of text in bytes. A value above 2147483647 means "up to the first NUL".
 * outLength  if not null, receives the length of the result in bytes without its terminating NUL;
 *            0 when there is no result.
 *
 * Returns the XML document as UTF-8 with a terminating NUL. The caller owns it and releases it with
 * free_adexp(). Returns null if there is no document: the message has no "-TITLE", there is no rule
 * for the word after it, or memory ran out (a document of 4 GiB or more counts as that, since its
 * length does not fit into outLength). All other errors in a message are reported, and there still
 * is a document.
 */
ADEXP_EXPORT const char* convert_from_adexp(const char* text, unsigned int length,
                                            unsigned int* outLength);

/* Releases a result of convert_from_adexp(). Null is allowed. C++ programs that use the same
 * runtime library as adexp may use delete[] instead. */
ADEXP_EXPORT void free_adexp(const char* document);

/* Rule sets and results as values; since 1.1.
 *
 *     adexp_rules* rules = NULL;
 *     adexp_result* result = adexp_result_new();
 *     adexp_view view;
 *     size_t i;
 *     view.size = sizeof view;
 *     if (result && adexp_rules_load(":/adexp/adexp.ini", 17, &rules) == ADEXP_OK) {
 *         adexp_convert(rules, text, length, NULL, result);
 *         adexp_result_view(result, &view);
 *         for (i = 0; i < view.finding_count; ++i) {
 *             const adexp_finding* finding = adexp_finding_at(&view, i);
 *             printf("line %d: %s\n", (int)finding->place.line, view.strings + finding->text.at);
 *         }
 *     }
 *     adexp_result_release(result);
 *     adexp_rules_release(rules);
 *
 * Structures grow at their end in later versions. In those that have `size` the caller sets it to
 * the size that it was compiled with; arrays are walked by the stride that the view tells, which
 * adexp_field_at() and adexp_finding_at() do.
 */

/* A rule set. It never changes after loading, and any number of threads may use it. It is counted:
 * who loads or shares it has a share in it, and gives that back with adexp_rules_release(). */
typedef struct adexp_rules adexp_rules;

/* The result of a conversion, and the memory for the next one: a result that is used again asks the
 * heap for less. For one thread at a time. */
typedef struct adexp_result adexp_result;

/* How a load or a conversion went. Never renumbered. */
typedef enum adexp_status {
    ADEXP_OK = 0,                  /* loaded; a document can be made */
    ADEXP_SETTINGS_UNREADABLE = 1, /* the settings file cannot be read as an ini file */
    ADEXP_RULES_UNREADABLE = 2,    /* one of the four rule files cannot be read */
    ADEXP_NO_MEMORY = 3,           /* memory ran out */
    ADEXP_BAD_ARGUMENT = 4,        /* a null pointer, a flag that this version does not know, or
                                      options without their size */
    ADEXP_NO_TITLE = 5,            /* there is no "-TITLE" in the message */
    ADEXP_NO_RULE = 6,             /* no rule for the title, or no word after "-TITLE" */
    ADEXP_TOO_LARGE = 7            /* message, or strings of the result, of 2 GiB and more */
} adexp_status;

/* What a conversion makes. What is left out saves its cost. */
enum {
    ADEXP_DOCUMENT = 1, /* the XML document */
    ADEXP_FIELDS = 2,   /* the fields */
    ADEXP_FINDINGS = 4  /* what is wrong with the message */
};

/* The flags of a field. */
enum {
    ADEXP_FIELD_KNOWN = 1, /* it has a definition at its place in the message */
    ADEXP_FIELD_LIST = 2   /* it is written between -BEGIN and -END */
};

typedef enum adexp_severity {
    ADEXP_WARNING = 1, /* what it is about is used as it is, or with less */
    ADEXP_ERROR = 2,   /* what it is about is wrong, or is not used */
    ADEXP_INTERNAL = 3 /* an assumption of the library does not hold; please tell us */
} adexp_severity;

/* The kinds of findings. A code is never renamed, and never used again for something else; later
 * versions have more. docs/codes.md lists them with their texts and causes. The name of a code, as
 * adexp_code_name() gives it, is that of the constant in lower case, with hyphens and without
 * "ADEXP_CODE_": "missing-end". */
typedef enum adexp_code {
    ADEXP_CODE_NONE = 0,

    /* In a message */
    ADEXP_CODE_MISSING_TITLE = 1,
    ADEXP_CODE_FIELD_BEFORE_TITLE = 2,
    ADEXP_CODE_STRAY_WORD = 3,
    ADEXP_CODE_LONE_HYPHEN = 4,
    ADEXP_CODE_UNKNOWN_FIELD = 5,
    ADEXP_CODE_INCORRECT_DATA = 6,
    ADEXP_CODE_SURPLUS_DATA = 7,
    ADEXP_CODE_TOO_MANY_STEPS = 8,
    ADEXP_CODE_MISSING_BLOCK_NAME = 9,
    ADEXP_CODE_MISSING_END = 10,
    ADEXP_CODE_MISSING_END_NAME = 11,
    ADEXP_CODE_WRONG_END_NAME = 12,
    ADEXP_CODE_UNEXPECTED_END = 13,

    /* In the files of a rule set */
    ADEXP_CODE_SETTINGS_ACCESS = 101,
    ADEXP_CODE_SETTINGS_FORMAT = 102,
    ADEXP_CODE_SETTINGS_ERROR = 103,
    ADEXP_CODE_MISSING_PATH = 104,
    ADEXP_CODE_UNREADABLE_FILE = 105,
    ADEXP_CODE_MALFORMED_XML = 106,
    ADEXP_CODE_XML_TOO_DEEP = 107,
    ADEXP_CODE_XML_TOO_MANY_ATTRIBUTES = 108,
    ADEXP_CODE_XML_TYPE_TOO_LONG = 109,
    ADEXP_CODE_XML_GROWS_TOO_MUCH = 110,
    ADEXP_CODE_FILE_NOT_LOADED = 111,
    ADEXP_CODE_WRONG_TAG = 112,
    ADEXP_CODE_REPEATED_DEFINITION = 113,
    ADEXP_CODE_REPEATED_RULE = 114,
    ADEXP_CODE_DEFINITION_REMOVED = 115,
    ADEXP_CODE_RULE_IGNORED = 116,

    /* In the expression of a definition or message rule */
    ADEXP_CODE_EMPTY_EXPRESSION = 201,
    ADEXP_CODE_UNCLOSED_BRACKET = 202,
    ADEXP_CODE_EMPTY_BRACKETS = 203,
    ADEXP_CODE_LEADING_OPERATOR = 204,
    ADEXP_CODE_REPEATED_OPERATOR = 205,
    ADEXP_CODE_TRAILING_OPERATOR = 206,
    ADEXP_CODE_MIXED_OPERATORS = 207,
    ADEXP_CODE_EMPTY_LITERAL = 208,
    ADEXP_CODE_EMPTY_NAME = 209,
    ADEXP_CODE_UNKNOWN_NAME = 210,
    ADEXP_CODE_INVALID_NAME = 211,
    ADEXP_CODE_SELF_REFERENCE = 212,
    ADEXP_CODE_REFERENCE_LOOP = 213,
    ADEXP_CODE_TANGLED_LOOPS = 214,
    ADEXP_CODE_NESTED_TOO_DEEP = 215,
    ADEXP_CODE_TOO_MANY_TERMS = 216,
    ADEXP_CODE_REPEATED_SPACE = 217,
    ADEXP_CODE_COUNT_TOO_LARGE = 218,
    ADEXP_CODE_COUNT_TAKEN_AS_NAME = 219,
    ADEXP_CODE_COUNTS_EXCHANGED = 220,

    /* In the library itself */
    ADEXP_CODE_BROKEN_INVARIANT = 301
} adexp_code;

/* A text: `size` bytes at view.strings + at, with a NUL behind them. */
typedef struct adexp_text
{
    uint32_t at, size;
} adexp_text;

/* A stretch of the message, three times: in UTF-16 units of the text as the document has it
 * (without carriage returns; the counts are those of its attributes field_begin and field_end), in
 * bytes of the text that the caller gave, and as line and column of its begin. A line feed ends a
 * line. A byte order mark at the begin of the message counts in the bytes only. Never grows. */
typedef struct adexp_place
{
    int32_t begin, end; /* units from 0, end behind the last one; -1: not set */
    int64_t byte_begin,
        byte_end;         /* bytes from 0; of a field byte_end is known also where end is -1 */
    int32_t line, column; /* from 1, columns in UTF-16 units; 0: none */
} adexp_place;

/* A field of the message. The first field of a result is the message itself: its name is the title,
 * its parent -1. The others follow in the order of the text, each before the fields inside it. */
typedef struct adexp_field
{
    adexp_text name, data; /* data: the field's own, trimmed; without the fields inside it */
    int32_t parent;        /* the index of the field that this one stands in */
    int32_t next;          /* the index behind the last field inside this one */
    int32_t item;          /* right inside a list: the number of its item, from 1; else 0 */
    uint32_t flags;        /* ADEXP_FIELD_KNOWN, ADEXP_FIELD_LIST */
    adexp_place place;     /* from the keyword to the last word. With its hyphen, unless that stands
                              alone ("- ARCID"); of a list from -BEGIN on */
} adexp_field;

/* What is wrong with a message or a rule set.
 *
 * Of a message: `path` is the path of the field ("RTEPTS/PT/FL", empty for the message itself),
 * `field` its index among the fields (also if these are left out), `place` where it is in the text.
 * In an empty message there is no place.
 * Of a rule set: `path` is the name of the definition or the title of the rule, `file` the rule
 * file or the settings file; line and column of `place` are those of the end of the record's start
 * tag. begin is the place in its expression with white space simplified, and there are no bytes. */
typedef struct adexp_finding
{
    int32_t code;      /* an adexp_code */
    int32_t severity;  /* an adexp_severity */
    adexp_text text;   /* what was found */
    adexp_text detail; /* the text that it was found in; may be empty */
    adexp_text path, file;
    adexp_text report; /* the line that the functions of the default rule set write about it */
    int32_t field;     /* -1: none */
    int32_t reserved;
    adexp_place place;
} adexp_finding;

/* All of a result, or of the loading of a rule set, in arrays to be read or copied at once. */
typedef struct adexp_view
{
    size_t size;          /* set by the caller: sizeof(adexp_view) */
    int32_t status;       /* an adexp_status */
    uint32_t left_out;    /* findings beyond max_findings */
    const char* document; /* ended by a NUL; null: none was made */
    size_t document_size; /* without the NUL */
    const char* strings;  /* the texts; never null */
    size_t strings_size;
    const adexp_field* fields;
    size_t field_count, field_stride; /* stride: bytes from one to the next */
    const adexp_finding* findings;    /* in the order in which they were found */
    size_t finding_count, finding_stride;
    adexp_text title; /* the word after -TITLE; empty if there is none */
} adexp_view;

/* What is asked of a conversion. Set all of it to 0, then size, then what is wanted. */
typedef struct adexp_options
{
    size_t size;           /* sizeof(adexp_options) */
    uint32_t want;         /* ADEXP_DOCUMENT, ADEXP_FIELDS and ADEXP_FINDINGS, added */
    uint32_t max_findings; /* further ones are counted only; 0: no limit */
} adexp_options;

/* Loads the rule set that a settings file names.
 *
 * settings  as iniPath of init_adexp(), but its length is a size_t: 0 stands for "adexp.ini".
 * rules     receives the rule set; not null. Also after ADEXP_SETTINGS_UNREADABLE (nothing is
 * loaded) and ADEXP_RULES_UNREADABLE (what was loaded before the file is used) there is one, so
 * that adexp_rules_view() tells why; it can be used. Else null.
 *
 * Returns ADEXP_OK (single definitions may have been refused, each with a finding),
 * ADEXP_SETTINGS_UNREADABLE, ADEXP_RULES_UNREADABLE, ADEXP_NO_MEMORY or ADEXP_BAD_ARGUMENT. */
ADEXP_EXPORT adexp_status adexp_rules_load(const char* settings, size_t length,
                                           adexp_rules** rules);

/* One more share in a rule set. Returns rules, which may be null. */
ADEXP_EXPORT adexp_rules* adexp_rules_share(adexp_rules* rules);

/* The status and the findings of loading. Valid as long as there is a share in the rule set. Null
 * for the rule set: nothing, with the status ADEXP_BAD_ARGUMENT. view: not null, its size set. */
ADEXP_EXPORT void adexp_rules_view(const adexp_rules* rules, adexp_view* view);

/* Gives a share back; the last one takes the rule set with it. Null is allowed. */
ADEXP_EXPORT void adexp_rules_release(adexp_rules* rules);

/* An empty result; null if memory ran out. */
ADEXP_EXPORT adexp_result* adexp_result_new(void);

/* Converts one message. What the result held before is gone.
 *
 * text     the message as UTF-8; not null, unless length is 0. The caller keeps the memory, and may
 *          release it afterwards.
 * length   its length in bytes.
 * options  null: document, fields and findings.
 *
 * Returns the status, which the result has, too. Findings are there also for ADEXP_NO_RULE and
 * ADEXP_NO_TITLE; without a rule the only field is the message itself. */
ADEXP_EXPORT adexp_status adexp_convert(const adexp_rules* rules, const char* text, size_t length,
                                        const adexp_options* options, adexp_result* result);

/* Converts many messages in one call: texts[i], of lengths[i] bytes, into results[i], each as
 * adexp_convert() does. For callers to whom each call costs much, as from other languages.
 *
 * results  `count` different results; none may be null.
 *
 * Returns ADEXP_NO_MEMORY or ADEXP_BAD_ARGUMENT if one of the results has that status (the last
 * such), else ADEXP_OK. The rest is in the results. */
ADEXP_EXPORT adexp_status adexp_convert_many(const adexp_rules* rules, const char* const* texts,
                                             const size_t* lengths, size_t count,
                                             const adexp_options* options,
                                             adexp_result* const* results);

/* All of a result. Valid until the next conversion into it, or its release. Null for the result:
 * nothing, with the status ADEXP_BAD_ARGUMENT. view: not null, its size set. */
ADEXP_EXPORT void adexp_result_view(const adexp_result* result, adexp_view* view);

/* Releases a result. Null is allowed. */
ADEXP_EXPORT void adexp_result_release(adexp_result* result);

/* The name of a code, "missing-end" for example; "" for one that this version does not know. */
ADEXP_EXPORT const char* adexp_code_name(int code);

/* The field and the finding at an index below the count of the view. */
#define adexp_field_at(view, index)                                                                \
    ((const adexp_field*)(const void*)((const char*)(view)->fields +                               \
                                       (size_t)(index) * (view)->field_stride))
#define adexp_finding_at(view, index)                                                              \
    ((const adexp_finding*)(const void*)((const char*)(view)->findings +                           \
                                         (size_t)(index) * (view)->finding_stride))

#ifdef __cplusplus
}
#endif

#endif
