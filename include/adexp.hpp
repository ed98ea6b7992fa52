/// adexp.hpp - the rule sets and results of adexp.h as C++17 values. Header only; needs no Qt.
///
///     const adexp::RuleSet rules(adexp::BuiltIn);
///     const adexp::Result result = rules.convert(message);
///     std::cout << result.document();
///     for (const adexp::Finding finding : result.findings())
///         std::cerr << finding.place().line << ": " << finding.text() << '\n';
///     for (const adexp::Field field : result.fields())
///         std::cout << field.name() << '=' << field.data() << '\n';
///
/// A RuleSet is a share in a rule set that never changes: copies are cheap, and any number of
/// threads may use one at the same time. A Result belongs to one thread at a time. Fields, findings
/// and texts are views into the result (or rule set) that gave them: they are valid until it goes
/// away, is assigned to, or takes the next conversion. An object that was moved from can be
/// assigned to, used for the next conversion (Result), or destroyed.
///
/// As with the functions of adexp.h, nothing may be used after main() has ended, so a RuleSet or
/// Result should not be static.
///
/// The only exception that leaves these classes is std::bad_alloc. What can go wrong besides is a
/// Status.
#ifndef ADEXP_HPP
#define ADEXP_HPP

#include "adexp.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace adexp {

/// The settings file of the rule set that is built into the library.
inline constexpr std::string_view BuiltIn = ":/adexp/adexp.ini";

/// How a load or a conversion went. See adexp_status.
enum class Status {
    Ok = ADEXP_OK,
    SettingsUnreadable = ADEXP_SETTINGS_UNREADABLE,
    RulesUnreadable = ADEXP_RULES_UNREADABLE,
    NoMemory = ADEXP_NO_MEMORY,
    BadArgument = ADEXP_BAD_ARGUMENT,
    NoTitle = ADEXP_NO_TITLE,
    NoRule = ADEXP_NO_RULE, ///< no rule for the title; without a title, no word behind "-TITLE"
    TooLarge = ADEXP_TOO_LARGE,
};

/// See adexp_severity.
enum class Severity { Warning = ADEXP_WARNING, Error = ADEXP_ERROR, Internal = ADEXP_INTERNAL };

/// The kind of a finding: one of the constants ADEXP_CODE_... of adexp.h. Later versions have more.
using Code = int;

/// A stretch of the message. See adexp_place.
using Place = adexp_place;

/// What a conversion makes.
struct Options
{
    bool document = true;
    bool fields = true;
    bool findings = true;
    std::uint32_t maxFindings = 0; ///< further ones are counted only; 0: no limit
};

namespace detail {

// The item of an array whose items may be larger than this program knows them.
template <typename Item>
const Item& itemAt(const Item* first, std::size_t index, std::size_t stride)
{
    return *reinterpret_cast<const Item*>(reinterpret_cast<const char*>(first) + index * stride);
}

// What an iterator's arrow gives, whose items are made for the call.
template <typename Item>
struct Arrow
{
    const Item* operator->() const { return &item; }

    Item item;
};

} // namespace detail

class Fields;

/// A field of a message.
class Field
{
public:
    std::string_view name() const { return text(at().name); }

    /// The field's own data, trimmed; without the fields inside it.
    std::string_view data() const { return text(at().data); }

    bool isKnown() const { return (at().flags & ADEXP_FIELD_KNOWN) != 0; }
    bool isList() const { return (at().flags & ADEXP_FIELD_LIST) != 0; }
    /// The number of its item, from 1, if it stands right inside a list. 0: it does not.
    int item() const { return at().item; }

    const Place& place() const { return at().place; }

    /// Its index among the fields of the message; the message itself has 0.
    int index() const { return m_index; }

    /// The field that this one stands in; nothing for the message itself.
    std::optional<Field> parent() const
    {
        if (at().parent < 0)
            return std::nullopt;
        return Field(m_view, at().parent);
    }

    /// The fields right inside this one.
    Fields children() const;

private:
    friend class Fields;
    friend class Result;

    Field(const adexp_view* view, int index) : m_view(view), m_index(index) {}
    const adexp_field& at() const
    {
        return detail::itemAt(m_view->fields, static_cast<std::size_t>(m_index),
                              m_view->field_stride);
    }
    std::string_view text(adexp_text text) const { return {m_view->strings + text.at, text.size}; }

    const adexp_view* m_view;
    int m_index;
};

/// Fields in the order of the text: all of a message, or those right inside a field.
class Fields
{
public:
    class Iterator
    {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Field;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = Field;

        Iterator() = default;
        Field operator*() const { return Field(m_view, m_index); }
        detail::Arrow<Field> operator->() const { return {**this}; }
        Iterator& operator++()
        {
            m_index = m_isDeep ? m_index + 1 : Field(m_view, m_index).at().next;
            return *this;
        }
        Iterator operator++(int) { return std::exchange(*this, std::next(*this)); }
        bool operator==(const Iterator& other) const { return m_index == other.m_index; }
        bool operator!=(const Iterator& other) const { return m_index != other.m_index; }

    private:
        friend class Fields;
        Iterator(const adexp_view* view, int index, bool isDeep)
            : m_view(view), m_index(index), m_isDeep(isDeep)
        {
        }

        const adexp_view* m_view = nullptr;
        int m_index = 0;
        bool m_isDeep = false;
    };

    Iterator begin() const { return {m_view, m_begin, m_isDeep}; }
    Iterator end() const { return {m_view, m_end, m_isDeep}; }
    std::size_t size() const { return static_cast<std::size_t>(std::distance(begin(), end())); }
    bool empty() const { return m_begin == m_end; }

    /// The first of that name; nothing if there is none.
    std::optional<Field> find(std::string_view name) const
    {
        for (const Field field : *this) {
            if (field.name() == name)
                return field;
        }
        return std::nullopt;
    }

private:
    friend class Field;
    friend class Result;

    Fields(const adexp_view* view, int begin, int end, bool isDeep)
        : m_view(view), m_begin(begin), m_end(end), m_isDeep(isDeep)
    {
    }

    const adexp_view* m_view;
    int m_begin;
    int m_end;
    bool m_isDeep; // with the fields inside each
};

inline Fields Field::children() const
{
    return {m_view, m_index + 1, at().next, false};
}

/// What is wrong with a message or a rule set. See adexp_finding.
class Finding
{
public:
    Code code() const { return at().code; }
    /// The stable name of the code, "missing-end" for example.
    std::string_view codeName() const { return adexp_code_name(at().code); }
    Severity severity() const { return static_cast<Severity>(at().severity); }
    std::string_view text() const { return text(at().text); }
    /// The text that it was found in; may be empty.
    std::string_view detail() const { return text(at().detail); }
    /// The path of the field ("RTEPTS/PT/FL"); of a rule set: the name of the definition, or the
    /// title.
    std::string_view path() const { return text(at().path); }
    /// Of a rule set: the rule file.
    std::string_view file() const { return text(at().file); }
    /// The line that init_adexp() or convert_from_adexp() would write about it, which ends with a
    /// blank.
    std::string_view report() const { return text(at().report); }
    /// The index of the field that it is about, for Result::field(); -1: none.
    int field() const { return at().field; }
    const Place& place() const { return at().place; }

private:
    friend class Findings;

    Finding(const adexp_view* view, std::size_t index) : m_view(view), m_index(index) {}
    const adexp_finding& at() const
    {
        return detail::itemAt(m_view->findings, m_index, m_view->finding_stride);
    }
    std::string_view text(adexp_text text) const { return {m_view->strings + text.at, text.size}; }

    const adexp_view* m_view;
    std::size_t m_index;
};

/// Findings, in the order in which they were found.
class Findings
{
public:
    class Iterator
    {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Finding;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = Finding;

        Iterator() = default;
        Finding operator*() const { return Finding(m_view, m_index); }
        detail::Arrow<Finding> operator->() const { return {**this}; }
        Iterator& operator++()
        {
            ++m_index;
            return *this;
        }
        Iterator operator++(int) { return std::exchange(*this, std::next(*this)); }
        bool operator==(const Iterator& other) const { return m_index == other.m_index; }
        bool operator!=(const Iterator& other) const { return m_index != other.m_index; }

    private:
        friend class Findings;
        Iterator(const adexp_view* view, std::size_t index) : m_view(view), m_index(index) {}

        const adexp_view* m_view = nullptr;
        std::size_t m_index = 0;
    };

    Iterator begin() const { return {m_view, 0}; }
    Iterator end() const { return {m_view, size()}; }
    Finding operator[](std::size_t index) const { return Finding(m_view, index); }
    std::size_t size() const { return m_view->finding_count; }
    bool empty() const { return size() == 0; }
    /// The findings beyond Options::maxFindings.
    std::size_t leftOut() const { return m_view->left_out; }

private:
    friend class Result;
    friend class RuleSet;

    explicit Findings(const adexp_view* view) : m_view(view) {}

    const adexp_view* m_view;
};

/// The result of a conversion. It can be used for the next one, which then asks the heap for less.
/// A result whose fields and findings are gone through must have a name: those of a temporary one
/// would be gone at once.
class Result
{
public:
    /// A result without a conversion: the status is BadArgument.
    Result() : m_result(adexp_result_new()), m_view(std::make_unique<adexp_view>())
    {
        if (!m_result)
            throw std::bad_alloc();
        look();
    }

    Status status() const { return static_cast<Status>(m_view->status); }
    /// True if a document was made, or could have been.
    bool isOk() const { return status() == Status::Ok; }

    /// The document; empty if there is none.
    std::string_view document() const { return {m_view->document, m_view->document_size}; }
    /// The word after -TITLE.
    std::string_view title() const
    {
        return {m_view->strings + m_view->title.at, m_view->title.size};
    }

    Findings findings() const& { return Findings(m_view.get()); }
    Findings findings() && = delete;

    /// All fields of the message, each before those inside it; without the message itself.
    Fields fields() const&
    {
        const int count = static_cast<int>(m_view->field_count);
        return {m_view.get(), count == 0 ? 0 : 1, count, true};
    }
    Fields fields() && = delete;
    /// The message itself, whose children are the outermost fields; nothing without a title, or if
    /// no fields were asked for.
    std::optional<Field> message() const& { return field(0); }
    std::optional<Field> message() && = delete;
    /// The field at an index; nothing if there is none.
    std::optional<Field> field(int index) const&
    {
        const bool isThere = index >= 0 && static_cast<std::size_t>(index) < m_view->field_count;
        return isThere ? std::optional(Field(m_view.get(), index)) : std::nullopt;
    }
    std::optional<Field> field(int index) && = delete;

    /// The arrays behind it, as C has them.
    const adexp_view& view() const { return *m_view; }

private:
    friend class RuleSet;

    struct Release
    {
        void operator()(adexp_result* result) const { adexp_result_release(result); }
    };

    void look()
    {
        m_view->size = sizeof(adexp_view);
        adexp_result_view(m_result.get(), m_view.get());
    }

    std::unique_ptr<adexp_result, Release> m_result;
    std::unique_ptr<adexp_view> m_view; // stays in its place when the result is moved
};

/// A share in a rule set.
class RuleSet
{
public:
    /// Loads the rule set that the settings file at the path @p settings names; empty: "adexp.ini".
    /// Look at status() and findings() afterwards. What could be loaded can be used, whatever the
    /// status.
    explicit RuleSet(std::string_view settings)
    {
        adexp_rules_load(settings.data(), settings.size(), &m_rules);
        if (!m_rules)
            throw std::bad_alloc();
        look();
    }
    RuleSet(const RuleSet& other) : m_rules(adexp_rules_share(other.m_rules)), m_view(other.m_view)
    {
    }
    RuleSet(RuleSet&& other) noexcept
        : m_rules(std::exchange(other.m_rules, nullptr)), m_view(std::exchange(other.m_view, {}))
    {
    }
    RuleSet& operator=(RuleSet other) noexcept
    {
        std::swap(m_rules, other.m_rules);
        std::swap(m_view, other.m_view);
        return *this;
    }
    ~RuleSet() { adexp_rules_release(m_rules); }

    /// Ok, SettingsUnreadable or RulesUnreadable; BadArgument after it was moved from.
    Status status() const
    {
        return m_rules ? static_cast<Status>(m_view.status) : Status::BadArgument;
    }
    bool isLoaded() const { return status() == Status::Ok; }
    /// What is wrong with the rule set. Single definitions may have been refused although it is
    /// loaded.
    Findings findings() const& { return Findings(&m_view); }
    Findings findings() && = delete;

    /// The rule set as C has it; this share keeps it.
    const adexp_rules* handle() const { return m_rules; }

    /// Converts @p message into @p result (not null), whose memory is used again. Returns its
    /// status.
    Status convert(std::string_view message, Result* result, const Options& options = {}) const
    {
        adexp_options wanted{};
        wanted.size = sizeof wanted;
        wanted.want = (options.document ? unsigned{ADEXP_DOCUMENT} : 0U) |
                      (options.fields ? unsigned{ADEXP_FIELDS} : 0U) |
                      (options.findings ? unsigned{ADEXP_FINDINGS} : 0U);
        wanted.max_findings = options.maxFindings;
        if (!result->m_result)
            *result = Result();
        const adexp_status status =
            adexp_convert(m_rules, message.data(), message.size(), &wanted, result->m_result.get());
        result->look();
        if (status == ADEXP_NO_MEMORY)
            throw std::bad_alloc();
        return static_cast<Status>(status);
    }

    /// Converts @p message into a result of its own.
    Result convert(std::string_view message, const Options& options = {}) const
    {
        Result result;
        convert(message, &result, options);
        return result;
    }

private:
    void look()
    {
        m_view.size = sizeof m_view;
        adexp_rules_view(m_rules, &m_view);
    }

    adexp_rules* m_rules = nullptr;
    adexp_view m_view{};
};

} // namespace adexp

#endif
