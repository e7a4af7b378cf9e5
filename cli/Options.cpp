#include "cli/Options.h"

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/Arguments.h"
#include "cli/ExitCode.h"
#include "cli/Failure.h"
#include "cli/HeaderValue.h"

namespace ovmem::cli {

namespace {

const char DESCRIPTION[] =
    "Talks to a Model Event Manager: registers a client, puts and gets events.";

const char FOOTER[] = R"(
Data goes to standard output, words to standard error. The clients that share
the events are written one a line; get writes the events byte for byte.

Values. '--client=' is the empty value; one that begins with '--' is written
--client=VALUE. After '--' every word is a file. The identity and the locale
are UTF-8, whatever the locale of the process.

Identity. A registration belongs to the service, but every run is a connection
of its own, which knows it only by registering. With --server, the commands
clients, put, get and unregister therefore register the identity again first;
what waits for it stays. If it was not registered before, it receives events
from then on. The service does not tell which it was; so clients, and get when
nothing waits, say that the identity is registered. Without --server they run
on a connection that is not registered, and report what the library says to
that.

Names. What others chose is escaped on a terminal and in the words: the bytes
of control and invisible characters, and those that are not UTF-8, as \xNN, a
backslash as two. A pipe or a file gets the names byte for byte. Events are
written byte for byte everywhere, also on a terminal; get --json shows unknown
ones safely.

Help. --help and --version are plain text, also with --json. They are answered
even if an unknown option stands beside them.

JSON. With --json, the data is one object on one line, and so is an error, on
standard error. A text that is not UTF-8 is given in base64, under its name
with "Base64" added ("eventsBase64").

Putting again. A put that failed, or was killed, may have arrived all the same.
With --id, and a service that knows a repeated put (the emulator with
dedupe=correlation in OVMEM_STORE), the same command can be repeated until it
succeeds: the events arrive once. Without it they may arrive twice.

Limits. One put carries 536870912 bytes (512 MiB) at most, and no NUL. More is
refused before anything is sent.

Being told to stop. SIGTERM, SIGINT and the other signals that end a process do
not end get while events are on their way: it delivers them, then ends. A
second signal, or --grace seconds after the first, ends it at once: if the
service has not answered by then, what it has handed out is lost; if standard
output has not taken everything, the events are saved. So they are at Ctrl-C,
Ctrl-\ and Ctrl-Z while get writes to a terminal, which drops output at these
keys.

Undelivered events. When get cannot deliver what it has fetched, it saves the
events in a file and says where: in $XDG_STATE_HOME/ovmem, else in
$HOME/.local/state/ovmem, the folder for temporary files, the current folder,
/tmp or /var/tmp. 'ovmem rescue' looks there, lists, shows and puts back. A put
goes to all other clients of the server, so put-back asks for a client that does
not need the events itself, and clients that had them get them again. For the
one client that missed them use 'rescue show'.

Exit codes:
)";

struct Commands {
    CLI::App* status;
    CLI::App* registerClient;
    CLI::App* clients;
    CLI::App* put;
    CLI::App* get;
    CLI::App* unregister;
    CLI::App* rescueList;
    CLI::App* rescueShow;
    CLI::App* rescuePutBack;
};

void addFooter(CLI::App& command) {
    command.footer("The common options: ovmem --help");
}

void addRescue(CLI::App& app, Commands& commands, Options& options) {
    CLI::App* rescue =
        app.add_subcommand("rescue", "List, show, put back what get has saved");
    rescue->require_subcommand(1);
    commands.rescueList = rescue->add_subcommand(
        "list", "Write name, bytes, time and path of each saved file");
    commands.rescueShow =
        rescue->add_subcommand("show", "Write saved events, byte for byte");
    commands.rescuePutBack = rescue->add_subcommand(
        "put-back",
        "Put saved events; remove the files once the service has them");
    for (CLI::App* command : {commands.rescueShow, commands.rescuePutBack}) {
        command
            ->add_option("NAME", options.files,
                         "Names, as 'rescue list' writes them, or paths\n"
                         "of such files; several are one text, in this\n"
                         "order")
            ->type_name("");
    }
    for (CLI::App* command : rescue->get_subcommands({})) {
        addFooter(*command);
    }
    commands.rescueList->footer(
        "In a path, control characters and bytes that are no UTF-8 are written "
        "as \\xNN,\nthe backslash as two. A folder that cannot be read is an "
        "error.\n\nThe common options: ovmem --help");
    commands.rescuePutBack->footer(
        "The events go to every client of --server but --client, also to those "
        "that\nhave had them. For one client that missed them, use 'rescue "
        "show'. If there\nis no other client, nothing is sent and the files "
        "stay. The pieces of one text (-01of12) are put in their order\nand "
        "all "
        "together, or not at all.\n\nThe common options: ovmem --help");
}

Commands addCommands(CLI::App& app, Options& options) {
    Commands commands{
        app.add_subcommand("status", "Ask whether the service is alive"),
        app.add_subcommand("register", "Register; write who shares the events"),
        app.add_subcommand("clients", "Write who shares the events"),
        app.add_subcommand("put", "Send events from files or standard input"),
        app.add_subcommand("get", "Fetch the waiting events, write them out"),
        app.add_subcommand("unregister", "Unregister; write who remains"),
        nullptr,
        nullptr,
        nullptr,
    };
    addRescue(app, commands, options);
    commands.put
        ->add_option("FILE", options.files,
                     "Event texts, sent as one in this order;\n'-' or nothing "
                     "is standard input")
        ->type_name("");  // for the help; sortArguments finds the files
    commands.put
        ->add_option("--id", options.id,
                     "What the put is known by if it is sent again")
        ->type_name("TEXT");
    for (CLI::App* command : app.get_subcommands({})) {
        addFooter(*command);
    }
    return commands;
}

Command chosen(const Commands& commands) {
    if (commands.registerClient->parsed()) {
        return Command::Register;
    }
    if (commands.clients->parsed()) {
        return Command::Clients;
    }
    if (commands.put->parsed()) {
        return Command::Put;
    }
    if (commands.get->parsed()) {
        return Command::Get;
    }
    if (commands.unregister->parsed()) {
        return Command::Unregister;
    }
    if (commands.rescueList->parsed()) {
        return Command::RescueList;
    }
    if (commands.rescueShow->parsed()) {
        return Command::RescueShow;
    }
    if (commands.rescuePutBack->parsed()) {
        return Command::RescuePutBack;
    }
    return Command::Status;
}

Failure refusal(const std::string& text) {
    return {ExitCode::Usage, text,
            "'ovmem --help' lists the commands and options."};
}

Failure unexpected(const std::string& word) {
    return refusal("The following argument was not expected: '" + word + "'.");
}

// True if the command line asked for an answer, which is then in `options`.
bool parse(CLI::App& app, const Arguments& arguments, Options& options) {
    try {
        // From the last word to the first, as the parser wants them.
        app.parse(std::vector<std::string>(arguments.words.rbegin(),
                                           arguments.words.rend()));
        if (!arguments.unknown.empty()) {
            throw unexpected(arguments.unknown);
        }
        return false;
    } catch (const CLI::CallForHelp&) {
        options.answer = app.help();
    } catch (const CLI::CallForVersion& version) {
        options.answer = std::string(version.what()) + "\n";
    } catch (const CLI::RequiredError&) {
        if (!arguments.unknown.empty()) {
            throw unexpected(arguments.unknown);
        }
        throw refusal(arguments.files.empty()
                          ? "A command is missing."
                          : "'" + arguments.files.front() +
                                "' is neither a command nor an option.");
    } catch (const CLI::ParseError& error) {
        throw refusal(std::string(error.what()) + ".");
    }
    return true;
}

// The files of a command that has some: one that declares a positional.
std::vector<std::string> takeFiles(const Arguments& arguments) {
    const auto declared = arguments.command->get_options(
        [](const CLI::Option* option) { return option->get_positional(); });
    if (declared.empty() && !arguments.files.empty()) {
        throw unexpected(arguments.files.front());
    }
    return arguments.files;
}

void checkNames(const Options& options) {
    const bool needed = options.command == Command::RescueShow ||
                        options.command == Command::RescuePutBack;
    if (needed && options.files.empty()) {
        throw Failure{ExitCode::Usage, "The name of saved events is missing.",
                      "'ovmem rescue list' names those there are."};
    }
}

bool needsIdentity(Command command) {
    return command != Command::Status && command != Command::RescueList &&
           command != Command::RescueShow;
}

void checkIdentity(const Options& options, bool hasClient) {
    if (options.command == Command::Register && !options.server) {
        throw Failure{ExitCode::Usage, "register needs --server.",
                      "Give --server, or set OVMEM_SERVER."};
    }
    if (options.command == Command::RescuePutBack && !options.server) {
        throw Failure{ExitCode::Usage, "rescue put-back needs --server.",
                      "Give --server, or set OVMEM_SERVER."};
    }
    if (options.server && !hasClient) {
        throw Failure{ExitCode::Usage, "--server needs --client as well.",
                      "Give --client, or set OVMEM_CLIENT."};
    }
    if (options.server) {
        checkHeaderValue("--server", *options.server);
    }
    checkHeaderValue("--client", options.client);
    checkHeaderValue("--locale", options.locale);
}

// A put is not known by what says nothing of it.
void checkId(const std::string& id) {
    const std::string advice =
        "Give --id a value that no other put of this client has.";
    if (id.empty()) {
        throw Failure{ExitCode::Usage, "--id is empty.", advice};
    }
    if (id == PUT_WITHOUT_ID) {
        throw Failure{ExitCode::Usage,
                      std::string("--id is '") + PUT_WITHOUT_ID +
                          "', which is what is sent without it.",
                      advice};
    }
    checkHeaderValue("--id", id);
}

}  // namespace

Options parseOptions(int count, const char* const* arguments) {
    Options options;
    std::string server;
    CLI::App app(DESCRIPTION, "ovmem");
    app.footer(&FOOTER[1] + listExitCodes());
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", "ovmem " OVMEM_VERSION,
                         "Write the version and end");
    app.set_help_flag("-h,--help", "Write this help and end");
    const CLI::Option* serverOption =
        app.add_option("--server", server, "The server identity")
            ->envname("OVMEM_SERVER");
    const CLI::Option* clientOption =
        app.add_option("--client", options.client, "The client identity")
            ->envname("OVMEM_CLIENT");
    app.add_option("--locale", options.locale, "The locale of the client")
        ->envname("OVMEM_LOCALE");
    std::string grace;
    CLI::Option* graceOption = app.add_option(
        "--grace", grace, "How long get goes on when told to stop (5)");
    graceOption->type_name("SECONDS");
    app.add_flag("--json", options.json, "Write JSON");
    app.add_flag("--quiet", options.quiet, "Write no words but errors");
    const Commands commands = addCommands(app, options);

    const Arguments sorted = sortArguments(app, count, arguments);
    if (parse(app, sorted, options)) {
        return options;
    }
    options.files = takeFiles(sorted);
    options.command = chosen(commands);
    if (serverOption->count() > 0) {
        options.server = server;
    }
    if (graceOption->count() > 0) {
        options.grace = parseGrace(grace);
    }
    checkNames(options);
    if (needsIdentity(options.command)) {
        checkIdentity(options, clientOption->count() > 0);
    }
    if (options.id) {
        checkId(*options.id);
    }
    return options;
}

}  // namespace ovmem::cli
