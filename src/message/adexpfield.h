#ifndef ADEXPFIELD_H
#define ADEXPFIELD_H

#include <QString>

#include <memory_resource>
#include <vector>

class AdexpDoc;
class TermStd;
class XmlWriter;

/// A field of the parsed message: the root (named by the title), a field, a block ("list"), or a
/// field that matches no definition and is kept as text.
///
/// Name and data are views into the text of the document, which also holds every field of a
/// conversion: no field owns its sub-fields.
class AdexpField
{
public:
    /// The root: no parent, both limits at the end of the text. @p term may be null (no rule).
    AdexpField(AdexpDoc* document, QStringView name, const TermStd* term);

    /// A field with the definition @p term. The limits become endBlockPoint and endTextPoint; with
    /// @p blockLimit -1 both are those of the parent.
    AdexpField(AdexpField* parent, const TermStd* term, QStringView name, int blockLimit,
               int textLimit);

    /// A field without a definition.
    AdexpField(AdexpField* parent, QStringView name);

    /// Parses everything that belongs to the field, from the document's cursor on.
    void parse();

    /// Takes the data of a field that has no sub-fields, and matches it against the definition.
    void parseBasicField();

    /// Adds @p sub (not owned); in a list, as part of the current item or of a new one.
    void subFieldsListAppend(AdexpField* sub);

    /// The first sub-field of that name whose data was not fetched yet; null if there is none.
    AdexpField* searchSubField(QStringView name) const;

    /// Marks the data of this field and of all fields below it as not fetched.
    void clearAlreadyDBBeenProcessed();

    /// The data of the field; for a compound, a text composed of its sub-fields. @p isSimple (may
    /// be null) receives true for the field's own data, false for a composed text.
    QString getData(bool* isSimple);

    /// Writes the field and all fields below it as an element inside the current element of
    /// @p writer. A field without a name is left out, with everything in it.
    void dataToXML(XmlWriter* writer) const;

    /// The names of the fields down to this one, without that of the root: "RTEPTS/PT/FL".
    QString path() const;

    /// Writes the tree below the field to Qt's debug output, a line per field, indented by depth.
    void dumpData() const;

    int fieldBegin = -1; ///< position of the keyword; of a block: of "-BEGIN"; -1: unset
    int fieldEnd = -1;   ///< position after the last word; -1: unset
    AdexpDoc* doc;       ///< the document
    const TermStd* fieldTerm = nullptr;      ///< the definition, not owned; null: unknown field
    AdexpField* parentField;                 ///< null for the root
    std::pmr::vector<AdexpField*> subFields; ///< in text order; all held by the document
    QStringView fieldData;                   ///< the field's own data
    QStringView fieldName;                   ///< keyword without hyphen; block name; title
    int endBlockPoint = 0;                   ///< no field word after it belongs to this field
    int endTextPoint = 0;                    ///< limit of the data, at most endBlockPoint
    bool isList = false;                     ///< a block
    bool dataReady = false;                  ///< getData() has been called
    bool inGetData = false; ///< guard of getData() and clearAlreadyDBBeenProcessed()
    int index = -1;    ///< number of the field in text order; the root has 0; set by createField()
    int itemCount = 0; ///< in a list: number of the last item, from 1
    int itemIndex = 0; ///< in a list: number of the item that this field belongs to

private:
    enum class Next { Continue, Stop }; // what parse() does after a field word

    struct Block; // where the field that is looked up ends, if it is a block

    Next parseFieldWord(QStringView word, int fieldPos);
    Next parseBegin(int fieldPos);
    Next parseUnendedBlock(QStringView name, int fieldPos);
    Next parseEnd();
    Next parseField(QStringView name, int fieldPos, const Block& block);
    void parseKnownField(const TermStd* term, QStringView name, int fieldPos, const Block& block);
    void parseUnknownField(QStringView name, int fieldPos, const Block& block);
    Next leaveToParent();
    void endWithLastWord();
    void dumpData(int depth) const;
};

#endif
