/* adexp.h - converts ATS messages in ADEXP into XML documents.
 *
 * Plain C; usable from C, C++ and every language that can call C.
 *
 * Order of calls: init_adexp() once, convert_from_adexp() for each message, clear_adexp() at the
 * end. Each result of convert_from_adexp() goes back to free_adexp(). The library keeps one
 * converter per process and has no locks: of init_adexp(), clear_adexp() and convert_from_adexp()
 * never more than one may run at a time in a process. A thread may end inside a call (cancelled, or
 * by pthread_exit() in a message handler); what the call was about is then lost. Nothing may be
 * called after main() has ended, from static destructors for example: Qt has ended then, too.
 *
 * Whatever is wrong with a rule set or a message is written line by line to the message output of
 * Qt (standard error, unless the application installs a message handler with
 * qInstallMessageHandler()). No exception ever leaves one of these functions.
 *
 * When memory runs out, init_adexp() returns 2 and convert_from_adexp() null; nothing is lost, and
 * the next call works. The parts of Qt that read settings and XML do not survive this, so
 * init_adexp() makes sure of the memory they will need before it calls them. If another thread
 * takes the last of it at that very moment, Qt may still end the process; convert_from_adexp() uses
 * none of these parts.
 */
#ifndef ADEXP_H
#define ADEXP_H

#if defined(__GNUC__)
#define ADEXP_EXPORT __attribute__((visibility("default")))
#else
#define ADEXP_EXPORT
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Loads a rule set and makes the converter; a converter made before is destroyed first, also when
 * this call fails.
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

/* Destroys the converter and its rule set. Does nothing when there is none; may be called again. */
ADEXP_EXPORT void clear_adexp(void);

/* Converts one message. Without a converter, init_adexp(NULL, 0) is called first.
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

#ifdef __cplusplus
}
#endif

#endif
