#ifndef EMULATOR_STORE_STOREERROR_H
#define EMULATOR_STORE_STOREERROR_H

#include <stdexcept>

namespace Orvane::Net::OvModelEventManager::Emulator {

// The store cannot be reached, or waited too long for another process. The
// text is whole sentences for the person at the application: what was wrong and
// what to do about it.
class StoreError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
