// The functions of adexp.h that give values: each checks its arguments, calls one thing and catches
// what that throws.

#include "api/result.h"
#include "api/sharedrules.h"
#include "load/settingsfile.h"

#include <cxxabi.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>
#include <stdexcept>

namespace {

constexpr std::uint32_t All = ADEXP_DOCUMENT | ADEXP_FIELDS | ADEXP_FINDINGS;

// What the caller asks for, who may have been compiled with fewer options. Wanting something that
// does not exist stands for options that make no sense.
adexp_options complete(const adexp_options* options)
{
    adexp_options known{};
    known.want = All;
    if (options && options->size < offsetof(adexp_options, max_findings))
        known.want = ~All;
    else if (options)
        std::memcpy(&known, options, std::min(options->size, sizeof known));
    return known;
}

// What there is to see of no rule set or result.
void showNothing(adexp_view* view)
{
    adexp_view nothing{};
    nothing.status = ADEXP_BAD_ARGUMENT;
    nothing.strings = "";
    copyKnown(nothing, view);
}

} // namespace

adexp_status adexp_rules_load(const char* settings, size_t length, adexp_rules** rules)
try {
    if (!rules)
        return ADEXP_BAD_ARGUMENT;
    *rules = nullptr;
    if (length > INT_MAX)
        return ADEXP_BAD_ARGUMENT;
    const QString path = settings && length > 0
                             ? QString::fromUtf8(settings, static_cast<int>(length))
                             : QStringLiteral("adexp.ini");
    RulesShare loaded = newRules(path);
    ViewData& loading = loaded->loading;
    loading.restart(ADEXP_OK, 0);
    loading.status = SettingsFile::load(path, loaded.get(), &loading);
    for (adexp_finding& finding : loading.findings) {
        if (finding.file.size == 0)
            finding.file = loading.add(path);
    }
    *rules = loaded.release();
    return (*rules)->loading.status;
} catch (const abi::__forced_unwind&) {
    throw;
} catch (...) {
    return ADEXP_NO_MEMORY;
}

adexp_rules* adexp_rules_share(adexp_rules* rules)
{
    return shareOf(rules).release();
}

void adexp_rules_view(const adexp_rules* rules, adexp_view* view)
{
    if (rules)
        rules->loading.show({}, view);
    else
        showNothing(view);
}

void adexp_rules_release(adexp_rules* rules)
{
    const RulesShare last(rules);
}

adexp_result* adexp_result_new(void)
{
    return new (std::nothrow) adexp_result;
}

adexp_status adexp_convert(const adexp_rules* rules, const char* text, size_t length,
                           const adexp_options* options, adexp_result* result)
{
    if (!result)
        return ADEXP_BAD_ARGUMENT;
    adexp_status failure = ADEXP_BAD_ARGUMENT;
    try {
        const adexp_options wanted = complete(options);
        if (length > INT_MAX) {
            failure = ADEXP_TOO_LARGE;
        } else if (rules && (text || length == 0) && (wanted.want & ~All) == 0) {
            result->convert(*rules, {text, length}, wanted);
            return result->status();
        }
    } catch (const abi::__forced_unwind&) {
        throw;
    } catch (const std::length_error&) {
        failure = ADEXP_TOO_LARGE;
    } catch (...) {
        failure = ADEXP_NO_MEMORY;
    }
    result->fail(failure);
    return failure;
}

adexp_status adexp_convert_many(const adexp_rules* rules, const char* const* texts,
                                const size_t* lengths, size_t count, const adexp_options* options,
                                adexp_result* const* results)
{
    if (count > 0 && (!texts || !lengths || !results))
        return ADEXP_BAD_ARGUMENT;
    adexp_status failure = ADEXP_OK;
    for (size_t i = 0; i < count; ++i) {
        const adexp_status status = adexp_convert(rules, texts[i], lengths[i], options, results[i]);
        if (status == ADEXP_NO_MEMORY || status == ADEXP_BAD_ARGUMENT)
            failure = status;
    }
    return failure;
}

void adexp_result_view(const adexp_result* result, adexp_view* view)
{
    if (result)
        result->show(view);
    else
        showNothing(view);
}

void adexp_result_release(adexp_result* result)
{
    delete result;
}

const char* adexp_code_name(int code)
{
    return nameOf(code);
}
