#ifndef TESTS_EMULATOR_STOREREFUSAL_H
#define TESTS_EMULATOR_STOREREFUSAL_H

#include <functional>
#include <string>

#include "emulator/store/StoreError.h"

namespace OvMemTest {

// Why a store refuses `work`.
inline std::string storeRefusal(const std::function<void()>& work) {
    try {
        work();
    } catch (
        const Orvane::Net::OvModelEventManager::Emulator::StoreError& error) {
        return error.what();
    }
    return "no refusal";
}

}  // namespace OvMemTest

#endif
