#ifndef OVMEMCPPBINDING_UTIL_PARSEREPORT_H
#define OVMEMCPPBINDING_UTIL_PARSEREPORT_H

#include <string>

#include <xercesc/sax/SAXParseException.hpp>

namespace Orvane::Net::OvModelEventManager::Util {

// The report of something wrong in a document: where, and in the words of the
// XML library what.
//
// `prefix` begins the report. `documentName` names a document that could not
// be opened at all. With `announceDocument` the report ends with the line that
// stands before a copy of the document; the copy is left to the caller.
std::string composeParseReport(const char* prefix,
                               const xercesc::SAXParseException& exception,
                               const std::string& documentName,
                               bool announceDocument);

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
