#ifndef HOSTILEMESSAGES_H
#define HOSTILEMESSAGES_H

#include <cstddef>
#include <string>

/// Messages made to cost as much as they can, for the built-in rule set. Each repeats one thing
/// many times.
struct HostileShape
{
    const char* name;
    const char* before;
    const char* repeated;
    const char* behind;
    std::size_t linesForEach; ///< what is reported for each of the repeated things
    std::size_t linesForAll;  ///< what is reported once, of all of them together
};

inline constexpr HostileShape HostileShapes[] = {
    {"blocks_never_ended", "-TITLE IFPL", " -BEGIN X", "", 1, 0},
    {"unknown_blocks", "-TITLE IFPL", " -BEGIN A -ARCID B -END A", "", 1, 0},
    {"ends_without_begin", "-TITLE IFPL", " -END X", "", 2, 0},
    {"words_in_a_field", "-TITLE IFPL -RMK", " A", "", 0, 0},
    {"words_before_title", "", "A ", "-TITLE IFPL", 1, 0},
    {"lone_hyphens", "-TITLE IFPL", " -", " - ARCID AAA1", 1, 0},
    {"unknown_fields", "-TITLE IFPL", " -XYZZY A", "", 1, 0},
    {"list_items", "-TITLE IFPL -BEGIN RTEPTS", " -PT -PTID BEPAN -FL F182", " -END RTEPTS", 0, 0},
    {"compounds_cut_short", "-TITLE IFPL", " -ORIGIN -NETWORKTYPE AFTN -ADEP EIDW", "", 0, 0},
    {"text_to_escape", "-TITLE IFPL -RMK ", "<&]]>", "", 0, 1},
    {"one_long_word", "-TITLE IFPL -RMK ", "A", "", 0, 0},
};

/// The message of that shape with @p count of the repeated things.
inline std::string hostileMessage(const HostileShape& shape, std::size_t count)
{
    std::string message = shape.before;
    for (std::size_t i = 0; i < count; ++i)
        message += shape.repeated;
    return message + shape.behind;
}

#endif
