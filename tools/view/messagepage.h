#ifndef MESSAGEPAGE_H
#define MESSAGEPAGE_H

#include "fieldstretches.h"
#include "messagefindings.h"

#include <string>
#include <vector>

class AdexpDoc;

/// What a page says besides what the document of the message holds.
struct PageFacts
{
    std::string name;     ///< the file
    std::string settings; ///< settings file of the rule set
    std::string failure;  ///< why there are no fields, and what to do about it; empty if there are
};

/// A message as one HTML page: its text with fields and findings marked, its tree of fields, and
/// the list of its findings.
///
/// The page stands alone. Style and script are in it, and its Content-Security-Policy allows these
/// two, by their hashes, and nothing else: no other script, no image, no request. All text of the
/// message is written as text, see html.h.
///
/// The three parts refer to each other by numbers. Field N, counted from 0 in text order, is the
/// element "tN" of the text and "nN" of the tree; finding N, counted from 1, begins at the element
/// "mN" of the text and is the element "fN" of the list.
class MessagePage
{
public:
    /// The page of @p doc, which was parsed and must stay, with the @p findings of that. The fields
    /// are left out if @p facts has a failure.
    MessagePage(const AdexpDoc& doc, const MessageFindings& findings, PageFacts facts);

    /// The page as UTF-8.
    std::string html() const;

private:
    std::string valueOf(const std::string& placeholder) const;
    std::string heading() const;
    std::string counts() const;
    std::string failure() const;
    std::string text() const;
    std::string findingList() const;
    void appendFinding(size_t index, std::string* html) const;
    std::string whereabouts(const MessageFindings::Counted& counted) const;
    std::string tree() const;

    const AdexpDoc& m_doc;
    PageFacts m_facts;
    TextPlaces m_places;
    std::vector<MessageFindings::Counted> m_findings;
    FieldStretches m_fields; // empty if they are left out
};

#endif
