#ifndef BENCH_IDSHANDLER_H
#define BENCH_IDSHANDLER_H

#include <string>
#include <vector>

#include <xercesc/sax2/DefaultHandler.hpp>

namespace Orvane::Net::OvModelEventManager::Bench {

// Collects the identifiers of a reply with the least code: what a reply is
// made of stays unlooked at.
class IdsHandler : public xercesc::DefaultHandler {
public:
    // Appends to `target`, which must live longer.
    explicit IdsHandler(std::vector<std::string>& target) : ids(target) {}

    void startElement(const XMLCh* uri, const XMLCh* localName,
                      const XMLCh* name,
                      const xercesc::Attributes& attributes) override;
    void characters(const XMLCh* chars, XMLSize_t length) override;
    void endElement(const XMLCh* uri, const XMLCh* localName,
                    const XMLCh* name) override;

private:
    std::vector<std::string>& ids;
    std::basic_string<XMLCh> text;
    int depth = 0;
};

}  // namespace Orvane::Net::OvModelEventManager::Bench

#endif
