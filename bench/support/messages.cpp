#include "messages.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>

namespace {

// The points of the route in flightPlan(), which make it a message of 1.4 KB and 100 fields.
constexpr int FlightPlanPoints = 13;

// Chooses the values of the fields. The engine and the way its numbers are used are fixed by the
// C++ standard, so each seed gives the same values everywhere.
class Values
{
public:
    explicit Values(unsigned seed) : m_engine(seed) {}

    int number(int from, int to)
    {
        const auto count = static_cast<unsigned>(to - from + 1);
        return from + static_cast<int>(m_engine() % count);
    }

    std::string letters(int count)
    {
        std::string result;
        for (int i = 0; i < count; ++i)
            result += static_cast<char>('A' + number(0, 25));
        return result;
    }

    std::string digits(int value, int width)
    {
        std::string result = std::to_string(value);
        result.insert(0, static_cast<std::size_t>(width) - result.size(), '0');
        return result;
    }

    std::string aerodrome() { return "E" + letters(3); }
    std::string facility() { return aerodrome() + "Z" + letters(2) + "X"; }
    std::string callSign() { return letters(3) + digits(number(1, 999), 3) + letters(1); }
    std::string date() { return "2611" + digits(number(1, 30), 2); }
    std::string clock() { return digits(number(0, 23), 2) + digits(number(0, 59), 2); }
    std::string elapsed() { return digits(number(0, 9), 2) + digits(number(0, 59), 2); }
    std::string moment() { return date() + clock() + digits(number(0, 59), 2); }
    std::string level() { return "F" + digits(number(60, 400), 3); }
    std::string route() { return "U" + letters(1) + std::to_string(number(1, 999)); }
    std::string planId() { return "AA" + digits(number(0, 99999999), 8); }
    std::string speedAndLevel() { return "N0" + digits(number(300, 480), 3) + level(); }

private:
    std::mt19937 m_engine;
};

std::string routeText(Values& v, int points)
{
    std::string text = "\n-ROUTE " + v.speedAndLevel();
    for (int i = 0; i < points; ++i)
        text += " " + v.letters(5) + " " + (i % 3 == 2 ? "DCT" : v.route());
    return text + " " + v.letters(5);
}

std::string point(Values& v)
{
    return "\n-PT -PTID " + v.letters(5) + " -FL " + v.level() + " -ETO " + v.moment();
}

std::string pointList(Values& v, int points)
{
    std::string text = "\n-BEGIN RTEPTS";
    for (int i = 0; i < points; ++i)
        text += point(v);
    return text + "\n-END RTEPTS";
}

std::string identification(Values& v)
{
    return "\n-ARCID " + v.callSign() + "\n-IFPLID " + v.planId() + "\n-ADEP " + v.aerodrome() +
           "\n-ADES " + v.aerodrome() + "\n-EOBD " + v.date() + "\n-EOBT " + v.clock();
}

std::string reference(Values& v)
{
    return "\n-REFDATA -SENDER -FAC " + v.letters(2) + " -RECVR -FAC " + v.letters(2) +
           " -SEQNUM " + v.digits(v.number(1, 999), 3);
}

// The fields of a flight plan, without its title.
std::string flightPlanFields(Values& v, int points)
{
    std::string text = "\n-BEGIN ADDR";
    for (int i = 0; i < 6; ++i)
        text += "\n-FAC " + v.facility();
    text += "\n-END ADDR" + identification(v);
    text += "\n-ARCTYP A320\n-CEQPT SDE2E3FGHIJ1RWXY\n-SEQPT LB1\n-WKTRC M\n-PBN A1B1C1D1L1O1S2";
    text += "\n-FILTIM " + v.digits(v.number(1, 30), 2) + v.clock();
    text += "\n-ORGNID " + v.letters(7) + "\n-ORIGIN -NETWORKTYPE AFTN -FAC " + v.facility();
    text +=
        "\n-REG " + v.letters(5) + "\n-SEL " + v.letters(4) + "\n-SRC FPL\n-OPR " + v.letters(3);
    text += "\n-RMK TCAS EQUIPPED\n-RVR 075\n-TTLEET " + v.elapsed() + "\n-RFL " + v.level();
    text += "\n-SPEED N0446\n-FLTRUL I\n-FLTTYP S";
    text += routeText(v, points);
    text += "\n-ALTRNT1 " + v.aerodrome() + "\n-ALTRNT2 " + v.aerodrome();
    for (int i = 0; i < 3; ++i)
        text += "\n-EETFIR " + v.aerodrome() + " " + v.elapsed();
    text += pointList(v, points);
    text += "\n-SID " + v.letters(5) + "1A";
    for (int i = 0; i < points / 4; ++i)
        text += "\n-ATSRT " + v.route() + " " + v.letters(5) + " " + v.letters(5) + "\n-DCT " +
                v.letters(5) + " " + v.letters(5);
    return text + "\n-STAR " + v.letters(5) + "4B";
}

std::string activation(Values& v)
{
    return "-TITLE ACT" + reference(v) + "\n-ARCID " + v.callSign() + "\n-SSRCODE A" +
           v.digits(v.number(0, 7), 1) + "041\n-ADEP " + v.aerodrome() + "\n-COORDATA -PTID " +
           v.letters(5) + " -TO " + v.clock() + " -TFL " + v.level() + "\n-ADES " + v.aerodrome() +
           "\n-ARCTYP B738" + routeText(v, 5);
}

std::string basicFlightData(Values& v)
{
    return "-TITLE BFD" + reference(v) + identification(v) +
           "\n-FLTRUL I\n-FLTTYP S\n-ARCTYP DH8D\n-WKTRC M\n-RFL " + v.level() + routeText(v, 9) +
           "\n-BEGIN EQCST\n-EQPT W/EQ\n-EQPT Y/EQ\n-EQPT U/NO\n-SUREQPT S/EQ/S\n-END EQCST" +
           pointList(v, 4);
}

std::string slotAllocation(Values& v)
{
    return "-TITLE SAM" + identification(v) + "\n-CTOT " + v.clock() + "\n-REGUL " + v.letters(5) +
           "A19M\n-TTO -PTID " + v.letters(5) + " -TO " + v.clock() + " -FL " + v.level() +
           "\n-COMMENT ARRIVAL CAPACITY REDUCED\n-TAXITIME 0015\n-REGCAUSE WA 84";
}

std::string flightData(Values& v)
{
    std::string text = "-TITLE EFD\n-TIMESTAMP " + v.moment() +
                       "\n-EVENT IFP\n-EVENTCLASS MSG\n-FLTSTATE FI" + identification(v) +
                       "\n-MODELTYP EST\n-ARCTYP A320\n-IRULES IFR GAT IFPSTART";
    for (int i = 1; i <= 9; ++i)
        text += "\n-GEO -GEOID GEO" + v.digits(i, 2) + " -LATTD " + v.digits(v.number(0, 89), 2) +
                "0137N -LONGTD 0" + v.digits(v.number(0, 99), 2) + "3000W";
    text += pointList(v, 18) + "\n-BEGIN ASPLIST";
    for (int i = 0; i < 8; ++i)
        text += "\n-ASP -AIRSPDES " + v.letters(7) + " -ETI " + v.moment() + " -XTI " + v.moment();
    return text + "\n-END ASPLIST\n-TAXITIME 0013";
}

std::string arrivalUpdate(Values& v)
{
    return "-TITLE FUM\n-BEGIN ADDR\n-FAC " + v.facility() + "\n-END ADDR" + identification(v) +
           "\n-ARCTYP A333\n-REG " + v.letters(5) + "\n-ELDT " + v.moment() + "\n-ESTDATA -PTID " +
           v.letters(5) + " -ETO " + v.moment() + " -FL " + v.level() + "\n-STAR " + v.letters(5) +
           "1G\n-FLTSTATE AA";
}

// The layouts that systems send, made from a text with a field a line.

std::string inOneLine(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

std::string wrapped(const std::string& text)
{
    constexpr std::size_t Width = 69;
    std::string result;
    std::size_t column = 0;
    std::istringstream words(text);
    for (std::string word; words >> word; column += word.size()) {
        if (column != 0) {
            const bool isFull = column + 1 + word.size() > Width;
            result += isFull ? "\r\n" : " ";
            column = isFull ? 0 : column + 1;
        }
        result += word;
    }
    return result;
}

std::string withBlankBehindHyphens(const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        result += text[i];
        if (text[i] == '-' && (i == 0 || text[i - 1] == '\n' || text[i - 1] == ' '))
            result += ' ';
    }
    return result;
}

std::string inLayout(int layout, const std::string& text)
{
    switch (layout % 4) {
    case 0:
        return text;
    case 1:
        return inOneLine(text);
    case 2:
        return wrapped(text);
    default:
        return withBlankBehindHyphens(text);
    }
}

} // namespace

std::string bench::flightPlan()
{
    Values values(1);
    return "-TITLE IFPL" + flightPlanFields(values, FlightPlanPoints) + "\n";
}

std::string bench::flightPlanOfSize(std::size_t bytes)
{
    Values values(2);
    std::string text = "-TITLE IFPL";
    text.reserve(bytes + 4096); // no second copy while it grows, for the measure of memory
    do
        text += flightPlanFields(values, FlightPlanPoints);
    while (text.size() < bytes);
    text += '\n';
    return text;
}

std::vector<std::string> bench::variedMessages()
{
    constexpr int Rounds = 4;
    std::vector<std::string> messages;
    Values v(3);
    for (int round = 0; round < Rounds; ++round) {
        const std::string texts[] = {
            "-TITLE IFPL" + flightPlanFields(v, 5 + 3 * round),
            activation(v),
            basicFlightData(v),
            slotAllocation(v),
            flightData(v),
            arrivalUpdate(v),
        };
        for (const std::string& text : texts)
            messages.push_back(inLayout(round, text) + "\n");
    }
    return messages;
}

std::vector<std::string> bench::messagesOfFolder(const std::string& folder)
{
    std::vector<std::filesystem::path> paths;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        if (entry.path().extension() == ".adexp")
            paths.push_back(entry.path());
    if (paths.empty()) {
        std::fprintf(stderr, "No messages in %s\n", folder.c_str());
        std::exit(EXIT_FAILURE);
    }
    std::sort(paths.begin(), paths.end());

    std::vector<std::string> messages;
    for (const auto& path : paths) {
        std::ifstream file(path, std::ios::binary);
        messages.emplace_back(std::istreambuf_iterator<char>(file),
                              std::istreambuf_iterator<char>());
    }
    return messages;
}

std::vector<std::string> bench::sampleMessages()
{
    return messagesOfFolder(ADEXP_BENCH_SAMPLES);
}
