#include "tests/hostile/Registration.h"

namespace OvMemTest {

Registration::Registration() {
    platform.transport.init(0);
}

void Registration::script(const std::vector<Piece>& reply) {
    platform.transport.receive(19).receive(20).replyFrom(
        [stream = PieceStream(reply)]() mutable { return stream.next(); });
}

Thrown Registration::run() {
    std::string server = "plant";
    std::string client = "pump";
    std::string locale;
    const Thrown thrown = thrownBy(
        [&] { connection.registerClient(server, client, locale, shared); });
    platform.transport.takeCalls();
    return thrown;
}

}  // namespace OvMemTest
