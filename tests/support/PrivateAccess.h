#ifndef TESTS_SUPPORT_PRIVATEACCESS_H
#define TESTS_SUPPORT_PRIVATEACCESS_H

#include <string>

#include "OvMemCppBinding/client/Exceptions.h"
#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/client/OvMEMRequest.h"

// The private members of a connection, and of an exception.
namespace OvMemTest {

using Orvane::Net::OvModelEventManager::Client::Exception;
using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;
using Orvane::Net::OvModelEventManager::Client::OvMEMRequest;

std::string& serverIdOf(OvMEMConnection& connection);
std::string& clientIdOf(OvMEMConnection& connection);
std::string& localeOf(OvMEMConnection& connection);
bool& ovMemStartedOf(OvMEMConnection& connection);
bool& reservedOf(OvMEMConnection& connection);

int& reservedOf(Exception& exception);

bool isClientRegistered(OvMEMConnection& connection);
void initOvMem(OvMEMConnection& connection);
void termOvMem(OvMEMConnection& connection);
void setRequestHeader(OvMEMConnection& connection, OvMEMRequest& request,
                      std::string& operationName, std::string& logCorrelationId,
                      bool withIdentity);

}  // namespace OvMemTest

#endif
