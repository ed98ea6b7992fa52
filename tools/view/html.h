#ifndef HTML_H
#define HTML_H

#include <QString>

#include <string>

// Text from outside - of messages, file names, reports - on its way into a page. Whatever it holds,
// it stays text: nothing in it begins or ends an element or an attribute. A character that cannot
// be seen, or that would act on the text around it (line and page controls, changes of the writing
// direction, joiners, special blanks), is shown by its name or number. A line feed and a tab stay
// as they are.

/// Appends @p text to @p html for the inside of an element. The name of a control character
/// ("STX"), and the number of another that cannot be seen, stands in <i class="symbol">. A word
/// with a hyphen in front, as a keyword, stands in <span class="word">: a browser would break the
/// line behind the hyphen.
void appendHtml(QStringView text, std::string* html);

/// @p text for the inside of an element that holds no others. A control character is shown by its
/// picture (\u2402), since its name would look like letters of the text.
std::string plainHtml(QStringView text);

/// @p text if it has at most @p most UTF-16 units; else its beginning, and how much is left out.
QString shortened(QStringView text, int most);

/// @p number in digits, with commas between thousands.
std::string withCommas(qint64 number);

/// "1 field", "2,000 fields".
std::string counted(qint64 count, const std::string& thing);

#endif
