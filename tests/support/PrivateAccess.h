#ifndef TESTS_SUPPORT_PRIVATEACCESS_H
#define TESTS_SUPPORT_PRIVATEACCESS_H

#include <cstddef>
#include <string>

#include "OvMemCppBinding/client/Exceptions.h"
#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "OvMemCppBinding/client/ReplyBuffer.h"

// The private members of the client classes.
namespace OvMemTest {

using Orvane::Net::OvModelEventManager::Client::Exception;
using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;
using Orvane::Net::OvModelEventManager::Client::OvMEMRequest;
using Orvane::Net::OvModelEventManager::Client::ReplyBuffer;

std::string& serverIdOf(OvMEMConnection& connection);
std::string& clientIdOf(OvMEMConnection& connection);
std::string& localeOf(OvMEMConnection& connection);
bool& ovMemStartedOf(OvMEMConnection& connection);
bool& reservedOf(OvMEMConnection& connection);

int& reservedOf(Exception& exception);
std::size_t capacityOf(ReplyBuffer& buffer);

bool isClientRegistered(OvMEMConnection& connection);
void initOvMem(OvMEMConnection& connection);
void termOvMem(OvMEMConnection& connection);
void setRequestHeader(OvMEMConnection& connection, OvMEMRequest& request,
                      std::string& operationName, std::string& logCorrelationId,
                      bool withIdentity);

}  // namespace OvMemTest

#endif
