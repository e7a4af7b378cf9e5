#ifndef TESTS_UTIL_XMLPLATFORM_H
#define TESTS_UTIL_XMLPLATFORM_H

#include <gtest/gtest.h>
#include <xercesc/util/PlatformUtils.hpp>

namespace OvMemTest {

// The XML parser platform, running while it lives.
class XmlPlatform {
public:
    XmlPlatform() { xercesc::XMLPlatformUtils::Initialize(); }
    ~XmlPlatform() { xercesc::XMLPlatformUtils::Terminate(); }
    XmlPlatform(const XmlPlatform&) = delete;
    XmlPlatform& operator=(const XmlPlatform&) = delete;
};

// A test during which it runs.
class XmlPlatformTest : public testing::Test {
private:
    XmlPlatform platform;
};

}  // namespace OvMemTest

#endif
