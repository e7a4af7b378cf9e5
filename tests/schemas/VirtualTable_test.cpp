#include <string>
#include <vector>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "OvMemCppBinding/schemas/SharedClientIDs.h"
#include "OvMemCppBinding/util/DomException.h"

// The order of virtual functions is part of the binary interface, and the list
// of exported symbols does not show it.

namespace {

using Orvane::Net::OvModelEventManager::Util::DomException;
using Orvane::Schemas::OvModelEventManager::_2009_06::Base::SharedClientIDs;

using Names = std::vector<std::string>;

// The functions in the table to which the object points; "?" for another one
// than is exported under the name expected there.
template <typename Object>
Names namesInTable(const Object& object, const Names& expected) {
    void* const* const table = *reinterpret_cast<void* const* const*>(&object);
    Names found;
    for (std::size_t slot = 0; slot < expected.size(); ++slot) {
        void* const function = dlsym(RTLD_DEFAULT, expected[slot].c_str());
        found.push_back(function == table[slot] ? expected[slot] : "?");
    }
    return found;
}

TEST(VirtualTable, OfASchemaObjectIsDestructorCloneNamespaces) {
    const std::string scope =
        "Orvane7Schemas19OvModelEventManager8_2009_064Base15SharedClientIDs";
    const Names expected{
        "_ZN6" + scope + "D1Ev",
        "_ZN6" + scope + "D0Ev",
        "_ZN6" + scope + "11reallyCloneEv",
        "_ZNK6" + scope +
            "13getNamespacesERSt3setINSt7__cxx1112basic_stringIcSt11char_"
            "traitsIcESaIcEEESt4lessISB_ESaISB_EE",
    };
    EXPECT_EQ(namesInTable(SharedClientIDs(), expected), expected);
}

TEST(VirtualTable, OfADomExceptionIsDestructorSetGet) {
    const std::string scope =
        "_ZN6Orvane3Net19OvModelEventManager4Util12DomException";
    const Names expected{
        scope + "D1Ev",
        scope + "D0Ev",
        scope +
            "10setMessageERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcE"
            "EE",
        scope + "10getMessageB5cxx11Ev",
    };
    EXPECT_EQ(namesInTable(DomException(), expected), expected);
}

}  // namespace
