#include "OvMemCppBinding/util/SAXToNodeParser.h"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <new>
#include <utility>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

#include "OvMemCppBinding/util/DomException.h"
#include "OvMemCppBinding/util/ParseReport.h"

namespace Orvane::Net::OvModelEventManager::Util {

using xercesc::XMLPlatformUtils;

namespace {

constexpr char substituteCharacter = 0x1A;

// What the parts of a tree cost of its budget, without their texts. More than
// their memory, for some take time: references come one by one.
constexpr std::size_t elementPrice = 256;
constexpr std::size_t attributePrice = 512;
constexpr std::size_t textPrice = 64;
static_assert(elementPrice >= sizeof(XMLNode));

// Deliberate: one plain flag for the process.
// See docs/irregularities.md#substitute-flag.
bool replaceSubCharacters = false;

// Without its platform the XML library would end the process.
void requirePlatform() {
    if (XMLPlatformUtils::fgMemoryManager == nullptr)
        throw DomException("XML parser platform is not initialised");
}

bool isHighSurrogate(XMLCh unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

// The text belongs to the caller, who may free it after the parse.
struct ForgetText {
    const char*& text;
    ~ForgetText() { text = nullptr; }
};

struct ReleaseText {
    void operator()(char* text) const {
        xercesc::XMLString::release(&text, XMLPlatformUtils::fgMemoryManager);
    }
};

}  // namespace

SAXToNodeParser::SAXToNodeParser()
    : currentNode(nullptr), documentText(nullptr), highSurrogate(0) {}

SAXToNodeParser::~SAXToNodeParser() = default;

XMLNode* SAXToNodeParser::parseString(const std::string& xml) {
    prepareReader();
    documentName = "From String";
    documentText = xml.c_str();
    const ForgetText forget{documentText};
    // The terminating NUL is part of the input, and an embedded one ends it.
    xercesc::MemBufInputSource source(
        reinterpret_cast<const XMLByte*>(documentText),
        std::strlen(documentText) + 1, "From-String", false,
        &GuardedParse::memoryOf(guarded));
    source.setCopyBufToStream(false);
    reader->parse(source);
    return rootNode.get();
}

XMLNode* SAXToNodeParser::parseFile(const std::string& fileName) {
    prepareReader();
    documentName = fileName;
    reader->parse(fileName.c_str());
    return rootNode.get();
}

XMLNode* SAXToNodeParser::getRootNode() {
    if (!rootNode)
        rootNode = std::make_unique<XMLNode>();
    return rootNode.get();
}

void SAXToNodeParser::setReplaceSubCharacters(bool on) {
    replaceSubCharacters = on;
}

void SAXToNodeParser::prepareReader() {
    rootNode.reset();
    requirePlatform();
    budget = TreeBudget();
    highSurrogate = 0;
    auto nextGuarded = GuardedParse::begin(budget);
    std::unique_ptr<xercesc::SAX2XMLReader> created(
        xercesc::XMLReaderFactory::createXMLReader(
            &GuardedParse::memoryOf(nextGuarded)));
    // Deliberate: the reader of an earlier parse is not deleted. Under a guard
    // its memory goes back all the same.
    // See docs/irregularities.md#one-parse-per-parser.
    static_cast<void>(reader.release());
    guarded = std::move(nextGuarded);
    reader = std::move(created);
    reader->setContentHandler(this);
    reader->setErrorHandler(this);
    if (guarded)
        guarded->watch(*reader);
}

void SAXToNodeParser::appendText(const XMLCh* chars) {
    std::string text = transcodeToString(chars, replaceSubCharacters);
    if (currentNode == nullptr)
        return;
    budget.spend(textPrice + text.size());
    if (currentNode->text.empty())
        currentNode->text = std::move(text);
    else
        currentNode->text += text;
}

// A half that nothing followed; no well-formed document has one.
void SAXToNodeParser::flushText() {
    if (highSurrogate != 0) {
        const XMLCh lone[] = {highSurrogate, 0};
        highSurrogate = 0;
        appendText(lone);
    }
}

// Deliberate: `length` is not used; the chunk ends at its NUL.
// See docs/irregularities.md#chunks-end-at-their-nul.
void SAXToNodeParser::characters(const XMLCh* chars, XMLSize_t) {
    const XMLSize_t length = xercesc::XMLString::stringLen(chars);
    if (length == 0)
        return;
    const bool cut = isHighSurrogate(chars[length - 1]);
    if (highSurrogate == 0 && !cut) {
        appendText(chars);
        return;
    }
    std::basic_string<XMLCh> whole;
    if (highSurrogate != 0)
        whole.push_back(highSurrogate);
    whole.append(chars, cut ? length - 1 : length);
    highSurrogate = cut ? chars[length - 1] : XMLCh(0);
    appendText(whole.c_str());
}

void SAXToNodeParser::endDocument() {}

void SAXToNodeParser::endElement(const XMLCh*, const XMLCh*, const XMLCh*) {
    flushText();
    budget.leave();
    if (currentNode != nullptr)
        currentNode = currentNode->parent;
    else
        std::cerr << "End element called when not inside one!" << std::endl;
}

void SAXToNodeParser::ignorableWhitespace(const XMLCh*, XMLSize_t) {}

void SAXToNodeParser::processingInstruction(const XMLCh*, const XMLCh*) {}

void SAXToNodeParser::startDocument() {}

void SAXToNodeParser::startElement(const XMLCh* uri, const XMLCh* localname,
                                   const XMLCh*,
                                   const xercesc::Attributes& attrs) {
    flushText();
    budget.enter();
    auto node = std::make_unique<XMLNode>();
    node->name = transcodeToString(localname, false);
    node->namespaceURI = transcodeToString(uri, false);
    budget.spend(elementPrice + node->name.size() + node->namespaceURI.size());
    for (XMLSize_t i = 0; i < attrs.getLength(); ++i) {
        const std::string value =
            transcodeToString(attrs.getValue(i), replaceSubCharacters);
        const std::string name =
            transcodeToString(attrs.getLocalName(i), false);
        budget.spend(attributePrice + name.size() + value.size());
        node->setAttribute(name, value);
    }

    if (!rootNode) {
        rootNode = std::move(node);
        currentNode = rootNode.get();
    } else if (currentNode != nullptr) {
        node->parent = currentNode;
        currentNode->children.push_back(node.get());
        currentNode = node.release();
    }
    // Else there is no element for it to stand in, and it is dropped.
}

// Deliberate: a warning is composed and dropped.
// See docs/irregularities.md#warnings-are-dropped. The document would end the
// report. Nobody could see it there, and a copy of it for each of its warnings
// would take time that grows with the square of its length.
void SAXToNodeParser::warning(const xercesc::SAXParseException& exception) {
    static_cast<void>(composeParseReport("Warning: parsing: ", exception,
                                         documentName,
                                         documentText != nullptr));
}

void SAXToNodeParser::error(const xercesc::SAXParseException& exception) {
    throw DomException(
        composeParseReport("Error: parsing: ", exception, documentName, false));
}

void SAXToNodeParser::fatalError(const xercesc::SAXParseException& exception) {
    throw DomException(composeParseReport("Fatal Error: parsing: ", exception,
                                          documentName, false));
}

std::string transcodeToString(const XMLCh* source, bool replaceSub) {
    if (source == nullptr)
        return std::string();
    const std::unique_ptr<char, ReleaseText> transcoded(
        xercesc::XMLString::transcode(source,
                                      XMLPlatformUtils::fgMemoryManager));
    char* const text = transcoded.get();
    // What the code page lacks is substituted, so that a conversion can fail
    // only for want of memory, or on a text that is too long for the XML
    // library's arithmetic.
    if (text == nullptr)
        throw std::bad_alloc();
    const std::size_t length = std::strlen(text);
    if (replaceSub)
        std::replace(text, text + length, substituteCharacter, '?');
    return std::string(text, length);
}

}  // namespace Orvane::Net::OvModelEventManager::Util
