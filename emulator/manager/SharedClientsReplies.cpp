#include "emulator/manager/SharedClientsReplies.h"

#include "OvMemCppBinding/schemas/SharedClientIDs.h"
#include "OvMemCppBinding/util/XmlStream.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

using Schemas::OvModelEventManager::_2009_06::Base::SharedClientIDs;

constexpr std::size_t mostKeptBytes = 16 * 1024 * 1024;

std::string write(const std::string& clientId,
                  const std::vector<std::string>& clients) {
    SharedClientIDs others;
    for (const std::string& id : clients) {
        if (id != clientId) {
            others.addSharedClientID(id);
        }
    }
    Util::XmlStream xml;
    others.outputXML(xml, "SharedClientIDs");
    return xml.str();
}

}  // namespace

std::shared_ptr<const std::string> SharedClientsReplies::reply(
    const Identity& caller, const ClientList& clients) {
    if (keptBytes > mostKeptBytes) {
        servers.clear();
        keptBytes = 0;
    }
    Server& server = servers[caller.serverId];
    if (server.clients != clients) {
        server.clients = clients;
        server.texts.clear();
    }
    auto& text = server.texts[caller.clientId];
    if (!text) {
        text = std::make_shared<const std::string>(
            write(caller.clientId, *clients));
        keptBytes += text->size();
    }
    return text;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
