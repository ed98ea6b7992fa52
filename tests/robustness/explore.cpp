#include "adexp.h"
#include "countedheap.h"
#include <QString>
#include <QtGlobal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <execinfo.h>
#include <fstream>
#include <signal.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
static std::string slurp(const char* p)
{
    std::ifstream f(p);
    std::stringstream s;
    s << f.rdbuf();
    return s.str();
}
static std::string settings;
static std::string message;
static std::string lines;
static bool defaultHandler = false;
static void handler(QtMsgType, const QMessageLogContext&, const QString& t)
{
    lines += t.toStdString();
    lines += '\n';
}
static void crash(int s)
{
    void* b[60];
    int n = backtrace(b, 60);
    CountedHeap::stopFailing();
    dprintf(2, "CRASH %d\n", s);
    backtrace_symbols_fd(b, n, 2);
    _exit(100 + s);
}
static std::string conv()
{
    unsigned n = 0;
    const char* d = convert_from_adexp(message.data(), (unsigned)message.size(), &n);
    std::string r = d ? std::string(d, n) : "<null>";
    free_adexp(d);
    return r;
}
int main(int argc, char** argv)
{
    // explore MODE(init|convert) SETTINGS MESSAGEFILE mode(one|all) from step to [default]
    std::string what = argv[1];
    settings = argv[2];
    message = slurp(argv[3]);
    auto mode = std::string(argv[4]) == "one" ? CountedHeap::Failures::One
                                              : CountedHeap::Failures::FromThereOn;
    long from = atol(argv[5]), step = atol(argv[6]), to = atol(argv[7]);
    defaultHandler = argc > 8;
    if (!defaultHandler)
        qInstallMessageHandler(handler);
    void* bt[2];
    backtrace(bt, 2);
    signal(SIGSEGV, crash);
    signal(SIGABRT, crash);
    auto init = [] { return init_adexp(settings.data(), (int)settings.size()); };
    for (int i = 0; i < 3; ++i) {
        lines.clear();
        init();
        conv();
        clear_adexp();
    }
    lines.clear();
    init();
    std::string expectInit = lines;
    lines.clear();
    std::string expect = conv();
    std::string expectLines = lines;
    conv();
    conv();
    fprintf(stderr, "doc %zu lines %zu\n", expect.size(), expectLines.size());
    clear_adexp();
    lines.clear();
    lines.reserve(1000000);
    long base = CountedHeap::liveBlocks();
    long crashes = 0, tried = 0, leaks = 0, wrong = 0, swallowed = 0;
    for (long n = from; n <= to; n += step) {
        ++tried;
        pid_t p = fork();
        if (p == 0) {
            if (what == "convert")
                init();
            long b0 = CountedHeap::liveBlocks();
            lines.clear();
            int r = -1;
            const char* d = nullptr;
            unsigned len = 0;
            CountedHeap::failAt(n, mode);
            if (what == "init")
                r = init_adexp(settings.data(), (int)settings.size());
            else
                d = convert_from_adexp(message.data(), (unsigned)message.size(), &len);
            long f = CountedHeap::stopFailing();
            long live1;
            if (what == "init") {
                clear_adexp();
            }
            live1 = CountedHeap::liveBlocks() - (d != nullptr);
            if (f == 0) {
                fprintf(stderr, "n=%ld: live %ld\n", n, live1 - (what == "init" ? base : b0));
                _exit(50);
            }
            int ex = 0;
            std::string during = lines;
            if (what == "init") {
                if (r == 0) {
                    ex |= 1;
                    fprintf(stderr, "n=%ld init=0 lines=%s\n", n, during.c_str());
                } else if (r != 2) {
                    ex |= 2;
                    fprintf(stderr, "n=%ld init=%d\n", n, r);
                }
            } else {
                if (d) {
                    ex |= 1;
                    if (std::string(d, len) != expect) {
                        ex |= 2;
                        fprintf(stderr, "n=%ld wrong document\n", n);
                    }
                    if (!defaultHandler && during != expectLines)
                        fprintf(stderr, "n=%ld doc but other lines: %s\n", n, during.c_str());
                }
                free_adexp(d);
                if (live1 != b0) {
                    ex |= 4;
                    fprintf(stderr, "n=%ld convert leaks %ld\n", n, live1 - b0);
                }
            }
            lines.clear();
            if (what == "init") {
                if (live1 != base) {
                    ex |= 4;
                    fprintf(stderr, "n=%ld init leaks %ld\n", n, live1 - base);
                }
                r = init();
                if (r != 0 || lines != expectInit) {
                    ex |= 8;
                    fprintf(stderr, "n=%ld next init=%d lines %s\n", n, r, lines.c_str());
                }
            }
            lines.clear();
            std::string again = conv();
            if (again != expect || lines != expectLines) {
                ex |= 8;
                fprintf(stderr, "n=%ld next differs %s\n", n, lines.c_str());
            }
            clear_adexp();
            {
                std::string().swap(during);
            }
            if (CountedHeap::liveBlocks() != base + 1) {
                fprintf(stderr, "n=%ld end live %+ld\n", n, CountedHeap::liveBlocks() - base);
            }
            _exit(ex);
        }
        int st;
        waitpid(p, &st, 0);
        if (WIFSIGNALED(st) || WEXITSTATUS(st) >= 100) {
            ++crashes;
            fprintf(stderr, "n=%ld crash\n", n);
        } else {
            int e = WEXITSTATUS(st);
            if (e == 50) {
                fprintf(stderr, "n=%ld success\n", n);
                break;
            }
            swallowed += !!(e & 1);
            leaks += !!(e & 4);
            wrong += !!(e & 10);
        }
    }
    fprintf(stderr, "tried %ld crashes %ld swallowed %ld leaks %ld wrong %ld\n", tried, crashes,
            swallowed, leaks, wrong);
}
