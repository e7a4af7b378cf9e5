#include "OvMemCppBinding/util/ParseReport.h"

#include "OvMemCppBinding/util/SAXToNodeParser.h"

namespace Orvane::Net::OvModelEventManager::Util {

std::string composeParseReport(const char* prefix,
                               const xercesc::SAXParseException& exception,
                               const std::string& documentName,
                               bool announceDocument) {
    const std::string systemId =
        transcodeToString(exception.getSystemId(), true);
    if (systemId.empty())
        return "XML Document '" + documentName + "' does not exist.\n";

    // A string, not a stream: out of memory, a stream would only cut the text.
    std::string report = prefix + systemId + ": line " +
                         std::to_string(exception.getLineNumber()) + ", char " +
                         std::to_string(exception.getColumnNumber()) + "\n";
    const std::string message = transcodeToString(exception.getMessage(), true);
    if (!message.empty())
        report += "Message: " + message + "\n";
    if (announceDocument)
        report += "XML Document:\n";
    return report;
}

}  // namespace Orvane::Net::OvModelEventManager::Util
