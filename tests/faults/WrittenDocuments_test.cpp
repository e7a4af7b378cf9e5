#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/schemas/SharedClientIDs.h"
#include "OvMemCppBinding/util/BaseObject.h"
#include "OvMemCppBinding/util/XmlStream.h"
#include "emulator/manager/SharedClientsReplies.h"
#include "tests/faults/FailingHeap.h"

// A document that is written while memory is short is whole, or its writer
// says that it is not. A string stream by itself would only be cut short.

namespace OvMemTest {

namespace {

using Orvane::Net::OvModelEventManager::Emulator::ClientList;
using Orvane::Net::OvModelEventManager::Emulator::SharedClientsReplies;
using Orvane::Net::OvModelEventManager::Util::BaseObject;
using Orvane::Net::OvModelEventManager::Util::XmlStream;
using Orvane::Schemas::OvModelEventManager::_2009_06::Base::SharedClientIDs;

using Document = std::shared_ptr<const std::string>;

// More than the first block of a stream takes.
const std::vector<std::string> ids(40, "a client & its longer name");

// The empty text where memory was missing.
std::string written(const std::function<Document()>& write,
                    FailingHeap::Plan plan) {
    Document document;
    {
        const FailingHeap::Scope scope(plan);
        try {
            document = write();
        } catch (const std::bad_alloc&) {
        }
    }
    return document ? *document : "";
}

void expectWholeOrNothing(const std::function<Document()>& write) {
    const std::string whole = *write();
    for (const bool andAllAfter : {false, true}) {
        std::uint64_t failAt = 1;
        for (;; ++failAt) {
            const std::string text = written(write, {failAt, andAllAfter});
            if (FailingHeap::refused() == 0) {
                EXPECT_EQ(text, whole);
                break;
            }
            EXPECT_EQ(text, "") << "request " << failAt << " was refused";
        }
        EXPECT_GT(failAt, ids.size()) << "there was nothing to refuse";
    }
}

// The text is taken last of all, when there is memory again.
class Opened : public BaseObject {
public:
    Opened() : BaseObject("urn:a-namespace-that-needs-memory") {}

    Opened* reallyClone() override { return new Opened(*this); }
    void getNamespaces(std::set<std::string>& namespaces) const override {
        namespaces.insert(namespaceURI);
    }
    void outputXML(XmlStream& stream) const {
        for (const std::string& id : ids)
            outputXMLBase(stream, id, "");
    }
};

}  // namespace

TEST(WrittenDocuments, AListOfClientsIsWholeOrRefused) {
    SharedClientIDs object;
    object.setSharedClients(ids);
    expectWholeOrNothing([&object] {
        XmlStream stream;
        object.outputXML(stream, "clients");
        return std::make_shared<const std::string>(stream.str());
    });
}

TEST(WrittenDocuments, StartTagsOfASchemaObjectAreWholeOrRefused) {
    const Opened object;
    expectWholeOrNothing([&object] {
        XmlStream stream;
        object.outputXML(stream);
        return std::make_shared<const std::string>(stream.str());
    });
}

TEST(WrittenDocuments, ARepliedListOfTheEmulatorIsWholeOrRefused) {
    const ClientList clients =
        std::make_shared<const std::vector<std::string>>(ids);
    expectWholeOrNothing([&clients] {
        return SharedClientsReplies().reply({"plant", "pump"}, clients);
    });
}

// Refused once, it is written afresh when it is asked for again.
TEST(WrittenDocuments, ARepliedListOfTheEmulatorIsNeverKeptInParts) {
    const ClientList clients =
        std::make_shared<const std::vector<std::string>>(ids);
    const std::string whole =
        *SharedClientsReplies().reply({"plant", "pump"}, clients);
    std::uint64_t refused = 0;
    for (std::uint64_t failAt = 1; failAt == 1 || refused != 0; ++failAt) {
        SharedClientsReplies replies;
        const auto reply = [&] {
            return replies.reply({"plant", "pump"}, clients);
        };
        written(reply, {failAt, false});
        refused = FailingHeap::refused();
        EXPECT_EQ(*reply(), whole) << "request " << failAt << " was refused";
    }
}

}  // namespace OvMemTest
