#ifndef HTML_H
#define HTML_H

#include <QStringView>

#include <string>

// Text from outside - of messages, file names, reports - on its way into a page. Whatever it holds,
// it stays text: nothing in it begins or ends an element or an attribute. A character that cannot
// be seen, or that would act on the text around it (line and page controls, changes of the writing
// direction, joiners, special blanks), is shown by a symbol or its number. A line feed and a tab
// stay as they are.

/// Appends @p text to @p html for the inside of an element. Symbols stand in <i class="symbol">.
void appendHtml(QStringView text, std::string* html);

/// @p text for the value of an attribute in quotes, or an element that holds no others.
std::string plainHtml(QStringView text);

#endif
