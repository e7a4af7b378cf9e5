// Writes a list of clients as XML: alone, and inside a document of one's own.

#include <iostream>
#include <set>
#include <string>

#include <OvMemCppBinding/schemas/SharedClientIDs.h>
#include <OvMemCppBinding/util/ValueText.h>
#include <OvMemCppBinding/util/XmlEscape.h>
#include <OvMemCppBinding/util/XmlStream.h>

using namespace Orvane::Net::OvModelEventManager::Util;
using Orvane::Schemas::OvModelEventManager::_2009_06::Base::SharedClientIDs;

int main() {
    SharedClientIDs clients;
    clients.addSharedClientID("pump");
    clients.addSharedClientID("Kühlung & Heizung");

    XmlStream alone;
    clients.outputXML(alone, "clients");
    std::cout << alone.str() << "\n";

    // The first start tag declares the namespaces that are known by then.
    const std::string report = "urn:plant:report";
    std::set<std::string> namespaces = {report};
    clients.getNamespaces(namespaces);
    XmlStream document;
    document.addNamespaces(namespaces);
    document << document.startElement(report, "report");
    document << document.attribute("title", escape("\"Shift\" 17"));
    document << document.attribute("full", toString(true));
    document << document.closeStartTag(false);
    clients.outputXML(document, "clients");
    document << document.endElement(report, "report");
    std::cout << document.str() << "\n";
}
