// The same as parse.cpp with other XML libraries.

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <expat.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <pugixml.hpp>

#include "bench/Measure.h"
#include "bench/Reply.h"

namespace Orvane::Net::OvModelEventManager::Bench {

namespace {

std::string replyOf(const benchmark::State& state) {
    return reply(static_cast<std::size_t>(state.range(0)));
}

void libxml2(benchmark::State& state) {
    const std::string text = replyOf(state);
    measure(state, [&] {
        std::vector<std::string> ids;
        const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
            xmlReadMemory(text.data(), static_cast<int>(text.size()), "reply",
                          nullptr, XML_PARSE_HUGE),
            &xmlFreeDoc);
        const xmlNode* root = xmlDocGetRootElement(document.get());
        for (const xmlNode* child = root->children; child != nullptr;
             child = child->next) {
            ids.emplace_back(
                reinterpret_cast<const char*>(child->children->content));
        }
        return ids;
    });
}

void pugi(benchmark::State& state) {
    const std::string text = replyOf(state);
    measure(state, [&] {
        std::vector<std::string> ids;
        pugi::xml_document document;
        document.load_buffer(text.data(), text.size());
        for (const pugi::xml_node& child :
             document.document_element().children()) {
            ids.emplace_back(child.child_value());
        }
        return ids;
    });
}

struct Collected {
    std::vector<std::string> ids;
    std::string text;
};

void XMLCALL expatStart(void* user, const XML_Char*, const XML_Char**) {
    static_cast<Collected*>(user)->text.clear();
}

void XMLCALL expatEnd(void* user, const XML_Char* name) {
    auto* collected = static_cast<Collected*>(user);
    const char* local = std::strchr(name, '^');
    if (local != nullptr && std::strcmp(local, "^sharedClients") == 0) {
        collected->ids.push_back(collected->text);
    }
}

void XMLCALL expatText(void* user, const XML_Char* text, int length) {
    static_cast<Collected*>(user)->text.append(
        text, static_cast<std::size_t>(length));
}

void expat(benchmark::State& state) {
    const std::string text = replyOf(state);
    measure(state, [&] {
        Collected collected;
        const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)>
            parser(XML_ParserCreateNS(nullptr, '^'), &XML_ParserFree);
        XML_SetUserData(parser.get(), &collected);
        XML_SetElementHandler(parser.get(), expatStart, expatEnd);
        XML_SetCharacterDataHandler(parser.get(), expatText);
        XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), 1);
        return std::move(collected.ids);
    });
}

BENCHMARK(libxml2)
    ->Name("parse/libxml2")
    ->Arg(1)
    ->Arg(100)
    ->Arg(10000)
    ->Arg(100000);
BENCHMARK(pugi)
    ->Name("parse/pugixml")
    ->Arg(1)
    ->Arg(100)
    ->Arg(10000)
    ->Arg(100000);
BENCHMARK(expat)
    ->Name("parse/expat")
    ->Arg(1)
    ->Arg(100)
    ->Arg(10000)
    ->Arg(100000);

}  // namespace

}  // namespace Orvane::Net::OvModelEventManager::Bench
