#ifndef DOCUMENTCHECK_H
#define DOCUMENTCHECK_H

#include <QString>

#include <string_view>

#include <libxml/tree.h>

/// Holds a document against the message that it was made of, without looking into the library: what
/// must be true of every document, whatever the message and the rules.
///
/// - It is well-formed for libxml2, which was not made by us, and has the elements and attributes
///   of the format and no others.
/// - ORIGINAL_TEXT is the text of the message; where the message has a character that XML does not
///   allow, it has U+FFFD.
/// - A position lies in the text. Each field stands there under its name, behind where its parent
///   begins and behind where the field before it ends. It ends with a word, and where its parent
///   ends at the latest. The end of a list whose "-END" was taken by a field in it is told as the
///   place of that "-END"; the field ends behind the name.
/// - Data is what stands in the text behind the name of its field.
class DocumentCheck
{
public:
    /// For the documents of the message @p text, which has no carriage returns.
    explicit DocumentCheck(const QString& text);

    /// Ends the process if something does not hold of @p document.
    void check(std::string_view document) const;

private:
    struct Stretch
    {
        int begin;
        int end; // -1: not told
    };

    void checkRoot(const xmlNode* root) const;
    Stretch checkField(const xmlNode* element, int parentBegin) const;
    void checkItems(const xmlNode* list, Stretch listStretch) const;
    void checkFields(const xmlNode* parent, Stretch parentStretch) const;
    int checkName(const xmlNode* element, int begin, QStringView keyword) const;
    void checkData(const xmlNode* element, Stretch stretch, int behindName) const;
    Stretch stretchOf(const xmlNode* element) const;
    int position(const xmlNode* element, const char* attribute) const;
    int reachOf(Stretch stretch) const;
    int wordEnd(int begin) const;
    int nextWord(int from) const;

    QString m_text; // as XML can hold it
};

#endif
