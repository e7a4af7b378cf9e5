#ifndef TESTS_UTIL_GUARDEDPARSING_H
#define TESTS_UTIL_GUARDEDPARSING_H

#include <string>

#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "tests/support/Thrown.h"

namespace OvMemTest {

// What a guard throws, or has thrown.
inline Thrown domException(const std::string& text) {
    return {"DomException", 0, "XmlPlatformGuard: " + text};
}

// What comes of parsing a document.
inline Thrown parsing(const std::string& xml) {
    using Orvane::Net::OvModelEventManager::Util::SAXToNodeParser;
    return thrownBy([&xml] { SAXToNodeParser().parseString(xml); });
}

}  // namespace OvMemTest

#endif
