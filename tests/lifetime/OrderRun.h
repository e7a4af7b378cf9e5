#ifndef TESTS_LIFETIME_ORDERRUN_H
#define TESTS_LIFETIME_ORDERRUN_H

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/util/XmlPlatformGuard.h"
#include "tests/lifetime/Order.h"
#include "tests/support/ScriptedPlatformTest.h"

namespace OvMemTest {

// Lives through one order, beside a model of what is documented: the first
// connection created starts the platform, the first one destroyed ends it,
// unless it is held by a guard. As long as a platform lasts that a guard
// started, its panics are exceptions.
class OrderRun {
public:
    explicit OrderRun(bool heldByGuard);

    // Empty, or what was not as documented.
    std::string complaints(const Order& order);

private:
    using Connection =
        Orvane::Net::OvModelEventManager::Client::OvMEMConnection;

    struct Slot {
        std::unique_ptr<Connection> connection;
        bool started = false;  // as the connection believes of its transport
    };

    void happen(const Event& event);
    void use(Slot& slot);
    bool platformRuns() const { return guard || ready; }
    void lookAtThePlatform();
    void expect(bool truth, const std::string& what);

    std::optional<Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard>
        guard;
    bool ready = false;
    bool startedByGuard;
    std::array<Slot, 3> slots;
    ScriptedPlatform platform;
    std::string complaint;
};

}  // namespace OvMemTest

#endif
