#include "OvMemCppBinding/util/ParseReport.h"

#include <locale>
#include <sstream>

#include "OvMemCppBinding/util/SAXToNodeParser.h"

namespace Orvane::Net::OvModelEventManager::Util {

std::string composeParseReport(const char* prefix,
                               const xercesc::SAXParseException& exception,
                               const std::string& documentName,
                               const char* documentText) {
    const std::string systemId =
        transcodeToString(exception.getSystemId(), true);
    if (systemId.empty())
        return "XML Document '" + documentName + "' does not exist.\n";

    std::ostringstream report;
    report.imbue(std::locale::classic());
    report << prefix << systemId << ": line " << exception.getLineNumber()
           << ", char " << exception.getColumnNumber() << "\n";
    const std::string message = transcodeToString(exception.getMessage(), true);
    if (!message.empty())
        report << "Message: " << message << "\n";
    if (documentText != nullptr)
        report << "XML Document:\n" << documentText;
    return report.str();
}

}  // namespace Orvane::Net::OvModelEventManager::Util
