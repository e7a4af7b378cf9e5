// A list of identifiers written as an XML document.

#include <memory>
#include <string>

#include <libxml/xmlwriter.h>

#include "OvMemCppBinding/schemas/SharedClientIDs.h"
#include "OvMemCppBinding/util/XmlStream.h"
#include "bench/Measure.h"
#include "bench/Reply.h"

namespace Orvane::Net::OvModelEventManager::Bench {

namespace {

using Schemas::OvModelEventManager::_2009_06::Base::SharedClientIDs;

const xmlChar* xml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

struct BufferFree {
    void operator()(xmlBuffer* buffer) const { xmlBufferFree(buffer); }
};

using XmlBuffer = std::unique_ptr<xmlBuffer, BufferFree>;

std::uint32_t checksum(const XmlBuffer& buffer) {
    return Bench::checksum(std::string_view(
        reinterpret_cast<const char*>(xmlBufferContent(buffer.get())),
        static_cast<std::size_t>(xmlBufferLength(buffer.get()))));
}

void ours(benchmark::State& state) {
    SharedClientIDs ids;
    ids.setSharedClients(identifiers(static_cast<std::size_t>(state.range(0))));
    measure(state, [&] {
        Util::XmlStream stream;
        ids.outputXML(stream, "sharedClientIDs");
        return stream.str();
    });
}

void libxml2(benchmark::State& state) {
    const std::vector<std::string> ids =
        identifiers(static_cast<std::size_t>(state.range(0)));
    measure(state, [&] {
        XmlBuffer buffer(xmlBufferCreate());
        const std::unique_ptr<xmlTextWriter, decltype(&xmlFreeTextWriter)>
            owner(xmlNewTextWriterMemory(buffer.get(), 0), &xmlFreeTextWriter);
        xmlTextWriter* writer = owner.get();
        xmlTextWriterWriteRaw(writer, xml("\n"));
        xmlTextWriterStartElement(writer, xml("ns0:sharedClientIDs"));
        xmlTextWriterWriteAttribute(writer, xml("xmlns:ns0"),
                                    xml(schemaNamespace));
        for (const std::string& id : ids) {
            xmlTextWriterWriteElement(writer, xml("ns0:sharedClients"),
                                      xml(id.c_str()));
        }
        xmlTextWriterEndElement(writer);
        xmlTextWriterFlush(writer);
        return buffer;
    });
}

BENCHMARK(ours)
    ->Name("write/ours")
    ->Arg(100)
    ->Arg(25000)
    ->Arg(50000)
    ->Arg(100000);
BENCHMARK(libxml2)->Name("write/libxml2")->Arg(100)->Arg(100000);

}  // namespace

}  // namespace Orvane::Net::OvModelEventManager::Bench
