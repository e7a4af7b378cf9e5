#include "emulator/manager/RequestHeader.h"

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <utility>

#include "emulator/manager/Refusal.h"
#include "emulator/manager/ShownText.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

using Headers = std::map<std::string_view, std::string_view>;

constexpr std::string_view lineEnd = "\r\n";
constexpr std::string_view service = "OvMEMRequest";

constexpr std::array<std::pair<const char*, Operation>, 6> operations{{
    {"registerClient", Operation::registerClient},
    {"unregisterClient", Operation::unregisterClient},
    {"getSharedClients", Operation::getSharedClients},
    {"getEvents", Operation::getEvents},
    {"putEvents", Operation::putEvents},
    {"getStatus", Operation::getStatus},
}};

Refusal malformed(const std::string& text) {
    return Refusal(Status::malformed, text);
}

std::string operationList() {
    std::string list;
    for (const auto& known : operations) {
        list += list.empty() ? "" : ", ";
        list += known.first;
    }
    return list;
}

void addLine(Headers& headers, std::string_view line) {
    const auto equals = line.find('=');
    if (equals == std::string_view::npos || equals == 0) {
        throw malformed("The header line " + shown(line) +
                        " is not of the form name=value. Write every header "
                        "so, and end it with CR LF.");
    }
    const std::string_view name = line.substr(0, equals);
    if (!headers.emplace(name, line.substr(equals + 1)).second) {
        throw malformed("The header " + shown(name) +
                        " is given twice. Send it once.");
    }
}

Headers parseLines(std::string_view block) {
    Headers headers;
    for (;;) {
        const auto end = block.find(lineEnd);
        if (end == std::string_view::npos) {
            throw malformed(
                "The header block has no empty line at its end. Close it with "
                "CR LF alone.");
        }
        const std::string_view line = block.substr(0, end);
        block.remove_prefix(end + lineEnd.size());
        if (line.empty()) {
            break;
        }
        addLine(headers, line);
    }
    if (!block.empty()) {
        throw malformed(
            "The header block goes on after its empty line. Send the body "
            "after OvMem_Receive has asked for it.");
    }
    return headers;
}

void requireService(const Headers& headers) {
    const auto header = headers.find("Service-Name");
    if (header == headers.end() || header->second != service) {
        throw malformed(
            "The request is not for this service. Send the header "
            "Service-Name=OvMEMRequest.");
    }
}

Operation requireOperation(const Headers& headers) {
    const auto header = headers.find("Operation-Name");
    if (header == headers.end()) {
        throw malformed(
            "The request names no operation. Send the header Operation-Name "
            "with one of " +
            operationList() + ".");
    }
    for (const auto& known : operations) {
        if (header->second == known.first) {
            return known.second;
        }
    }
    throw malformed("The operation " + shown(header->second) +
                    " is unknown. Send the header Operation-Name with one of " +
                    operationList() + ".");
}

std::string requireIdentity(const Headers& headers, const char* name,
                            Operation operation) {
    const auto header = headers.find(name);
    if (header == headers.end()) {
        throw malformed(std::string("The operation ") +
                        operationName(operation) + " needs the header " + name +
                        ". Send it; its value may be empty.");
    }
    return std::string(header->second);
}

std::string correlationOf(const Headers& headers) {
    const auto header = headers.find("Log-Correlation-ID");
    return header == headers.end() || header->second == "ovmem.put"
               ? std::string()
               : std::string(header->second);
}

}  // namespace

const char* operationName(Operation operation) {
    for (const auto& known : operations) {
        if (known.second == operation) {
            return known.first;
        }
    }
    return "";
}

RequestHeader RequestHeader::parse(std::string_view block) {
    const Headers headers = parseLines(block);
    requireService(headers);
    RequestHeader request;
    request.operation = requireOperation(headers);
    if (request.operation != Operation::getStatus) {
        request.caller.serverId =
            requireIdentity(headers, "Server-ID", request.operation);
        request.caller.clientId =
            requireIdentity(headers, "Client-ID", request.operation);
        request.correlation = correlationOf(headers);
    }
    return request;
}

WholeRequest WholeRequest::split(std::string_view text) {
    constexpr std::string_view blockEnd = "\r\n\r\n";
    const auto end = text.find(blockEnd);
    if (end == std::string_view::npos) {
        throw malformed(
            "The request has no empty line after its header block. Close the "
            "header block with CR LF alone.");
    }
    const std::size_t length = end + blockEnd.size();
    return {text.substr(0, length), text.substr(length)};
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
