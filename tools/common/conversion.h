#ifndef CONVERSION_H
#define CONVERSION_H

#include "adexp.h"

#include <memory>
#include <string>
#include <string_view>

/// The document of one message, or the reason why there is none.
class Conversion
{
public:
    /// Converts @p message with the rule set that is loaded. Reports go to Qt's message output.
    explicit Conversion(const std::string& message);

    /// False if there is no document.
    bool hasDocument() const { return m_document != nullptr; }
    /// The document as UTF-8; it lives as long as this object.
    std::string_view document() const { return {m_document.get(), m_length}; }
    /// Why there is no document, and what to do about it; empty if there is one.
    const std::string& failure() const { return m_failure; }

private:
    struct Release
    {
        void operator()(const char* document) const { free_adexp(document); }
    };

    unsigned int m_length = 0;
    std::unique_ptr<const char, Release> m_document;
    std::string m_failure;
};

/// Why the library makes no document of @p message, and what to do about it.
std::string whyNotConverted(std::string_view message);

#endif
