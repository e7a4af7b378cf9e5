#ifndef TESTS_EMULATOR_CLIENTS_H
#define TESTS_EMULATOR_CLIENTS_H

#include "emulator/store/EventStore.h"

namespace OvMemTest {

// Clients that share the events of a plant.
inline const Orvane::Net::OvModelEventManager::Emulator::Identity pump{"plant",
                                                                       "pump"},
    valve{"plant", "valve"}, motor{"plant", "motor"};

}  // namespace OvMemTest

#endif
