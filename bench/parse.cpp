// A reply from its text to the caller's list of identifiers.

#include <memory>
#include <string>
#include <vector>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>

#include "OvMemCppBinding/schemas/SharedClientIDs.h"
#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "bench/IdsHandler.h"
#include "bench/Measure.h"
#include "bench/Reply.h"

namespace Orvane::Net::OvModelEventManager::Bench {

namespace {

using Schemas::OvModelEventManager::_2009_06::Base::SharedClientIDs;
using Util::SAXToNodeParser;
using Util::transcodeToString;

std::string replyOf(const benchmark::State& state) {
    startXmlLibrary();
    return reply(static_cast<std::size_t>(state.range(0)));
}

xercesc::MemBufInputSource sourceOf(const std::string& text) {
    return {reinterpret_cast<const XMLByte*>(text.data()), text.size(),
            "reply"};
}

void ours(benchmark::State& state) {
    const std::string text = replyOf(state);
    measure(state, [&] {
        std::vector<std::string> ids;
        SAXToNodeParser parser;
        SharedClientIDs bound;
        bound.parse(*parser.parseString(text));
        bound.getSharedClients(ids);
        return ids;
    });
}

void read(const std::string& text, xercesc::DefaultHandler& handler) {
    const std::unique_ptr<xercesc::SAX2XMLReader> reader(
        xercesc::XMLReaderFactory::createXMLReader());
    reader->setContentHandler(&handler);
    reader->setErrorHandler(&handler);
    reader->parse(sourceOf(text));
}

// Nothing can be faster that reads the reply with this library's SAX2 reader.
// Before it is measured with a handler that is empty, the same reading shows
// with one that collects what comes by.
void sax2Empty(benchmark::State& state) {
    const std::string text = replyOf(state);
    std::vector<std::string> ids;
    IdsHandler collecting(ids);
    read(text, collecting);
    state.counters["checksum"] = checksum(ids);
    measure(state, [&] {
        xercesc::DefaultHandler empty;
        read(text, empty);
        return Nothing();
    });
}

void dom(benchmark::State& state) {
    const std::string text = replyOf(state);
    measure(state, [&] {
        std::vector<std::string> ids;
        xercesc::XercesDOMParser parser;
        parser.setDoNamespaces(true);
        parser.parse(sourceOf(text));
        const xercesc::DOMElement* root =
            parser.getDocument()->getDocumentElement();
        for (const xercesc::DOMElement* child = root->getFirstElementChild();
             child != nullptr; child = child->getNextElementSibling()) {
            ids.push_back(transcodeToString(child->getTextContent(), false));
        }
        return ids;
    });
}

BENCHMARK(ours)
    ->Name("parse/ours")
    ->Arg(1)
    ->Arg(100)
    ->Arg(10000)
    ->Arg(12500)
    ->Arg(25000)
    ->Arg(50000)
    ->Arg(100000);
BENCHMARK(sax2Empty)
    ->Name("parse/sax2_empty")
    ->Arg(1)
    ->Arg(100)
    ->Arg(10000)
    ->Arg(100000);
BENCHMARK(dom)->Name("parse/dom")->Arg(1)->Arg(100)->Arg(10000)->Arg(100000);

}  // namespace

}  // namespace Orvane::Net::OvModelEventManager::Bench
