// Fails each test in which the engine swallowed an error that the test didn't expect, and each that expects one which
// doesn't come.
#pragma once

namespace zek {

// For all test programs; their main() calls it before the tests run.
void BestelleFehlerwaechter();

// From here to the end of the present test errors at this place are expected, one at least.
void ErwarteVerschluckte(const char* stelle);
// The same, but none need come.
void ErlaubeVerschluckte(const char* stelle);

}  // namespace zek
