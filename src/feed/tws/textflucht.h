// Texts of the wire to UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace zek::tws {

// Newer servers send non-ASCII letters as "\u00fc" (`fluchten` true); a malformed escape stays as it is, a pair of
// surrogates becomes one letter. Other bytes are UTF-8 or, if they aren't, taken as Latin-1.
// The result is `roh` itself where nothing changes; otherwise it stands in `puffer`.
std::string_view Klartext(std::string_view roh, bool fluchten, std::string& puffer);

}  // namespace zek::tws
