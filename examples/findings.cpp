// Lists what is wrong with messages as compilers do, one finding in a line:
//   ./findings plan.adexp delay.adexp
//   plan.adexp:3:1: error: rule GATE for IFPL not found [unknown-field]
//
// To build it, with an installed library:
//   c++ -std=c++17 findings.cpp -o findings $(pkg-config --cflags --libs adexp)

#include <adexp.hpp>

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace {

void print(const char* file, const adexp::Finding& finding)
{
    const bool isWarning = finding.severity() == adexp::Severity::Warning;
    std::cout << file << ':' << finding.place().line << ':' << finding.place().column
              << (isWarning ? ": warning: " : ": error: ") << finding.text();
    if (!finding.detail().empty())
        std::cout << ": " << finding.detail();
    std::cout << " [" << finding.codeName() << "]\n";
}

} // namespace

int main(int argc, char** argv)
{
    const adexp::RuleSet rules(adexp::BuiltIn);
    adexp::Options options; // all but findings are left out, which saves their cost
    options.document = false;
    options.fields = false;

    bool isClean = true;
    adexp::Result result; // its memory is used again for each message
    for (int i = 1; i < argc; ++i) {
        std::ifstream file(argv[i], std::ios::binary);
        const std::string message((std::istreambuf_iterator<char>(file)),
                                  std::istreambuf_iterator<char>());
        const adexp::Status status = rules.convert(message, &result, options);
        for (const adexp::Finding finding : result.findings())
            print(argv[i], finding);
        if (status == adexp::Status::NoRule)
            std::cout << argv[i] << ": no rule for the title \"" << result.title() << "\"\n";
        isClean = isClean && status == adexp::Status::Ok && result.findings().empty();
    }
    return isClean ? 0 : 1;
}
