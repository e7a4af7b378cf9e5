#ifndef CLI_JSONOBJECT_H
#define CLI_JSONOBJECT_H

#include <string>
#include <string_view>
#include <vector>

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

    std::string line() const;

private:
    void addRaw(std::string_view name, const std::string& value);

    std::string members;  // without the braces
};

}  // namespace ovmem::cli

#endif
