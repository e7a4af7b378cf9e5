#include "tests/support/Thrown.h"

#include <cstdlib>
#include <exception>
#include <memory>
#include <ostream>
#include <typeinfo>

#include <cxxabi.h>

#include "OvMemCppBinding/client/Exceptions.h"
#include "OvMemCppBinding/util/DomException.h"
#include "tests/support/Quoted.h"

namespace OvMemTest {

namespace Client = Orvane::Net::OvModelEventManager::Client;
using Orvane::Net::OvModelEventManager::Util::DomException;

namespace {

std::string currentType() {
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };
    int status = 0;
    const std::unique_ptr<char, Free> name(
        abi::__cxa_demangle(abi::__cxa_current_exception_type()->name(),
                            nullptr, nullptr, &status));
    const std::string whole(name.get());
    const auto colon = whole.rfind(':');
    return colon == std::string::npos ? whole : whole.substr(colon + 1);
}

}  // namespace

Thrown thrownBy(const std::function<void()>& code) {
    try {
        code();
    } catch (const Client::Exception& exception) {
        return {currentType(), exception.getType(), exception.getMessage()};
    } catch (Client::OvMEMProtocolException* pointer) {
        const std::unique_ptr<Client::OvMEMProtocolException> owner(pointer);
        return {currentType(), owner->getType(), owner->getMessage()};
    } catch (DomException& exception) {
        return {currentType(), 0, exception.getMessage()};
    } catch (const std::exception& exception) {
        return {currentType(), 0, exception.what()};
    } catch (...) {
        return {currentType(), 0, ""};
    }
    return nothingThrown;
}

std::ostream& operator<<(std::ostream& stream, const Thrown& thrown) {
    return stream << thrown.type << "(" << thrown.code << ", "
                  << inQuotes(thrown.message) << ")";
}

}  // namespace OvMemTest
