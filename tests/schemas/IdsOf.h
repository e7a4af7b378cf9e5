#ifndef TESTS_SCHEMAS_IDSOF_H
#define TESTS_SCHEMAS_IDSOF_H

#include <string>
#include <vector>

#include "OvMemCppBinding/schemas/SharedClientIDs.h"

namespace OvMemTest {

using Ids = std::vector<std::string>;

inline Ids idsOf(
    Orvane::Schemas::OvModelEventManager::_2009_06::Base::SharedClientIDs&
        object) {
    Ids ids;
    object.getSharedClients(ids);
    return ids;
}

}  // namespace OvMemTest

#endif
