#include "OvMemCppBinding/util/XmlPlatformGuard.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLNetAccessor.hpp>

#include "OvMemCppBinding/util/DomException.h"
#include "OvMemCppBinding/util/LimitedMemory.h"
#include "OvMemCppBinding/util/ParseTime.h"
#include "OvMemCppBinding/util/PlatformStart.h"
#include "OvMemCppBinding/util/RestrictedFiles.h"
#include "OvMemCppBinding/util/TreeBudget.h"

namespace Orvane::Net::OvModelEventManager::Util {

using xercesc::XMLPlatformUtils;

namespace {

constexpr std::size_t maxDepth = 1000;
// The processor time of a parse, for each so much memory that is granted.
constexpr std::chrono::milliseconds timeShare(750);
constexpr std::size_t memoryShare = std::size_t{16} * 1024 * 1024;
constexpr const char* dtdSwitch = "XERCES_DISABLE_DTD";

// In place of the XML library's own, which ends the process.
class ThrowingPanicHandler : public xercesc::PanicHandler {
public:
    void panic(const PanicReasons reason) override {
        throw DomException(
            std::string("XmlPlatformGuard: the XML library cannot go on: ") +
            getPanicReasonString(reason));
    }
};

// Never destroyed: the platform may outlive the guard, and whoever uses it may
// do so while the process ends.
xercesc::PanicHandler& panicHandler() {
    alignas(ThrowingPanicHandler) static unsigned char
        room[sizeof(ThrowingPanicHandler)];
    static auto* const handler = new (room) ThrowingPanicHandler;
    return *handler;
}

std::string realFolder(const std::string& folder) {
    std::error_code failed;
    const auto real = std::filesystem::canonical(folder, failed);
    if (failed == std::errc::not_enough_memory)
        throw std::bad_alloc();
    if (failed || !std::filesystem::is_directory(real, failed))
        throw DomException("XmlPlatformGuard: '" + folder +
                           "' is not a folder");
    return real.string();
}

void requirePlatformNotRunning() {
    if (XMLPlatformUtils::fgMemoryManager != nullptr) {
        throw DomException(
            "XmlPlatformGuard: the XML parser platform runs already");
    }
}

// The XML library asks the environment whether it is to refuse DTDs, so that
// other users of it are under the rule as well. The parser does not rely on it:
// the application may clear its environment. Afterwards it is what it was.
class DtdsOff {
public:
    DtdsOff() {
        if (const char* value = std::getenv(dtdSwitch))
            before = value;
        if (setenv(dtdSwitch, "1", 1) != 0)
            throw std::bad_alloc();
    }
    ~DtdsOff() {
        if (before)
            setenv(dtdSwitch, before->c_str(), 1);
        else
            unsetenv(dtdSwitch);
    }
    DtdsOff(const DtdsOff&) = delete;
    DtdsOff& operator=(const DtdsOff&) = delete;

private:
    std::optional<std::string> before;
};

// One initialisation of the platform. It is not told of any limit until it
// has started: the XML library does not recover from a start cut short.
class PlatformHold {
public:
    PlatformHold() {
        LimitedMemory::instance().liftLimit();
        startPlatform(&panicHandler(), &LimitedMemory::instance());
        if (XMLPlatformUtils::fgMemoryManager == nullptr) {
            throw DomException(
                "XmlPlatformGuard: the XML parser platform failed to start "
                "earlier");
        }
    }
    ~PlatformHold() { XMLPlatformUtils::Terminate(); }
    PlatformHold(const PlatformHold&) = delete;
    PlatformHold& operator=(const PlatformHold&) = delete;
};

// A day is long enough, and nanoseconds can count it.
std::chrono::milliseconds timeFor(std::size_t bytes) {
    constexpr std::size_t most = std::chrono::hours(24) / timeShare;
    return timeShare * std::clamp<std::size_t>(bytes / memoryShare, 1, most);
}

class ParseLimits {
public:
    explicit ParseLimits(std::size_t bytes) {
        TreeBudget::setLimits(maxDepth, bytes);
        ParseTime::setLimit(timeFor(bytes));
    }
    ~ParseLimits() {
        ParseTime::liftLimit();
        TreeBudget::liftLimits();
    }
    ParseLimits(const ParseLimits&) = delete;
    ParseLimits& operator=(const ParseLimits&) = delete;
};

void closeNetwork() {
    delete std::exchange(XMLPlatformUtils::fgNetAccessor, nullptr);
}

// The platform owns its file access, and ends it.
void restrictFiles(std::unique_ptr<RestrictedFiles> restricted) {
    restricted->wrap(std::unique_ptr<xercesc::XMLFileMgr>(
        std::exchange(XMLPlatformUtils::fgFileMgr, nullptr)));
    XMLPlatformUtils::fgFileMgr = restricted.release();
}

}  // namespace

// Nothing may fail once the platform has started: to end it the XML library
// asks for memory, and without any ends the process.
class XmlPlatformGuard::Platform {
public:
    Platform(const std::string& folder, std::size_t memoryLimit)
        : files(new (&LimitedMemory::instance())
                    RestrictedFiles(nullptr, folder)),
          parseLimits(memoryLimit) {
        closeNetwork();
        restrictFiles(std::move(files));
        LimitedMemory::instance().limitGrowth(memoryLimit);
    }

private:
    DtdsOff dtdsOff;
    std::unique_ptr<RestrictedFiles> files;  // until the platform owns it
    ParseLimits parseLimits;
    PlatformHold hold;
};

XmlPlatformGuard::XmlPlatformGuard(std::size_t memoryLimit) {
    requirePlatformNotRunning();
    platform = std::make_unique<Platform>(std::string(), memoryLimit);
}

XmlPlatformGuard::XmlPlatformGuard(const std::string& folder,
                                   std::size_t memoryLimit) {
    requirePlatformNotRunning();
    platform = std::make_unique<Platform>(realFolder(folder), memoryLimit);
}

XmlPlatformGuard::~XmlPlatformGuard() = default;

}  // namespace Orvane::Net::OvModelEventManager::Util
