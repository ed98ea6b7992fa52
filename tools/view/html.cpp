#include "html.h"

#include <QLocale>

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
    return (c >= ' ' && c <= '~') || c == '\n' || c == '\t' ||
           (QChar::isPrint(c) && !QChar::isSpace(c) && !isTraceless(c));
}

std::string number(char32_t c)
{
    return "U+" + QString::number(c, 16).toUpper().rightJustified(4, u'0').toStdString();
}

constexpr char32_t Delete = 0x7f;
constexpr char32_t Replacement = 0xfffd;

constexpr std::array<const char*, ' '> ControlNames{
    "NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "TAB", "LF",
    "VT",  "FF",  "CR",  "SO",  "SI",  "DLE", "DC1", "DC2", "DC3", "DC4", "NAK",
    "SYN", "ETB", "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};

std::string name(char32_t c)
{
    if (c < ' ')
        return ControlNames[c];
    if (c == Delete)
        return "DEL";
    return c == Replacement ? "\ufffd" : number(c);
}

// Unicode has pictures of the control characters.
std::string picture(char32_t c)
{
    if (c < ' ')
        return QString(QChar(static_cast<ushort>(0x2400 + c))).toStdString();
    return c == Delete ? "\u2421" : name(c);
}

std::string escapedCharacter(char32_t c)
{
    QString text = QString::fromUcs4(&c, 1).toHtmlEscaped();
    return text.replace(u'\'', QLatin1String("&#39;")).toStdString();
}

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\n' || c == u'\t';
}

// The length of the word that text begins with if it has a hyphen in front and is not too long to
// stand in one line of a small screen; else 0.
qsizetype keywordLength(QStringView text)
{
    constexpr qsizetype Longest = 24;
    if (text.isEmpty() || text.front() != u'-')
        return 0;
    const qsizetype length = std::find_if(text.begin(), text.end(), isBlank) - text.begin();
    return length > 1 && length <= Longest ? length : 0;
}

void appendCharacters(QStringView text, std::string* html)
{
    for (const char32_t c : text.toUcs4()) {
        if (showsItself(c))
            *html += escapedCharacter(c);
        else
            *html += "<i class=\"symbol\" title=\"" + number(c) + "\">" + name(c) + "</i>";
    }
}

} // namespace

void appendHtml(QStringView text, std::string* html)
{
    while (!text.isEmpty()) {
        const qsizetype length = keywordLength(text);
        if (length > 0) {
            *html += "<span class=\"word\">";
            appendCharacters(text.left(length), html);
            *html += "</span>";
        }
        // Up to where the next word with a hyphen may begin.
        qsizetype end = std::max(length, qsizetype{1});
        while (end < text.size() && !(text[end] == u'-' && isBlank(text[end - 1])))
            ++end;
        appendCharacters(text.mid(length, end - length), html);
        text = text.mid(end);
    }
}

std::string plainHtml(QStringView text)
{
    std::string html;
    for (const char32_t c : text.toUcs4())
        html += showsItself(c) ? escapedCharacter(c) : picture(c);
    return html;
}

QString shortened(QStringView text, int most)
{
    if (text.size() <= most)
        return text.toString();
    const qsizetype length = text[most - 1].isHighSurrogate() ? most - 1 : most;
    return text.left(length).toString() + QStringLiteral("\u2026 (") +
           QString::fromStdString(withCommas(text.size() - length)) +
           QStringLiteral(" characters more)");
}

std::string withCommas(qint64 number)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(number).toStdString();
}

std::string counted(qint64 count, const std::string& thing)
{
    return withCommas(count) + ' ' + thing + (count == 1 ? "" : "s");
}
