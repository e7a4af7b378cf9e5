#ifndef TESTS_WIRE_WIRETEXT_H
#define TESTS_WIRE_WIRETEXT_H

#include <string>
#include <string_view>
#include <vector>

namespace OvMemTest {

// The words of a wire case, one after the other. Blanks, line ends and
// comments between them do not matter.
//
// THROWS: std::invalid_argument when what is asked for does not come next.
class WireText {
public:
    // Borrows `text`.
    explicit WireText(std::string_view text);

    bool atEnd() const;
    bool atText() const;
    bool atNumber() const;

    std::string word();  // letters, digits and "_"
    int number();
    std::string text();                 // quoted pieces, joined
    std::vector<std::string> texts();   // separated by commas, or `none`
    std::string until(char delimiter);  // raw, without it; takes it too

    bool accept(std::string_view mark);
    void expect(std::string_view mark);

    // THROWS: always, with the number of the current line.
    [[noreturn]] void fail(const std::string& what) const;

private:
    void skip();

    std::string_view whole;
    std::string_view rest;
};

}  // namespace OvMemTest

#endif
