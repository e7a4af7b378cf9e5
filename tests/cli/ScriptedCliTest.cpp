#include "tests/cli/ScriptedCliTest.h"

#include "tests/support/Quoted.h"

namespace OvMemTest {

ScriptedCliTest::ScriptedCliTest() {
    ovmem.set("LD_LIBRARY_PATH", OVMEM_SCRIPTED_PLATFORM);
    ovmem.set("OVMEM_TEST_SCRIPT", folder.write("script", ""));
    ovmem.set("OVMEM_TEST_TRACE", folder.write("trace", ""));
}

void ScriptedCliTest::script(const std::string& lines) const {
    folder.write("script", lines);
}

std::string ScriptedCliTest::trace() const {
    return readFile(folder / "trace");
}

std::string exchange(const std::string& reply) {
    return "receive 19\nreceive 20\nreply " + inQuotes(reply) + "\n";
}

std::string failingExchange(int status, const std::string& text) {
    return "receive " + std::to_string(status) + "\nlast-error 0 " +
           inQuotes(text) + "\n";
}

}  // namespace OvMemTest
