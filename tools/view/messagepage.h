#ifndef MESSAGEPAGE_H
#define MESSAGEPAGE_H

#include "excerpt.h"
#include "textplaces.h"

#include <string>

/// What a page says.
struct PageContent
{
    std::string name;         ///< the file
    std::string settings;     ///< settings file of the rule set
    std::string failure;      ///< why there are no fields, and what to do about it; else empty
    QString title;            ///< of the message; may be empty
    QStringView text;         ///< of the message; must stay
    MessageFields fields;     ///< with names and data that must stay; empty if there is a failure
    MessageFindings findings; ///< in the message
};

/// A message as one HTML page: its text with fields and findings marked, its tree of fields, and
/// the list of its findings.
///
/// The page stands alone. Style and script are in it, and its Content-Security-Policy allows these
/// two, by their hashes, and nothing else: no other script, no image, no request. All text of the
/// message is written as text, see html.h. Of a large message the page shows an excerpt, and says
/// so.
///
/// The three parts refer to each other by numbers. Field N, counted from 0 in text order, is the
/// element "tN" of the text and "nN" of the tree; finding N, counted from 1, begins at the element
/// "mN" of the text and is the element "fN" of the list.
class MessagePage
{
public:
    explicit MessagePage(PageContent content);

    MessagePage(const MessagePage&) = delete;
    MessagePage& operator=(const MessagePage&) = delete;

    /// The page as UTF-8.
    std::string html() const;

private:
    std::string heading() const;
    std::string counts() const;
    std::string failure() const;
    std::string leftOut() const;
    std::string findings() const;
    std::string fields() const;

    PageContent m_content;
    TextPlaces m_places;
    Excerpt m_excerpt; // refers to the members before it
};

#endif
