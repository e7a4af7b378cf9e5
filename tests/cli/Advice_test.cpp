#include "cli/Advice.h"

#include <gtest/gtest.h>

using namespace ovmem::cli;

namespace {

const char OWN[] = "What the library advises.";

const ExitCode EXIT_CODES[] = {ExitCode::Usage,
                               ExitCode::ConnectionException,
                               ExitCode::ProtocolException,
                               ExitCode::RuntimeException,
                               ExitCode::UnrecognisedException,
                               ExitCode::DomException,
                               ExitCode::AnyOtherException,
                               ExitCode::InputOutput};

const Command COMMANDS[] = {Command::Status,  Command::Register,
                            Command::Clients, Command::Put,
                            Command::Get,     Command::Unregister};

ErrorReport report(ExitCode exitCode, std::optional<int> type = std::nullopt,
                   const std::string& text = "",
                   const std::string& cause = "") {
    return {exitCode, "Class", type, text, "statement", OWN, cause};
}

Progress reached(Command command, bool namesServer, bool registered) {
    return {command, namesServer, false, registered};
}

std::string adviceOn(ErrorReport failure, const Progress& progress) {
    adviseUser(failure, progress);
    return failure.advice;
}

const char PUT_MAY_HAVE_ARRIVED[] =
    "Unless the text says otherwise, the events may have arrived. If you put "
    "them again, they may arrive twice.";

}  // namespace

TEST(Advice, IsTheLibrarysOwnUntilTheIdentityIsRegistered) {
    for (const ExitCode exitCode : EXIT_CODES) {
        if (exitCode == ExitCode::DomException) {
            continue;
        }
        for (const Command command : COMMANDS) {
            EXPECT_EQ(
                adviceOn(report(exitCode, 0), reached(command, true, false)),
                OWN);
        }
    }
}

TEST(Advice, AWrongAnswerToTheRegistrationCarriedOutNothingElse) {
    for (const Command command :
         {Command::Register, Command::Clients, Command::Put, Command::Get,
          Command::Unregister}) {
        EXPECT_EQ(adviceOn(report(ExitCode::DomException),
                           reached(command, true, false)),
                  "Check that it is a Model Event Manager that answers. The "
                  "client may be registered now; nothing else was asked for.");
        EXPECT_EQ(adviceOn(report(ExitCode::DomException),
                           reached(command, true, true)),
                  OWN);
    }
}

TEST(Advice, EventsMayHaveArrivedWhenAPutFailsInDoubt) {
    for (const ExitCode exitCode :
         {ExitCode::ConnectionException, ExitCode::RuntimeException,
          ExitCode::UnrecognisedException, ExitCode::AnyOtherException}) {
        EXPECT_EQ(
            adviceOn(report(exitCode, 0), reached(Command::Put, true, true)),
            PUT_MAY_HAVE_ARRIVED);
        for (const Command command :
             {Command::Clients, Command::Get, Command::Unregister}) {
            EXPECT_EQ(
                adviceOn(report(exitCode, 0), reached(command, true, true)),
                OWN);
        }
    }
    for (const ExitCode exitCode : {ExitCode::InputOutput, ExitCode::Usage}) {
        EXPECT_EQ(adviceOn(report(exitCode), reached(Command::Put, true, true)),
                  OWN);
    }
}

TEST(Advice, APutWithAnIdArrivesTwiceOnlyWhereTheServiceDoesNotKnowIt) {
    for (const Command command : {Command::Put, Command::RescuePutBack}) {
        Progress progress = reached(command, true, true);
        progress.sendsId = true;
        EXPECT_EQ(
            adviceOn(report(ExitCode::ConnectionException, 0), progress),
            "Unless the text says otherwise, the events may have arrived. If "
            "you run the same command again, they arrive twice only where the "
            "service does not store a repeated put once.");
    }
}

TEST(Advice, ARefusalAfterRegisteringMayGoAwayByRegisteringAgain) {
    const Progress progress = reached(Command::Put, true, true);
    EXPECT_EQ(adviceOn(report(ExitCode::ProtocolException, 0), progress),
              "Run it again, which registers first; if it fails again, change "
              "what was asked for.");
    EXPECT_EQ(adviceOn(report(ExitCode::ProtocolException, 0,
                              "Reply chunk exceeds the receive buffer."),
                       progress),
              OWN);
}

TEST(Advice, TheServiceMayStillKnowAClientThatFailedToUnregister) {
    EXPECT_EQ(adviceOn(report(ExitCode::PlainException, 0),
                       reached(Command::Unregister, true, true)),
              "Unless the text says otherwise, the service may still know the "
              "client. Run 'ovmem unregister' again.");
}

TEST(Advice, AnIdentityIsAskedForOnlyWhereNoneWasNamed) {
    const std::string named =
        "The server identity is empty, which the library takes for none. Name "
        "one with --server or OVMEM_SERVER.";
    const std::string unnamed =
        "Name the identity with --server and --client, or with OVMEM_SERVER "
        "and OVMEM_CLIENT.";
    const ErrorReport failure = report(ExitCode::ProtocolException, -2);
    EXPECT_EQ(adviceOn(failure, reached(Command::Get, true, true)), named);
    EXPECT_EQ(adviceOn(failure, reached(Command::Get, false, false)), unnamed);
    EXPECT_EQ(adviceOn(report(ExitCode::PlainException, 0),
                       reached(Command::Unregister, false, false)),
              unnamed);
    EXPECT_EQ(adviceOn(report(ExitCode::ConnectionException, 0),
                       reached(Command::Status, false, false)),
              OWN);
}

TEST(Advice, OnAFailedStatusCheckFollowsWhetherTheCauseIsKnown) {
    const Progress progress = reached(Command::Status, false, false);
    EXPECT_EQ(adviceOn(report(ExitCode::ConnectionException, -1), progress),
              "Check that the service can be reached; the transport names no "
              "cause.");
    EXPECT_EQ(adviceOn(report(ExitCode::ConnectionException, -1, "", "cause"),
                       progress),
              "Remove the cause, then try again.");
}

TEST(Advice, OnAConnectionThatFailsFollowsWhetherTheTransportNamesACause) {
    const ErrorReport named =
        report(ExitCode::ConnectionException, 0, "Make the folder writable.");
    const ErrorReport unnamed = report(ExitCode::ConnectionException, 0);
    for (const Progress& progress : {reached(Command::Clients, false, false),
                                     reached(Command::Get, true, false),
                                     reached(Command::Get, true, true)}) {
        EXPECT_EQ(adviceOn(named, progress),
                  "Remove the cause, then try again.");
        EXPECT_EQ(adviceOn(unnamed, progress), OWN);
    }
    EXPECT_EQ(adviceOn(named, reached(Command::Put, true, true)),
              PUT_MAY_HAVE_ARRIVED);
}

TEST(Advice, NobodyIsToldToGrantMemoryWhoCannot) {
    for (const std::string text :
         {"XmlPlatformGuard: the XML library may hold no more than 9 bytes",
          "XmlPlatformGuard: the tree of a document may hold no more than 9 "
          "bytes"}) {
        EXPECT_EQ(adviceOn(report(ExitCode::DomException, std::nullopt, text),
                           reached(Command::Clients, true, true)),
                  "Check that it is a Model Event Manager that answers; ovmem "
                  "takes no answer as large as this.");
    }
}
