#ifndef TESTS_CLIENT_FAULTTABLE_H
#define TESTS_CLIENT_FAULTTABLE_H

#include <climits>
#include <string>
#include <vector>

namespace OvMemTest {

// A status of the transport, and the class of exception it ends as.
struct Fault {
    int status;
    std::string type;
};

// Every status the client knows, each with a neighbour that it does not know;
// -3002 and what is far from all of them.
inline const std::vector<Fault> faultTable{
    {1001, "OvMEMConnectionException"},
    {1002, "OvMEMProtocolException"},
    {1003, "OvMEMRuntimeException"},
    {-751, "OvMEMProtocolException"},
    {-3099, "OvMEMProtocolException"},
    {-3017, "OvMEMProtocolException"},
    {-3016, "OvMEMRuntimeException"},
    {-3010, "OvMEMRuntimeException"},
    {-3009, "OvMEMRuntimeException"},
    {-3001, "OvMEMConnectionException"},
    {-2999, "OvMEMConnectionException"},
    {-2998, "OvMEMConnectionException"},
    {-2997, "OvMEMConnectionException"},
    {-2996, "OvMEMConnectionException"},
    {-3002, "OvMEMUnrecognisedException"},
    {INT_MAX, "OvMEMUnrecognisedException"},
    {1004, "OvMEMUnrecognisedException"},
    {1000, "OvMEMUnrecognisedException"},
    {751, "OvMEMUnrecognisedException"},
    {1, "OvMEMUnrecognisedException"},
    {-1, "OvMEMUnrecognisedException"},
    {-2, "OvMEMUnrecognisedException"},
    {-750, "OvMEMUnrecognisedException"},
    {-752, "OvMEMUnrecognisedException"},
    {-1001, "OvMEMUnrecognisedException"},
    {-2995, "OvMEMUnrecognisedException"},
    {-3000, "OvMEMUnrecognisedException"},
    {-3008, "OvMEMUnrecognisedException"},
    {-3011, "OvMEMUnrecognisedException"},
    {-3015, "OvMEMUnrecognisedException"},
    {-3018, "OvMEMUnrecognisedException"},
    {-3098, "OvMEMUnrecognisedException"},
    {-3100, "OvMEMUnrecognisedException"},
    {INT_MIN, "OvMEMUnrecognisedException"},
};

}  // namespace OvMemTest

#endif
