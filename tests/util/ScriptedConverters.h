#ifndef TESTS_UTIL_SCRIPTEDCONVERTERS_H
#define TESTS_UTIL_SCRIPTEDCONVERTERS_H

#include <string>
#include <vector>

#include <unicode/ucnv.h>

namespace OvMemTest {

// Stands between the program and ICU where converters are opened and closed,
// and where the XML library converts a text: it chooses the default code page,
// which on Linux is otherwise always UTF-8, remembers what was opened and
// closed, and lets a call fail. The converters themselves are ICU's.
//
//     ScriptedConverters converters("ISO-8859-1");
//     EXPECT_EQ(fromUtf8("\xC3\xA9", 2), "\xE9");
//
// The program is linked with ScriptedConverters.cpp; the XML library's calls
// then pass here, too. One at a time.
class ScriptedConverters {
public:
    using Calls = std::vector<std::string>;

    // `defaultCodePage` is what a null name opens.
    explicit ScriptedConverters(std::string defaultCodePage = "UTF-8");
    ~ScriptedConverters();
    ScriptedConverters(const ScriptedConverters&) = delete;
    ScriptedConverters& operator=(const ScriptedConverters&) = delete;

    // Lets the opening number `number`, counted from 0, end with `error`.
    void failOpening(int number, UErrorCode error);

    // Lets the XML library's conversions into the code page end with `error`.
    void failConverting(UErrorCode error);

    // "open default", "open UTF-8", "close ISO-8859-1", in their order.
    const Calls& calls() const;

    // Called by the entry points alone.
    UConverter* open(const char* name, UErrorCode* error);
    void close(UConverter* converter);
    UErrorCode convertingError() const { return converting; }

private:
    std::string defaultCodePage;
    int failing;
    UErrorCode failure;
    UErrorCode converting;
    int opened;
    Calls record;
};

}  // namespace OvMemTest

#endif
