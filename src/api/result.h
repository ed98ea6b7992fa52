#ifndef RESULT_H
#define RESULT_H

#include "api/viewdata.h"
#include "output/xmlwriter.h"

#include <string_view>

class AdexpDoc;
class AdexpField;
class MainClass;

/// The result of a conversion, behind the handle of adexp.h, and the memory for the next one.
struct adexp_result
{
public:
    /// Converts a message (at most INT_MAX bytes). Throws std::bad_alloc and std::length_error.
    void convert(const MainClass& rules, std::string_view message, const adexp_options& options);

    /// What the result holds from now on: nothing but a status.
    void fail(adexp_status status);

    adexp_status status() const { return m_data.status; }

    void show(adexp_view* view) const { m_data.show(m_document, view); }

private:
    void addFields(const AdexpField& field, int parent);
    void locate(const AdexpDoc& doc, std::string_view message);

    ViewData m_data;
    XmlWriter m_writer{0};
    std::string_view m_document; // in the writer
};

#endif
