#ifndef CLI_TEXTSOURCE_H
#define CLI_TEXTSOURCE_H

#include <functional>
#include <string_view>

namespace ovmem::cli {

// Takes the next piece of a text. False: no further one is wanted.
using TextSink = std::function<bool(std::string_view piece)>;

// Makes a text piece by piece, so that it never has to be in memory as a whole.
// Each call begins at the front and makes the same text.
using TextSource = std::function<void(const TextSink& sink)>;

}  // namespace ovmem::cli

#endif
