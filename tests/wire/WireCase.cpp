#include "tests/wire/WireCase.h"

#include <map>

#include "tests/support/Quoted.h"
#include "tests/wire/WireText.h"

namespace OvMemTest {

namespace {

// How many arguments each operation takes.
const std::map<std::string, std::size_t> operations{
    {"registerClient", 3}, {"unregisterClient", 0}, {"getSharedClients", 0},
    {"getEvents", 1},      {"putEvents", 2},        {"getStatus", 0}};

const std::map<std::string, std::string WireState::*> textValues{
    {"server", &WireState::server},        {"client", &WireState::client},
    {"locale", &WireState::locale},        {"events", &WireState::events},
    {"requestId", &WireState::requestId},  {"sessionId", &WireState::sessionId},
    {"userAction", &WireState::userAction}};

// Takes the value that is called `name`, if one is.
bool takeValue(const std::string& name, WireText& text, WireState& state) {
    if (name == "started") {
        state.started = true;
    } else if (name == "clients") {
        text.expect("=");
        state.clients = text.texts();
    } else if (textValues.contains(name)) {
        text.expect("=");
        state.*textValues.at(name) = text.text();
    } else {
        return false;
    }
    return true;
}

WireCall takeCall(const std::string& function, WireText& text) {
    WireCall result;
    result.function = function;
    text.expect("(");
    std::string argument;
    if (text.atText()) {
        argument = inQuotes(text.text());
        text.expect(")");
    } else {
        argument = text.until(')');
    }
    result.call = function + "(" + argument + ")";
    text.expect("->");
    if (text.atNumber()) {
        result.status = text.number();
        if (text.atText()) {
            result.text = text.text();
        } else {
            text.accept("null");
        }
    } else {
        result.text = text.text();
        result.status = static_cast<std::int32_t>(result.text->size());
    }
    return result;
}

WireStep takeStep(const std::string& operation, WireText& text) {
    WireStep step;
    step.operation = operation;
    text.expect("(");
    if (!text.accept(")")) {
        step.arguments = text.texts();
        text.expect(")");
    }
    if (step.arguments.size() != operations.at(operation)) {
        text.fail(operation + " takes " +
                  std::to_string(operations.at(operation)) + " arguments");
    }
    return step;
}

// What an operation gives back by way of a result or an exception.
bool takeOutcome(const std::string& name, WireText& text, WireStep& step) {
    if (name == "returns") {
        step.returned = text.number();
    } else if (name == "throws") {
        step.thrown.type = text.word();
        if (text.accept("*")) {
            step.thrown.type += '*';
        }
        step.thrown.code = text.number();
        step.thrown.message = text.text();
    } else {
        return false;
    }
    return true;
}

}  // namespace

WireCase parseWireCase(std::string_view whole) {
    WireCase result;
    WireText text(whole);
    WireState state;
    while (!text.atEnd()) {
        const std::string name = text.word();
        if (operations.contains(name)) {
            result.steps.push_back(takeStep(name, text));
        } else if (!takeValue(name, text, state)) {
            if (result.steps.empty()) {
                text.fail("unknown value '" + name + "'");
            }
            WireStep& step = result.steps.back();
            if (name.starts_with("OvMem_")) {
                step.calls.push_back(takeCall(name, text));
                state.started |=
                    name == "OvMem_Init" && step.calls.back().status == 0;
            } else if (!takeOutcome(name, text, step)) {
                text.fail("unknown outcome '" + name + "'");
            }
        }
        (result.steps.empty() ? result.before : result.steps.back().after) =
            state;
    }
    if (result.steps.empty()) {
        text.fail("there is no operation");
    }
    return result;
}

}  // namespace OvMemTest
