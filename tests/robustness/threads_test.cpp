// A host that calls the library from a thread of its own, with little stack.

#include "host.h"

#include "support/diagnosticcapture.h"
#include "support/hostilemessages.h"
#include "support/smallstack.h"

#include <gtest/gtest.h>

#include <pthread.h>

#include <string>
#include <vector>

namespace {

const char* const Samples = ADEXP_SOURCE_DIR "/samples";

std::vector<std::string> convertAll(const std::vector<std::string>& messages)
{
    std::vector<std::string> documents;
    documents.reserve(messages.size());
    for (const std::string& message : messages)
        documents.push_back(convert(message));
    return documents;
}

TEST(Threads, LoadingAndConvertingNeedLittleStack)
{
    const DiagnosticCapture diagnostics;
    const std::vector<std::string> messages = readMessages(Samples);
    ASSERT_GT(messages.size(), 50U);
    std::vector<std::string> documents;
    runWithSmallStack([&] {
        EXPECT_EQ(init(), 0);
        documents = convertAll(messages);
        clear_adexp();
    });
    ASSERT_EQ(init(), 0);
    EXPECT_EQ(documents, convertAll(messages));
    clear_adexp();
}

TEST(Threads, HostileMessagesNeedLittleStack)
{
    const DiagnosticCapture diagnostics;
    for (const HostileShape& shape : HostileShapes) {
        SCOPED_TRACE(shape.name);
        const std::string message = hostileMessage(shape, 20000);
        std::string document;
        runWithSmallStack([&] {
            EXPECT_EQ(init(), 0);
            document = convert(message);
            clear_adexp();
        });
        EXPECT_NE(document, "null");
    }
}

// One call at a time, but each may come from another thread.
TEST(Threads, EachCallMayComeFromAnotherThread)
{
    const DiagnosticCapture diagnostics;
    const std::vector<std::string> messages = readMessages(Samples);
    runWithSmallStack([] { EXPECT_EQ(init(), 0); });
    const std::vector<std::string> documents = convertAll(messages);
    for (size_t i = 0; i < messages.size(); ++i)
        runWithSmallStack([&] { EXPECT_EQ(convert(messages[i]), documents[i]); });
    runWithSmallStack(clear_adexp);
    runWithSmallStack([] { EXPECT_EQ(init(), 0); });
    EXPECT_EQ(convertAll(messages), documents);
    clear_adexp();
}

void endThread(QtMsgType, const QMessageLogContext&, const QString&)
{
    pthread_exit(nullptr);
}

void cancelThread(QtMsgType, const QMessageLogContext&, const QString&)
{
    pthread_cancel(pthread_self());
    pthread_testcancel();
}

// Converts in a thread that the message handler ends. If the library caught that, the process would
// end.
void endInsideACall(QtMessageHandler handler, void* expectedResult)
{
    ASSERT_EQ(init(), 0);
    const std::string faulty = "-TITLE IFPL stray -ARCID EIN21K";
    const QtMessageHandler before = qInstallMessageHandler(handler);
    pthread_t thread;
    const auto convertFaulty = [](void* message) -> void* {
        convert(*static_cast<const std::string*>(message));
        return message; // not reached
    };
    void* result = const_cast<std::string*>(&faulty);
    ASSERT_EQ(pthread_create(&thread, nullptr, convertFaulty, const_cast<std::string*>(&faulty)),
              0);
    ASSERT_EQ(pthread_join(thread, &result), 0);
    qInstallMessageHandler(before);
    EXPECT_EQ(result, expectedResult);
    const DiagnosticCapture diagnostics;
    EXPECT_NE(convert(faulty), "null");
    clear_adexp();
}

TEST(Threads, ThreadMayEndInsideACall)
{
    endInsideACall(endThread, nullptr);
}

TEST(Threads, ThreadMayBeCancelledInsideACall)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP()
        << "AddressSanitizer takes the unwinding of a cancelled thread for a fault of the stack";
#endif
    endInsideACall(cancelThread, PTHREAD_CANCELED);
}

} // namespace
