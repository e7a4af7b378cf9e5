#ifndef TESTS_UTIL_COMMALOCALE_H
#define TESTS_UTIL_COMMALOCALE_H

#include <locale>
#include <string>

namespace OvMemTest {

// While it lives, the global locale writes numbers as 1.234.567,5.
class CommaLocale {
public:
    CommaLocale()
        : before(std::locale::global(
              std::locale(std::locale::classic(), new Numbers))) {}
    ~CommaLocale() { std::locale::global(before); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

private:
    class Numbers : public std::numpunct<char> {
    protected:
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };

    std::locale before;
};

}  // namespace OvMemTest

#endif
