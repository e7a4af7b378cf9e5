#include "bench/IdsHandler.h"

#include <xercesc/util/XMLString.hpp>

namespace Orvane::Net::OvModelEventManager::Bench {

void IdsHandler::startElement(const XMLCh*, const XMLCh*, const XMLCh*,
                              const xercesc::Attributes&) {
    text.clear();
    ++depth;
}

void IdsHandler::characters(const XMLCh* chars, XMLSize_t length) {
    text.append(chars, length);
}

void IdsHandler::endElement(const XMLCh*, const XMLCh*, const XMLCh*) {
    if (depth-- == 2) {
        char* id = xercesc::XMLString::transcode(text.c_str());
        ids.emplace_back(id);
        xercesc::XMLString::release(&id);
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Bench
