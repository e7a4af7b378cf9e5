#include "cli/ExitCode.h"

#include <gtest/gtest.h>

TEST(ExitCode, EveryCodeIsListedOnceAndInOrder) {
    EXPECT_EQ(ovmem::cli::listExitCodes(),
              "   0  done\n"
              "   1  the command line or the event text is not acceptable\n"
              "   2  OvMEMConnectionException\n"
              "   3  OvMEMProtocolException\n"
              "   4  OvMEMRuntimeException\n"
              "   5  OvMEMUnrecognisedException\n"
              "   6  Exception: unregister failed\n"
              "   7  DomException: the reply is not the expected XML\n"
              "   8  any other exception\n"
              "   9  a local file or stream failed\n"
              "  10  the service answered the status check wrongly\n"
              "  11  nobody would receive what is put back\n"
              " 128  and the number of a signal added: get was told to "
              "stop\n");
}
