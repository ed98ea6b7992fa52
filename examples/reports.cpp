// Converts the message on standard input, and handles the reports of the library itself:
//   ./reports < plan.adexp > plan.xml
//
// To build it, with an installed library and Qt 6 (with Qt 5: Qt5Core):
//   c++ -std=c++17 -fPIC reports.cpp -o reports $(pkg-config --cflags --libs adexp Qt6Core)
//
// Without a handler Qt writes the reports to standard error.

#include <adexp.h>

#include <QString>
#include <QtGlobal>

#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

// A process has one handler, which gets no argument of ours. So the reports are global.
std::vector<std::string> reports;

void takeReport(QtMsgType, const QMessageLogContext&, const QString& text)
{
    reports.push_back(text.trimmed().toStdString());
}

struct Free
{
    void operator()(const char* document) const { free_adexp(document); }
};
using Document = std::unique_ptr<const char, Free>;

constexpr std::string_view Settings = ":/adexp/adexp.ini"; // the rule set in the library

} // namespace

int main()
{
    const QtMessageHandler previous = qInstallMessageHandler(takeReport);
    if (init_adexp(Settings.data(), static_cast<int>(Settings.size())) != 0)
        return 2;
    const std::string message((std::istreambuf_iterator<char>(std::cin)),
                              std::istreambuf_iterator<char>());
    unsigned int length = 0;
    const Document document(
        convert_from_adexp(message.data(), static_cast<unsigned int>(message.size()), &length));
    clear_adexp();
    qInstallMessageHandler(previous);

    std::cout << std::string_view(document ? document.get() : "", length);
    std::cerr << reports.size() << " reports\n";
    for (const std::string& report : reports)
        std::cerr << "  " << report << '\n';
    return document ? 0 : 1;
}
