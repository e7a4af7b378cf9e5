#include "tests/faults/HeapLoss.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace OvMemTest {

namespace {

constexpr std::array allocators{
    "malloc",
    "calloc",
    "realloc",
    "memalign",
    "operator new(unsigned long)",
    "operator new[](unsigned long)",
    "xercesc_3_2::MemoryManagerImpl::allocate(unsigned long)",
    "xercesc_3_2::XMemory::operator new(unsigned long, "
    "xercesc_3_2::MemoryManager*)"};

const std::string createReader =
    "xercesc_3_2::XMLReaderFactory::createXMLReader(xercesc_3_2::MemoryManager*"
    ", "
    "xercesc_3_2::XMLGrammarPool*)";
const std::string parse =
    "xercesc_3_2::SAX2XMLReaderImpl::parse(xercesc_3_2::InputSource const&)";

std::string functionOf(const std::string& frame) {
    return frame.substr(frame.find(':') + 1);
}

bool inThisProgram(const std::string& frame) {
    return frame.starts_with(std::string(program_invocation_short_name) + ":");
}

bool allocates(const std::string& frame) {
    const std::string function = functionOf(frame);
    return std::find(allocators.begin(), allocators.end(), function) !=
           allocators.end();
}

}  // namespace

std::string whoLost(const std::vector<std::string>& stack) {
    // Further in than the request itself are the frames of its hook.
    const auto request = std::find_if(stack.begin(), stack.end(), allocates);
    const auto asker = std::find_if_not(request, stack.end(), allocates);
    const auto ours = std::find_if(asker, stack.end(), inThisProgram);
    if (ours == asker || ours == stack.end()) {
        return {};
    }
    const std::string called = functionOf(*(ours - 1));
    const bool readerItself = called == createReader && ours - asker == 1;
    const bool excused =
        (called == createReader && !readerItself) || called == parse;
    return excused ? called.substr(0, called.find('(')) : std::string();
}

std::string inOneLine(const std::vector<std::string>& stack) {
    std::string line;
    for (const std::string& frame : stack) {
        line += (line.empty() ? "" : " < ") + frame;
    }
    return line;
}

}  // namespace OvMemTest
