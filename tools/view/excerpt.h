#ifndef EXCERPT_H
#define EXCERPT_H

#include "messagefields.h"
#include "textplaces.h"

#include <QStringView>

#include <vector>

/// What the page of a message shows of it: all, unless that is more than a browser carries.
///
/// A page has room for a number of elements, which fields, findings, lines and symbols take. Of a
/// message that is too large, the findings come first: as many as half of the room holds, each with
/// the text around it. The rest of the room goes to the beginning of the text.
class Excerpt
{
public:
    /// A part of the text that is shown.
    struct Stretch
    {
        int begin;
        int end;
    };

    /// What is shown of a message with this @p text, which is that of @p places, these @p fields
    /// (empty if there are none) and @p findings. All must stay.
    Excerpt(QStringView text, const TextPlaces& places, const MessageFields& fields,
            const MessageFindings& findings);

    /// In text order, none touches another.
    const std::vector<Stretch>& stretches() const { return m_stretches; }

    /// The fields that have a part in the stretches.
    const MessageFields& fields() const { return m_shownFields; }

    /// By field that is shown: how many are left out between it and the one before it.
    const std::vector<int>& leftOutBefore() const { return m_leftOutBefore; }

    /// How many fields are left out behind the last one.
    int leftOutAtEnd() const { return m_leftOutAtEnd; }

    /// The findings that are shown: the first ones.
    const MessageFindings& findings() const { return m_shownFindings; }

    /// How many UTF-16 units of the text are shown.
    int shownUnits() const;

private:
    int cost(int begin, int end) const;
    int contextBegin(int position) const;
    int contextEnd(int position) const;
    void add(int begin, int end);
    void showFindings();
    void showBeginning(int limit);
    void joinStretches();
    void showFields();
    bool isShown(const MessageField& field) const;

    QStringView m_text;
    const TextPlaces& m_places;
    const MessageFields& m_fields;
    const MessageFindings& m_findings;
    int m_room; // what may still be used
    std::vector<Stretch> m_stretches;
    MessageFields m_shownFields;
    std::vector<int> m_leftOutBefore;
    int m_leftOutAtEnd = 0;
    MessageFindings m_shownFindings;
};

#endif
