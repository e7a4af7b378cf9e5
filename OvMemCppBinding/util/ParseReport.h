#ifndef OVMEMCPPBINDING_UTIL_PARSEREPORT_H
#define OVMEMCPPBINDING_UTIL_PARSEREPORT_H

#include <string>

#include <xercesc/sax/SAXParseException.hpp>

namespace Orvane::Net::OvModelEventManager::Util {

// The report of something wrong in a document: where, and in the words of the
// XML library what.
//
// `prefix` begins the report. `documentName` names a document that could not
// be opened at all. `documentText` is appended whole unless it is null.
std::string composeParseReport(const char* prefix,
                               const xercesc::SAXParseException& exception,
                               const std::string& documentName,
                               const char* documentText);

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
