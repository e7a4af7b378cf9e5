#include "tests/util/RecordingReader.h"

#include <utility>

#include <xercesc/parsers/SAX2XMLReaderImpl.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "OvMemCppBinding/util/ParseWatch.h"
#include "OvMemCppBinding/util/SAXToNodeParser.h"

namespace OvMemTest {

namespace {

using Orvane::Net::OvModelEventManager::Util::DoctypeRefusal;
using Orvane::Net::OvModelEventManager::Util::ParseWatch;
using Orvane::Net::OvModelEventManager::Util::SAXToNodeParser;
using xercesc::SAX2XMLReaderImpl;

std::vector<std::string> calls;

template <typename Expected, typename Handler>
void record(const std::string& call, const std::string& expected,
            Handler* handler) {
    const bool asExpected = dynamic_cast<Expected*>(handler) != nullptr;
    calls.push_back(call + ": " + (asExpected ? expected : "another"));
}

class RecordingReader : public SAX2XMLReaderImpl {
public:
    using SAX2XMLReaderImpl::parse;
    using SAX2XMLReaderImpl::SAX2XMLReaderImpl;

    void setContentHandler(xercesc::ContentHandler* const handler) override {
        record<SAXToNodeParser>("setContentHandler", "the parser", handler);
        SAX2XMLReaderImpl::setContentHandler(handler);
    }
    void setErrorHandler(xercesc::ErrorHandler* const handler) override {
        record<SAXToNodeParser>("setErrorHandler", "the parser", handler);
        SAX2XMLReaderImpl::setErrorHandler(handler);
    }
    void setLexicalHandler(xercesc::LexicalHandler* const handler) override {
        record<DoctypeRefusal>("setLexicalHandler", "the refusal", handler);
        SAX2XMLReaderImpl::setLexicalHandler(handler);
    }
    void installAdvDocHandler(
        xercesc::XMLDocumentHandler* const handler) override {
        record<ParseWatch>("installAdvDocHandler", "the watch", handler);
        SAX2XMLReaderImpl::installAdvDocHandler(handler);
    }
    void setDTDHandler(xercesc::DTDHandler* const handler) override {
        calls.emplace_back("setDTDHandler");
        SAX2XMLReaderImpl::setDTDHandler(handler);
    }
    void setDeclarationHandler(xercesc::DeclHandler* const handler) override {
        calls.emplace_back("setDeclarationHandler");
        SAX2XMLReaderImpl::setDeclarationHandler(handler);
    }
    void setEntityResolver(xercesc::EntityResolver* const resolver) override {
        calls.emplace_back("setEntityResolver");
        SAX2XMLReaderImpl::setEntityResolver(resolver);
    }
    void setXMLEntityResolver(
        xercesc::XMLEntityResolver* const resolver) override {
        calls.emplace_back("setXMLEntityResolver");
        SAX2XMLReaderImpl::setXMLEntityResolver(resolver);
    }
    void setPSVIHandler(xercesc::PSVIHandler* const handler) override {
        calls.emplace_back("setPSVIHandler");
        SAX2XMLReaderImpl::setPSVIHandler(handler);
    }
    void setFeature(const XMLCh* const name, const bool value) override {
        calls.emplace_back("setFeature");
        SAX2XMLReaderImpl::setFeature(name, value);
    }
    void setProperty(const XMLCh* const name, void* value) override {
        calls.emplace_back("setProperty");
        SAX2XMLReaderImpl::setProperty(name, value);
    }
    void setValidator(xercesc::XMLValidator* validator) override {
        calls.emplace_back("setValidator");
        SAX2XMLReaderImpl::setValidator(validator);
    }
    void setExitOnFirstFatalError(const bool on) override {
        calls.emplace_back("setExitOnFirstFatalError");
        SAX2XMLReaderImpl::setExitOnFirstFatalError(on);
    }
    void setValidationConstraintFatal(const bool on) override {
        calls.emplace_back("setValidationConstraintFatal");
        SAX2XMLReaderImpl::setValidationConstraintFatal(on);
    }
    void setInputBufferSize(const XMLSize_t size) override {
        calls.emplace_back("setInputBufferSize");
        SAX2XMLReaderImpl::setInputBufferSize(size);
    }
    void parse(const xercesc::InputSource& source) override {
        calls.emplace_back("parse");
        SAX2XMLReaderImpl::parse(source);
    }
};

}  // namespace

std::vector<std::string> takeReaderCalls() {
    return std::exchange(calls, {});
}

}  // namespace OvMemTest

// In place of the XML library's.
xercesc::SAX2XMLReader* xercesc::XMLReaderFactory::createXMLReader(
    MemoryManager* const manager, XMLGrammarPool* const pool) {
    const bool shared = manager == XMLPlatformUtils::fgMemoryManager;
    OvMemTest::calls.emplace_back(shared ? "create: the memory of the platform"
                                         : "create: memory of its own");
    return new (manager) OvMemTest::RecordingReader(manager, pool);
}
