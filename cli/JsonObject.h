#ifndef CLI_JSONOBJECT_H
#define CLI_JSONOBJECT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/TextSource.h"

namespace ovmem::cli {

// Builds one JSON object on one line, members in the order of the calls:
//
//     JsonObject object;
//     object.add("command", "put");
//     object.add("bytes", 3);
//     object.line();    // {"command":"put","bytes":3} and a line feed
//
// JSON is UTF-8. A text that is not goes under its name with "Base64" added,
// encoded so; a list of texts goes there as a whole when one of them is not.
class JsonObject {
public:
    void add(std::string_view name, std::string_view text);
    void add(std::string_view name, const char* text);
    void add(std::string_view name, const std::vector<std::string>& texts);
    void add(std::string_view name, long long number);
    void add(std::string_view name, bool value);
    void add(std::string_view name, const std::vector<JsonObject>& objects);

    // As add(), for a long text: it is borrowed, and encoded only while the
    // object is written, a piece at a time. One such for an object, and none
    // in an object that is a member.
    void addBorrowed(std::string_view name, std::string_view text);

    std::string line() const;

    // The line in pieces.
    void write(const TextSink& sink) const;

private:
    void addRaw(std::string_view name, const std::string& value);

    std::string members;  // without the braces
    std::string_view borrowed;
    std::size_t borrowedAt = 0;  // where it belongs in the members
    bool borrowedIsUtf8 = true;
};

}  // namespace ovmem::cli

#endif
