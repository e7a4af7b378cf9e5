#ifndef OVMEMCPPBINDING_UTIL_XMLESCAPE_H
#define OVMEMCPPBINDING_UTIL_XMLESCAPE_H

#include <string>

#include "OvMemCppBinding/Export.h"

namespace Orvane {
namespace Net {
namespace OvModelEventManager {
namespace Util {

// Escaping of text for XML, the same for element content and for attribute
// values in double quotes. Eight characters are replaced, nothing else:
//
//     tab &#9;    line feed &#10;    " &quot;    % &#x25;
//     & &amp;     ' &apos;           < &lt;      > &gt;
//
// The percent sign is escaped although XML does not ask for it, and carriage
// return is not (docs/irregularities.md#escape-table). Bytes of 128 and above
// pass unchanged, so UTF-8 stays UTF-8.
//
// Both functions are pure and may be called from any thread. They fail on no
// input; cost and memory are linear in the length of the text.

// The escaped copy.
OVMEM_EXPORT std::string escape(const std::string& text);

// The unescaped copy. Understands exactly the eight forms above; whatever else
// begins with '&' stays as it is. A character produced is never combined with
// what follows it: "&amp;lt;" becomes "&lt;".
//
// unescape(escape(text)) is `text` for every text.
OVMEM_EXPORT std::string unescape(const std::string& text);

}  // namespace Util
}  // namespace OvModelEventManager
}  // namespace Net
}  // namespace Orvane

#endif
