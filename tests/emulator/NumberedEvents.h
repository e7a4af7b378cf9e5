#ifndef TESTS_EMULATOR_NUMBEREDEVENTS_H
#define TESTS_EMULATOR_NUMBEREDEVENTS_H

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

namespace OvMemTest {

// Of "2;0;1;", in ascending order.
inline std::vector<int> numbersIn(const std::string& events) {
    std::vector<int> numbers;
    std::istringstream stream(events);
    for (std::string number; std::getline(stream, number, ';');) {
        numbers.push_back(std::stoi(number));
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

// From 0 on.
inline std::vector<int> firstNumbers(int count) {
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

}  // namespace OvMemTest

#endif
