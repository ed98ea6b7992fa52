// Memory runs out at every place where the library allocates some: no exception reaches the caller,
// nothing is lost, and the next call works as if nothing had happened.

#include "countedheap.h"
#include "host.h"

#include "support/reports.h"
#include "support/rulefolder.h"
#include "support/ruleset.h"

#include "grammar/namedlist.h"
#include "grammar/termvariable.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using CountedHeap::Failures;

const std::string Good = "-TITLE IFPL -ARCID EIN21K -BEGIN RTEPTS -PT -PTID BEPAN -END RTEPTS";
const std::string Faulty =
    "stray -TITLE IFPL - ARCID E%% -NOSUCHFIELD X - -BEGIN RTEPTS -PT -PTID TOOLONG -END WRONG";

// Many fields, and data that does not fit into the buffers on the stack.
std::string largeMessage()
{
    std::string message = "-TITLE IFPL -ARCID EIN21K -BEGIN RTEPTS";
    for (int i = 0; i < 5000; ++i)
        message += " -PT -PTID BEPAN";
    return message + " -END RTEPTS -RMK " + std::string(100000, 'X') + '%';
}

// A rule set as it comes from its files, and a message converted with it.
struct Outcome
{
    int initResult = 0;
    Lines initReports;
    std::string document;
    Lines reports;
};

bool operator==(const Outcome& a, const Outcome& b)
{
    return a.initResult == b.initResult && a.initReports == b.initReports &&
           a.document == b.document && a.reports == b.reports;
}

// The same again, with enough memory.
Outcome outcome(const std::string& settings, const std::string& message)
{
    DiagnosticCapture diagnostics;
    Outcome result;
    result.initResult = init(settings);
    result.initReports = linesOf(diagnostics);
    diagnostics.clear();
    result.document = convert(message);
    result.reports = linesOf(diagnostics);
    clear_adexp();
    return result;
}

class FailingMemory : public testing::Test
{
protected:
    ~FailingMemory() override
    {
        CountedHeap::stopFailing();
        clear_adexp();
    }

    // The outcome, once Qt has what it keeps for good.
    static Outcome expectedOutcome(const std::string& settings, const std::string& message)
    {
        for (int i = 0; i < 3; ++i) {
            static_cast<void>(outcome(settings, message));
            static_cast<void>(convert(message)); // loads the default rule set
            clear_adexp();
        }
        return outcome(settings, message);
    }

    std::string smallRuleSet() const { return writeRuleSet(folder).toStdString(); }

    // With something of everything that is reported about definitions, and a rule whose index of
    // terms takes more than one allocation.
    std::string faultyRuleSet() const
    {
        const QString settings = writeRuleSet(folder);
        folder.write(
            QStringLiteral("sub.xml"),
            "<terms>\n"
            "<SubField name='PTID'><term>POINT</term></SubField>\n"
            "<SubField name='PTID'><term>POINT</term></SubField>\n"
            "<SubField name='SELF'><term>SELF</term></SubField>\n"
            "<SubField name='RING'><term>('A' | GNIR) ! POINT</term></SubField>\n"
            "<SubField name='GNIR'><term>RING [3{SEP}2 DIGIT]</term></SubField>\n"
            "<SubField name='MIXED'><term>ALPHA | DIGIT 'X' (POINT</term></SubField>\n"
            "<SubField name='MIXED2'><term>(ALPHA ! {DIGIT}3) | DIGIT NIL</term></SubField>\n"
            "<Other/>\n"
            "</terms>\n");
        folder.write(QStringLiteral("rules.xml"),
                     "<rules>\n"
                     "<msgRule title='IFPL'><fields>ARCID ['1'] ['2'] ['3'] ['4'] ['5'] ['6'] "
                     "['7'] ['8'] ['9'] [RTEPTS] [RMK]</fields></msgRule>\n"
                     "<msgRule title='IFPL'><fields>ARCID</fields></msgRule>\n"
                     "<msgRule title='REJ'><fields>ARCID [NOWHERE]</fields></msgRule>\n"
                     "</rules>\n");
        return settings.toStdString();
    }

    // Loads with allocation number @p number failing. False if there are not that many.
    static bool initFails(const std::string& settings, const std::string& message, long number,
                          Failures failures, const Outcome& expected)
    {
        int result = 0;
        std::string document;
        {
            const DiagnosticCapture diagnostics; // its memory may fail as well
            CountedHeap::failAt(number, failures);
            result = init(settings);
            const bool hasFailed = CountedHeap::stopFailing() > 0;
            document = convert(message);
            clear_adexp();
            if (!hasFailed)
                return false;
        }
        // Some of Qt does without the memory.
        if (result == 0)
            EXPECT_EQ(document, expected.document) << "allocation " << number;
        else
            EXPECT_EQ(result, 2) << "allocation " << number;
        return true;
    }

    static void checkInit(const std::string& settings, long step)
    {
        const Outcome expected = expectedOutcome(settings, Good);
        ASSERT_EQ(expected.initResult, 0);
        const long before = CountedHeap::liveBlocks();
        for (const Failures failures : {Failures::One, Failures::FromThereOn}) {
            long number = 1;
            for (; initFails(settings, Good, number, failures, expected); number += step) {
                // Less, if Qt has dropped the settings file that it keeps for the next call.
                ASSERT_LE(CountedHeap::liveBlocks(), before) << "allocation " << number;
                ASSERT_TRUE(outcome(settings, Good) == expected) << "allocation " << number;
                ASSERT_EQ(CountedHeap::liveBlocks(), before) << "allocation " << number;
            }
            std::printf("%ld of %ld allocations failed\n", (number - 1) / step, number - 1);
            EXPECT_GT(number, 40 * step);
        }
    }

    // Loads with less and less memory. Nothing is spared: Qt must find the memory it needs.
    static void checkInitWithLimit(const std::string& settings, long steps)
    {
        const Outcome expected = expectedOutcome(settings, Good);
        const long blocksBefore = CountedHeap::liveBlocks();
        const long before = CountedHeap::liveBytes();
        CountedHeap::takePeakBytes();
        static_cast<void>(outcome(settings, Good));
        const long needed = CountedHeap::takePeakBytes() - before;
        int loaded = 0;
        for (long i = 0; i <= steps + steps / 10; ++i) {
            CountedHeap::limitBytes(before + needed * i / steps);
            const int result = init(settings);
            CountedHeap::stopFailing();
            ASSERT_TRUE(result == 2 || result == 0) << result;
            loaded += result == 0;
            clear_adexp();
            ASSERT_EQ(CountedHeap::liveBlocks(), blocksBefore) << "step " << i;
            ASSERT_TRUE(outcome(settings, Good) == expected) << "step " << i;
        }
        std::printf("%ld bytes needed; %d of %ld limits sufficed\n", needed, loaded,
                    steps + steps / 10 + 1);
        EXPECT_GE(loaded, 1);
        EXPECT_LT(loaded, steps);
    }

    // Converts with allocation number @p number failing. False if there are not that many.
    static bool conversionFails(const std::string& message, long number, Failures failures,
                                const Outcome& expected)
    {
        const DiagnosticCapture diagnostics;
        unsigned int length = 1;
        CountedHeap::failAt(number, failures);
        const char* const document =
            convert_from_adexp(message.data(), static_cast<unsigned int>(message.size()), &length);
        const bool hasFailed = CountedHeap::stopFailing() > 0;
        EXPECT_TRUE(hasFailed || document);
        if (document)
            EXPECT_EQ(std::string(document, length), expected.document) << "allocation " << number;
        else
            EXPECT_EQ(length, 0U) << "allocation " << number;
        free_adexp(document);
        return hasFailed;
    }

    // @p afresh: loads the rule set before each conversion, so that it is the first one.
    static void checkConversion(const std::string& settings, const std::string& message,
                                bool afresh)
    {
        const Outcome expected = expectedOutcome(settings, message);
        ASSERT_NE(expected.document, "null");
        for (const Failures failures : {Failures::One, Failures::FromThereOn}) {
            clear_adexp();
            const long beforeInit = CountedHeap::liveBlocks();
            init(settings);
            if (!afresh)
                static_cast<void>(convert(message));
            const long before = CountedHeap::liveBlocks();
            long number = 1;
            for (; conversionFails(message, number, failures, expected); ++number) {
                if (!afresh) {
                    ASSERT_EQ(CountedHeap::liveBlocks(), before) << "allocation " << number;
                }
                {
                    const DiagnosticCapture diagnostics;
                    ASSERT_EQ(convert(message), expected.document) << "allocation " << number;
                    ASSERT_EQ(linesOf(diagnostics), expected.reports) << "allocation " << number;
                }
                if (!afresh)
                    continue;
                clear_adexp();
                ASSERT_EQ(CountedHeap::liveBlocks(), beforeInit) << "allocation " << number;
                init(settings);
            }
            std::printf("%ld allocations failed\n", number - 1);
            EXPECT_GT(number, 3);
        }
    }

    RuleFolder folder;
};

TEST_F(FailingMemory, HeapFailsAsItIsTold)
{
    const long before = CountedHeap::liveBlocks();
    CountedHeap::failAt(2, Failures::One);
    void* const first = std::malloc(1);
    void* const second = std::malloc(1);
    void* const third = std::malloc(1);
    EXPECT_EQ(CountedHeap::liveBlocks(), before + 2);
    EXPECT_EQ(CountedHeap::stopFailing(), 1);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(second, nullptr);
    EXPECT_NE(third, nullptr);
    std::free(first);
    std::free(third);

    CountedHeap::failAt(1, Failures::FromThereOn);
    EXPECT_THROW(::operator delete(::operator new(1)), std::bad_alloc);
    EXPECT_EQ(std::calloc(1, 1), nullptr);
    EXPECT_GT(CountedHeap::stopFailing(), 1);

    CountedHeap::limitBytes(CountedHeap::liveBytes() + 1000);
    EXPECT_EQ(std::malloc(1001), nullptr);
    void* const fitting = std::malloc(1000);
    EXPECT_NE(fitting, nullptr);
    std::free(fitting);
    EXPECT_EQ(CountedHeap::stopFailing(), 1);
    EXPECT_EQ(CountedHeap::liveBlocks(), before);
}

struct NamedItem
{
    struct
    {
        QString recordName;
    } config;
};

TEST_F(FailingMemory, NamedListFindsWhatItHolds)
{
    std::vector<NamedItem> items(300);
    for (size_t i = 0; i < items.size(); ++i)
        items[i].config.recordName = QString::number(i);
    const auto appendAll = [&items](NamedList<NamedItem>* list, long number) {
        CountedHeap::failAt(number, Failures::One);
        try {
            for (NamedItem& item : items)
                list->append(&item);
        } catch (const std::bad_alloc&) {
        }
        return CountedHeap::stopFailing() > 0;
    };
    for (long number = 1;; ++number) {
        NamedList<NamedItem> list;
        const bool hasFailed = appendAll(&list, number);
        for (const NamedItem* item : list)
            ASSERT_EQ(list.search(item->config.recordName), item) << "allocation " << number;
        if (!hasFailed)
            break;
        // The others are not there, and must not be found.
        for (auto i = static_cast<size_t>(list.size()); i < items.size(); ++i)
            ASSERT_EQ(list.search(items[i].config.recordName), nullptr) << "allocation " << number;
    }
}

// Throws the first time it is asked to match.
class TermOutOfMemory : public TermStd
{
public:
    explicit TermOutOfMemory(const ConfigInfo* record) : TermStd(record) {}
    int matchOnce(const QChar*, Match*) const override
    {
        if (++*m_calls == 1)
            throw std::bad_alloc();
        return 1;
    }

private:
    std::unique_ptr<int> m_calls = std::make_unique<int>(0);
};

TEST_F(FailingMemory, ReferenceIsMatchedAgainAfterAFailure)
{
    const ConfigInfo record;
    TermOutOfMemory term(&record);
    TermVariable reference(&record);
    reference.simpleTerm = &term;
    const DiagnosticCapture diagnostics;
    EXPECT_THROW(reference.parse(QStringLiteral("X").constData()), std::bad_alloc);
    EXPECT_EQ(reference.parse(QStringLiteral("X").constData()), 1);
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(FailingMemory, LoadingReturns2AndLosesNothing)
{
    checkInit(smallRuleSet(), 1);
}

TEST_F(FailingMemory, LoadingWithReportsReturns2AndLosesNothing)
{
    checkInit(faultyRuleSet(), 1);
}

TEST_F(FailingMemory, LoadingTheEmbeddedRulesReturns2AndLosesNothing)
{
    checkInit(BuiltInRuleSet, 997);
}

TEST_F(FailingMemory, LoadingWithTooLittleMemoryReturns2AndLosesNothing)
{
    checkInitWithLimit(smallRuleSet(), 500);
    checkInitWithLimit(faultyRuleSet(), 500);
}

TEST_F(FailingMemory, LoadingTheEmbeddedRulesWithTooLittleMemoryReturns2AndLosesNothing)
{
    checkInitWithLimit(BuiltInRuleSet, 50);
}

// Qt takes memory that it keeps when it is used the first time: in a process of its own each time.
TEST_F(FailingMemory, FirstCallInAProcessWithTooLittleMemoryReturns2)
{
    for (long limit = 0; limit < 400000; limit += 2000) {
        const pid_t child = fork();
        if (child == 0) {
            CountedHeap::limitBytes(CountedHeap::liveBytes() + limit);
            _exit(init());
        }
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFEXITED(status)) << limit;
        ASSERT_EQ(WEXITSTATUS(status), 2) << limit;
    }
}

TEST_F(FailingMemory, ConversionGivesNullAndLosesNothing)
{
    checkConversion(smallRuleSet(), Good, false);
    checkConversion(BuiltInRuleSet, "-TITLE ACK -MSGREF 1", false);
}

TEST_F(FailingMemory, ConversionWithReportsGivesNullAndLosesNothing)
{
    checkConversion(smallRuleSet(), Faulty, false);
}

TEST_F(FailingMemory, ConversionOfALargeMessageGivesNullAndLosesNothing)
{
    checkConversion(smallRuleSet(), largeMessage(), false);
}

TEST_F(FailingMemory, FirstConversionGivesNullAndLosesNothing)
{
    checkConversion(smallRuleSet(), Faulty, true);
    checkConversion(faultyRuleSet(), Good, true);
}

} // namespace
