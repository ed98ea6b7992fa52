#include "api/adexplib.h"

#include "load/settingsfile.h"
#include "report/linereporter.h"

#include <cxxabi.h>

#include <climits>
#include <cstring>
#include <mutex>
#include <new>
#include <utility>

adexp_rules* mc = nullptr;

namespace {

std::mutex mcLock;      // of the pointer, held for a moment only
std::mutex loadingLock; // held by who loads or clears

RulesShare current()
{
    const std::lock_guard<std::mutex> lock(mcLock);
    return shareOf(mc);
}

// Ends the life of the default rule set of before, unless conversions still use it.
void setCurrent(RulesShare rules)
{
    const std::lock_guard<std::mutex> lock(mcLock);
    rules.reset(std::exchange(mc, rules.release()));
}

// Puts a rule set in its place whatever happens to its loading, also if memory runs out.
class NewCurrent
{
public:
    explicit NewCurrent(RulesShare* rules) : m_rules(rules) {}
    ~NewCurrent() { setCurrent(std::move(*m_rules)); }

    NewCurrent(const NewCurrent&) = delete;
    NewCurrent& operator=(const NewCurrent&) = delete;

private:
    RulesShare* m_rules;
};

// The lock of loading must be held.
int load(const QString& path)
{
    RulesShare rules; // stays null if there is no memory for it
    const NewCurrent atEnd(&rules);
    rules = newRules(path);
    LineReporter lines;
    return SettingsFile::load(path, rules.get(), &lines);
}

// The default rule set; loaded, by one thread while others wait, if there is none. Null if there
// was no memory for one.
RulesShare currentOrLoaded()
{
    if (RulesShare rules = current())
        return rules;
    const std::lock_guard<std::mutex> lock(loadingLock);
    if (RulesShare rules = current())
        return rules;
    try {
        load(QStringLiteral("adexp.ini")); // what it could load is used, whatever it returns
    } catch (const std::bad_alloc&) {
    }
    return current();
}

QString decode(const char* text, unsigned int length)
{
    // A length above INT_MAX (a negative signed number) means: up to the first NUL.
    if (length <= INT_MAX)
        return QString::fromUtf8(text, static_cast<int>(length));
    const size_t textLength = std::strlen(text);
    if (textLength > INT_MAX) // positions in the text are 32-bit numbers
        throw std::bad_alloc();
    return QString::fromUtf8(text, static_cast<int>(textLength));
}

// The result for the caller: the bytes and a terminating NUL, allocated with new[]. Null if there
// are none.
const char* giveToCaller(XmlDocument document, unsigned int* outLength)
{
    if (document.size() > UINT_MAX) // the size does not fit into outLength
        throw std::bad_alloc();
    if (outLength)
        *outLength = static_cast<unsigned int>(document.size());
    return document.release();
}

} // namespace

// No exception leaves these functions: Qt and the standard library throw only std::bad_alloc.
// A thread may end inside a call (by cancellation, or by pthread_exit() in a message handler). That
// is no exception, although it can be caught: the process ends if it is not thrown on. The caught
// object is then a reference to nothing, which the sanitizer would report.
#define CATCHES_FORCED_UNWIND __attribute__((no_sanitize("null")))

CATCHES_FORCED_UNWIND int init_adexp(const char* iniPath, int length)
try {
    const bool useDefault = length < 1 || !iniPath;
    const std::lock_guard<std::mutex> lock(loadingLock);
    return load(useDefault ? QStringLiteral("adexp.ini") : QString::fromUtf8(iniPath, length));
} catch (const abi::__forced_unwind&) {
    throw;
} catch (...) {
    return ADEXP_RULES_UNREADABLE;
}

void clear_adexp(void)
{
    const std::lock_guard<std::mutex> lock(loadingLock);
    setCurrent(nullptr);
}

CATCHES_FORCED_UNWIND const char* convert_from_adexp(const char* text, unsigned int length,
                                                     unsigned int* outLength)
try {
    if (outLength)
        *outLength = 0;
    if (!text)
        return nullptr;
    const RulesShare rules = currentOrLoaded();
    if (!rules)
        return nullptr; // no memory
    LineReporter lines;
    return giveToCaller(rules->charAdexpToCharXml(decode(text, length), &lines), outLength);
} catch (const abi::__forced_unwind&) {
    throw;
} catch (...) {
    return nullptr;
}

void free_adexp(const char* document)
{
    delete[] document;
}
