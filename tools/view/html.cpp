#include "html.h"

#include <QString>

#include <algorithm>
#include <array>

namespace {

struct Range
{
    char32_t first;
    char32_t last;
};

// Letters and marks that leave no trace on the screen; the categories do not tell them.
constexpr std::array<Range, 10> Traceless{{{0x034f, 0x034f},
                                           {0x115f, 0x1160},
                                           {0x17b4, 0x17b5},
                                           {0x180b, 0x180f},
                                           {0x2800, 0x2800},
                                           {0x3164, 0x3164},
                                           {0xfe00, 0xfe0f},
                                           {0xffa0, 0xffa0},
                                           {0xfffc, 0xfffd},
                                           {0xe0100, 0xe01ef}}};

bool isTraceless(char32_t c)
{
    return std::any_of(Traceless.cbegin(), Traceless.cend(),
                       [c](const Range& range) { return c >= range.first && c <= range.last; });
}

bool showsItself(char32_t c)
{
    if (c >= ' ' && c <= '~')
        return true;
    if (c == '\n' || c == '\t')
        return true;
    return QChar::isPrint(c) && !QChar::isSpace(c) && !isTraceless(c);
}

std::string number(char32_t c)
{
    return "U+" + QString::number(c, 16).toUpper().rightJustified(4, u'0').toStdString();
}

// Unicode has pictures of the control characters.
std::string symbol(char32_t c)
{
    constexpr char32_t Delete = 0x7f;
    constexpr char32_t Replacement = 0xfffd;
    if (c < ' ')
        return QString(QChar(static_cast<ushort>(0x2400 + c))).toStdString();
    if (c == Delete)
        return "\u2421";
    return c == Replacement ? "\ufffd" : number(c);
}

void appendShown(char32_t c, QStringView units, std::string* html)
{
    switch (c) {
    case '&':
        *html += "&amp;";
        break;
    case '<':
        *html += "&lt;";
        break;
    case '>':
        *html += "&gt;";
        break;
    case '"':
        *html += "&quot;";
        break;
    case '\'':
        *html += "&#39;";
        break;
    default:
        html->append(units.toUtf8().toStdString());
    }
}

// Calls append(character, its units) for each character. Half a pair counts as U+FFFD.
template <typename Append>
void forEachCharacter(QStringView text, Append append)
{
    for (qsizetype i = 0; i < text.size();) {
        const QChar c = text[i];
        const bool isPair =
            c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        const qsizetype length = isPair ? 2 : 1;
        if (isPair)
            append(QChar::surrogateToUcs4(c, text[i + 1]), text.mid(i, length));
        else
            append(c.isSurrogate() ? char32_t{QChar::ReplacementCharacter} : char32_t{c.unicode()},
                   text.mid(i, length));
        i += length;
    }
}

} // namespace

void appendHtml(QStringView text, std::string* html)
{
    forEachCharacter(text, [html](char32_t c, QStringView units) {
        if (showsItself(c))
            appendShown(c, units, html);
        else
            *html += "<i class=\"symbol\" title=\"" + number(c) + "\">" + symbol(c) + "</i>";
    });
}

std::string plainHtml(QStringView text)
{
    std::string html;
    forEachCharacter(text, [&html](char32_t c, QStringView units) {
        if (showsItself(c))
            appendShown(c, units, &html);
        else
            html += symbol(c);
    });
    return html;
}
