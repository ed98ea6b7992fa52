#ifndef VIEWDATA_H
#define VIEWDATA_H

#include "report/reporter.h"

#include <QStringView>

#include <string>
#include <vector>

/// Fills @p view from @p all; nothing beyond the size that the caller knows, which stays.
void copyKnown(adexp_view all, adexp_view* view);

/// What an adexp_view shows, in memory that can be used again: the texts in one buffer, the fields
/// and the findings. As a reporter it takes findings.
class ViewData : public Reporter
{
public:
    /// Forgets all, and from now on takes up to @p maxFindings findings (0: all).
    void restart(adexp_status newStatus, std::uint32_t maxFindings);

    void report(const Finding& finding) override;

    /// Adds a text. Throws std::length_error if there are more than 2 GiB of them.
    adexp_text add(QStringView text);

    /// Fills the view as copyKnown() does.
    void show(std::string_view document, adexp_view* view) const;

    adexp_status status = ADEXP_BAD_ARGUMENT;
    adexp_text title{};
    std::vector<adexp_field> fields;
    std::vector<adexp_finding> findings;

private:
    std::string m_strings;
    std::uint32_t m_maxFindings = 0;
    std::uint32_t m_leftOut = 0;
};

#endif
